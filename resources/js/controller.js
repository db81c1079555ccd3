.pragma library
.import "actions.js" as Actions
.import "currentItem.js" as CurrentItem
.import "gestures.js" as Gestures
.import "moves.js" as Moves
.import "view.js" as View
.import "warpToolButtonsActions.js" as WarpToolButtonsActions

// Sticks, trigger and actions of a controller.

// The step of a stick at (x, y), -1 to 1 each, in screen pixels.
function stickStep(x, y) {
    const speed = 2 * (x * x + y * y);
    return { x: x * speed, y: y * speed };
}

function leftStickMoved(scene, x, y) {
    const item = CurrentItem.getCurrentItem(scene);
    if (!item)
        return;
    const canMove = item.itemDeformer.visible && !scene.isDialogOpen;
    const moving = canMove && (x !== 0 || y !== 0);
    Gestures.setActive(scene, Gestures.STICK, moving);
    if (!moving)
        return;
    const step = stickStep(x, y);
    Moves.moveSelectedPoints(scene, step.x / scene.mediaScaleFactor, step.y / scene.mediaScaleFactor);
}

function rightStickMoved(scene, x, y) {
    if (!CurrentItem.getCurrentItem(scene) || scene.isDialogOpen)
        return;
    const step = stickStep(x, y);
    View.panBy(scene, -step.x, -step.y);
}

function triggerPressed(scene, value) {
    if (!scene.isDialogOpen)
        View.zoomBy(scene, -value / 100 * value * value);
}

function actionTriggered(scene, action) {
    if (scene.isDialogOpen || !CurrentItem.getCurrentItem(scene))
        return;
    if (action === Actions.TOGGLE_EDIT_UV)
        WarpToolButtonsActions.mapClicked(scene);
    else
        WarpToolButtonsActions.toolButtonClicked(scene, action);
}
