import QtQuick
import "../js/theme.js" as Theme
import "../js/warpToolButtonsActions.js" as WarpToolButtonsActions

// The panel with the tools for selecting and for deforming, one tab each.
Rectangle {
    id: tabs

    required property var scene
    property int currentTab: 0

    color: Theme.panel

    MouseArea {
        anchors.fill: parent // blocks presses from what is behind the panel
        onWheel: wheel => wheel.accepted = true
    }

    Row {
        id: header

        anchors { top: parent.top; topMargin: Theme.spacing; horizontalCenter: parent.horizontalCenter }
        spacing: 4

        Repeater {
            model: toolTabImagesPath

            Item {
                id: tab

                required property int index
                required property url modelData
                readonly property bool current: tabs.currentTab === index
                readonly property string label: sceneTexts.toolTabs[index]

                width: toolTabImagesSize.width
                height: toolTabImagesSize.height + 14

                Accessible.role: Accessible.PageTab
                Accessible.name: label
                Accessible.checked: current
                Accessible.onPressAction: tabs.currentTab = index

                Rectangle {
                    anchors.fill: parent
                    color: tab.current ? Theme.control : "transparent"
                    radius: Theme.radius
                }

                Rectangle {
                    anchors { bottom: parent.bottom; left: parent.left; right: parent.right; margins: 4 }
                    height: 3
                    radius: 1.5
                    color: Theme.accent
                    visible: tab.current
                }

                Image {
                    id: picture

                    anchors { top: parent.top; topMargin: 6; horizontalCenter: parent.horizontalCenter }
                    width: 34
                    height: 34
                    source: tab.modelData
                    sourceSize { width: picture.width; height: picture.height }
                    opacity: tab.current ? 1 : 0.6
                }

                Text {
                    anchors { top: picture.bottom; horizontalCenter: parent.horizontalCenter }
                    color: tab.current ? Theme.text : Theme.quietText
                    font.pixelSize: 12
                    text: tab.label
                }

                MouseArea {
                    anchors.fill: parent
                    onClicked: tabs.currentTab = tab.index
                }
            }
        }
    }

    Grid {
        id: selectTab

        anchors { top: header.bottom; topMargin: Theme.spacing; horizontalCenter: parent.horizontalCenter }
        columns: 2
        columnSpacing: 12
        rowSpacing: 4
        enabled: tabs.scene.buttonsEnabled
        visible: tabs.currentTab === 0

        Repeater {
            model: selectButtonsPath

            WarpToolButton {
                required property int index
                required property url modelData

                buttonId: index
                idle: !tabs.scene.hasPoints
                scene: tabs.scene
                source: modelData
                toolTip: WarpToolButtonsActions.selectToolTip(selectButtonsToolTips[index], index)
                type: "selectWarpToolButton"
            }
        }
    }

    Flow {
        anchors { top: header.bottom; topMargin: Theme.spacing; horizontalCenter: parent.horizontalCenter }
        width: 112
        spacing: 12
        enabled: tabs.scene.buttonsEnabled
        visible: tabs.currentTab === 1

        Repeater {
            model: deformButtonsPath

            WarpToolButton {
                required property int index
                required property string modelData
                readonly property bool isPicture: modelData.startsWith("qrc:")

                buttonId: index
                heading: index === 0
                idle: !tabs.scene.hasPoints
                      || WarpToolButtonsActions.needsUv(index) && !tabs.scene.warpToolBar.mapButtonEnabled
                scene: tabs.scene
                source: isPicture ? modelData : ""
                text: isPicture ? "" : modelData
                toolTip: deformButtonsToolTips[index]
                type: "deformWarpToolButton"
                width: heading ? 112 : implicitWidth
                height: heading ? 24 : implicitHeight
            }
        }
    }
}
