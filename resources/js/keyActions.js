.pragma library
.import "actions.js" as Actions
.import "currentItem.js" as CurrentItem
.import "gestures.js" as Gestures
.import "moves.js" as Moves
.import "selection.js" as Selection
.import "view.js" as View

// Keys and actions of the mesh editor.

var SHIFT = Qt.ShiftModifier;
var CONTROL = Qt.ControlModifier;
var ALT = Qt.AltModifier;

// By action: what it does to the current mesh.
var ACTIONS = {};
ACTIONS[Actions.SELECT_ALL_POINTS] = Selection.selectAllPoints;
ACTIONS[Actions.UNSELECT_ALL_POINTS] = Selection.unselectAllPoints;
ACTIONS[Actions.HORIZONTAL_MIRROR] = Moves.horizontalMirror;
ACTIONS[Actions.VERTICAL_MIRROR] = Moves.verticalMirror;
ACTIONS[Actions.H_FLIP] = Moves.horizontalFlip;
ACTIONS[Actions.V_FLIP] = Moves.verticalFlip;
ACTIONS[Actions.UV_TO_XY] = Moves.uvToXy;
ACTIONS[Actions.XY_TO_UV] = Moves.xyToUv;

// By arrow key: its name, its side of the screen, its actions by modifiers. With other modifiers it moves the selection.
var ARROWS = {};

function addArrow(key, name, side, line, sideLine, select, add, addLine, addSideLine) {
    const actions = {};
    actions[ALT] = select;
    actions[SHIFT | ALT] = add;
    actions[CONTROL | ALT] = addLine;
    actions[CONTROL | SHIFT | ALT] = addSideLine;
    ARROWS[key] = { name: name, side: side, actions: actions };
    ACTIONS[select] = scene => Selection.selectNeighbourPoint(scene, "select", side);
    ACTIONS[add] = scene => Selection.selectNeighbourPoint(scene, "add", side);
    ACTIONS[addLine] = scene => Selection.selectLine(scene, line);
    ACTIONS[addSideLine] = scene => Selection.selectLine(scene, sideLine);
}

addArrow(Qt.Key_Up, "Up", "top", "currentColumn", "topRow",
         Actions.SELECT_NEIGHBOUR_TOP, Actions.SELECT_ADD_NEIGHBOUR_TOP,
         Actions.SELECT_ADD_CURRENT_COLUMN, Actions.SELECT_ADD_NEIGHBOUR_COLUMN_TOP);
addArrow(Qt.Key_Down, "Down", "bottom", "currentColumn", "bottomRow",
         Actions.SELECT_NEIGHBOUR_BOTTOM, Actions.SELECT_ADD_NEIGHBOUR_BOTTOM,
         Actions.SELECT_ADD_CURRENT_COLUMN, Actions.SELECT_ADD_NEIGHBOUR_COLUMN_BOTTOM);
addArrow(Qt.Key_Left, "Left", "left", "currentRow", "leftColumn",
         Actions.SELECT_NEIGHBOUR_LEFT, Actions.SELECT_ADD_NEIGHBOUR_LEFT,
         Actions.SELECT_ADD_CURRENT_ROW, Actions.SELECT_ADD_NEIGHBOUR_COLUMN_LEFT);
addArrow(Qt.Key_Right, "Right", "right", "currentRow", "rightColumn",
         Actions.SELECT_NEIGHBOUR_RIGHT, Actions.SELECT_ADD_NEIGHBOUR_RIGHT,
         Actions.SELECT_ADD_CURRENT_ROW, Actions.SELECT_ADD_NEIGHBOUR_COLUMN_RIGHT);

// Pixels that an arrow key moves the selection, by modifiers.
var STEP = 1;
var STEPS = {};
STEPS[SHIFT] = 0.2;
STEPS[CONTROL] = 10;

// By key: what a press does on the canvas.
var KEYS = {};
KEYS[Qt.Key_Control] = scene => { scene.ctrlPressed = true; };
KEYS[Qt.Key_Space] = KEYS[Qt.Key_P] = KEYS[Qt.Key_M] = forwardKey;
KEYS[Qt.Key_R] = (scene, event) => {
    if (!event.isAutoRepeat) // a held key would make the view spin
        View.rotateView(scene, event.modifiers & CONTROL ? -90 : 90);
};
KEYS[Qt.Key_A] = (scene, event) => event.modifiers & CONTROL && withDeformer(scene, it => it.selectAllPoints());
KEYS[Qt.Key_Escape] = scene => withDeformer(scene, it => it.unselectAllPoints());
for (const arrow in ARROWS)
    KEYS[arrow] = (scene, event) => withDeformer(scene, it => it.manageKeyEvent(event));

function forwardKey(scene, event) {
    scene.bridge.notifyKeyEventFromQml(6, event.key, event.modifiers, event.text, event.isAutoRepeat, event.count);
}

function withDeformer(scene, call) {
    const item = CurrentItem.getCurrentItem(scene);
    if (item)
        call(item.itemDeformer);
}

function keyPressed(scene, event) {
    const handler = KEYS[event.key];
    if (handler)
        handler(scene, event);
}

function keyReleased(scene, event) {
    if (event.key === Qt.Key_Control)
        scene.ctrlPressed = false;
    if (ARROWS[event.key] && !event.isAutoRepeat)
        Gestures.setActive(scene, Gestures.KEY, false);
}

function manageKeyEvent(scene, event) {
    const item = CurrentItem.requireItem(scene, "manageKeyEvent");
    const arrow = ARROWS[event.key];
    if (!item || !arrow)
        return;
    const modifiers = event.modifiers & (SHIFT | CONTROL | ALT | Qt.MetaModifier);
    if (CurrentItem.currentGrid(scene, item).currentSelectedPointId === -1) {
        if (modifiers === ALT || modifiers === (SHIFT | ALT))
            Selection.selectCurrentPoint(scene, 0);
        return;
    }
    if (event.isAutoRepeat)
        Gestures.setActive(scene, Gestures.KEY, true);
    const action = arrow.actions[modifiers];
    if (action !== undefined)
        manageAction(scene, action);
    else
        Moves.moveOnScreen(scene, item, arrow.side, STEPS[modifiers] || STEP);
}

function manageAction(scene, action) {
    if (CurrentItem.requireItem(scene, "manageAction") && ACTIONS[action])
        ACTIONS[action](scene);
}

// Names of the arrow keys that trigger an action.
function arrowsOf(action) {
    return Object.values(ARROWS).filter(arrow => Object.values(arrow.actions).includes(action)).map(arrow => arrow.name);
}
