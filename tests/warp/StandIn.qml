import QtQuick

// What the bridge needs of a scene: something that takes keys, hears signals and calls back.
Rectangle {
    id: scene

    property var keys: []
    property var heard: []

    function moveUnnamed(point: int) {
        var name
        cppCanvas.moveScreenPartPoint(7, 2, name, point, 1.5, -2.5, 0, true, false)
    }

    focus: true
    Keys.onPressed: event => {
        keys.push([event.key, event.modifiers, event.text, event.isAutoRepeat])
        event.accepted = true
    }
    Connections {
        target: cppCanvas

        function onMediaMovePoint(cueId, mediaId, name, pointId, x, y, z, xy, selected) {
            scene.heard.push(["point", cueId, mediaId, name, pointId, x, y, z, xy, selected])
        }
    }
}
