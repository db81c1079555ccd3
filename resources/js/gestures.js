.pragma library

// The gestures that move points. While one is active, reports of selected points wait, and the bridge collects moves and
// sends them with its tick.

// Bits of scene.activeGestures.
var POINTER = 1;
var KEY = 2;
var STICK = 4;

function setActive(scene, gesture, active) {
    const before = scene.activeGestures;
    const after = active ? before | gesture : before & ~gesture;
    if (after === before)
        return;
    scene.activeGestures = after;
    scene.isMovingPoint = after !== 0;
    if (before === 0)
        scene.bridge.startMovePointTimer();
    else if (after === 0)
        scene.bridge.stopMovePointTimer();
}

// Ends all gestures, because the item or its mesh is about to change.
function endAll(scene) {
    scene.pointerArea.endGesture();
    setActive(scene, POINTER | KEY | STICK, false);
}
