.pragma library
.import "itemKinds.js" as Kinds
.import "meshRules.js" as Rules

// The item that the operator edits. In all libraries `scene` is the root of the editor and `scene.bridge` the bridge to
// the Producer.

// The entry of the current item, null when there is none.
function getCurrentEntry(scene) {
    const type = scene.canvasCurrentItemType;
    if (type === Rules.NO_ITEM)
        return null;
    if (!Kinds.KINDS[type]) {
        console.log("getCurrentItem: Undefined item type");
        return null;
    }
    return Kinds.entryAt(scene, type, scene.canvasCurrentItemId, scene.canvasCurrentSubItemId);
}

function getCurrentItem(scene) {
    const entry = getCurrentEntry(scene);
    return entry ? entry.item : null;
}

// The current item; logs the caller's name when there is none.
function requireItem(scene, caller) {
    const item = getCurrentItem(scene);
    if (!item)
        console.log(caller + ": currentItem is null!");
    return item;
}

function isCurrent(scene, type, id, subId) {
    return scene.canvasCurrentItemType === type && scene.canvasCurrentItemId === (id | 0)
        && (type !== Rules.SCREEN_PART || scene.canvasCurrentSubItemId === subId);
}

function getCurrentGridId(scene) {
    return scene.isCurrentGridXy ? Rules.XY_GRID : Rules.UV_GRID;
}

function currentGrid(scene, item) {
    return item.deformerGrids[getCurrentGridId(scene)];
}

function isInSimpleMode(scene, entry) {
    return scene.canvasCurrentItemType === Rules.SCREEN && entry.screenModeType === Rules.SIMPLE_MODE;
}

// The text with number and position of the current point.
function updateCurrentPointText(scene) {
    const entry = getCurrentEntry(scene);
    if (!entry) {
        scene.currentPointText.clear();
        return;
    }
    if (isInSimpleMode(scene, entry))
        return;
    const grid = currentGrid(scene, entry.item);
    const point = grid.currentSelectedPointId >= 0 ? grid.pointsArray[grid.currentSelectedPointId] : null;
    if (point)
        scene.currentPointText.show(point.pointNum, point.x, point.y);
    else
        scene.currentPointText.clear();
}
