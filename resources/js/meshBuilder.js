.pragma library
.import "currentItem.js" as CurrentItem
.import "gestures.js" as Gestures
.import "itemKinds.js" as Kinds
.import "meshRules.js" as Rules

// Builds, shows and hides the meshes of an item.

function eraseGrids(item) {
    for (let gridId = 0; gridId < 2; ++gridId)
        item.deformerGrids[gridId].erase();
}

// Sets the outlines of both meshes; buildMesh() creates points and lines when they are needed.
function initializeDeformerQML(item, rows, columns, skipPatchCenter) {
    eraseGrids(item);
    if (!Kinds.componentOf(item.scene, "Point") || !Kinds.componentOf(item.scene, "Line"))
        return;
    const rotation = -item.getFullRotation();
    for (let gridId = 0; gridId < 2; ++gridId)
        item.deformerGrids[gridId].setOutline(rows, columns, item.width, item.height, rotation, skipPatchCenter);
}

function buildMesh(grid, rows, columns, skipPatchCenter) {
    const createAll = (name, count) => {
        const create = Kinds.componentOf(grid.scene, name).createObject;
        const objects = [];
        while (objects.length < count)
            objects.push(create(grid));
        return objects;
    };
    const ends = Rules.lineEnds(rows, columns, skipPatchCenter);
    grid.setMesh(createAll("Point", rows * columns), createAll("Line", ends.length / 2), ends);
}

// Returns whether the item has taken the deformation.
function updateDeformationMode(scene, item, deformationType, row, col, reset) {
    if (!item) {
        console.log("updateDeformationMode: currentItem is null!");
        return false;
    }
    const hasMesh = deformationType === Rules.BEZIER || deformationType === Rules.CURVE;
    if (hasMesh && !(Rules.isGridSize(row) && Rules.isGridSize(col))) {
        console.warn("updateDeformationMode: Unusable grid of " + row + " rows and " + col + " columns");
        return false;
    }
    if (!hasMesh && deformationType !== Rules.NONE && deformationType !== Rules.KEYSTONE) {
        console.log("updateDeformationMode: Undefined mode");
        return false;
    }
    const isCurrent = item === CurrentItem.getCurrentItem(scene);
    if (isCurrent)
        Gestures.endAll(scene);
    item.deformerDeformationType = deformationType;
    item.deformerRowsNumber = deformationType === Rules.KEYSTONE ? 2 : row;
    item.deformerColsNumber = deformationType === Rules.KEYSTONE ? 2 : col;
    if (deformationType === Rules.NONE)
        eraseGrids(item);
    else
        initializeDeformerQML(item, item.deformerRowsNumber, item.deformerColsNumber, deformationType === Rules.BEZIER);
    for (let gridId = 0; gridId < 2; ++gridId) {
        item.deformerGrids[gridId].currentSelectedPointId = -1;
        item.deformerGrids[gridId].lastSelectedPointId = -1;
    }
    if (isCurrent)
        CurrentItem.updateCurrentPointText(scene);
    return true;
}

function hideGrid(grid) {
    grid.visible = false;
}

function showGrid(grid) {
    grid.visible = true;
}

function hideDeformer(scene, item) {
    item.itemDeformer.visible = false;
    if (item === CurrentItem.getCurrentItem(scene)) {
        Gestures.endAll(scene);
        scene.currentPointText.clear();
    }
}

function showDeformer(scene, item) {
    const current = CurrentItem.getCurrentGridId(scene);
    item.itemDeformer.visible = true;
    hideGrid(item.deformerGrids[1 - current]);
    showGrid(item.deformerGrids[current]);
    refreshPoints(scene, item);
    if (item === CurrentItem.getCurrentItem(scene))
        CurrentItem.updateCurrentPointText(scene);
}

// Keeps the numbers of the points upright after a rotation of the item.
function refreshPoints(scene, item) {
    if (item.deformerGrids && item.deformerGrids.length > 0) // false while the item is created
        CurrentItem.currentGrid(scene, item).setNumberRotation(-item.getFullRotation());
}
