.pragma library
.import "actions.js" as Actions
.import "currentItem.js" as CurrentItem
.import "gestures.js" as Gestures
.import "keyActions.js" as KeyActions
.import "meshBuilder.js" as MeshBuilder
.import "meshRules.js" as Rules
.import "view.js" as View

// Buttons around the canvas.

// Canvas buttons
var ADJUST_VIEW = 0;
var OPEN_ROTATION_DIALOG = 1;

// Tool bar
var ZONE_LOCKER = 0;
var MOVE_LOCKER = 1;
var CONFIGURATION = 2;
var MAP = 3;

// By button id of the select tab.
var SELECT_ACTIONS = [
    Actions.SELECT_ALL_POINTS,
    Actions.UNSELECT_ALL_POINTS,
    Actions.SELECT_NEIGHBOUR_RIGHT,
    Actions.SELECT_NEIGHBOUR_LEFT,
    Actions.SELECT_NEIGHBOUR_BOTTOM,
    Actions.SELECT_NEIGHBOUR_TOP,
    Actions.SELECT_ADD_NEIGHBOUR_LEFT,
    Actions.SELECT_ADD_NEIGHBOUR_TOP,
    Actions.SELECT_ADD_NEIGHBOUR_BOTTOM,
    Actions.SELECT_ADD_NEIGHBOUR_RIGHT,
    Actions.SELECT_ADD_CURRENT_COLUMN,
    Actions.SELECT_ADD_CURRENT_ROW,
    Actions.SELECT_ADD_NEIGHBOUR_COLUMN_LEFT,
    Actions.SELECT_ADD_NEIGHBOUR_COLUMN_TOP,
    Actions.SELECT_ADD_NEIGHBOUR_COLUMN_BOTTOM,
    Actions.SELECT_ADD_NEIGHBOUR_COLUMN_RIGHT
];

// By button id of the deform tab; the first is its heading.
var DEFORM_ACTIONS = [
    undefined,
    Actions.HORIZONTAL_MIRROR,
    Actions.VERTICAL_MIRROR,
    Actions.H_FLIP,
    Actions.V_FLIP,
    Actions.UV_TO_XY,
    Actions.XY_TO_UV
];

// Whether a button of the deform tab needs an item with editable texture coordinates.
function needsUv(buttonId) {
    return DEFORM_ACTIONS[buttonId] === Actions.UV_TO_XY || DEFORM_ACTIONS[buttonId] === Actions.XY_TO_UV;
}

// The tool tip of a button of the select tab, with the names of its arrow keys.
function selectToolTip(text, buttonId) {
    return KeyActions.arrowsOf(SELECT_ACTIONS[buttonId])
        .reduce((tip, name, index) => tip.replace("%" + (index + 1), name), text);
}

function handlerOf(type) {
    switch (type) {
    case "canvasButton":
        return canvasButtonClicked;
    case "selectWarpToolButton":
        return (scene, buttonId) => toolButtonClicked(scene, SELECT_ACTIONS[buttonId]);
    case "deformWarpToolButton":
        return (scene, buttonId) => toolButtonClicked(scene, DEFORM_ACTIONS[buttonId]);
    case "warpToolBarButton":
        return warpToolBarButtonClicked;
    case "rotationButton":
        return (scene, buttonId) => scene.rotationDialog.selectView(buttonId);
    case "closeButton":
        return scene => scene.rotationDialog.close();
    default:
        return null;
    }
}

// Connects a button's click to the handler of its type.
function connectButton(scene, button) {
    const handler = handlerOf(button.type);
    if (handler)
        button.clicked.connect(() => handler(scene, button.buttonId));
    else
        console.log("Tool button connect error!");
}

function canvasButtonClicked(scene, buttonId) {
    if (!CurrentItem.getCurrentItem(scene))
        return;
    if (buttonId === ADJUST_VIEW)
        View.adjustView(scene);
    else if (buttonId === OPEN_ROTATION_DIALOG) {
        Gestures.endAll(scene);
        scene.rotationDialog.open();
    }
}

