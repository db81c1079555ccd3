import QtQuick
import "../js/theme.js" as Theme

// A check box with its label.
Item {
    id: tick

    property bool checked: false
    property string text

    implicitWidth: label.x + label.implicitWidth
    implicitHeight: Theme.touchTarget
    activeFocusOnTab: true

    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onToggleAction: checked = !checked
    Keys.onSpacePressed: event => {
        if (!event.isAutoRepeat)
            checked = !checked;
    }

    Rectangle {
        id: square

        anchors.verticalCenter: parent.verticalCenter
        width: 28
        height: 28
        color: tick.checked ? Theme.chosen : Theme.control
        border { width: tick.checked ? 2 : 1; color: tick.checked ? Theme.accent : Theme.outline }
        radius: 4

        Text {
            anchors.centerIn: parent
            color: Theme.text
            font { pixelSize: 18; weight: Font.Bold }
            text: "\u2713"
            visible: tick.checked
        }
    }

    Text {
        id: label

        anchors { left: square.right; leftMargin: 12; verticalCenter: parent.verticalCenter }
        color: Theme.text
        font.pixelSize: Theme.fontSize
        text: tick.text
        textFormat: Text.PlainText
    }

    FocusRing {
        anchors { leftMargin: -8; rightMargin: -8 }
    }

    MouseArea {
        anchors.fill: parent
        onClicked: tick.checked = !tick.checked
    }
}
