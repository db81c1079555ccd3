import QtQuick
import "../js/theme.js" as Theme
import "../js/warpToolButtonsActions.js" as WarpToolButtonsActions

// Buttons of a tool tab around a common centre, each on the side that it works on: two beside each other or a cross.
Item {
    id: group

    required property var scene
    required property string buttonType
    required property var buttonIds // left, right and, of a cross, top, bottom
    property real buttonSize: Theme.touchTarget
    property real gap: 2 * Theme.spacing // between two beside each other; between top and bottom of a cross
    readonly property bool isCross: buttonIds.length > 2
    readonly property bool selects: buttonType === "selectWarpToolButton"

    implicitWidth: isCross ? 3 * buttonSize + Theme.spacing : 2 * buttonSize + gap
    implicitHeight: isCross ? 2 * buttonSize + gap : buttonSize

    Repeater {
        model: group.buttonIds.length

        WarpToolButton {
            required property int index
            readonly property string look: (group.selects ? selectButtonsPath : deformButtonsPath)[buttonId]
            readonly property bool isPicture: look.startsWith("qrc:")

            x: (group.width - width) * [0, 1, 0.5, 0.5][index]
            y: (group.height - height) * [0.5, 0.5, 0, 1][index]
            width: group.buttonSize
            height: group.buttonSize
            buttonId: group.buttonIds[index]
            idle: !group.scene.hasPoints || !group.selects && WarpToolButtonsActions.needsUv(buttonId)
                  && !group.scene.warpToolBar.mapButtonEnabled
            scene: group.scene
            source: isPicture ? look : deformButtonsPictures[buttonId]
            text: isPicture ? "" : look
            toolTip: group.selects ? WarpToolButtonsActions.selectToolTip(selectButtonsToolTips[buttonId], buttonId)
                                   : deformButtonsToolTips[buttonId]
            type: group.buttonType
        }
    }
}
