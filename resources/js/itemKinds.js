.pragma library
.import "meshRules.js" as Rules

// The kinds of items: component and properties of an entry, where the scene keeps it, how a point of it is sent.

// `properties` are those of an entry, in the order of the bridge's "added" signal; when the item is added again, only
// `updated` change. `key` and `array` find an entry by the identifiers of its item. `sentIds` and `sentName` are the
// properties that identify it to the Producer.
var KINDS = {};

KINDS[Rules.MEDIA] = {
    name: "media",
    component: "MediaItem",
    properties: ["mediaType", "mediaCueId", "mediaId", "mediaWidth", "mediaHeight", "mediaRotation", "mediaName"],
    updated: ["mediaRotation"],
    id: "mediaCueId",
    array: scene => scene.canvasMediaItemArray,
    key: id => id >>> 0, // cue ids are unsigned
    sentIds: ["mediaCueId", "mediaId"],
    sentName: "mediaName"
};

KINDS[Rules.TEXTURE] = {
    name: "texture",
    component: "TextureItem",
    properties: ["textureCueId", "textureId", "textureWidth", "textureHeight", "textureRotation", "textureName"],
    updated: ["textureRotation"],
    id: "textureCueId",
    array: scene => scene.canvasTextureItemArray,
    key: id => id >>> 0,
    sentIds: ["textureCueId", "textureId"],
    sentName: "textureName"
};

KINDS[Rules.SCREEN] = {
    name: "screen",
    component: "ScreenItem",
    properties: ["screenId", "screenWidth", "screenHeight", "screenRotation", "screenDeformerRotation", "screenName"],
    updated: ["screenWidth", "screenHeight", "screenRotation", "screenDeformerRotation", "screenName"],
    id: "screenId",
    array: scene => scene.canvasScreenItemArray,
    key: id => id,
    sentIds: ["screenId"],
    sentName: "screenName"
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
    sentIds: ["screenId", "screenPartId"] // moves of a screen part carry no name
};

// The function that sends a point of an entry, as the bridge's writePoint() from `pointId` on.
function pointSender(bridge, type, entry) {
    const kind = KINDS[type];
    const write = bridge.writePoint, name = entry[kind.sentName];
    const [id, subId = 0] = kind.sentIds.map(property => entry[property]);
    return (pointId, x, y, isXy, selected, shownX, shownY) =>
        write(type, id, subId, name, pointId, x, y, isXy, selected, shownX, shownY);
}

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
