import QtQuick
import "../js/theme.js" as Theme

// Number and position of the current point, in the item's pixels.
Text {
    function clear() {
        text = sceneTexts.noCurrentPoint;
    }

    function show(pointNum, x, y) {
        text = sceneTexts.currentPoint.arg(pointNum).arg(x.toFixed(2)).arg(y.toFixed(2));
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
