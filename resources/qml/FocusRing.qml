import QtQuick
import "../js/theme.js" as Theme

// Marks the control that has the keyboard: a white ring just inside its edge, dark around so that it is seen on any
// ground.
Rectangle {
    id: ring

    anchors { fill: parent; margins: 1 }
    color: "transparent"
    border { width: Theme.focusRingWidth + 2; color: Theme.shadow }
    radius: Theme.radius - 1
    visible: parent.activeFocus

    Rectangle {
        anchors { fill: parent; margins: 1 }
        color: "transparent"
        border { width: Theme.focusRingWidth; color: Theme.text }
        radius: ring.radius - 1
    }
}
