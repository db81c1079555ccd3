.pragma library
.import "currentItem.js" as CurrentItem
.import "gestures.js" as Gestures
.import "meshRules.js" as Rules
.import "pointWriter.js" as PointWriter

// Moves the selected points, and mirrors, flips and copies whole meshes.

// The zone rule: with the zone locker on, no move takes a point out of the item.
function zoneDelta(scene, writer, selection, dx, dy) {
    if (!scene.warpToolBar.zoneLockerButtonPushed)
        return { dx: dx, dy: dy };
    const points = Array.from(selection, number => writer.points[number]);
    return Rules.clampedDelta(points, writer.width, writer.height, dx, dy);
}

function moveSelectedPoints(scene, dx, dy) {
    const item = CurrentItem.requireItem(scene, "moveSelectedPoints");
    if (!item)
        return;
    const grid = CurrentItem.currentGrid(scene, item);
    const currentId = grid.currentSelectedPointId;
    if (currentId === -1 || !Number.isFinite(dx) || !Number.isFinite(dy))
        return;
    const writer = PointWriter.currentGridWriter(scene);
    const current = writer.points[currentId];
    const previousX = current.previousX;
    const previousY = current.previousY;
    const selection = grid.selectedNumbers();
    const delta = zoneDelta(scene, writer, selection, dx, dy);
    for (let i = 0; i < selection.length; ++i) {
        const pointId = selection[i];
        const point = writer.points[pointId];
        if (pointId !== currentId)
            PointWriter.writePoint(writer, pointId, point.x + delta.dx, point.y + delta.dy);
    }
    PointWriter.writePoint(writer, currentId, previousX + delta.dx, previousY + delta.dy);
    CurrentItem.updateCurrentPointText(scene);
}

// Moves the grabbed point to (x, y), and the selection with it.
function dragPoint(scene, pointId, x, y) {
    const item = CurrentItem.requireItem(scene, "dragPoint");
    if (!item)
        return;
    const point = CurrentItem.currentGrid(scene, item).pointsArray[pointId];
    if (point && point.selected)
        moveSelectedPoints(scene, x - point.previousX, y - point.previousY);
}

// Moves the selection by `step` pixels towards a side of the screen.
function moveOnScreen(scene, item, direction, step) {
    const unit = Rules.UNIT_VECTORS[direction];
    const delta = scene.bridge.rotate(Qt.point(unit.x * step, unit.y * step), -item.getFullRotation());
    moveSelectedPoints(scene, delta.x, delta.y);
}

// Writes every point of a grid at newPosition(point, writer), null leaves a point out. All new positions are computed
// before the first is written.
function rewriteGrid(scene, gridId, newPosition) {
    Gestures.endAll(scene);
    const writer = PointWriter.pointWriter(scene, gridId);
    const positions = writer.points.map(point => newPosition(point, writer));
    positions.forEach((position, pointId) => {
        if (position)
            PointWriter.writePoint(writer, pointId, position.x, position.y);
    });
    CurrentItem.updateCurrentPointText(scene);
}

function rewriteCurrentGrid(scene, newPosition) {
    rewriteGrid(scene, CurrentItem.getCurrentGridId(scene), newPosition);
}

function horizontalMirror(scene) {
    const item = CurrentItem.requireItem(scene, "horizontalMirror");
    if (!item)
        return;
    const columns = item.deformerColsNumber;
    rewriteCurrentGrid(scene, (point, writer) => {
        const row = Math.floor(point.pointNum / columns);
        if (row >= columns) // as many rows are mirrored as there are columns
            return null;
        const source = writer.points[row * columns + columns - 1 - point.pointNum % columns];
        return { x: writer.width - source.x, y: source.y };
    });
}

function verticalMirror(scene) {
    const item = CurrentItem.requireItem(scene, "verticalMirror");
    if (!item)
        return;
    const columns = item.deformerColsNumber;
    const rows = item.deformerRowsNumber;
    rewriteCurrentGrid(scene, (point, writer) => {
        const row = Math.floor(point.pointNum / columns);
        const source = writer.points[(rows - 1 - row) * columns + point.pointNum % columns];
        return { x: source.x, y: writer.height - source.y };
    });
}

function horizontalFlip(scene) {
    if (CurrentItem.requireItem(scene, "horizontalFlip"))
        rewriteCurrentGrid(scene, (point, writer) => ({ x: writer.width - point.x, y: point.y }));
}

function verticalFlip(scene) {
    if (CurrentItem.requireItem(scene, "verticalFlip"))
        rewriteCurrentGrid(scene, (point, writer) => ({ x: point.x, y: writer.height - point.y }));
}

function copyGrid(scene, caller, from, to) {
    const item = CurrentItem.requireItem(scene, caller);
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
