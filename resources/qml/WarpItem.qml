import QtQuick
import "../js/meshBuilder.js" as MeshBuilder
import "../js/meshRules.js" as Rules
import "../js/view.js" as View

// A source in the workspace: a plane of the source's size with its mesh on it.
Rectangle {
    id: warpItem

    property var scene
    property int type
    property int idNum
    property int sourceWidth
    property int sourceHeight
    property real sourceRotation
    property real sourceDeformerRotation
    property real viewingRotation: 0
    property string name
    readonly property real defaultSourceScaleFactor: Math.min(scene.width / sourceWidth, scene.height / sourceHeight) / 2.5
    readonly property bool isMedia: type === Rules.MEDIA
    readonly property bool isTexture: type === Rules.TEXTURE
    readonly property bool isScreen: type === Rules.SCREEN
    readonly property bool isScreenPart: type === Rules.SCREEN_PART
    property alias itemDeformer: deformer
    property alias deformerDeformationType: deformer.deformationType
    property alias deformerColsNumber: deformer.colsNumber
    property alias deformerRowsNumber: deformer.rowsNumber
    property alias deformerGrids: deformer.grids

    function getFullRotation() {
        return sourceRotation + sourceDeformerRotation + viewingRotation;
    }

    function resetPosition() {
        if (x === 0 && y === 0)
            return;
        console.log("Do NOT override the position of a WarpItem! Move the canvas.canvasMedia object instead!");
        x = 0;
        y = 0;
    }

    width: sourceWidth
    height: sourceHeight
    color: "#505050" // the edge
    rotation: sourceRotation + viewingRotation

    onXChanged: resetPosition()
    onYChanged: resetPosition()
    onViewingRotationChanged: {
        if (Math.abs(viewingRotation) >= 360) {
            viewingRotation %= 360;
            return;
        }
        MeshBuilder.refreshPoints(scene, warpItem);
        scene.rotationDialog.selectedView = View.viewOfRotation(viewingRotation);
    }
    onSourceRotationChanged: MeshBuilder.refreshPoints(scene, warpItem)
    onSourceDeformerRotationChanged: MeshBuilder.refreshPoints(scene, warpItem)

    // Not a border, because Qt Quick draws a rotated border through a texture of the item's size.
    Rectangle {
        anchors.fill: parent
        anchors.margins: visible ? 1 / warpItem.scene.mediaScaleFactor : 1
        color: "#303030"
    }

    Deformer {
        id: deformer

        anchors.fill: parent
        rotation: warpItem.sourceDeformerRotation
        scene: warpItem.scene
    }
}
