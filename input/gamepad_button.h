#pragma once

/// The controller inputs that mappings can use, named by their positions: the pad on the left, the
/// four buttons on the right, the two shoulder buttons and the two buttons in the middle.
enum class GamepadButton : int {
    RightCross_Bottom = 0,
    RightCross_Right,
    RightCross_Left,
    RightCross_Top,
    LeftDPad_Top,
    LeftDPad_Right,
    LeftDPad_Bottom,
    LeftDPad_Left,
    Trigger_Left,
    Trigger_Right,
    Back,
    Start = 11
};
