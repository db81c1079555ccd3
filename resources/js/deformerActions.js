.pragma library
.import "actions.js" as Actions
.import "meshRules.js" as Rules

// What an operator does to the mesh of the current item: selecting, moving, mirroring, copying, and building the mesh
// itself. `scene` is the root of the editor, or anything with its properties; `scene.bridge` leads to the Producer.

var UNSELECTED = "UNSELECTED";
var SELECTED = "SELECTED";
var CURRENT = "CURRENT";

// What can be in the middle of moving points, as a set of bits.
var POINTER_GESTURE = 1;
var KEY_GESTURE = 2;
var STICK_GESTURE = 4;

var KEY_STEP = 1;
var FINE_KEY_STEP = 0.2;
var COARSE_KEY_STEP = 10;

// Finding things

// The entry of the current item, null when there is none.
function getCurrentEntry(scene) {
    const id = scene.canvasCurrentItemId;
    switch (scene.canvasCurrentItemType) {
    case Rules.NO_ITEM:
        return null;
    case Rules.MEDIA:
        return scene.canvasMediaItemArray[id >>> 0] || null; // cue ids are unsigned
    case Rules.TEXTURE:
        return scene.canvasTextureItemArray[id >>> 0] || null;
    case Rules.SCREEN:
        return scene.canvasScreenItemArray[id] || null;
    case Rules.SCREEN_PART: {
        const parts = scene.canvasScreenPartItemArray[id];
        return parts && parts[scene.canvasCurrentSubItemId] || null;
    }
    default:
        console.log("getCurrentItem: Undefined item type");
        return null;
    }
}

function getCurrentItem(scene) {
    const entry = getCurrentEntry(scene);
    return entry ? entry.item : null;
}

function getCurrentGridId(scene) {
    return scene.isCurrentGridXy ? Rules.XY_GRID : Rules.UV_GRID;
}

// The current item; without one the caller's name is logged.
function currentItemOf(scene, caller) {
    const item = getCurrentItem(scene);
    if (!item)
        console.log(caller + ": currentItem is null!");
    return item;
}

function currentGridOf(scene, item) {
    return item.deformerGrids[getCurrentGridId(scene)];
}

function isInSimpleMode(scene, entry) {
    return scene.canvasCurrentItemType === Rules.SCREEN && entry.screenModeType === Rules.SIMPLE_MODE;
}

function rotator(scene) {
    return (point, degrees) => scene.bridge.rotate(point, degrees);
}

// Writing points

var toProducer = Rules.toProducer;
var fromProducer = Rules.fromProducer;

// The function that tells the Producer about a point of the entry's item.
function moveSender(scene, entry) {
    const bridge = scene.bridge;
    switch (scene.canvasCurrentItemType) {
    case Rules.MEDIA: {
        const move = bridge.moveMediaPoint, cueId = entry.mediaCueId, id = entry.mediaId, name = entry.mediaName;
        return (pointId, x, y, isXy, selected) => move(cueId, id, name, pointId, x, y, 0, isXy, selected);
    }
    case Rules.TEXTURE: {
        const move = bridge.moveTexturePoint, cueId = entry.textureCueId, id = entry.textureId, name = entry.textureName;
        return (pointId, x, y, isXy, selected) => move(cueId, id, name, pointId, x, y, 0, isXy, selected);
    }
    case Rules.SCREEN: {
        const move = bridge.moveScreenPoint, id = entry.screenId, name = entry.screenName;
        return (pointId, x, y, isXy, selected) => move(id, name, pointId, x, y, 0, isXy, selected);
    }
    default: {
        const move = bridge.moveScreenPartPoint, screenId = entry.screenId, id = entry.screenPartId;
        let screenName; // never set: moves of a screen part carry no name
        return (pointId, x, y, isXy, selected) => move(screenId, id, screenName, pointId, x, y, 0, isXy, selected);
    }
    }
}

// Everything about the current item that writing its points needs, looked up once for any number of points; null
// without a current item.
function pointWriter(scene, gridId) {
    const entry = getCurrentEntry(scene);
    if (!entry)
        return null;
    const item = entry.item;
    const grid = item.deformerGrids[gridId];
    return {
        setPosition: grid.setPointPosition,
        points: grid.pointsArray,
        isXy: gridId === Rules.XY_GRID,
        width: item.sourceWidth,
        height: item.sourceHeight,
        send: moveSender(scene, entry)
    };
}

