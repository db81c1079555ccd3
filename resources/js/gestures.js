.pragma library

// The gestures that move points. While one is active, echoes of selected points are ignored; while a pointer or a
// repeated key is, the bridge collects moves and sends them with its tick.

// Bits of scene.activeGestures.
var POINTER = 1;
var KEY = 2;
var STICK = 4;

function setActive(scene, gesture, active) {
    const before = scene.activeGestures;
    const after = active ? before | gesture : before & ~gesture;
    if (after === before)
        return;
    const ticking = POINTER | KEY;
    scene.activeGestures = after;
    scene.isMovingPoint = after !== 0;
    if ((after & ticking) !== 0 && (before & ticking) === 0)
        scene.bridge.startMovePointTimer();
    else if ((after & ticking) === 0 && (before & ticking) !== 0)
        scene.bridge.stopMovePointTimer();
}

// Ends all gestures, because the item or its mesh is about to change.
function endAll(scene) {
    scene.pointerArea.endGesture();
    setActive(scene, POINTER | KEY | STICK, false);
}
