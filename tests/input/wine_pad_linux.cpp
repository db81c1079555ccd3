#include "tests/support/VirtualPad.h"

#include <chrono>
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>

/// Adds a virtual controller to Wine, which takes its controllers from SDL. This library is
/// preloaded into Wine's processes. In the process that loads SDL, it executes the commands that a
/// test appends to the file MESHPAD_PAD_COMMANDS, one command per line, at most one in 5 ms:
///
///     plug          axis INDEX -32768..32767     button INDEX 0|1
///     unplug        hat BITS                     ("hat" and the numbers as in SDL)

namespace {

constexpr std::chrono::milliseconds kStep{5};

/// Waits until Wine has loaded and initialised SDL, then makes SDL's functions visible to this
/// library, which is not linked to SDL because it would load SDL into every process.
void waitForSdl() {
    while (!dlopen("libSDL2-2.0.so.0", RTLD_NOLOAD | RTLD_NOW | RTLD_GLOBAL))
        std::this_thread::sleep_for(kStep);
    while (!SDL_WasInit(SDL_INIT_JOYSTICK))
        std::this_thread::sleep_for(kStep);
}

void execute(const std::string& line, std::unique_ptr<MeshpadTest::VirtualPad>& pad) {
    std::istringstream words(line);
    std::string command;
    int first = 0, second = 0;
    words >> command >> first >> second;
    if (command == "plug")
        pad = std::make_unique<MeshpadTest::VirtualPad>();
    else if (command == "unplug")
        pad.reset();
    else if (command == "axis")
        pad->axis(first, second);
    else if (command == "button")
        pad->button(first, second != 0);
    else if (command == "hat")
        pad->hat(static_cast<Uint8>(first));
}

void followCommands(const std::string& path) {
    waitForSdl();
    std::unique_ptr<MeshpadTest::VirtualPad> pad;
    std::streamoff read = 0;
    for (;; std::this_thread::sleep_for(kStep)) {
        std::ifstream commands(path);
        commands.seekg(read);
        std::string line;
        if (!std::getline(commands, line) || commands.eof())
            continue; // no complete line yet
        read = commands.tellg();
        execute(line, pad);
    }
}

__attribute__((constructor)) void start() {
    if (const char* path = std::getenv("MESHPAD_PAD_COMMANDS"))
        std::thread(followCommands, std::string(path)).detach();
}

} // namespace
