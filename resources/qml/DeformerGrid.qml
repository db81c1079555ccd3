import QtQuick
import Meshpad.Scene
import "../js/meshBuilder.js" as MeshBuilder
import "../js/theme.js" as Theme

// One mesh of control points and the lines between them.
MeshGridItem {
    id: grid

    property var scene
    property bool hasMesh: false // whether the item has a deformation; does not build the mesh

    property int currentSelectedPointId: -1
    property int lastSelectedPointId: -1

    zoom: visible ? scene.mediaScaleFactor : 1
    pointDiameter: 20
    pointBorderWidth: 2
    lineThickness: 2
    lineColor: "#dddddd"
    unselectedColors: [Theme.control, Theme.accent, Theme.text]
    selectedColors: [Theme.selection, Theme.selectionOutline, Theme.selectionOutline]
    currentColors: [Theme.selection, Theme.accent, Theme.selectedText]
    markColor: Theme.warning
    markTime: Theme.returnMarkTime

    onMeshRequested: (rows, columns, skipPatchCenter) => MeshBuilder.buildMesh(grid, rows, columns, skipPatchCenter)
}
