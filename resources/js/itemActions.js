.pragma library
.import "currentItem.js" as CurrentItem
.import "gestures.js" as Gestures
.import "itemKinds.js" as Kinds
.import "meshBuilder.js" as MeshBuilder
.import "meshRules.js" as Rules
.import "pointWriter.js" as PointWriter
.import "selection.js" as Selection
.import "view.js" as View
.import "warpToolButtonsActions.js" as WarpToolButtonsActions

// Keeps the entries of the Producer's items in the scene and shows the current one.

// The caller of a removal may still use the entry until control returns to the event loop.
var REMOVED_ENTRY_LIFETIME = 1000; // ms

// Adding and removing

// `values` as in KINDS[type].properties.
function addItem(scene, type, values) {
    const kind = Kinds.KINDS[type];
    const properties = { scene: scene, visible: false };
    kind.properties.forEach((name, index) => { properties[name] = values[index]; });
    const id = properties[kind.id];
    const subId = properties[kind.subId];
    const known = Kinds.entryAt(scene, type, id, subId);
    if (known) {
        for (const name of kind.updated)
            known[name] = properties[name];
        return;
    }
    const component = Kinds.componentOf(scene, kind.component);
    if (component)
        kind.array(scene, id)[kind.key(id, subId)] = component.createObject(scene.canvasMedia, properties);
}

function removeItem(scene, type, id, subId) {
    const kind = Kinds.KINDS[type];
    const entry = Kinds.entryAt(scene, type, id, subId);
    if (!entry) {
        console.log("Unable to remove " + kind.name + " item");
        return;
    }
    const wasCurrent = CurrentItem.isCurrent(scene, type, id, subId);
    if (wasCurrent) {
        Gestures.endAll(scene);
        scene.deformationDialog.close();
        scene.rotationDialog.close();
        entry.visible = false;
        scene.pointerArea.grid = null;
    }
    delete kind.array(scene, id)[kind.key(id, subId)];
    entry.destroy(REMOVED_ENTRY_LIFETIME);
    if (wasCurrent)
        CurrentItem.updateCurrentPointText(scene);
}

function addMediaItem(scene, type, cueId, mediaId, sourceWidth, sourceHeight, sourceRotation, name) {
    addItem(scene, Rules.MEDIA, [type, cueId, mediaId, sourceWidth, sourceHeight, sourceRotation, name]);
}

function addTextureItem(scene, cueId, textureId, sourceWidth, sourceHeight, sourceRotation, name) {
    addItem(scene, Rules.TEXTURE, [cueId, textureId, sourceWidth, sourceHeight, sourceRotation, name]);
}

function addScreenItem(scene, idNum, sourceWidth, sourceHeight, sourceRotation, sourceDeformerRotation, name) {
    addItem(scene, Rules.SCREEN, [idNum, sourceWidth, sourceHeight, sourceRotation, sourceDeformerRotation, name]);
}

function addScreenPartItem(scene, screenId, screenPartId, sourceWidth, sourceHeight, sourceDeformerRotation, name) {
    if (!scene.canvasScreenPartItemArray[screenId])
        scene.canvasScreenPartItemArray[screenId] = [];
    addItem(scene, Rules.SCREEN_PART,
            [screenId, screenPartId, sourceWidth, sourceHeight, sourceDeformerRotation, name]);
}

function removeMediaItem(scene, cueId) {
    removeItem(scene, Rules.MEDIA, cueId);
}

function removeTextureItem(scene, cueId) {
    removeItem(scene, Rules.TEXTURE, cueId);
}

function removeScreenItem(scene, idNum) {
    removeItem(scene, Rules.SCREEN, idNum);
}

function removeScreenPartItem(scene, screenId, screenPartId) {
    removeItem(scene, Rules.SCREEN_PART, screenId, screenPartId);
}

// Reports of the Producer

function movePoint(scene, item, pointId, x, y, isXy) {
    if (item)
        PointWriter.applyIncomingMove(scene, item, pointId, x, y, isXy);
}

