import QtQuick
import "../js/theme.js" as Theme

// The frame of the editor's dialogs: a veil that blocks the canvas and a panel with a title. An open dialog has the
// keyboard focus.
FocusScope {
    id: frame

    required property var scene
    property string title
    default property alias content: body.data
    property alias closeButtonVisible: closeButton.visible

    signal confirmed
    signal dismissed

    visible: false

    Accessible.role: Accessible.Dialog
    Accessible.name: title

    onVisibleChanged: {
        if (visible)
            forceActiveFocus();
        else if (scene)
            scene.forceActiveFocus();
    }

    Keys.onPressed: event => {
        event.accepted = true; // keys must not reach the mesh
        if (event.key === Qt.Key_Escape)
            frame.dismissed();
        else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
            frame.confirmed();
    }
    Keys.onReleased: event => event.accepted = true

    Rectangle {
        anchors.fill: parent
        color: "#000000"
        opacity: 0.6
    }

    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        onWheel: wheel => wheel.accepted = true
    }

    Rectangle {
        id: panel

        anchors.centerIn: parent
        width: body.childrenRect.width + 48
        height: body.childrenRect.height + heading.height + 48
        color: Theme.panel
        border.color: Theme.outline
        radius: 2 * Theme.radius

        Item {
            id: heading

            anchors { top: parent.top; left: parent.left; right: parent.right; leftMargin: 24; rightMargin: 12 }
            height: 60

            Text {
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.text
                font { pixelSize: Theme.titleSize; weight: Font.DemiBold }
                text: frame.title
                textFormat: Text.PlainText
            }

            WarpToolButton {
                id: closeButton

                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                width: Theme.touchTarget
                height: Theme.touchTarget
                activeFocusOnTab: true
                scene: frame.scene
                source: closeWindowButtonPath
                text: ""
                toolTip: sceneTexts.close
                type: "closeButton"
                visible: false
            }
        }

        Item {
            id: body

            anchors { top: heading.bottom; left: parent.left; margins: 24; topMargin: 12 }
        }
    }
}
