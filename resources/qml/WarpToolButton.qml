import QtQuick
import "../js/theme.js" as Theme
import "../js/warpToolButtonsActions.js" as WarpToolButtonsActions

// A button of the editor; its type decides what a click does. A pushed button differs in shape as well as in colour.
Item {
    id: button

    required property var scene
    required property string type
    property int buttonId: 0
    property url source // a picture
    property string text // a label, below the picture if there is one
    property var choices: [] // labels of the button's parts instead; the chosen one is marked
    property bool heading: false // a title without function
    property bool pushed: false
    property bool checkable: false
    property bool idle: false // a click has no effect now
    property string toolTip
    readonly property bool pressed: mouseArea.pressed && mouseArea.containsMouse

    signal clicked
    signal chosen(int index) // a pointer is on a part of the button

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

    Column {
        anchors.centerIn: parent
        visible: button.choices.length === 0

        Image {
            id: picture

            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.min(button.width, button.height) - (button.text === "" ? 12 : 24)
            height: width
            source: button.source
            sourceSize { width: picture.width; height: picture.height }
            visible: status !== Image.Null
        }

        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            color: Theme.text
            font.pixelSize: button.width > 60 ? Theme.fontSize : Theme.fontSize - 2
            font.weight: Font.Medium
            text: button.text
            textFormat: Text.PlainText
            visible: text !== ""
        }
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
                color: chosen ? Theme.selection : "transparent"
                radius: Theme.radius - 2

                Accessible.role: Accessible.RadioButton
                Accessible.name: modelData
                Accessible.checked: chosen
                Accessible.onPressAction: button.chosen(index)

                Text {
                    anchors.centerIn: parent
                    color: choice.chosen ? Theme.selectedText : Theme.quietText
                    font { pixelSize: choice.chosen ? Theme.titleSize : Theme.fontSize; weight: choice.chosen ? Font.Bold : Font.Normal }
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
        onClicked: {
            if (button.choices.length === 0)
                button.clicked();
        }
        onPressed: mouse => {
            hideToolTip();
            choose(mouse.x);
        }
        onPositionChanged: mouse => choose(mouse.x)
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

        function choose(x) {
            const index = Math.floor(x / width * button.choices.length);
            if (pressed && index in button.choices)
                button.chosen(index);
        }

        function hideToolTip() {
            if (button.scene && button.scene.toolTip)
                button.scene.toolTip.hideFor(button);
        }
    }
}
