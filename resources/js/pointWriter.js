.pragma library
.import "currentItem.js" as CurrentItem
.import "itemKinds.js" as Kinds
.import "meshRules.js" as Rules

// Writes points: the operator's into the scene and to the Producer, the Producer's into the scene only.

// The properties of the current item that writePoint() needs, looked up once for any number of points; null without a
// current item.
function pointWriter(scene, gridId) {
    const entry = CurrentItem.getCurrentEntry(scene);
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
        send: Kinds.pointSender(scene.bridge, scene.canvasCurrentItemType, entry)
    };
}

function currentGridWriter(scene) {
    return pointWriter(scene, CurrentItem.getCurrentGridId(scene));
}

// Every edit of a point of the current item ends here: it sends the position to the Producer and sets it in the scene.
// A point whose position cannot be sent stays where it is.
function writePoint(writer, pointId, x, y) {
    const isXy = writer.isXy;
    const width = writer.width;
    const height = writer.height;
    const producerX = Rules.toProducer(x, width, isXy);
    const producerY = Rules.toProducer(y, height, isXy);
    if (!Number.isFinite(producerX) || !Number.isFinite(producerY)) { // an item without a size has no UV
        writer.setPosition(pointId, x, y);
        return;
    }
    const point = writer.points[pointId];
    if (writer.send(pointId, producerX, producerY, isXy, point.selected, Rules.toProducer(point.x, width, isXy),
                    Rules.toProducer(point.y, height, isXy)))
        writer.setPosition(pointId, Rules.fromProducer(producerX, width, isXy),
                           Rules.fromProducer(producerY, height, isXy));
}

// Sends the new state to the Producer with the point's position.
function writeState(writer, point, state) {
    point.state = state;
    writePoint(writer, point.pointNum, point.x, point.y);
}

function updatePoint(scene, gridId, pointId, x, y) {
    const writer = pointWriter(scene, gridId);
    if (!writer)
        console.log("updatePoint: currentItem is null!");
    else if (writer.points[pointId])
        writePoint(writer, pointId, x, y);
}

// A position reported by the Producer, of any item. It is not sent back.
function applyIncomingMove(scene, item, pointId, x, y, isXy) {
    const grid = item.deformerGrids[isXy ? Rules.XY_GRID : Rules.UV_GRID];
    if (scene.isMovingPoint && !grid.isOutline) {
        const point = grid.pointsArray[pointId];
        if (point && point.selected && scene.bridge.keepReport())
            return;
    }
    const sceneX = Rules.fromProducer(x, item.sourceWidth, isXy);
    const sceneY = Rules.fromProducer(y, item.sourceHeight, isXy);
    if (!Number.isFinite(sceneX) || !Number.isFinite(sceneY))
        return;
    grid.setPointPosition(pointId, sceneX, sceneY);
    if (grid.currentSelectedPointId === pointId && isXy === scene.isCurrentGridXy
            && item === CurrentItem.getCurrentItem(scene))
        CurrentItem.updateCurrentPointText(scene);
}

// The point stands where the Producer has it, not at (x, y), where the operator has put it.
function markReturn(item, pointId, x, y, isXy) {
    item.deformerGrids[isXy ? Rules.XY_GRID : Rules.UV_GRID].markReturn(
        pointId, Rules.fromProducer(x, item.sourceWidth, isXy), Rules.fromProducer(y, item.sourceHeight, isXy));
}
