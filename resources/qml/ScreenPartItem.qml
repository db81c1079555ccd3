import QtQuick
import "../js/meshRules.js" as Rules

// One part of a screen that is handled through its parts.
Item {
    id: entry

    property var scene
    property int screenId
    property int screenPartId
    property int screenPartWidth
    property int screenPartHeight
    property real screenPartDeformerRotation
    property string screenPartName
    property alias item: warpItem

    WarpItem {
        id: warpItem

        scene: entry.scene
        type: Rules.SCREEN_PART
        idNum: entry.screenPartId
        sourceWidth: entry.screenPartWidth
        sourceHeight: entry.screenPartHeight
        sourceDeformerRotation: entry.screenPartDeformerRotation
        name: entry.screenPartName
    }
}