// The one place where a point of the current item is written: into the scene, and to the Producer.
function writePoint(writer, pointId, x, y) {
    const isXy = writer.isXy;
    const width = writer.width;
    const height = writer.height;
    const producerX = toProducer(x, width, isXy);
    const producerY = toProducer(y, height, isXy);
    if (!Number.isFinite(producerX) || !Number.isFinite(producerY)) { // an item without a size has no such place
        writer.setPosition(pointId, x, y);
        return;
    }
    writer.setPosition(pointId, fromProducer(producerX, width, isXy), fromProducer(producerY, height, isXy));
    writer.send(pointId, producerX, producerY, isXy, writer.points[pointId].selected);
}

function updatePoint(scene, gridId, pointId, x, y) {
    const writer = pointWriter(scene, gridId);
    if (!writer)
        console.log("updatePoint: currentItem is null!");
    else if (writer.points[pointId])
        writePoint(writer, pointId, x, y);
}

// A change of state is told to the Producer with the point's position.
function writeState(writer, point, state) {
    point.state = state;
    writePoint(writer, point.pointNum, point.x, point.y);
}

// A position that the Producer reports; `item` need not be the current one. It is not sent back.
function applyIncomingMove(scene, item, pointId, x, y, isXy) {
    const grid = item.deformerGrids[isXy ? Rules.XY_GRID : Rules.UV_GRID];
    if (scene.isMovingPoint && !grid.isOutline) {
        const point = grid.pointsArray[pointId];
        if (point && point.selected)
            return;
    }
    const sceneX = Rules.fromProducer(x, item.sourceWidth, isXy);
    const sceneY = Rules.fromProducer(y, item.sourceHeight, isXy);
    if (!Number.isFinite(sceneX) || !Number.isFinite(sceneY))
        return;
    grid.setPointPosition(pointId, sceneX, sceneY);
    if (grid.currentSelectedPointId === pointId && isXy === scene.isCurrentGridXy && item === getCurrentItem(scene))
        updateCurrentPointText(scene);
}

// The text that tells number and position of the current point

function updateCurrentPointText(scene) {
    const entry = getCurrentEntry(scene);
    if (!entry) {
        scene.currentPointText.clear();
        return;
    }
    if (isInSimpleMode(scene, entry))
        return;
    const grid = currentGridOf(scene, entry.item);
    const point = grid.currentSelectedPointId >= 0 ? grid.pointsArray[grid.currentSelectedPointId] : null;
    if (point)
        scene.currentPointText.show(point.pointNum, point.x, point.y);
    else
        scene.currentPointText.clear();
}

// What is moving

// While something moves points, the Producer's echoes of them are left aside; while a pointer or a repeated key does,
// their positions are collected and sent with a tick.
function setGestureActive(scene, mover, moving) {
    const activeGestures = moving ? scene.activeGestures | mover : scene.activeGestures & ~mover;
    if (activeGestures === scene.activeGestures)
        return;
    const ticking = POINTER_GESTURE | KEY_GESTURE;
    const wasTicking = (scene.activeGestures & ticking) !== 0;
    const isTicking = (activeGestures & ticking) !== 0;
    scene.activeGestures = activeGestures;
    scene.isMovingPoint = activeGestures !== 0;
    if (isTicking && !wasTicking)
        scene.bridge.startMovePointTimer();
    else if (wasTicking && !isTicking)
        scene.bridge.stopMovePointTimer();
}

// Ends whatever moves points: the mesh or the item under it is about to change.
function endGestures(scene) {
    scene.pointerArea.endGesture();
    setGestureActive(scene, POINTER_GESTURE | KEY_GESTURE | STICK_GESTURE, false);
}

// Selecting

function selectCurrentPoint(scene, pointId) {
    const item = currentItemOf(scene, "selectCurrentPoint");
    if (!item)
        return;
    if (pointId === -1) {
        console.log("selectCurrentPoint: pointId value is -1 (null)");
        return;
    }
    const writer = pointWriter(scene, getCurrentGridId(scene));
    if (!writer.points[pointId])
        return;
    currentGridOf(scene, item).currentSelectedPointId = pointId;
    writeState(writer, writer.points[pointId], CURRENT);
    updateCurrentPointText(scene);
}

