import QtQuick
import "../js/theme.js" as Theme

// A box with the current choice; a press opens the list of all choices, the arrow keys step through them.
Rectangle {
    id: box

    property var model: []
    property int currentIndex: 0
    property string accessibleName
    readonly property string currentText: model[currentIndex] !== undefined ? String(model[currentIndex]) : ""
    readonly property bool isOpen: list.visible

    function close() {
        list.visible = false;
    }

    function step(by) {
        currentIndex = Math.max(0, Math.min(currentIndex + by, model.length - 1));
    }

    implicitWidth: comboBoxSize.width
    implicitHeight: comboBoxSize.height
    activeFocusOnTab: true
    color: mouseArea.pressed ? Theme.controlPressed : Theme.control
    border { width: isOpen ? 2 : 1; color: isOpen ? Theme.accent : Theme.outline }
    radius: Theme.radius
    z: isOpen ? 1 : 0

    Accessible.role: Accessible.ComboBox
    Accessible.name: accessibleName + " " + currentText
    Accessible.onPressAction: list.visible = !list.visible

    onActiveFocusChanged: {
        if (!activeFocus)
            close();
    }
    onVisibleChanged: close()
    Keys.onUpPressed: step(-1)
    Keys.onDownPressed: step(1)
    Keys.onSpacePressed: event => {
        if (!event.isAutoRepeat)
            list.visible = !list.visible;
    }
    Keys.onPressed: event => {
        const leaves = event.key === Qt.Key_Escape || event.key === Qt.Key_Return || event.key === Qt.Key_Enter;
        if (isOpen && leaves) {
            event.accepted = true;
            close();
        }
    }

    Text {
        anchors { left: parent.left; leftMargin: 14; verticalCenter: parent.verticalCenter }
        color: Theme.text
        font.pixelSize: Theme.fontSize
        text: box.currentText
        textFormat: Text.PlainText
    }

    Text {
        anchors { right: parent.right; rightMargin: 14; verticalCenter: parent.verticalCenter }
        color: Theme.accent
        font.pixelSize: Theme.fontSize
        text: box.isOpen ? "\u25b4" : "\u25be"
    }

    MouseArea {
        id: mouseArea

        anchors.fill: parent
        onClicked: {
            box.forceActiveFocus();
            list.visible = true;
        }
    }

    FocusRing {}

    MouseArea { // around the open list: a press closes it and has no other effect
        id: surroundings

        containmentMask: QtObject {
            function contains(position: point) : bool {
                return true;
            }
        }
        hoverEnabled: true
        visible: box.isOpen || pressed
        onPressed: box.close()
        onWheel: wheel => wheel.accepted = true
    }

    Rectangle {
        id: list

        anchors { top: parent.bottom; topMargin: 2; left: parent.left; right: parent.right }
        height: view.height + 4
        color: Theme.control
        border { width: 2; color: Theme.accent }
        radius: Theme.radius
        visible: false
        onVisibleChanged: {
            if (visible)
                view.positionViewAtIndex(box.currentIndex, ListView.Center);
        }

        MouseArea { // blocks events that the list ignores from the boxes under it
            anchors.fill: parent
            onWheel: wheel => wheel.accepted = true
        }

        ListView {
            id: view

            anchors { top: parent.top; left: parent.left; right: parent.right; margins: 2 }
            height: Math.min(count, 5) * Theme.touchTarget
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            currentIndex: box.currentIndex
            model: box.model

            delegate: Rectangle {
                id: entry

                required property int index
                required property var modelData

                width: ListView.view.width
                height: Theme.touchTarget
                color: entryArea.pressed ? Theme.controlPressed : index === box.currentIndex ? Theme.chosen : "transparent"
                radius: Theme.radius - 2

                Text {
                    anchors { left: parent.left; leftMargin: 12; verticalCenter: parent.verticalCenter }
                    color: Theme.text
                    font { pixelSize: Theme.fontSize; weight: entry.index === box.currentIndex ? Font.DemiBold : Font.Normal }
                    text: entry.modelData
                    textFormat: Text.PlainText
                }

                MouseArea {
                    id: entryArea

                    anchors.fill: parent
                    onClicked: {
                        box.currentIndex = entry.index;
                        box.close();
                    }
                }
            }
        }

        Rectangle { // scroll position
            anchors.right: parent.right
            anchors.rightMargin: 4
            y: 4 + view.visibleArea.yPosition * (list.height - 8)
            width: 3
            height: view.visibleArea.heightRatio * (list.height - 8)
            radius: 1.5
            color: Theme.quietText
            visible: view.visibleArea.heightRatio < 1
        }
    }
}