function markReturn(item, pointId, x, y, isXy) {
    if (item)
        PointWriter.markReturn(item, pointId, x, y, isXy);
}

function updateDeformationMode(scene, item, deformationType, row, col, reset) {
    return item && MeshBuilder.updateDeformationMode(scene, item, deformationType, row, col, reset);
}

function updateScreenDeformationMode(scene, id, deformationType, row, col, reset) {
    const item = Kinds.itemAt(scene, Rules.SCREEN, id);
    if (updateDeformationMode(scene, item, deformationType, row, col, reset))
        updateScreenMode(scene, id, deformationType === Rules.NONE ? Rules.SIMPLE_MODE : Rules.DEFORMATION_MODE);
}

function updateScreenMode(scene, screenId, modeType) {
    const entry = Kinds.entryAt(scene, Rules.SCREEN, screenId);
    if (!entry)
        return;
    entry.screenModeType = modeType;
    if (modeType === Rules.SIMPLE_MODE)
        MeshBuilder.hideDeformer(scene, entry.item);
    else
        MeshBuilder.showDeformer(scene, entry.item);
}

// The current item

function updateCurrentItem(scene, type, id, subId) {
    scene.deformationDialog.close();
    scene.rotationDialog.close();
    if (CurrentItem.isCurrent(scene, type, id, subId) && scene.canvasCurrentSubItemId === subId)
        return;
    Gestures.endAll(scene);
    if (scene.canvasCurrentItemType !== Rules.NO_ITEM)
        leaveItem(scene);
    scene.canvasCurrentItemType = type;
    scene.canvasCurrentItemId = id;
    scene.canvasCurrentSubItemId = subId;
    if (type !== Rules.NO_ITEM)
        enterItem(scene);
    else
        showNoItem(scene);
    View.adjustView(scene);
    View.applyView(scene, scene.rotationDialog.selectedView);
}

function leaveItem(scene) {
    WarpToolButtonsActions.releaseLockers(scene);
    const entry = CurrentItem.getCurrentEntry(scene);
    if (!entry)
        return; // removed while it was current
    Selection.unselectBothGrids(scene);
    entry.visible = false;
    MeshBuilder.hideGrid(entry.item.deformerGrids[Rules.XY_GRID]);
    for (let gridId = 0; gridId < 2; ++gridId)
        entry.item.deformerGrids[gridId].reduceToOutline();
}

function enterItem(scene) {
    const type = scene.canvasCurrentItemType;
    const canEditUv = type === Rules.MEDIA || type === Rules.TEXTURE;
    if (!canEditUv) {
        scene.isCurrentGridXy = true;
        scene.warpToolBar.mapButtonPushed = false;
    }
    scene.zoomSlider.enabled = true;
    scene.buttonsEnabled = true;
    scene.warpToolBar.configurationButtonEnabled = true;
    scene.warpToolBar.mapButtonEnabled = canEditUv;
    const entry = CurrentItem.getCurrentEntry(scene);
    if (!entry) {
        console.log("updateCurrentItem: currentItem is null!");
        scene.pointerArea.grid = null;
        scene.currentPointText.clear();
        return;
    }
    entry.visible = true;
    if (CurrentItem.isInSimpleMode(scene, entry))
        MeshBuilder.hideDeformer(scene, entry.item);
    else
        MeshBuilder.showDeformer(scene, entry.item);
    scene.pointerArea.grid = CurrentItem.currentGrid(scene, entry.item);
    WarpToolButtonsActions.lockZoneOfTextureUv(scene);
}

function showNoItem(scene) {
    scene.pointerArea.grid = null;
    scene.currentPointText.clear();
    scene.zoomSlider.enabled = false;
    scene.buttonsEnabled = false;
    scene.warpToolBar.configurationButtonEnabled = false;
    scene.warpToolBar.mapButtonEnabled = false;
}
