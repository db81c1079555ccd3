import QtQuick
import "../js/theme.js" as Theme
import "../js/view.js" as View

// Chooses the side from which the workspace is shown.
DialogFrame {
    id: dialog

    property int selectedView: 0 // 0 front, 1 left, 2 back, 3 right

    function open() {
        visible = true;
    }

    function close() {
        visible = false;
    }

    function selectView(view) {
        if (scene.getCurrentItem()) {
            selectedView = view;
            View.applyView(scene, view);
        } else {
            console.log("currentItem is null, nothing to update");
        }
        close();
    }

    closeButtonVisible: true
    title: sceneTexts.rotation
    onConfirmed: close()
    onDismissed: close()

    Row {
        spacing: Theme.spacing

        Repeater {
            model: rotationButtonPath

            Column {
                id: choice

                required property int index
                required property url modelData

                spacing: 4

                WarpToolButton {
                    activeFocusOnTab: true
                    buttonId: choice.index
                    checkable: true
                    height: 80
                    pushed: dialog.selectedView === choice.index
                    scene: dialog.scene
                    source: choice.modelData
                    toolTip: sceneTexts.views[choice.index]
                    type: "rotationButton"
                    width: 80
                    onVisibleChanged: {
                        if (visible && pushed)
                            forceActiveFocus();
                    }
                }

                Text {
                    anchors.horizontalCenter: parent.horizontalCenter
                    color: dialog.selectedView === choice.index ? Theme.text : Theme.quietText
                    font.pixelSize: Theme.fontSize
                    text: sceneTexts.views[choice.index]
                }
            }
        }
    }
}
