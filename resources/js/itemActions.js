.pragma library
.import "deformerActions.js" as DeformerActions
.import "meshRules.js" as Rules
.import "warpToolButtonsActions.js" as WarpToolButtonsActions

// Keeps the entries of the Producer's items in the scene, and decides which of them is shown.

// An entry that was removed may still be in use by whoever told the scene to remove it.
var REMOVED_ENTRY_LIFETIME = 1000; // ms

// A new hidden entry in the movable container, null when its component does not load.
function createEntry(scene, name, properties) {
    let component = scene.entryComponents[name];
    if (!component) {
        component = Qt.createComponent("qrc:///qml/" + name + ".qml");
        if (component.status !== 1) { // Component.Ready
            console.log("Error loading " + name + " component: " + component.errorString());
            return null;
        }
        scene.entryComponents[name] = component;
    }
    properties.scene = scene;
    properties.visible = false;
    return component.createObject(scene.canvasMedia, properties);
}

function isCurrent(scene, type, id, subId) {
    return scene.canvasCurrentItemType === type && scene.canvasCurrentItemId === (id | 0)
        && (type !== Rules.SCREEN_PART || scene.canvasCurrentSubItemId === subId);
}

// Takes the entry at that key out of the array; `message` is logged when there is none.
function removeEntry(scene, array, key, isCurrentEntry, message) {
    const entry = array ? array[key] : undefined;
    if (!entry) {
        console.log(message);
        return;
    }
    if (isCurrentEntry) {
        DeformerActions.endGestures(scene);
        scene.deformationDialog.close();
        scene.rotationDialog.close();
        entry.visible = false;
        scene.pointerArea.grid = null;
    }
    delete array[key];
    entry.destroy(REMOVED_ENTRY_LIFETIME);
    if (isCurrentEntry)
        DeformerActions.updateCurrentPointText(scene);
}

function addMediaItem(scene, type, cueId, mediaId, sourceWidth, sourceHeight, sourceRotation, name) {
    const known = scene.canvasMediaItemArray[cueId];
    if (known) {
        known.mediaRotation = sourceRotation;
        return;
    }
    const entry = createEntry(scene, "MediaItem", {
        mediaType: type,
        mediaCueId: cueId,
        mediaId: mediaId,
        mediaWidth: sourceWidth,
        mediaHeight: sourceHeight,
        mediaRotation: sourceRotation,
        mediaName: name
    });
    if (entry)
        scene.canvasMediaItemArray[cueId] = entry;
}

function removeMediaItem(scene, cueId) {
    removeEntry(scene, scene.canvasMediaItemArray, cueId, isCurrent(scene, Rules.MEDIA, cueId),
                "Unable to remove media item");
}

function addTextureItem(scene, cueId, textureId, sourceWidth, sourceHeight, sourceRotation, name) {
    const known = scene.canvasTextureItemArray[cueId];
    if (known) {
        known.textureRotation = sourceRotation;
        return;
    }
    const entry = createEntry(scene, "TextureItem", {
        textureCueId: cueId,
        textureId: textureId,
        textureWidth: sourceWidth,
        textureHeight: sourceHeight,
        textureRotation: sourceRotation,
        textureName: name
    });
    if (entry)
        scene.canvasTextureItemArray[cueId] = entry;
}

function removeTextureItem(scene, cueId) {
    removeEntry(scene, scene.canvasTextureItemArray, cueId, isCurrent(scene, Rules.TEXTURE, cueId),
                "Unable to remove texture item");
}

// The locked zone of the current item follows its size.
function updateZone(scene, itemIsCurrent) {
    if (itemIsCurrent && scene.warpToolBar.zoneLockerButtonPushed)
        WarpToolButtonsActions.lockZone(scene, true);
}

function addScreenItem(scene, idNum, sourceWidth, sourceHeight, sourceRotation, sourceDeformerRotation, name) {
    const known = scene.canvasScreenItemArray[idNum];
    if (known) {
        known.screenWidth = sourceWidth;
        known.screenHeight = sourceHeight;
        known.screenRotation = sourceRotation;
        known.screenDeformerRotation = sourceDeformerRotation;
        known.screenName = name;
        updateZone(scene, isCurrent(scene, Rules.SCREEN, idNum));
        return;
    }
    const entry = createEntry(scene, "ScreenItem", {
        screenId: idNum,
        screenWidth: sourceWidth,
        screenHeight: sourceHeight,
        screenRotation: sourceRotation,
        screenDeformerRotation: sourceDeformerRotation,
        screenName: name,
        screenModeType: Rules.SIMPLE_MODE
    });
    if (entry)
        scene.canvasScreenItemArray[idNum] = entry;
}

