import QtQuick
import "../js/theme.js" as Theme

// A label and its control. The row with the open list is above the others.
Item {
    id: row

    property string label
    default property alias content: place.data

    width: 340
    height: Math.max(Theme.touchTarget, place.childrenRect.height)
    z: place.children.length > 0 && place.children[0].isOpen ? 1 : 0

    Text {
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.text
        font.pixelSize: Theme.fontSize
        text: sceneTexts.dialogLabel.arg(row.label)
        textFormat: Text.PlainText
    }

    Item {
        id: place

        anchors { right: parent.right; top: parent.top; bottom: parent.bottom }
        width: childrenRect.width
    }
}
