#pragma once

#include "input/action.h"
#include "input/gamepad_button.h"

#include <utility>
#include <vector>

/// One combination of inputs and the action that it triggers.
struct Mapping {
    Mapping(std::vector<GamepadButton> ordered, std::vector<GamepadButton> anyPosition,
            Action mappedAction)
        : orderedInputs(std::move(ordered)), anyPositionInputs(std::move(anyPosition)),
          action(mappedAction) {}

    std::vector<GamepadButton> orderedInputs;     ///< must be pressed in this order
    std::vector<GamepadButton> anyPositionInputs; ///< may be pressed at any point of the sequence
    Action action;
};
