.pragma library
.import "actions.js" as Actions
.import "deformerActions.js" as DeformerActions
.import "meshRules.js" as Rules

// Buttons around the canvas, and the actions of a controller.

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

// Arrow keys in the tool tips of the select tab, by button id.
var SELECT_KEYS = [
    [], [],
    ["Right"], ["Left"], ["Down"], ["Up"],
    ["Left"], ["Up"], ["Down"], ["Right"],
    ["Up", "Down"], ["Left", "Right"],
    ["Left"], ["Up"], ["Down"], ["Right"]
];

function selectToolTip(text, buttonId) {
    return (SELECT_KEYS[buttonId] || []).reduce((tip, key, index) => tip.replace("%" + (index + 1), key), text);
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
        return (scene, buttonId) => {
            scene.rotationDialog.selectView(buttonId);
            scene.pointerArea.ignoreSecondTap();
        };
    case "closeButton":
        return scene => {
            scene.rotationDialog.close();
            scene.pointerArea.ignoreSecondTap();
        };
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
    if (!DeformerActions.getCurrentItem(scene))
        return;
    if (buttonId === ADJUST_VIEW)
        DeformerActions.adjustView(scene);
    else if (buttonId === OPEN_ROTATION_DIALOG) {
        DeformerActions.endGestures(scene);
        scene.rotationDialog.open();
    }
}

function toolButtonClicked(scene, action) {
    const item = DeformerActions.currentItemOf(scene, "toolButtonClicked");
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

function lockZone(scene, locked) {
    scene.warpToolBar.zoneLockerButtonPushed = locked;
    const item = DeformerActions.getCurrentItem(scene);
    if (!item)
        return;
    const grid = DeformerActions.currentGridOf(scene, item);
    grid.dragMinimumX = locked ? 0 : -Number.MAX_VALUE;
    grid.dragMaximumX = locked ? item.sourceWidth : Number.MAX_VALUE;
    grid.dragMinimumY = locked ? 0 : -Number.MAX_VALUE;
    grid.dragMaximumY = locked ? item.sourceHeight : Number.MAX_VALUE;
}

function lockMoves(scene, locked) {
    scene.warpToolBar.moveLockerButtonPushed = locked;
    const item = DeformerActions.getCurrentItem(scene);
    if (item)
        DeformerActions.currentGridOf(scene, item).pointsMovable = !locked;
}

function zoneLockerClicked(scene) {
    if (DeformerActions.getCurrentItem(scene) && !isTextureUvEdited(scene))
        lockZone(scene, !scene.warpToolBar.zoneLockerButtonPushed);
}

function moveLockerClicked(scene) {
    if (!DeformerActions.getCurrentItem(scene))
        return;
    if (!scene.warpToolBar.moveLockerButtonPushed)
        DeformerActions.endGestures(scene);
    lockMoves(scene, !scene.warpToolBar.moveLockerButtonPushed);
}

function releaseLockers(scene) {
    if (scene.warpToolBar.zoneLockerButtonPushed)
        lockZone(scene, false);
    if (scene.warpToolBar.moveLockerButtonPushed)
        lockMoves(scene, false);
}

// The texture coordinates of a texture stay inside it.
function lockZoneOfTextureUv(scene) {
    if (isTextureUvEdited(scene))
        lockZone(scene, true);
}

// Configuration and map

function openDeformationDialog(scene) {
    const entry = DeformerActions.getCurrentEntry(scene);
    if (!entry)
        return;
    DeformerActions.endGestures(scene);
    const item = entry.item;
    const isSimple = DeformerActions.isInSimpleMode(scene, entry);
    const type = isSimple ? Rules.NONE : item.deformerDeformationType;
    const isBezier = item.deformerDeformationType === Rules.BEZIER;
    scene.deformationDialog.open(type,
                                 isBezier ? Rules.patchCorners(item.deformerColsNumber) : item.deformerColsNumber,
                                 isBezier ? Rules.patchCorners(item.deformerRowsNumber) : item.deformerRowsNumber);
}

// Switches between the positions of the points and their texture coordinates.
function mapClicked(scene) {
    const type = scene.canvasCurrentItemType;
    const entry = DeformerActions.getCurrentEntry(scene);
    if (!entry || (type !== Rules.MEDIA && type !== Rules.TEXTURE))
        return;
    DeformerActions.endGestures(scene);
    releaseLockers(scene);
    const grids = entry.item.deformerGrids;
    DeformerActions.hideGrid(grids[DeformerActions.getCurrentGridId(scene)]);
    scene.isCurrentGridXy = !scene.isCurrentGridXy;
    DeformerActions.showGrid(grids[DeformerActions.getCurrentGridId(scene)]);
    DeformerActions.refreshPoints(scene, entry.item);
    scene.pointerArea.grid = grids[DeformerActions.getCurrentGridId(scene)];
    lockZoneOfTextureUv(scene);
    scene.warpToolBar.mapButtonPushed = !scene.isCurrentGridXy;
    DeformerActions.adjustView(scene);
    DeformerActions.updateCurrentPointText(scene);
}

function actionTriggered(scene, action) {
    if (scene.isDialogOpen || !DeformerActions.getCurrentItem(scene))
        return;
    if (action === Actions.TOGGLE_EDIT_UV)
        mapClicked(scene);
    else
        toolButtonClicked(scene, action);
}
