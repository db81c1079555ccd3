#pragma once

#include "input/controller_device.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// Where the inputs of the standard joystick state lie on a device that numbers its buttons, axes
/// and hats in its own order.
class ControllerLayout {
public:
    enum class InputKind : std::size_t { Button, Axis, Hat };

    /// A part of an input of the device: a button, one direction of a hat, or the way of an axis
    /// from `rest` to `full`. Several parts may lead to one input of the state.
    struct Binding {
        InputKind kind = InputKind::Button;
        int index = 0;
        int rest = 0; ///< position of an axis, kLow to kHigh
        int full = 1; ///< position of an axis, or the bit of a hat's direction

        std::uint32_t offset = 0; ///< one of ControllerOffset, or a further input of the device
        int offsetRest = 0;       ///< position of an axis of the state
        int offsetFull = 1;       ///< position of an axis of the state, or the bit of a hat
    };

    /// The positions of a device's inputs by InputKind and index: kLow to kHigh for an axis, bits
    /// for a hat, 0 or 1 for a button. Missing ones count as released.
    using Inputs = std::array<std::vector<int>, 3>;

    static constexpr int kLow = -32768;
    static constexpr int kHigh = 32767;
    static constexpr int kUp = 1, kRight = 2, kDown = 4, kLeft = 8; ///< bits of a hat

    /// Reads a line of SDL's table of game controllers: identifier, name, then elements such as
    /// "a:b0", "dpup:h0.1", "lefttrigger:+a2" or "lefty:a1~". The names are those of positions, so
    /// that "a" is the bottom button of the right cross on every pad. A pad with one trigger gets
    /// a second one that is always released, because both together give the zoom. Elements that
    /// the state has no input for are ignored; nullopt if none is left.
    static std::optional<ControllerLayout> ofMapping(std::string_view line);

    /// A device that SDL's table does not contain: buttons and hats keep their numbers, axes their
    /// order. `released` has all inputs of the device, while nothing is touched.
    static ControllerLayout ofUnknown(const Inputs& released);

    const std::vector<Binding>& bindings() const { return bindings_; }

    /// The inputs of the state that the device has, each once.
    std::vector<std::uint32_t> offsets() const;

    /// The position of an input of the state: kLow to kHigh for an axis, bits for a hat, 0 or 1 for
    /// a button.
    int position(std::uint32_t offset, const Inputs& inputs) const;

private:
    void bind(std::string_view target, std::string_view source);

    std::vector<Binding> bindings_;
};