function removeScreenItem(scene, idNum) {
    removeEntry(scene, scene.canvasScreenItemArray, idNum, isCurrent(scene, Rules.SCREEN, idNum),
                "Unable to remove screen item");
}

function addScreenPartItem(scene, screenId, screenPartId, sourceWidth, sourceHeight, sourceDeformerRotation, name) {
    if (!scene.canvasScreenPartItemArray[screenId])
        scene.canvasScreenPartItemArray[screenId] = [];
    const known = scene.canvasScreenPartItemArray[screenId][screenPartId];
    if (known) {
        known.screenPartWidth = sourceWidth;
        known.screenPartHeight = sourceHeight;
        known.screenPartDeformerRotation = sourceDeformerRotation;
        known.screenPartName = name;
        updateZone(scene, isCurrent(scene, Rules.SCREEN_PART, screenId, screenPartId));
        return;
    }
    const entry = createEntry(scene, "ScreenPartItem", {
        screenId: screenId,
        screenPartId: screenPartId,
        screenPartWidth: sourceWidth,
        screenPartHeight: sourceHeight,
        screenPartDeformerRotation: sourceDeformerRotation,
        screenPartName: name
    });
    if (entry)
        scene.canvasScreenPartItemArray[screenId][screenPartId] = entry;
}

function removeScreenPartItem(scene, screenId, screenPartId) {
    removeEntry(scene, scene.canvasScreenPartItemArray[screenId], screenPartId,
                isCurrent(scene, Rules.SCREEN_PART, screenId, screenPartId), "Unable to remove screen part item");
}

// What the Producer reports

function itemAt(array, key) {
    const entry = array ? array[key] : undefined;
    return entry ? entry.item : null;
}

function screenPartItem(scene, screenId, screenPartId) {
    return itemAt(scene.canvasScreenPartItemArray[screenId], screenPartId);
}

function movePoint(scene, item, pointId, x, y, isXy) {
    if (item)
        DeformerActions.applyIncomingMove(scene, item, pointId, x, y, isXy);
}

function updateDeformationMode(scene, item, deformationType, row, col, reset) {
    return item && DeformerActions.updateDeformationMode(scene, item, deformationType, row, col, reset);
}

function updateScreenDeformationMode(scene, id, deformationType, row, col, reset) {
    const item = itemAt(scene.canvasScreenItemArray, id);
    if (updateDeformationMode(scene, item, deformationType, row, col, reset))
        updateScreenMode(scene, id, deformationType === Rules.NONE ? Rules.SIMPLE_MODE : Rules.DEFORMATION_MODE);
}

function updateScreenMode(scene, screenId, modeType) {
    const entry = scene.canvasScreenItemArray[screenId];
    if (!entry)
        return;
    entry.screenModeType = modeType;
    if (modeType === Rules.SIMPLE_MODE)
        DeformerActions.hideDeformer(scene, entry.item);
    else
        DeformerActions.showDeformer(scene, entry.item);
}

// The current item

function updateCurrentItem(scene, type, id, subId) {
    scene.deformationDialog.close();
    scene.rotationDialog.close();
    if (isCurrent(scene, type, id, subId) && scene.canvasCurrentSubItemId === subId)
        return;
    DeformerActions.endGestures(scene);
    if (scene.canvasCurrentItemType !== Rules.NO_ITEM)
        leaveItem(scene);
    scene.canvasCurrentItemType = type;
    scene.canvasCurrentItemId = id;
    scene.canvasCurrentSubItemId = subId;
    if (type !== Rules.NO_ITEM)
        enterItem(scene);
    else
        showNoItem(scene);
    DeformerActions.adjustView(scene);
    scene.rotationDialog.applySelectedView();
}

function leaveItem(scene) {
    WarpToolButtonsActions.releaseLockers(scene);
    const entry = DeformerActions.getCurrentEntry(scene);
    if (!entry)
        return; // removed while it was current
    DeformerActions.unselectBothGrids(scene);
    entry.visible = false;
    DeformerActions.hideGrid(entry.item.deformerGrids[Rules.XY_GRID]);
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
    const entry = DeformerActions.getCurrentEntry(scene);
    if (!entry) {
        console.log("updateCurrentItem: currentItem is null!");
        scene.pointerArea.grid = null;
        scene.currentPointText.clear();
        return;
    }
    entry.visible = true;
    if (DeformerActions.isInSimpleMode(scene, entry)) {
        DeformerActions.hideDeformer(scene, entry.item);
    } else {
        DeformerActions.showDeformer(scene, entry.item);
    }
    scene.pointerArea.grid = entry.item.deformerGrids[DeformerActions.getCurrentGridId(scene)];
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
