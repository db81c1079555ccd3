import QtQuick
import "../js/meshRules.js" as Rules

// A texture of the show.
Item {
    id: entry

    property var scene
    property real textureCueId // unsigned
    property int textureId
    property int textureWidth
    property int textureHeight
    property real textureRotation
    property string textureName
    property alias item: warpItem

    WarpItem {
        id: warpItem

        scene: entry.scene
        type: Rules.TEXTURE
        idNum: entry.textureCueId
        sourceWidth: entry.textureWidth
        sourceHeight: entry.textureHeight
        sourceRotation: entry.textureRotation
        name: entry.textureName
    }
}
