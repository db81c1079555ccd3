import QtQuick
import "../js/theme.js" as Theme

// Tells number and position of the current point, in the item's pixels.
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
}
