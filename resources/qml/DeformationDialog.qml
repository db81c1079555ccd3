import QtQuick
import "../js/dialogButtonsActions.js" as DialogButtonsActions
import "../js/theme.js" as Theme

// Chooses the deformation of the current item.
DialogFrame {
    id: dialog

    property int mode: -1 // the deformation shown, -1 while the dialog is closed
    property int columnsNumber: 0
    property int rowsNumber: 0
    property alias resetXY: resetTick.checked

    readonly property int chosenMode: curveBox.currentIndex
    readonly property string curve: curveBox.currentText
    readonly property int columns: Number(columnsBox.currentText)
    readonly property int rows: Number(rowsBox.currentText)

    function open(deformationType, columnsCount, rowsCount) {
        mode = deformationType;
        columnsNumber = columnsCount;
        rowsNumber = rowsCount;
        curveBox.currentIndex = deformationType;
        fillLists();
        visible = true;
        curveBox.forceActiveFocus();
    }

    // The closed dialog holds impossible values, so that the next opening refreshes every field.
    function close() {
        visible = false;
        mode = -1;
        columnsNumber = 0;
        rowsNumber = 0;
        resetXY = false;
    }

    function fillLists() {
        const type = curveBox.currentIndex; // chosenMode may not be updated yet
        fillList(columnsBox, DialogButtonsActions.smallestCount(type, curveMinCols), curveMaxCols, columnsNumber);
        fillList(rowsBox, DialogButtonsActions.smallestCount(type, curveMinRows), curveMaxRows, rowsNumber);
    }

    // A larger mesh than the lists offer is shown with its own counts.
    function fillList(box, smallest, largest, count) {
        const shown = curveBox.currentIndex === mode ? count : Math.min(count, largest);
        box.model = DialogButtonsActions.counts(smallest, Math.max(largest, shown));
        box.currentIndex = DialogButtonsActions.indexOfCount(shown, smallest);
    }

    title: sceneTexts.configuration
    onConfirmed: DialogButtonsActions.confirm(scene)
    onDismissed: close()

    Column {
        spacing: Theme.spacing

        DialogRow {
            label: sceneTexts.curve

            ChoiceBox {
                id: curveBox

                accessibleName: sceneTexts.curve
                focus: true
                model: sceneTexts.curves
                onCurrentIndexChanged: dialog.fillLists()
            }
        }

        DialogRow {
            label: sceneTexts.columns
            visible: DialogButtonsActions.hasCounts(dialog.chosenMode)

            ChoiceBox {
                id: columnsBox

                accessibleName: sceneTexts.columns
            }
        }

        DialogRow {
            label: sceneTexts.rows
            visible: DialogButtonsActions.hasCounts(dialog.chosenMode)

            ChoiceBox {
                id: rowsBox

                accessibleName: sceneTexts.rows
            }
        }

        Tick {
            id: resetTick

            text: sceneTexts.reset
        }

        Item {
            width: 1
            height: Theme.spacing
        }

        Row {
            anchors.right: parent.right
            spacing: Theme.spacing

            DialogButton {
                scene: dialog.scene
                text: sceneTexts.cancel
                type: "cancelButton"
            }

            DialogButton {
                scene: dialog.scene
                text: sceneTexts.ok
                type: "confirmButton"
            }
        }
    }
}
