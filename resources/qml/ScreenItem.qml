import QtQuick
import "../js/meshRules.js" as Rules

// A screen of the show.
Item {
    id: entry

    property var scene
    property int screenId
    property int screenWidth
    property int screenHeight
    property real screenRotation
    property real screenDeformerRotation
    property string screenName
    property int screenModeType: Rules.SIMPLE_MODE
    property alias item: warpItem

    WarpItem {
        id: warpItem

        scene: entry.scene
        type: Rules.SCREEN
        idNum: entry.screenId
        sourceWidth: entry.screenWidth
        sourceHeight: entry.screenHeight
        sourceRotation: entry.screenRotation
        sourceDeformerRotation: entry.screenDeformerRotation
        name: entry.screenName
    }
}
