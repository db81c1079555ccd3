import QtQuick
import "../js/theme.js" as Theme
import "../js/warpToolButtonsActions.js" as WarpToolButtonsActions

// A button of the editor; its type decides what a click does. A pushed button differs in shape as well as in colour.
Item {
    id: button

    required property var scene
    required property string type
    property int buttonId: 0
    property url source // a picture, or
    property string text // a label, or
    property var choices: [] // two labels; the chosen one is marked
    property bool heading: false // a title without function
    property bool pushed: false
    property bool checkable: false
    property bool idle: false // a click has no effect now
    property string toolTip
    readonly property bool pressed: mouseArea.pressed && mouseArea.containsMouse

    signal clicked

    implicitWidth: warpToolButtonsSize.width
    implicitHeight: warpToolButtonsSize.height
    opacity: enabled && !idle ? 1 : Theme.disabledOpacity

    Accessible.role: checkable ? Accessible.CheckBox : Accessible.Button
    Accessible.name: toolTip !== "" ? toolTip : text
    Accessible.checkable: checkable
    Accessible.checked: pushed
    Accessible.onPressAction: clicked()

    Component.onCompleted: WarpToolButtonsActions.connectButton(scene, button)
    onEnabledChanged: mouseArea.hideToolTip()
    onVisibleChanged: mouseArea.hideToolTip()
    Keys.onSpacePressed: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    BorderImage {
        anchors.fill: parent
        border { left: 8; top: 8; right: 8; bottom: 8 }
        source: buttonBackgroundImagesPath[button.pushed && button.choices.length === 0 ? 1 : 0]
        visible: !button.heading
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius
        color: Theme.text
        opacity: button.heading || button.idle ? 0 : button.pressed ? 0.25 : mouseArea.containsMouse ? 0.08 : 0
    }

    Image {
        id: picture

        anchors.centerIn: parent
        width: Math.min(button.width, button.height) - 12
        height: width
        source: button.source
        sourceSize { width: picture.width; height: picture.height }
    }

    Text {
        anchors.centerIn: parent
        color: Theme.text
        font.pixelSize: button.width > 60 ? Theme.fontSize : Theme.fontSize - 2
        font.weight: Font.Medium
        text: button.text
        textFormat: Text.PlainText
        visible: button.choices.length === 0
    }

    Row {
        anchors { fill: parent; margins: 4 }

        Repeater {
            model: button.choices

            Rectangle {
                id: choice

                required property int index
                required property string modelData
                readonly property bool chosen: index === (button.pushed ? 1 : 0)

                width: parent.width / button.choices.length
                height: parent.height
                color: chosen ? Theme.chosen : "transparent"
                border { width: chosen ? 2 : 0; color: Theme.accent }
                radius: Theme.radius - 2

                Text {
                    anchors.centerIn: parent
                    color: choice.chosen ? Theme.text : Theme.quietText
                    font { pixelSize: Theme.fontSize; weight: choice.chosen ? Font.DemiBold : Font.Normal }
                    text: choice.modelData
                    textFormat: Text.PlainText
                }
            }
        }
    }

    FocusRing {}

    MouseArea {
        id: mouseArea

        readonly property bool showsToolTip: containsMouse && !button.scene.pointerIgnored

        anchors.fill: parent
        hoverEnabled: true
        onClicked: button.clicked()
        onPressed: hideToolTip()
        onPressAndHold: mouse => {
            button.scene.toolTip.showFor(button, button.toolTip, 0);
            mouse.accepted = mouse.source !== Qt.MouseEventNotSynthesized; // a long press of a finger only shows the tool tip
        }
        onShowsToolTipChanged: {
            if (showsToolTip)
                button.scene.toolTip.showFor(button, button.toolTip, Theme.toolTipDelay);
            else
                hideToolTip();
        }

        function hideToolTip() {
            if (button.scene && button.scene.toolTip)
                button.scene.toolTip.hideFor(button);
        }
    }
}