function toolButtonClicked(scene, action) {
    const item = CurrentItem.requireItem(scene, "toolButtonClicked");
    if (item && action !== undefined)
        item.itemDeformer.manageAction(action);
}

function warpToolBarButtonClicked(scene, buttonId) {
    switch (buttonId) {
    case ZONE_LOCKER:
        zoneLockerClicked(scene);
        break;
    case MOVE_LOCKER:
        moveLockerClicked(scene);
        break;
    case CONFIGURATION:
        openDeformationDialog(scene);
        break;
    case MAP:
        mapClicked(scene);
        break;
    }
}

// Lockers

function isTextureUvEdited(scene) {
    return scene.canvasCurrentItemType === Rules.TEXTURE && !scene.isCurrentGridXy;
}

function lockMoves(scene, locked) {
    scene.warpToolBar.moveLockerButtonPushed = locked;
    const item = CurrentItem.getCurrentItem(scene);
    if (item)
        CurrentItem.currentGrid(scene, item).pointsMovable = !locked;
}

function zoneLockerClicked(scene) {
    if (CurrentItem.getCurrentItem(scene) && !isTextureUvEdited(scene))
        scene.warpToolBar.zoneLockerButtonPushed = !scene.warpToolBar.zoneLockerButtonPushed;
}

function moveLockerClicked(scene) {
    if (!CurrentItem.getCurrentItem(scene))
        return;
    if (!scene.warpToolBar.moveLockerButtonPushed)
        Gestures.endAll(scene);
    lockMoves(scene, !scene.warpToolBar.moveLockerButtonPushed);
}

function releaseLockers(scene) {
    scene.warpToolBar.zoneLockerButtonPushed = false;
    if (scene.warpToolBar.moveLockerButtonPushed)
        lockMoves(scene, false);
}

// The texture coordinates of a texture stay inside it.
function lockZoneOfTextureUv(scene) {
    if (isTextureUvEdited(scene))
        scene.warpToolBar.zoneLockerButtonPushed = true;
}

// Configuration and map

function openDeformationDialog(scene) {
    const entry = CurrentItem.getCurrentEntry(scene);
    if (!entry)
        return;
    Gestures.endAll(scene);
    const item = entry.item;
    const isSimple = CurrentItem.isInSimpleMode(scene, entry);
    const type = isSimple ? Rules.NONE : item.deformerDeformationType;
    const isBezier = item.deformerDeformationType === Rules.BEZIER;
    scene.deformationDialog.open(type,
                                 isBezier ? Rules.patchCorners(item.deformerColsNumber) : item.deformerColsNumber,
                                 isBezier ? Rules.patchCorners(item.deformerRowsNumber) : item.deformerRowsNumber);
}

// Switches between the positions of the points and their texture coordinates.
function mapClicked(scene) {
    editGrid(scene, scene.isCurrentGridXy ? Rules.UV_GRID : Rules.XY_GRID);
}

// Edits the positions of the points or their texture coordinates.
function editGrid(scene, gridId) {
    const type = scene.canvasCurrentItemType;
    const entry = CurrentItem.getCurrentEntry(scene);
    if (!entry || (type !== Rules.MEDIA && type !== Rules.TEXTURE) || gridId === CurrentItem.getCurrentGridId(scene))
        return;
    Gestures.endAll(scene);
    releaseLockers(scene);
    MeshBuilder.hideGrid(CurrentItem.currentGrid(scene, entry.item));
    scene.isCurrentGridXy = gridId === Rules.XY_GRID;
    const grid = CurrentItem.currentGrid(scene, entry.item);
    MeshBuilder.showGrid(grid);
    MeshBuilder.refreshPoints(scene, entry.item);
    scene.pointerArea.grid = grid;
    lockZoneOfTextureUv(scene);
    scene.warpToolBar.mapButtonPushed = !scene.isCurrentGridXy;
    View.adjustView(scene);
    CurrentItem.updateCurrentPointText(scene);
}
