import QtQuick
import "../js/theme.js" as Theme

// Number and position of the current point, in the item's pixels.
Text {
    function clear() {
        text = "Current point: --     X: -- px     Y: -- px";
    }

    function show(pointNum, x, y) {
        text = "Current point: %1     X: %2 px     Y: %3 px".arg(pointNum).arg(x.toFixed(2)).arg(y.toFixed(2));
    }

    color: Theme.text
    font.pixelSize: Theme.fontSize
    textFormat: Text.PlainText
    Component.onCompleted: clear()

    Rectangle {
        anchors { fill: parent; margins: -6 }
        color: "#000000"
        opacity: 0.6
        radius: Theme.radius
        z: -1 // keeps the text readable in front of a mesh
    }
}
