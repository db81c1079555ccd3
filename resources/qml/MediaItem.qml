import QtQuick
import "../js/meshRules.js" as Rules

// A media of the show.
Item {
    id: entry

    property var scene
    property int mediaType
    property real mediaCueId // unsigned
    property int mediaId
    property int mediaWidth
    property int mediaHeight
    property real mediaRotation
    property string mediaName
    property alias item: warpItem

    WarpItem {
        id: warpItem

        scene: entry.scene
        type: Rules.MEDIA
        idNum: entry.mediaCueId
        sourceWidth: entry.mediaWidth
        sourceHeight: entry.mediaHeight
        sourceRotation: entry.mediaRotation
        name: entry.mediaName
    }
}
