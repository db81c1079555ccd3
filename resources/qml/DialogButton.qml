import QtQuick
import "../js/dialogButtonsActions.js" as DialogButtonsActions
import "../js/theme.js" as Theme

// A button at the foot of a dialog; its type decides what a click does. The confirming button is highlighted.
Rectangle {
    id: button

    required property var scene
    required property string type
    property string text
    readonly property bool confirms: type === "confirmButton"

    signal clicked

    implicitWidth: dialogButtonSize.width
    implicitHeight: dialogButtonSize.height
    activeFocusOnTab: true
    color: mouseArea.pressed ? Theme.controlPressed : confirms ? Theme.chosen : Theme.control
    border { width: confirms ? 2 : 1; color: confirms ? Theme.accent : Theme.outline }
    radius: Theme.radius

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: clicked()

    Component.onCompleted: DialogButtonsActions.connectButton(scene, button)
    Keys.onSpacePressed: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    Text {
        anchors.centerIn: parent
        color: Theme.text
        font { pixelSize: Theme.fontSize; weight: button.confirms ? Font.DemiBold : Font.Normal }
        text: button.text
        textFormat: Text.PlainText
    }

    FocusRing {}

    MouseArea {
        id: mouseArea

        anchors.fill: parent
        onClicked: button.clicked()
    }
}
