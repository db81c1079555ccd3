import QtQuick
import Meshpad.Scene
import "../js/controller.js" as Controller
import "../js/currentItem.js" as CurrentItem
import "../js/gestures.js" as Gestures
import "../js/itemActions.js" as ItemActions
import "../js/itemKinds.js" as Kinds
import "../js/keyActions.js" as KeyActions
import "../js/meshRules.js" as Rules
import "../js/moves.js" as Moves
import "../js/pointWriter.js" as PointWriter
import "../js/selection.js" as Selection
import "../js/view.js" as View

// The mesh editor: its items and their connections. The rules stand in the libraries; `cppCanvas` is the bridge to the
// program.
Rectangle {
    id: canvas

    readonly property var bridge: cppCanvas

    property alias canvasMedia: media
    property int canvasCurrentItemType: Rules.NO_ITEM
    property int canvasCurrentItemId: 0
    property int canvasCurrentSubItemId: 0
    property var canvasMediaItemArray: ({}) // by cue id
    property var canvasTextureItemArray: ({}) // by cue id
    property var canvasScreenItemArray: [] // by screen id
    property var canvasScreenPartItemArray: [] // by screen id, then part id
    property alias mediaScaleFactor: zoomContainer.scale
    property bool ctrlPressed: false
    property bool isMovingPoint: false
    property bool isCurrentGridXy: true
    property int previousWidth: width
    property int previousHeight: height

    property int activeGestures: 0 // bits of gestures that move points
    property bool buttonsEnabled: false
    readonly property DeformerGrid currentGrid: pointerArea.grid as DeformerGrid
    readonly property bool hasPoints: currentGrid !== null && currentGrid.visible && currentGrid.hasMesh
    readonly property bool isDialogOpen: deformationDialog.visible || rotationDialog.visible
    readonly property bool pointerIgnored: pointerArea.pointerIgnored
    property var components: ({}) // by name
    property alias pointerArea: pointerArea
    property alias currentPointText: currentPointText
    property alias warpToolBar: warpToolBar
    property alias toolTabs: toolTabs
    property alias zoomSlider: warpToolBar.zoomSlider
    property alias deformationDialog: deformationDialog
    property alias rotationDialog: rotationDialog
    property alias toolTip: toolTip

    function getCurrentGridId() {
        return CurrentItem.getCurrentGridId(canvas);
    }

    function getCurrentItem() {
        return CurrentItem.getCurrentItem(canvas);
    }

    function updatePoint(gridId, pointId, x, y) { // API
        PointWriter.updatePoint(canvas, gridId, pointId, x, y);
    }

    width: canvasWidth
    height: canvasHeight
    color: "#000000"
    focus: true

    onWidthChanged: {
        View.recentre(canvas, width - previousWidth, 0);
        previousWidth = width;
    }
    onHeightChanged: {
        View.recentre(canvas, 0, height - previousHeight);
        previousHeight = height;
    }
    onActiveFocusChanged: {
        if (activeFocus)
            return;
        ctrlPressed = false; // the release goes to another item
        Gestures.setActive(canvas, Gestures.KEY, false);
    }

    onIsDialogOpenChanged: {
        if (!isDialogOpen)
            pointerArea.ignorePointerUntilMoved();
    }

    Keys.onPressed: event => {
        event.accepted = true;
        if (!isDialogOpen)
            KeyActions.keyPressed(canvas, event);
        else if (event.key === Qt.Key_Escape)
            deformationDialog.visible ? deformationDialog.close() : rotationDialog.close();
    }
    Keys.onReleased: event => {
        event.accepted = true;
        KeyActions.keyReleased(canvas, event);
    }

    Connections {
        target: cppCanvas

        function onCurrentItemChanged(itemType, itemId, subItemId) {
            ItemActions.updateCurrentItem(canvas, itemType, itemId, subItemId);
        }

        function onScreenMode(screenId, modeType) {
            ItemActions.updateScreenMode(canvas, screenId, modeType);
        }

        function onMediaDeformationMode(elementType, deformationType, cueId, mediaId, name, row, col, reset) {
            ItemActions.updateDeformationMode(canvas, Kinds.itemAt(canvas, Rules.MEDIA, cueId), deformationType,
                                              row, col, reset);
        }

        function onScreenDeformationMode(deformationType, id, name, row, col, reset) {
            ItemActions.updateScreenDeformationMode(canvas, id, deformationType, row, col, reset);
        }

        function onScreenPartDeformationMode(deformationType, screenId, screenPartId, name, row, col, reset) {
            ItemActions.updateDeformationMode(canvas, Kinds.itemAt(canvas, Rules.SCREEN_PART, screenId, screenPartId),
                                              deformationType, row, col, reset);
        }

        function onTextureDeformationMode(elementType, deformationType, cueId, textureId, name, row, col, reset) {
            ItemActions.updateDeformationMode(canvas, Kinds.itemAt(canvas, Rules.TEXTURE, cueId),
                                              deformationType, row, col, reset);
        }

        function onMediaItemAdded(type, cueId, mediaId, sourceWidth, sourceHeight, sourceRotation, name) {
            ItemActions.addMediaItem(canvas, type, cueId, mediaId, sourceWidth, sourceHeight, sourceRotation, name);
        }

        function onRemoveMediaItem(cueId) {
            ItemActions.removeMediaItem(canvas, cueId);
        }

        function onScreenItemAdded(idNum, sourceWidth, sourceHeight, sourceRotation, sourceDeformerRotation, name) {
            ItemActions.addScreenItem(canvas, idNum, sourceWidth, sourceHeight, sourceRotation,
                                      sourceDeformerRotation, name);
        }

        function onRemoveScreenItem(idNum) {
            ItemActions.removeScreenItem(canvas, idNum);
        }

        function onScreenPartItemAdded(screenId, screenPartId, sourceWidth, sourceHeight, sourceDeformerRotation, name) {
            ItemActions.addScreenPartItem(canvas, screenId, screenPartId, sourceWidth, sourceHeight,
                                          sourceDeformerRotation, name);
        }

        function onRemoveScreenPartItem(screenId, screenPartId) {
            ItemActions.removeScreenPartItem(canvas, screenId, screenPartId);
        }

        function onTextureItemAdded(cueId, textureId, sourceWidth, sourceHeight, sourceRotation, name) {
            ItemActions.addTextureItem(canvas, cueId, textureId, sourceWidth, sourceHeight, sourceRotation, name);
        }

        function onRemoveTextureItem(cueId) {
            ItemActions.removeTextureItem(canvas, cueId);
        }

        function onMediaMovePoint(cueId, mediaId, name, pointId, x, y, z, xy, selected) {
            ItemActions.movePoint(canvas, Kinds.itemAt(canvas, Rules.MEDIA, cueId), pointId, x, y, xy);
        }

        function onScreenMovePoint(id, name, pointId, x, y, z, xy, selected) {
            ItemActions.movePoint(canvas, Kinds.itemAt(canvas, Rules.SCREEN, id), pointId, x, y, xy);
        }

        function onScreenPartMovePoint(screenId, screenPartId, name, pointId, x, y, z, xy, selected) {
            ItemActions.movePoint(canvas, Kinds.itemAt(canvas, Rules.SCREEN_PART, screenId, screenPartId), pointId,
                                  x, y, xy);
        }

        function onTextureMovePoint(cueId, textureId, name, pointId, x, y, z, xy, selected) {
            ItemActions.movePoint(canvas, Kinds.itemAt(canvas, Rules.TEXTURE, cueId), pointId, x, y, xy);
        }

        function onPointWentBack(itemType, itemId, subItemId, pointId, fromX, fromY, xy) {
            ItemActions.markReturn(Kinds.itemAt(canvas, itemType, itemId, subItemId), pointId, fromX, fromY, xy);
        }

        function onLeftAxisMoved(x, y) {
            Controller.leftStickMoved(canvas, x, y);
        }

        function onRightAxisMoved(x, y) {
            Controller.rightStickMoved(canvas, x, y);
        }

        function onPressure(value) {
            Controller.triggerPressed(canvas, value);
        }

        function onAction(action) {
            Controller.actionTriggered(canvas, Number(action));
        }
    }

    MeshPointerArea {
        id: pointerArea

        anchors.fill: parent
        enabled: !canvas.isDialogOpen
        touchReach: 22
        onPointPressed: (pointId, control) => {
            Selection.pointerPressed(canvas, pointId, control || canvas.ctrlPressed);
        }
        onPointDragged: (pointId, x, y) => Moves.dragPoint(canvas, pointId, x, y)
        onPointReleased: Gestures.setActive(canvas, Gestures.POINTER, false)
        onPanned: (dx, dy) => View.panBy(canvas, dx, dy)
        onPinched: (factor, x, y) => View.zoomAround(canvas, factor, x, y)
        onWheelTurned: notches => View.zoomBy(canvas, View.ZOOM_PER_NOTCH * notches)
    }

    Item {
        id: zoomContainer

        anchors.fill: parent
        scale: warpToolBar.zoomSlider.value

        Item {
            id: media
        }
    }

    FocusRing {
        anchors { leftMargin: toolTabs.width; bottomMargin: warpToolBar.height }
        radius: 0
        visible: pointerArea.hasTabFocus
    }

    CurrentPointText {
        id: currentPointText

        anchors { top: parent.top; right: parent.right; topMargin: 10; rightMargin: 15 }
    }

    ToolTabs {
        id: toolTabs

        anchors { top: parent.top; bottom: warpToolBar.top; left: parent.left }
        width: toolTabsWidth
        scene: canvas
    }

    WarpToolBar {
        id: warpToolBar

        anchors { bottom: parent.bottom; left: parent.left; right: parent.right }
        height: warpToolBarHeight
        scene: canvas
    }

    DeformationDialog {
        id: deformationDialog

        anchors.fill: parent
        scene: canvas
    }

    RotationDialog {
        id: rotationDialog

        anchors.fill: parent
        scene: canvas
    }

    ToolTip {
        id: toolTip
    }
}