function unselectAllBut(grid, writer, pointId) {
    for (const selected of grid.selectedNumbers()) {
        if (selected !== pointId)
            writeState(writer, writer.points[selected], UNSELECTED);
    }
}

function selectPoint(scene, pointId) {
    const item = currentItemOf(scene, "selectPoint");
    if (!item)
        return;
    unselectAllBut(currentGridOf(scene, item), pointWriter(scene, getCurrentGridId(scene)), pointId);
    selectCurrentPoint(scene, pointId);
}

// The current point becomes an ordinary selected one and is remembered as the last.
function demoteCurrentPoint(grid) {
    grid.lastSelectedPointId = grid.currentSelectedPointId;
    const current = grid.pointsArray[grid.currentSelectedPointId];
    if (current)
        current.state = SELECTED;
}

function addToSelection(scene, pointId) {
    const item = currentItemOf(scene, "addToSelection");
    if (!item)
        return;
    demoteCurrentPoint(currentGridOf(scene, item));
    selectCurrentPoint(scene, pointId);
}

function addAndSelectCurrent(scene, pointId) {
    if (!currentItemOf(scene, "addAndSelectCurrent"))
        return;
    addToSelection(scene, pointId);
    selectCurrentPoint(scene, pointId);
}

function pointPressed(scene, pointId) {
    const item = currentItemOf(scene, "pointPressed");
    if (!item)
        return;
    const grid = currentGridOf(scene, item);
    const point = grid.pointsArray[pointId];
    if (!point)
        return;
    if (point.state === UNSELECTED) {
        grid.lastSelectedPointId = -1;
        selectCurrentPoint(scene, pointId);
        unselectAllBut(grid, pointWriter(scene, getCurrentGridId(scene)), pointId);
    } else if (point.state === SELECTED) {
        demoteCurrentPoint(grid);
        selectCurrentPoint(scene, pointId);
    }
}

function pointCtrlPressed(scene, pointId) {
    const item = currentItemOf(scene, "pointCtrlPressed");
    if (!item)
        return;
    const point = currentGridOf(scene, item).pointsArray[pointId];
    if (point && point.state !== CURRENT)
        addToSelection(scene, pointId);
}

// A pointer takes hold of a point; `control` adds it to the selection.
function pointerPressed(scene, pointId, control) {
    scene.isMovingPoint = true;
    if (control)
        pointCtrlPressed(scene, pointId);
    else
        pointPressed(scene, pointId);
    setGestureActive(scene, POINTER_GESTURE, true);
}

function selectAllPoints(scene) {
    const item = currentItemOf(scene, "selectAllPoints");
    if (!item)
        return;
    const writer = pointWriter(scene, getCurrentGridId(scene));
    const last = writer.points.length - 1;
    if (last < 0)
        return;
    const current = currentGridOf(scene, item).currentSelectedPointId;
    for (const point of writer.points) {
        if (!point.selected || point.pointNum === current)
            writeState(writer, point, SELECTED);
    }
    selectCurrentPoint(scene, last);
}

function unselectAllPoints(scene) {
    const item = currentItemOf(scene, "unselectAllPoints");
    if (!item)
        return;
    const grid = currentGridOf(scene, item);
    unselectAllBut(grid, pointWriter(scene, getCurrentGridId(scene)), -1);
    grid.currentSelectedPointId = -1;
    updateCurrentPointText(scene);
}

// In both meshes of the current item, whichever is edited.
function unselectBothGrids(scene) {
    for (let gridId = 0; gridId < 2; ++gridId) {
        const grid = getCurrentItem(scene).deformerGrids[gridId];
        if (grid.isOutline)
            continue; // nobody has seen a point of it
        unselectAllBut(grid, pointWriter(scene, gridId), -1);
        grid.currentSelectedPointId = -1;
    }
    updateCurrentPointText(scene);
}

