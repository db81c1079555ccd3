import QtQuick
import "../js/currentItem.js" as CurrentItem
import "../js/deformerActions.js" as DeformerActions
import "../js/meshRules.js" as Rules

// The deformation of one item: its mesh of positions (XY) and its mesh of texture coordinates (UV).
Item {
    id: deformer

    property var scene
    property int colsNumber: 2
    property int rowsNumber: 2
    property int deformationType: 0 // 0 none, 1 keystone, 2 bezier, 3 curve
    readonly property list<DeformerGrid> grids: [xyGrid, uvGrid]

    function hasCurrentPoint() {
        return grids[CurrentItem.getCurrentGridId(scene)].currentSelectedPointId !== -1;
    }

    function pointPressed(pointNum) { // API
        if (scene.ctrlPressed)
            DeformerActions.pointCtrlPressed(scene, pointNum);
        else
            DeformerActions.pointPressed(scene, pointNum);
    }

    function moveSelectedPoints(dx, dy) { // API
        DeformerActions.moveSelectedPoints(scene, dx, dy);
    }

    function hideGrid(grid) { // API
        DeformerActions.hideGrid(grid);
    }

    function showGrid(grid) { // API
        DeformerActions.showGrid(grid);
    }

    function hideDeformer(item) { // API
        DeformerActions.hideDeformer(scene, item);
    }

    function showDeformer(item) { // API
        DeformerActions.showDeformer(scene, item);
    }

    function updateDeformationMode(item, deformationType, row, col, reset) { // API
        DeformerActions.updateDeformationMode(scene, item, deformationType, row, col, reset);
    }

    function adjustView() { // API
        DeformerActions.adjustView(scene);
    }

    function selectAllPoints() {
        if (visible)
            DeformerActions.selectAllPoints(scene);
    }

    function unselectAllPoints() {
        if (visible && hasCurrentPoint())
            DeformerActions.unselectAllPoints(scene);
    }

    // A hidden deformer ignores keys and actions, because the operator would not see their effect.
    function manageKeyEvent(event) {
        if (visible)
            DeformerActions.manageKeyEvent(scene, event);
    }

    function manageAction(action) {
        if (visible)
            DeformerActions.manageAction(scene, action);
    }

    DeformerGrid {
        id: xyGrid

        anchors.fill: parent
        hasMesh: deformer.deformationType !== Rules.NONE
        scene: deformer.scene
    }

    DeformerGrid {
        id: uvGrid

        anchors.fill: parent
        hasMesh: deformer.deformationType !== Rules.NONE
        scene: deformer.scene
        visible: false
    }
}
