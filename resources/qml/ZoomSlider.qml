import QtQuick
import "../js/theme.js" as Theme
import "../js/view.js" as View

// A slider for a value between `from` and `to`; other values are clamped.
Item {
    id: slider

    property real from: 0.1
    property real to: 1.5
    property real stepSize: 0.001
    property real value: from

    function setFromPointer(x) {
        const share = (x - track.x) / track.width;
        value = from + Math.round(share * (to - from) / stepSize) * stepSize;
    }

    implicitWidth: 180
    implicitHeight: Theme.touchTarget
    opacity: enabled ? 1 : Theme.disabledOpacity

    Accessible.role: Accessible.Slider
    Accessible.name: sceneTexts.zoom
    Accessible.onIncreaseAction: value += View.ZOOM_PER_NOTCH
    Accessible.onDecreaseAction: value -= View.ZOOM_PER_NOTCH

    onValueChanged: {
        const bounded = value >= from ? Math.min(value, to) : from; // NaN becomes `from`
        if (bounded !== value)
            value = bounded;
    }

    Rectangle {
        id: track

        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
        anchors.leftMargin: handle.width / 2
        anchors.rightMargin: handle.width / 2
        height: 4
        radius: 2
        color: Theme.outline

        Rectangle {
            width: handle.x + handle.width / 2 - track.x
            height: parent.height
            radius: 2
            color: Theme.accent
        }
    }

    Rectangle {
        id: handle

        anchors.verticalCenter: parent.verticalCenter
        x: track.width * (slider.value - slider.from) / (slider.to - slider.from)
        width: 20
        height: 20
        radius: 10
        color: mouseArea.pressed ? Theme.selection : Theme.text
        border { width: 2; color: Theme.accent }
    }

    MouseArea {
        id: mouseArea

        anchors.fill: parent
        preventStealing: true
        onPressed: mouse => slider.setFromPointer(mouse.x)
        onPositionChanged: mouse => slider.setFromPointer(mouse.x)
        onWheel: wheel => slider.value += View.ZOOM_PER_NOTCH * wheel.angleDelta.y / 120
    }
}
