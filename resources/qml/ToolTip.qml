import QtQuick
import "../js/theme.js" as Theme

// The tool tip of the editor, beside the control that it describes.
Rectangle {
    id: toolTip

    property Item owner: null

    function showFor(control, text, delay) {
        if (text === "")
            return;
        visible = false;
        owner = control;
        label.text = text;
        timer.interval = delay;
        timer.restart();
    }

    function hideFor(control) {
        if (owner !== control)
            return;
        timer.stop();
        visible = false;
        owner = null;
    }

    // Right of the control if there is room, otherwise above it.
    function moveBesideOwner() {
        const corner = owner.mapToItem(parent, owner.width, 0);
        let left = corner.x + Theme.spacing;
        let top = corner.y + (owner.height - height) / 2;
        if (left + width > parent.width || corner.y + owner.height > parent.height - Theme.spacing) {
            left = corner.x - owner.width;
            top = corner.y - height - Theme.spacing;
        }
        x = Math.round(Math.max(Theme.spacing, Math.min(left, parent.width - width - Theme.spacing)));
        y = Math.round(Math.max(Theme.spacing, Math.min(top, parent.height - height - Theme.spacing)));
    }

    implicitWidth: label.implicitWidth + 24
    implicitHeight: label.implicitHeight + 16
    color: Theme.panel
    border.color: Theme.quietText
    radius: Theme.radius
    visible: false
    z: 1

    Text {
        id: label

        anchors.centerIn: parent
        color: Theme.text
        font.pixelSize: Theme.fontSize
        textFormat: Text.PlainText
    }

    Timer {
        id: timer

        onTriggered: {
            toolTip.moveBesideOwner();
            toolTip.visible = true;
        }
    }
}