// `action` is "select" or "add", `direction` the side of the screen.
function selectNeighbourPoint(scene, action, direction) {
    const item = currentItemOf(scene, "selectNeighbourPoint");
    if (!item)
        return;
    if (!Rules.UNIT_VECTORS[direction]) {
        console.log("selectNeighbour: Undefined neighbour");
        return;
    }
    const grid = currentGridOf(scene, item);
    if (grid.currentSelectedPointId === -1) {
        selectCurrentPoint(scene, 0);
        return;
    }
    const rotated = Rules.rotatedDirection(direction, -item.getFullRotation(), rotator(scene));
    const next = Rules.neighbour(rotated, grid.currentSelectedPointId, item.deformerColsNumber, grid.pointsArray.length);
    if (next < 0)
        return;
    if (action === "add")
        addAndSelectCurrent(scene, next);
    else
        selectPoint(scene, next);
}

// `line` is one of Rules.LINES_AND_SIDES, as it is seen on the screen.
function selectLine(scene, line) {
    const item = currentItemOf(scene, "selectLine");
    if (!item)
        return;
    if (!Rules.LINES_AND_SIDES[line]) {
        console.log("selectColumn: Undefined column");
        return;
    }
    const current = currentGridOf(scene, item).currentSelectedPointId;
    if (current === -1) {
        console.log("selectLine: currentPointId value is -1 (null)");
        return;
    }
    const rotated = Rules.rotatedLine(line, -item.getFullRotation(), rotator(scene));
    for (const point of Rules.pointsOfLine(rotated, current, item.deformerRowsNumber, item.deformerColsNumber))
        addToSelection(scene, point);
}

// Moving

function isZoneLocked(scene) {
    return scene.warpToolBar.zoneLockerButtonPushed;
}

function moveSelectedPoints(scene, dx, dy) {
    const item = currentItemOf(scene, "moveSelectedPoints");
    if (!item)
        return;
    const grid = currentGridOf(scene, item);
    const currentId = grid.currentSelectedPointId;
    if (currentId === -1 || !Number.isFinite(dx) || !Number.isFinite(dy))
        return;
    const writer = pointWriter(scene, getCurrentGridId(scene));
    const current = writer.points[currentId];
    const previousX = current.previousX;
    const previousY = current.previousY;
    const selection = grid.selectedNumbers();
    if (isZoneLocked(scene)) {
        const points = Array.from(selection, number => writer.points[number]);
        const delta = Rules.clampedDelta(points, writer.width, writer.height, dx, dy);
        dx = delta.dx;
        dy = delta.dy;
    }
    for (let i = 0; i < selection.length; ++i) {
        const pointId = selection[i];
        const point = writer.points[pointId];
        if (pointId !== currentId)
            writePoint(writer, pointId, point.x + dx, point.y + dy);
    }
    writePoint(writer, currentId, previousX + dx, previousY + dy);
    updateCurrentPointText(scene);
}

// The held point of a drag shall be at (x, y): the selection goes with it.
function dragPoint(scene, pointId, x, y) {
    const item = currentItemOf(scene, "dragPoint");
    if (!item)
        return;
    const point = currentGridOf(scene, item).pointsArray[pointId];
    if (point && point.selected)
        moveSelectedPoints(scene, x - point.previousX, y - point.previousY);
}

// Moves by a step on the screen: the mesh may be turned.
function moveOnScreen(scene, item, direction, step) {
    const unit = Rules.UNIT_VECTORS[direction];
    const delta = scene.bridge.rotate(Qt.point(unit.x * step, unit.y * step), -item.getFullRotation());
    moveSelectedPoints(scene, delta.x, delta.y);
}

// Mirrors, flips and copies of the current grid

// Writes all points of a grid at place(point), which is asked for each before any is written.
function rewriteGrid(scene, gridId, place) {
    endGestures(scene);
    const writer = pointWriter(scene, gridId);
    const places = writer.points.map(point => place(point, writer));
    places.forEach((to, pointId) => {
        if (to)
            writePoint(writer, pointId, to.x, to.y);
    });
    updateCurrentPointText(scene);
}

