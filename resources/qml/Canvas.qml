import QtQuick
import Meshpad.Scene
import "../js/deformerActions.js" as DeformerActions
import "../js/itemActions.js" as ItemActions
import "../js/meshRules.js" as Rules
import "../js/warpToolButtonsActions.js" as WarpToolButtonsActions

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
    property var entryComponents: ({}) // by name
    property alias pointerArea: pointerArea
    property alias currentPointText: currentPointText
    property alias warpToolBar: warpToolBar
    property alias toolTabs: toolTabs
    property alias zoomSlider: warpToolBar.zoomSlider
    property alias deformationDialog: deformationDialog
    property alias rotationDialog: rotationDialog
    property alias toolTip: toolTip

    function getCurrentGridId() {
        return DeformerActions.getCurrentGridId(canvas);
    }

    function getCurrentItem() {
        return DeformerActions.getCurrentItem(canvas);
    }

    function updatePoint(gridId, pointId, x, y) {
        DeformerActions.updatePoint(canvas, gridId, pointId, x, y);
    }

    function rotateView(degrees) {
        const item = getCurrentItem();
        if (item)
            item.viewingRotation += degrees;
    }

    function handleKeyPress(event) {
        switch (event.key) {
        case Qt.Key_Control:
            ctrlPressed = true;
            return;
        case Qt.Key_Space:
        case Qt.Key_P:
        case Qt.Key_M:
            bridge.notifyKeyEventFromQml(6, event.key, event.modifiers, event.text, event.isAutoRepeat, event.count);
            return;
        case Qt.Key_R:
            rotateView(event.modifiers & Qt.ControlModifier ? -90 : 90);
            return;
        }
        const item = getCurrentItem();
        if (!item)
            return;
        if (event.key === Qt.Key_A && event.modifiers & Qt.ControlModifier)
            item.itemDeformer.selectAllPoints();
        else if (event.key === Qt.Key_Escape)
            item.itemDeformer.unselectAllPoints();
        else
            item.itemDeformer.manageKeyEvent(event);
    }

    // Scales the zoom by the factor; the screen position (x, y) stays in place.
    function zoomAround(factor, x, y) {
        const before = mediaScaleFactor;
        zoomSlider.value = before * factor;
        const shift = 1 / mediaScaleFactor - 1 / before;
        media.x += (x - width / 2) * shift;
        media.y += (y - height / 2) * shift;
    }

    width: canvasWidth
    height: canvasHeight
    color: "#000000"
    focus: true

    onWidthChanged: {
        if (canvasCurrentItemType !== Rules.NO_ITEM)
            media.x += (width - previousWidth) / 2;
        previousWidth = width;
    }
    onHeightChanged: {
        if (canvasCurrentItemType !== Rules.NO_ITEM)
            media.y += (height - previousHeight) / 2;
        previousHeight = height;
    }
    onActiveFocusChanged: {
        if (activeFocus)
            return;
        ctrlPressed = false; // the release goes to another item
        DeformerActions.setGestureActive(canvas, DeformerActions.KEY_GESTURE, false);
    }

    onIsDialogOpenChanged: {
        if (!isDialogOpen)
            pointerArea.ignorePointerUntilMoved();
    }

    Keys.onPressed: event => {
        event.accepted = true;
        if (!isDialogOpen)
            handleKeyPress(event);
        else if (event.key === Qt.Key_Escape)
            deformationDialog.visible ? deformationDialog.close() : rotationDialog.close();
    }
    Keys.onReleased: event => {
        event.accepted = true;
        if (event.key === Qt.Key_Control)
            ctrlPressed = false;
        DeformerActions.manageKeyRelease(canvas, event);
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
            ItemActions.updateDeformationMode(canvas, ItemActions.itemAt(canvasMediaItemArray, cueId), deformationType,
                                              row, col, reset);
        }

        function onScreenDeformationMode(deformationType, id, name, row, col, reset) {
            ItemActions.updateScreenDeformationMode(canvas, id, deformationType, row, col, reset);
        }

        function onScreenPartDeformationMode(deformationType, screenId, screenPartId, name, row, col, reset) {
            ItemActions.updateDeformationMode(canvas, ItemActions.screenPartItem(canvas, screenId, screenPartId),
                                              deformationType, row, col, reset);
        }

        function onTextureDeformationMode(elementType, deformationType, cueId, textureId, name, row, col, reset) {
            ItemActions.updateDeformationMode(canvas, ItemActions.itemAt(canvasTextureItemArray, cueId),
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
            ItemActions.movePoint(canvas, ItemActions.itemAt(canvasMediaItemArray, cueId), pointId, x, y, xy);
        }

        function onScreenMovePoint(id, name, pointId, x, y, z, xy, selected) {
            ItemActions.movePoint(canvas, ItemActions.itemAt(canvasScreenItemArray, id), pointId, x, y, xy);
        }

        function onScreenPartMovePoint(screenId, screenPartId, name, pointId, x, y, z, xy, selected) {
            ItemActions.movePoint(canvas, ItemActions.screenPartItem(canvas, screenId, screenPartId), pointId, x, y, xy);
        }

        function onTextureMovePoint(cueId, textureId, name, pointId, x, y, z, xy, selected) {
            ItemActions.movePoint(canvas, ItemActions.itemAt(canvasTextureItemArray, cueId), pointId, x, y, xy);
        }

        function onLeftAxisMoved(x, y) {
            DeformerActions.leftStickMoved(canvas, x, y);
        }

        function onRightAxisMoved(x, y) {
            DeformerActions.rightStickMoved(canvas, x, y);
        }

        function onPressure(value) {
            DeformerActions.triggerPressed(canvas, value);
        }

        function onAction(action) {
            WarpToolButtonsActions.actionTriggered(canvas, Number(action));
        }
    }

    MeshPointerArea {
        id: pointerArea

        anchors.fill: parent
        enabled: !canvas.isDialogOpen
        touchReach: 22
        onPointPressed: (pointId, control) => {
            DeformerActions.pointerPressed(canvas, pointId, control || canvas.ctrlPressed);
        }
        onPointDragged: (pointId, x, y) => DeformerActions.dragPoint(canvas, pointId, x, y)
        onPointReleased: DeformerActions.setGestureActive(canvas, DeformerActions.POINTER_GESTURE, false)
        onPanned: (dx, dy) => {
            media.x += dx / canvas.mediaScaleFactor;
            media.y += dy / canvas.mediaScaleFactor;
        }
        onPinched: (factor, x, y) => {
            if (canvas.getCurrentItem())
                canvas.zoomAround(factor, x, y);
        }
        onWheelTurned: notches => {
            if (canvas.getCurrentItem())
                canvas.zoomSlider.value += 0.05 * notches;
        }
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
