.pragma library
.import "meshRules.js" as Rules

// The kinds of items: component and properties of an entry, where the scene keeps it, how a point of it is sent.

// `properties` are those of an entry, in the order of the bridge's "added" signal; when the item is added again, only
// `updated` change. `key` and `array` find an entry by the identifiers of its item.
var KINDS = {};

KINDS[Rules.MEDIA] = {
    name: "media",
    component: "MediaItem",
    properties: ["mediaType", "mediaCueId", "mediaId", "mediaWidth", "mediaHeight", "mediaRotation", "mediaName"],
    updated: ["mediaRotation"],
    id: "mediaCueId",
    array: scene => scene.canvasMediaItemArray,
    key: id => id >>> 0, // cue ids are unsigned
    moveSender: (bridge, entry) => {
        const move = bridge.moveMediaPoint, cueId = entry.mediaCueId, id = entry.mediaId, name = entry.mediaName;
        return (pointId, x, y, isXy, selected) => move(cueId, id, name, pointId, x, y, 0, isXy, selected);
    }
};

KINDS[Rules.TEXTURE] = {
    name: "texture",
    component: "TextureItem",
    properties: ["textureCueId", "textureId", "textureWidth", "textureHeight", "textureRotation", "textureName"],
    updated: ["textureRotation"],
    id: "textureCueId",
    array: scene => scene.canvasTextureItemArray,
    key: id => id >>> 0,
    moveSender: (bridge, entry) => {
        const move = bridge.moveTexturePoint, cueId = entry.textureCueId, id = entry.textureId, name = entry.textureName;
        return (pointId, x, y, isXy, selected) => move(cueId, id, name, pointId, x, y, 0, isXy, selected);
    }
};

KINDS[Rules.SCREEN] = {
    name: "screen",
    component: "ScreenItem",
    properties: ["screenId", "screenWidth", "screenHeight", "screenRotation", "screenDeformerRotation", "screenName"],
    updated: ["screenWidth", "screenHeight", "screenRotation", "screenDeformerRotation", "screenName"],
    id: "screenId",
    array: scene => scene.canvasScreenItemArray,
    key: id => id,
    moveSender: (bridge, entry) => {
        const move = bridge.moveScreenPoint, id = entry.screenId, name = entry.screenName;
        return (pointId, x, y, isXy, selected) => move(id, name, pointId, x, y, 0, isXy, selected);
    }
};

KINDS[Rules.SCREEN_PART] = {
    name: "screen part",
    component: "ScreenPartItem",
    properties: ["screenId", "screenPartId", "screenPartWidth", "screenPartHeight", "screenPartDeformerRotation",
                 "screenPartName"],
    updated: ["screenPartWidth", "screenPartHeight", "screenPartDeformerRotation", "screenPartName"],
    id: "screenId",
    subId: "screenPartId",
    array: (scene, id) => scene.canvasScreenPartItemArray[id], // undefined before the screen's first part
    key: (id, subId) => subId,
    moveSender: (bridge, entry) => {
        const move = bridge.moveScreenPartPoint, screenId = entry.screenId, id = entry.screenPartId;
        let screenName; // never set: moves of a screen part carry no name
        return (pointId, x, y, isXy, selected) => move(screenId, id, screenName, pointId, x, y, 0, isXy, selected);
    }
};

// The entry of an item, null for an unknown one. Only screen parts have a sub id.
function entryAt(scene, type, id, subId) {
    const kind = KINDS[type];
    const array = kind.array(scene, id);
    return array && array[kind.key(id, subId)] || null;
}

function itemAt(scene, type, id, subId) {
    const entry = entryAt(scene, type, id, subId);
    return entry ? entry.item : null;
}

// A component of the scene, null when it does not load.
function componentOf(scene, name) {
    let component = scene.components[name];
    if (!component) {
        component = Qt.createComponent("qrc:///qml/" + name + ".qml");
        if (component.status !== 1) { // Component.Ready
            console.log("Error loading " + name + " component: " + component.errorString());
            return null;
        }
        scene.components[name] = component;
    }
    return component;
}
