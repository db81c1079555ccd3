.pragma library
.import "keyActions.js" as KeyActions
.import "meshBuilder.js" as MeshBuilder
.import "moves.js" as Moves
.import "pointWriter.js" as PointWriter
.import "selection.js" as Selection
.import "view.js" as View

// The functions of a deformer in one place; the libraries above implement them.

function pointPressed(scene, pointId) { Selection.pointPressed(scene, pointId); }
function pointCtrlPressed(scene, pointId) { Selection.pointCtrlPressed(scene, pointId); }
function selectAllPoints(scene) { Selection.selectAllPoints(scene); }
function unselectAllPoints(scene) { Selection.unselectAllPoints(scene); }
function selectNeighbourPoint(scene, action, direction) { // API
    Selection.selectNeighbourPoint(scene, action, direction);
}
function selectLine(scene, line) { Selection.selectLine(scene, line); } // API
function updatePoint(scene, gridId, pointId, x, y) { PointWriter.updatePoint(scene, gridId, pointId, x, y); }
function moveSelectedPoints(scene, dx, dy) { Moves.moveSelectedPoints(scene, dx, dy); }
function initializeDeformerQML(item, rows, columns, skipPatchCenter) { // API
    MeshBuilder.initializeDeformerQML(item, rows, columns, skipPatchCenter);
}
function updateDeformationMode(scene, item, deformationType, row, col, reset) {
    return MeshBuilder.updateDeformationMode(scene, item, deformationType, row, col, reset);
}
function hideGrid(grid) { MeshBuilder.hideGrid(grid); }
function showGrid(grid) { MeshBuilder.showGrid(grid); }
function hideDeformer(scene, item) { MeshBuilder.hideDeformer(scene, item); }
function showDeformer(scene, item) { MeshBuilder.showDeformer(scene, item); }
function adjustView(scene) { View.adjustView(scene); }
function manageKeyEvent(scene, event) { KeyActions.manageKeyEvent(scene, event); }
function manageAction(scene, action) { KeyActions.manageAction(scene, action); }
