import QtQuick
import "../js/theme.js" as Theme

// Marks the control with the keyboard focus: a white ring just inside its edge, with a dark outline for light
// backgrounds.
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
