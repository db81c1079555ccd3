.pragma library
.import "currentItem.js" as CurrentItem
.import "meshRules.js" as Rules

// Zoom, position and rotation of the workspace.

var ZOOM_PER_NOTCH = 0.05;

// Centres the points of the current mesh, or the item without a mesh.
function adjustView(scene) {
    const item = CurrentItem.getCurrentItem(scene);
    let zoom = scene.zoomSlider.from;
    let x = 0;
    let y = 0;
    if (item) {
        zoom = item.defaultSourceScaleFactor;
        x = (scene.width - item.sourceWidth) / 2;
        y = (scene.height - item.sourceHeight) / 2;
        const box = Rules.boundingBox(CurrentItem.currentGrid(scene, item).pointsArray);
        if (box && Number.isFinite(box.x + box.y + box.width + box.height)) {
            zoom = Math.min(scene.width / box.width, scene.height / box.height) / 2.5;
            x = (scene.width - box.width) / 2 - box.x;
            y = (scene.height - box.height) / 2 - box.y;
        }
    }
    scene.zoomSlider.value = zoom;
    scene.canvasMedia.x = x;
    scene.canvasMedia.y = y;
}

// Keeps the centre of the canvas in place when its size changes by (dx, dy).
function recentre(scene, dx, dy) {
    if (scene.canvasCurrentItemType === Rules.NO_ITEM)
        return;
    scene.canvasMedia.x += dx / 2;
    scene.canvasMedia.y += dy / 2;
}

// Pans by (dx, dy) screen pixels.
function panBy(scene, dx, dy) {
    scene.canvasMedia.x += dx / scene.mediaScaleFactor;
    scene.canvasMedia.y += dy / scene.mediaScaleFactor;
}

function zoomBy(scene, difference) {
    if (CurrentItem.getCurrentItem(scene))
        scene.zoomSlider.value += difference;
}

// Scales the zoom by the factor; the screen position (x, y) stays in place.
function zoomAround(scene, factor, x, y) {
    if (!CurrentItem.getCurrentItem(scene))
        return;
    const before = scene.mediaScaleFactor;
    scene.zoomSlider.value = before * factor;
    const shift = 1 / scene.mediaScaleFactor - 1 / before;
    scene.canvasMedia.x += (x - scene.width / 2) * shift;
    scene.canvasMedia.y += (y - scene.height / 2) * shift;
}

function rotateView(scene, degrees) {
    const item = CurrentItem.getCurrentItem(scene);
    if (item)
        item.viewingRotation += degrees;
}

// Rotates the current item to a view: 0 front, 1 left, 2 back, 3 right.
function applyView(scene, view) {
    const item = CurrentItem.getCurrentItem(scene);
    if (item)
        item.viewingRotation = 90 * view;
}

function viewOfRotation(degrees) {
    switch (degrees) {
    case 0:
        return 0;
    case 90:
    case -270:
        return 1;
    case 180:
    case -180:
        return 2;
    default:
        return 3;
    }
}
