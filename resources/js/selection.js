.pragma library
.import "currentItem.js" as CurrentItem
.import "gestures.js" as Gestures
.import "meshRules.js" as Rules
.import "pointWriter.js" as PointWriter

// Selects points of the current item. Every change of a point's state is sent to the Producer.

var UNSELECTED = "UNSELECTED";
var SELECTED = "SELECTED";
var CURRENT = "CURRENT";

function selectCurrentPoint(scene, pointId) {
    const item = CurrentItem.requireItem(scene, "selectCurrentPoint");
    if (!item)
        return;
    if (pointId === -1) {
        console.log("selectCurrentPoint: pointId value is -1 (null)");
        return;
    }
    const writer = PointWriter.currentGridWriter(scene);
    if (!writer.points[pointId])
        return;
    CurrentItem.currentGrid(scene, item).currentSelectedPointId = pointId;
    PointWriter.writeState(writer, writer.points[pointId], CURRENT);
    CurrentItem.updateCurrentPointText(scene);
}

function unselectAllBut(grid, writer, pointId) {
    for (const selected of grid.selectedNumbers()) {
        if (selected !== pointId)
            PointWriter.writeState(writer, writer.points[selected], UNSELECTED);
    }
}

function selectPoint(scene, pointId) {
    const item = CurrentItem.requireItem(scene, "selectPoint");
    if (!item)
        return;
    unselectAllBut(CurrentItem.currentGrid(scene, item), PointWriter.currentGridWriter(scene), pointId);
    selectCurrentPoint(scene, pointId);
}

// The current point becomes a selected one and the grid's last point; its state is not sent.
function demoteCurrentPoint(grid) {
    grid.lastSelectedPointId = grid.currentSelectedPointId;
    const current = grid.pointsArray[grid.currentSelectedPointId];
    if (current)
        current.state = SELECTED;
}

function addToSelection(scene, pointId) {
    const item = CurrentItem.requireItem(scene, "addToSelection");
    if (!item)
        return;
    demoteCurrentPoint(CurrentItem.currentGrid(scene, item));
    selectCurrentPoint(scene, pointId);
}

function addAndSelectCurrent(scene, pointId) {
    if (!CurrentItem.requireItem(scene, "addAndSelectCurrent"))
        return;
    addToSelection(scene, pointId);
    selectCurrentPoint(scene, pointId);
}

function pointPressed(scene, pointId) {
    const item = CurrentItem.requireItem(scene, "pointPressed");
    if (!item)
        return;
    const grid = CurrentItem.currentGrid(scene, item);
    const point = grid.pointsArray[pointId];
    if (!point)
        return;
    if (point.state === UNSELECTED) {
        grid.lastSelectedPointId = -1;
        selectCurrentPoint(scene, pointId);
        unselectAllBut(grid, PointWriter.currentGridWriter(scene), pointId);
    } else if (point.state === SELECTED) {
        demoteCurrentPoint(grid);
        selectCurrentPoint(scene, pointId);
    }
}

function pointCtrlPressed(scene, pointId) {
    const item = CurrentItem.requireItem(scene, "pointCtrlPressed");
    if (!item)
        return;
    const point = CurrentItem.currentGrid(scene, item).pointsArray[pointId];
    if (point && point.state !== CURRENT)
        addToSelection(scene, pointId);
}

// A pointer grabs a point; `control` adds it to the selection.
function pointerPressed(scene, pointId, control) {
    scene.isMovingPoint = true;
    if (control)
        pointCtrlPressed(scene, pointId);
    else
        pointPressed(scene, pointId);
    Gestures.setActive(scene, Gestures.POINTER, true);
}

function selectAllPoints(scene) {
    const item = CurrentItem.requireItem(scene, "selectAllPoints");
    if (!item)
        return;
    const writer = PointWriter.currentGridWriter(scene);
    const last = writer.points.length - 1;
    if (last < 0)
        return;
    const current = CurrentItem.currentGrid(scene, item).currentSelectedPointId;
    for (const point of writer.points) {
        if (!point.selected || point.pointNum === current)
            PointWriter.writeState(writer, point, SELECTED);
    }
    selectCurrentPoint(scene, last);
}

function unselectAllPoints(scene) {
    const item = CurrentItem.requireItem(scene, "unselectAllPoints");
    if (!item)
        return;
    const grid = CurrentItem.currentGrid(scene, item);
    unselectAllBut(grid, PointWriter.currentGridWriter(scene), -1);
    grid.currentSelectedPointId = -1;
    CurrentItem.updateCurrentPointText(scene);
}

function unselectBothGrids(scene) {
    for (let gridId = 0; gridId < 2; ++gridId) {
        const grid = CurrentItem.getCurrentItem(scene).deformerGrids[gridId];
        if (grid.isOutline)
            continue; // has no selected point
        unselectAllBut(grid, PointWriter.pointWriter(scene, gridId), -1);
        grid.currentSelectedPointId = -1;
    }
    CurrentItem.updateCurrentPointText(scene);
}

function rotator(scene) {
    return (point, degrees) => scene.bridge.rotate(point, degrees);
}

// `action` is "select" or "add", `direction` a side of the screen.
function selectNeighbourPoint(scene, action, direction) {
    const item = CurrentItem.requireItem(scene, "selectNeighbourPoint");
    if (!item)
        return;
    if (!Rules.UNIT_VECTORS[direction]) {
        console.log("selectNeighbour: Undefined neighbour");
        return;
    }
    const grid = CurrentItem.currentGrid(scene, item);
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

// `line` is a line of the screen, one of Rules.LINES_AND_SIDES.
function selectLine(scene, line) {
    const item = CurrentItem.requireItem(scene, "selectLine");
    if (!item)
        return;
    if (!Rules.LINES_AND_SIDES[line]) {
        console.log("selectColumn: Undefined column");
        return;
    }
    const current = CurrentItem.currentGrid(scene, item).currentSelectedPointId;
    if (current === -1) {
        console.log("selectLine: currentPointId value is -1 (null)");
        return;
    }
    const rotated = Rules.rotatedLine(line, -item.getFullRotation(), rotator(scene));
    for (const point of Rules.pointsOfLine(rotated, current, item.deformerRowsNumber, item.deformerColsNumber))
        addToSelection(scene, point);
}