function horizontalMirror(scene) {
    const item = currentItemOf(scene, "horizontalMirror");
    if (!item)
        return;
    const columns = item.deformerColsNumber;
    rewriteGrid(scene, getCurrentGridId(scene), (point, writer) => {
        const row = Math.floor(point.pointNum / columns);
        if (row >= columns) // as many rows are mirrored as there are columns
            return null;
        const source = writer.points[row * columns + columns - 1 - point.pointNum % columns];
        return { x: writer.width - source.x, y: source.y };
    });
}

function verticalMirror(scene) {
    const item = currentItemOf(scene, "verticalMirror");
    if (!item)
        return;
    const columns = item.deformerColsNumber;
    const rows = item.deformerRowsNumber;
    rewriteGrid(scene, getCurrentGridId(scene), (point, writer) => {
        const row = Math.floor(point.pointNum / columns);
        const source = writer.points[(rows - 1 - row) * columns + point.pointNum % columns];
        return { x: source.x, y: writer.height - source.y };
    });
}

function horizontalFlip(scene) {
    if (currentItemOf(scene, "horizontalFlip"))
        rewriteGrid(scene, getCurrentGridId(scene), (point, writer) => ({ x: writer.width - point.x, y: point.y }));
}

function verticalFlip(scene) {
    if (currentItemOf(scene, "verticalFlip"))
        rewriteGrid(scene, getCurrentGridId(scene), (point, writer) => ({ x: point.x, y: writer.height - point.y }));
}

function copyGrid(scene, caller, from, to) {
    const item = currentItemOf(scene, caller);
    const type = scene.canvasCurrentItemType;
    if (!item || type === Rules.SCREEN || type === Rules.SCREEN_PART)
        return;
    const source = item.deformerGrids[from].pointsArray;
    rewriteGrid(scene, to, point => source[point.pointNum]);
}

function uvToXy(scene) {
    copyGrid(scene, "uvToXy", Rules.UV_GRID, Rules.XY_GRID);
}

function xyToUv(scene) {
    copyGrid(scene, "xyToUv", Rules.XY_GRID, Rules.UV_GRID);
}

// Building and showing the mesh

function componentOf(name) {
    const component = Qt.createComponent("qrc:///qml/" + name + ".qml");
    if (component.status === 1) // Component.Ready
        return component;
    console.log("Error loading " + name + " component: " + component.errorString());
    return null;
}

function eraseGrids(item) {
    for (let gridId = 0; gridId < 2; ++gridId)
        item.deformerGrids[gridId].erase();
}

// The points and lines of the meshes are made later, when somebody needs them.
function initializeDeformerQML(item, rows, columns, skipPatchCenter) {
    eraseGrids(item);
    if (!componentOf("Point") || !componentOf("Line"))
        return;
    const rotation = -item.getFullRotation();
    for (let gridId = 0; gridId < 2; ++gridId)
        item.deformerGrids[gridId].setOutline(rows, columns, item.width, item.height, rotation, skipPatchCenter);
}

function buildMesh(grid, rows, columns, skipPatchCenter) {
    const createAll = (name, count) => {
        const create = componentOf(name).createObject;
        const objects = [];
        while (objects.length < count)
            objects.push(create(grid));
        return objects;
    };
    const ends = Rules.lineEnds(rows, columns, skipPatchCenter);
    grid.setMesh(createAll("Point", rows * columns), createAll("Line", ends.length / 2), ends);
}

// Whether the mesh is now as described.
function updateDeformationMode(scene, item, deformationType, row, col, reset) {
    if (!item) {
        console.log("updateDeformationMode: currentItem is null!");
        return false;
    }
    const hasMesh = deformationType === Rules.BEZIER || deformationType === Rules.CURVE;
    if (hasMesh && !(Rules.isGridSize(row) && Rules.isGridSize(col))) {
        console.warn("updateDeformationMode: Unusable grid of " + row + " rows and " + col + " columns");
        return false;
    }
    if (!hasMesh && deformationType !== Rules.NONE && deformationType !== Rules.KEYSTONE) {
        console.log("updateDeformationMode: Undefined mode");
        return false;
    }
    const isCurrent = item === getCurrentItem(scene);
    if (isCurrent)
        endGestures(scene);
    item.deformerDeformationType = deformationType;
    item.deformerRowsNumber = deformationType === Rules.KEYSTONE ? 2 : row;
    item.deformerColsNumber = deformationType === Rules.KEYSTONE ? 2 : col;
    if (deformationType === Rules.NONE)
        eraseGrids(item);
    else
        initializeDeformerQML(item, item.deformerRowsNumber, item.deformerColsNumber, deformationType === Rules.BEZIER);
    for (let gridId = 0; gridId < 2; ++gridId) {
        item.deformerGrids[gridId].currentSelectedPointId = -1;
        item.deformerGrids[gridId].lastSelectedPointId = -1;
    }
    if (isCurrent)
        updateCurrentPointText(scene);
    return true;
}

