#include <SDL.h>

#include <chrono>
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <utility>

/// Puts a controller that is not there into Wine. Wine takes its controllers from SDL; preloaded
/// into Wine's processes, this waits in the one that has loaded SDL and moves a virtual joystick by
/// what a test appends to the file MESHPAD_PAD_COMMANDS, one command a line, at most one in 5 ms:
///
///     plug          axis INDEX -32768..32767     button INDEX 0|1
///     unplug        hat BITS                     ("hat" and the numbers as SDL has them)

namespace {

constexpr std::chrono::milliseconds kStep{5};
constexpr int kAxes = 6;
constexpr int kButtons = 11;

/// SDL as Wine has loaded it; linked in, it would be loaded into every process.
class Sdl {
    void* library_ = waitUntilLoaded();

public:
    static void* waitUntilLoaded() {
        void* library = nullptr;
        while (!(library = dlopen("libSDL2-2.0.so.0", RTLD_NOLOAD | RTLD_NOW)))
            std::this_thread::sleep_for(kStep);
        return library;
    }

    template <typename Function>
    Function* find(const char* name) const {
        return reinterpret_cast<Function*>(dlsym(library_, name));
    }

    decltype(SDL_WasInit)* wasInit = find<decltype(SDL_WasInit)>("SDL_WasInit");
    decltype(SDL_JoystickAttachVirtualEx)* attach =
        find<decltype(SDL_JoystickAttachVirtualEx)>("SDL_JoystickAttachVirtualEx");
    decltype(SDL_JoystickDetachVirtual)* detach =
        find<decltype(SDL_JoystickDetachVirtual)>("SDL_JoystickDetachVirtual");
    decltype(SDL_JoystickOpen)* open = find<decltype(SDL_JoystickOpen)>("SDL_JoystickOpen");
    decltype(SDL_JoystickClose)* close = find<decltype(SDL_JoystickClose)>("SDL_JoystickClose");
    decltype(SDL_JoystickSetVirtualAxis)* setAxis =
        find<decltype(SDL_JoystickSetVirtualAxis)>("SDL_JoystickSetVirtualAxis");
    decltype(SDL_JoystickSetVirtualButton)* setButton =
        find<decltype(SDL_JoystickSetVirtualButton)>("SDL_JoystickSetVirtualButton");
    decltype(SDL_JoystickSetVirtualHat)* setHat =
        find<decltype(SDL_JoystickSetVirtualHat)>("SDL_JoystickSetVirtualHat");
};

class Pad {
public:
    void obey(const std::string& line) {
        std::istringstream words(line);
        std::string what;
        int first = 0;
        int second = 0;
        words >> what >> first >> second;
        if (what == "plug")
            plug();
        else if (what == "unplug")
            unplug();
        else if (what == "axis")
            sdl_.setAxis(joystick_, first, static_cast<Sint16>(second));
        else if (what == "button")
            sdl_.setButton(joystick_, first, static_cast<Uint8>(second));
        else if (what == "hat")
            sdl_.setHat(joystick_, 0, static_cast<Uint8>(first));
    }

private:
    void plug() {
        while (!sdl_.wasInit(SDL_INIT_JOYSTICK))
            std::this_thread::sleep_for(kStep);
        SDL_VirtualJoystickDesc description{};
        description.version = SDL_VIRTUAL_JOYSTICK_DESC_VERSION;
        description.type = SDL_JOYSTICK_TYPE_UNKNOWN;
        description.naxes = kAxes;
        description.nbuttons = kButtons;
        description.nhats = 1;
        description.vendor_id = 0x1209; // free for everybody
        description.product_id = 0x0001;
        description.name = "Virtual Pad";
        index_ = sdl_.attach(&description);
        joystick_ = sdl_.open(index_);
        for (const int trigger : {2, 5})
            sdl_.setAxis(joystick_, trigger, SDL_JOYSTICK_AXIS_MIN);
    }

    void unplug() {
        if (!joystick_)
            return;
        sdl_.detach(index_);
        sdl_.close(std::exchange(joystick_, nullptr));
    }

    Sdl sdl_;
    int index_ = -1;
    SDL_Joystick* joystick_ = nullptr;
};

void followCommands(const std::string& path) {
    Pad pad;
    std::streamoff read = 0;
    for (;; std::this_thread::sleep_for(kStep)) {
        std::ifstream commands(path);
        commands.seekg(read);
        std::string line;
        if (!std::getline(commands, line) || commands.eof())
            continue; // nothing new, or a line that is still being written
        read = commands.tellg();
        pad.obey(line);
    }
}

__attribute__((constructor)) void start() {
    if (const char* path = std::getenv("MESHPAD_PAD_COMMANDS"))
        std::thread(followCommands, std::string(path)).detach();
}

} // namespace
