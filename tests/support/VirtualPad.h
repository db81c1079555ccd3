#pragma once

#include <SDL.h>

#include <utility>

namespace MeshpadTest {

/// A joystick of SDL that needs no hardware. SDL applies changes at its next update. Linux only.
class VirtualPad {
public:
    using Triggers = std::pair<int, int>; ///< the axes of the left and the right trigger

    /// The triggers of a pad with six axes rest at the low end, as real ones do.
    explicit VirtualPad(int axes = 6, int buttons = 11, const char* name = "Virtual Pad",
                        int hats = 1, Triggers triggers = {2, 5}, Uint16 product = 1) {
        SDL_VirtualJoystickDesc description{};
        description.version = SDL_VIRTUAL_JOYSTICK_DESC_VERSION;
        description.naxes = static_cast<Uint16>(axes);
        description.nbuttons = static_cast<Uint16>(buttons);
        description.nhats = static_cast<Uint16>(hats);
        description.vendor_id = 0x1209; // shared by projects without an own vendor id
        description.product_id = product;
        description.name = name;
        joystick_ = SDL_JoystickOpen(SDL_JoystickAttachVirtualEx(&description));
        if (axes == 6) {
            axis(triggers.first, SDL_JOYSTICK_AXIS_MIN);
            axis(triggers.second, SDL_JOYSTICK_AXIS_MIN);
        }
    }
    ~VirtualPad() {
        for (int i = 0; i < SDL_NumJoysticks(); ++i)
            if (SDL_JoystickGetDeviceInstanceID(i) == SDL_JoystickInstanceID(joystick_))
                SDL_JoystickDetachVirtual(i);
        SDL_JoystickClose(joystick_);
    }
    VirtualPad(const VirtualPad&) = delete;
    VirtualPad& operator=(const VirtualPad&) = delete;

    void axis(int index, int value) {
        SDL_JoystickSetVirtualAxis(joystick_, index, static_cast<Sint16>(value));
    }
    void hat(Uint8 value, int index = 0) { SDL_JoystickSetVirtualHat(joystick_, index, value); }
    void button(int index, bool down) {
        SDL_JoystickSetVirtualButton(joystick_, index, down ? SDL_PRESSED : SDL_RELEASED);
    }

private:
    SDL_Joystick* joystick_ = nullptr;
};

} // namespace MeshpadTest
