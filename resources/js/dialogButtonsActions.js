.pragma library
.import "meshRules.js" as Rules
.import "view.js" as View

// Buttons and lists of the configuration dialog.

// The smallest count of rows and columns that the operator can choose for a kind of deformation.
function smallestCount(deformationType, smallestOfCurve) {
    return deformationType === Rules.CURVE ? smallestOfCurve : Rules.SMALLEST_GRID;
}

// The counts to choose from.
function counts(smallest, largest) {
    const list = [];
    for (let count = smallest; count <= largest; ++count)
        list.push(count);
    return list;
}

// Index of a count in the list; 0 for a smaller count.
function indexOfCount(count, smallest) {
    return Math.max(Math.floor(count) - smallest, 0);
}

function hasCounts(deformationType) {
    return deformationType === Rules.BEZIER || deformationType === Rules.CURVE;
}

function connectButton(scene, button) {
    switch (button.type) {
    case "confirmButton":
        button.clicked.connect(() => confirm(scene));
        break;
    case "cancelButton":
        button.clicked.connect(() => scene.deformationDialog.close());
        break;
    default:
        console.log("Dialog button connect error!");
    }
}

// Sends the chosen deformation to the Producer.
function confirm(scene) {
    const dialog = scene.deformationDialog;
    switch (dialog.chosenMode) {
    case Rules.NONE:
        scene.bridge.newNoneDeformation();
        break;
    case Rules.KEYSTONE:
        scene.bridge.newKeystoneDeformation(dialog.resetXY);
        break;
    case Rules.BEZIER:
        scene.bridge.newBezierDeformation(dialog.rows, dialog.columns, dialog.resetXY);
        break;
    case Rules.CURVE:
        scene.bridge.newCurveDeformation(dialog.rows, dialog.columns, dialog.resetXY);
        break;
    default:
        console.log("This deformation mode does not exist.");
    }
    dialog.close();
    View.adjustView(scene);
    scene.currentPointText.clear();
}
