import QtQuick
import "../js/theme.js" as Theme

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
                height: toolTabImagesSize.height

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
                    anchors { bottom: parent.bottom; left: parent.left; right: parent.right; leftMargin: 4; rightMargin: 4 }
                    height: 3
                    radius: 1.5
                    color: Theme.accent
                    visible: tab.current
                }

                Image {
                    id: picture

                    anchors { top: parent.top; topMargin: 2; horizontalCenter: parent.horizontalCenter }
                    width: 30
                    height: 30
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

    Column {
        id: selectTab

        // In a small window the crosses are closer, so that the groups stay apart.
        readonly property real room: height - 8 * Theme.touchTarget
        readonly property real opening: bounded(room / 3 - 4 * Theme.spacing, 20, Theme.touchTarget + 2 * Theme.spacing)

        anchors { top: header.bottom; bottom: parent.bottom; margins: Theme.spacing; horizontalCenter: parent.horizontalCenter }
        spacing: bounded((room - 3 * opening) / 4, Theme.spacing, 3 * Theme.spacing)
        enabled: tabs.scene.buttonsEnabled
        visible: tabs.currentTab === 0

        function bounded(value, least, most) {
            return Math.max(least, Math.min(value, most));
        }

        component SelectGroup: ToolGroup {
            anchors.horizontalCenter: parent.horizontalCenter
            gap: isCross ? selectTab.opening : 2 * Theme.spacing
            scene: tabs.scene
            buttonType: "selectWarpToolButton"
        }

        SelectGroup {
            buttonIds: [0, 1] // all, none
        }

        SelectGroup {
            buttonIds: [3, 2, 5, 4] // the neighbour on that side
        }

        SelectGroup {
            buttonIds: [6, 9, 7, 8] // adds it
        }

        SelectGroup {
            buttonIds: [12, 15, 13, 14] // adds the line on that side
        }

        SelectGroup {
            buttonIds: [10, 11] // adds the current column, row
        }
    }

    Column {
        anchors { top: header.bottom; topMargin: Theme.spacing; horizontalCenter: parent.horizontalCenter }
        spacing: 3 * Theme.spacing
        enabled: tabs.scene.buttonsEnabled
        visible: tabs.currentTab === 1

        component DeformGroup: ToolGroup {
            buttonSize: 60
            gap: Theme.spacing
            scene: tabs.scene
            buttonType: "deformWarpToolButton"
        }

        WarpToolButton {
            anchors.horizontalCenter: parent.horizontalCenter
            height: 24
            buttonId: 0
            heading: true
            scene: tabs.scene
            text: deformButtonsPath[0]
            toolTip: deformButtonsToolTips[0]
            type: "deformWarpToolButton"
        }

        DeformGroup {
            buttonIds: [1, 2] // mirrors
        }

        DeformGroup {
            buttonIds: [3, 4] // flips
        }

        Rectangle {
            width: parent.width
            height: 1
            color: Theme.outline
        }

        DeformGroup {
            buttonIds: [5, 6] // copies between XY and UV
        }
    }
}
