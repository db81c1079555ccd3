import QtQuick
import "../js/theme.js" as Theme
import "../js/warpToolButtonsActions.js" as WarpToolButtonsActions

// The bar under the canvas: lockers, configuration, XY/UV, and the view.
Rectangle {
    id: bar

    required property var scene
    property bool zoneLockerButtonPushed: false
    property bool moveLockerButtonPushed: false
    property bool mapButtonPushed: false // UV is edited
    property bool configurationButtonEnabled: false
    property bool mapButtonEnabled: false
    property alias zoomSlider: slider

    color: Theme.panel

    MouseArea {
        anchors.fill: parent // blocks presses from what is behind the bar
        onWheel: wheel => wheel.accepted = true
    }

    Row {
        anchors { left: parent.left; leftMargin: Theme.spacing; verticalCenter: parent.verticalCenter }
        spacing: Theme.spacing

        WarpToolButton {
            buttonId: 0
            checkable: true
            enabled: bar.scene.buttonsEnabled
            pushed: bar.zoneLockerButtonPushed
            scene: bar.scene
            source: zoneLockerImagesPath[pushed ? 1 : 0]
            toolTip: zoneLockerToolTip
            type: "warpToolBarButton"
        }

        WarpToolButton {
            buttonId: 1
            checkable: true
            enabled: bar.scene.buttonsEnabled
            pushed: bar.moveLockerButtonPushed
            scene: bar.scene
            source: moveLockerImagesPath[pushed ? 1 : 0]
            toolTip: moveLockerToolTip
            type: "warpToolBarButton"
        }

        WarpToolButton {
            buttonId: 2
            enabled: bar.configurationButtonEnabled
            scene: bar.scene
            text: warpToolBarButtonsText[0]
            toolTip: warpToolBarButtonsToolTips[0]
            type: "warpToolBarButton"
            width: 130
        }

        WarpToolButton {
            buttonId: 3
            checkable: true
            choices: warpToolBarButtonsText[1].split("/")
            enabled: bar.mapButtonEnabled
            pushed: bar.mapButtonPushed
            scene: bar.scene
            text: warpToolBarButtonsText[1]
            toolTip: warpToolBarButtonsToolTips[1]
            type: "warpToolBarButton"
            width: 110
            onChosen: index => WarpToolButtonsActions.editGrid(bar.scene, index)
        }
    }

    Row {
        anchors { right: parent.right; rightMargin: Theme.spacing; verticalCenter: parent.verticalCenter }
        spacing: Theme.spacing

        Text {
            anchors.verticalCenter: parent.verticalCenter
            color: slider.enabled ? Theme.text : Theme.quietText
            font.pixelSize: Theme.fontSize
            horizontalAlignment: Text.AlignRight
            text: sceneTexts.zoomValue.arg(slider.enabled ? Math.round(slider.value * 100) : "--")
            width: 56
        }

        ZoomSlider {
            id: slider

            anchors.verticalCenter: parent.verticalCenter
            enabled: false
            width: 200
        }

        WarpToolButton {
            buttonId: 0
            enabled: bar.scene.buttonsEnabled
            scene: bar.scene
            source: adjustViewButtonPath
            toolTip: adjustViewButtonToolTip
            type: "canvasButton"
        }

        WarpToolButton {
            buttonId: 1
            enabled: bar.scene.buttonsEnabled
            scene: bar.scene
            source: rotationButtonPath[bar.scene.rotationDialog.selectedView]
            toolTip: rotationButtonToolTip
            type: "canvasButton"
        }
    }
}