function hideGrid(grid) {
    grid.visible = false;
}

function showGrid(grid) {
    grid.visible = true;
}

function hideDeformer(scene, item) {
    item.itemDeformer.visible = false;
    if (item === getCurrentItem(scene)) {
        endGestures(scene);
        scene.currentPointText.clear();
    }
}

function showDeformer(scene, item) {
    const current = getCurrentGridId(scene);
    item.itemDeformer.visible = true;
    hideGrid(item.deformerGrids[1 - current]);
    showGrid(item.deformerGrids[current]);
    refreshPoints(scene, item);
    if (item === getCurrentItem(scene))
        updateCurrentPointText(scene);
}

// The numbers of the points stay upright however the item is turned.
function refreshPoints(scene, item) {
    if (item.deformerGrids && item.deformerGrids.length > 0) // else the item is just being made
        currentGridOf(scene, item).setNumberRotation(-item.getFullRotation());
}

// View

function adjustView(scene) {
    const item = getCurrentItem(scene);
    let zoom = scene.zoomSlider.from;
    let x = 0;
    let y = 0;
    if (item) {
        zoom = item.defaultSourceScaleFactor;
        x = (scene.width - item.sourceWidth) / 2;
        y = (scene.height - item.sourceHeight) / 2;
        const box = Rules.boundingBox(currentGridOf(scene, item).pointsArray);
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

// Keys and controller

var ARROWS = {};
ARROWS[Qt.Key_Up] = "top";
ARROWS[Qt.Key_Left] = "left";
ARROWS[Qt.Key_Right] = "right";
ARROWS[Qt.Key_Down] = "bottom";

var NEIGHBOUR_LINES = { top: "topRow", left: "leftColumn", right: "rightColumn", bottom: "bottomRow" };

function manageKeyEvent(scene, event) {
    const item = currentItemOf(scene, "manageKeyEvent");
    const direction = ARROWS[event.key];
    if (!item || !direction)
        return;
    const modifiers = event.modifiers & (Qt.ShiftModifier | Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier);
    if (currentGridOf(scene, item).currentSelectedPointId === -1) {
        if (modifiers === Qt.AltModifier || modifiers === (Qt.ShiftModifier | Qt.AltModifier))
            selectCurrentPoint(scene, 0);
        return;
    }
    if (event.isAutoRepeat)
        setGestureActive(scene, KEY_GESTURE, true);
    if (modifiers === Qt.AltModifier)
        selectNeighbourPoint(scene, "select", direction);
    else if (modifiers === (Qt.ShiftModifier | Qt.AltModifier))
        selectNeighbourPoint(scene, "add", direction);
    else if (modifiers === (Qt.ControlModifier | Qt.AltModifier))
        selectLine(scene, Rules.isVertical(direction) ? "currentColumn" : "currentRow");
    else if (modifiers === (Qt.ControlModifier | Qt.ShiftModifier | Qt.AltModifier))
        selectLine(scene, NEIGHBOUR_LINES[direction]);
    else if (modifiers === Qt.ShiftModifier)
        moveOnScreen(scene, item, direction, FINE_KEY_STEP);
    else if (modifiers === Qt.ControlModifier)
        moveOnScreen(scene, item, direction, COARSE_KEY_STEP);
    else // no modifier, and every combination that means nothing else
        moveOnScreen(scene, item, direction, KEY_STEP);
}

function manageKeyRelease(scene, event) {
    if (ARROWS[event.key] && !event.isAutoRepeat)
        setGestureActive(scene, KEY_GESTURE, false);
}

var NEIGHBOUR_ACTIONS = {};
NEIGHBOUR_ACTIONS[Actions.SELECT_NEIGHBOUR_TOP] = ["select", "top"];
NEIGHBOUR_ACTIONS[Actions.SELECT_NEIGHBOUR_RIGHT] = ["select", "right"];
NEIGHBOUR_ACTIONS[Actions.SELECT_NEIGHBOUR_BOTTOM] = ["select", "bottom"];
NEIGHBOUR_ACTIONS[Actions.SELECT_NEIGHBOUR_LEFT] = ["select", "left"];
NEIGHBOUR_ACTIONS[Actions.SELECT_ADD_NEIGHBOUR_TOP] = ["add", "top"];
NEIGHBOUR_ACTIONS[Actions.SELECT_ADD_NEIGHBOUR_RIGHT] = ["add", "right"];
NEIGHBOUR_ACTIONS[Actions.SELECT_ADD_NEIGHBOUR_BOTTOM] = ["add", "bottom"];
NEIGHBOUR_ACTIONS[Actions.SELECT_ADD_NEIGHBOUR_LEFT] = ["add", "left"];

var LINE_ACTIONS = {};
LINE_ACTIONS[Actions.SELECT_ADD_CURRENT_COLUMN] = "currentColumn";
LINE_ACTIONS[Actions.SELECT_ADD_CURRENT_ROW] = "currentRow";
LINE_ACTIONS[Actions.SELECT_ADD_NEIGHBOUR_COLUMN_TOP] = "topRow";
LINE_ACTIONS[Actions.SELECT_ADD_NEIGHBOUR_COLUMN_RIGHT] = "rightColumn";
LINE_ACTIONS[Actions.SELECT_ADD_NEIGHBOUR_COLUMN_BOTTOM] = "bottomRow";
LINE_ACTIONS[Actions.SELECT_ADD_NEIGHBOUR_COLUMN_LEFT] = "leftColumn";

function manageAction(scene, action) {
    if (!currentItemOf(scene, "manageAction"))
        return;
    if (NEIGHBOUR_ACTIONS[action]) {
        selectNeighbourPoint(scene, NEIGHBOUR_ACTIONS[action][0], NEIGHBOUR_ACTIONS[action][1]);
        return;
    }
    if (LINE_ACTIONS[action]) {
        selectLine(scene, LINE_ACTIONS[action]);
        return;
    }
    switch (action) {
    case Actions.SELECT_ALL_POINTS:
        selectAllPoints(scene);
        break;
    case Actions.UNSELECT_ALL_POINTS:
        unselectAllPoints(scene);
        break;
    case Actions.HORIZONTAL_MIRROR:
        horizontalMirror(scene);
        break;
    case Actions.VERTICAL_MIRROR:
        verticalMirror(scene);
        break;
    case Actions.H_FLIP:
        horizontalFlip(scene);
        break;
    case Actions.V_FLIP:
        verticalFlip(scene);
        break;
    case Actions.UV_TO_XY:
        uvToXy(scene);
        break;
    case Actions.XY_TO_UV:
        xyToUv(scene);
        break;
    }
}

// `x` and `y` are -1 to 1 each.
function stickStep(scene, x, y) {
    const speed = 2 * (x * x + y * y);
    const zoom = scene.mediaScaleFactor;
    return { x: x * speed / zoom, y: y * speed / zoom };
}

function leftStickMoved(scene, x, y) {
    const item = getCurrentItem(scene);
    if (!item)
        return;
    const canMove = item.itemDeformer.visible && !scene.isDialogOpen;
    const moving = canMove && (x !== 0 || y !== 0);
    setGestureActive(scene, STICK_GESTURE, moving);
    if (!moving)
        return;
    const step = stickStep(scene, x, y);
    moveSelectedPoints(scene, step.x, step.y);
}

function rightStickMoved(scene, x, y) {
    if (!getCurrentItem(scene) || scene.isDialogOpen)
        return;
    const step = stickStep(scene, x, y);
    scene.canvasMedia.x -= step.x;
    scene.canvasMedia.y -= step.y;
}

function triggerPressed(scene, value) {
    if (getCurrentItem(scene) && !scene.isDialogOpen)
        scene.zoomSlider.value -= value / 100 * value * value;
}
