#include "input/gamepad_input_manager.h"

#include <QCoreApplication>
#include <QTimer>

#include <SDL.h>
#include <cstdio>
#include <ctime>

/// Prints the processor time that reading a controller takes per second, for each case.

namespace {

constexpr int kSeconds = 5;

void measure(const char* what, int& signalCount) {
    signalCount = 0;
    const std::clock_t before = std::clock();
    QTimer::singleShot(kSeconds * 1000, [] { QCoreApplication::exit(); });
    QCoreApplication::exec();
    const double milliseconds =
        1000.0 * static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC / kSeconds;
    std::printf("%-28s %6.2f ms of processor time a second, %3d signals a second\n", what,
                milliseconds, signalCount / kSeconds);
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    GamepadInputManager manager;
    int count = 0;
    QObject::connect(&manager, &GamepadInputManager::leftAxisMoved, [&](float, float) { ++count; });

    measure("no controller", count);
    const int index = SDL_JoystickAttachVirtual(SDL_JOYSTICK_TYPE_UNKNOWN, 6, 11, 1);
    SDL_Joystick* pad = SDL_JoystickOpen(index);
    measure("one is plugged in", count);
    if (!manager.isGamepadConnected()) {
        std::fprintf(stderr, "The virtual controller was not found\n");
        return 1;
    }
    measure("controller at rest", count);
    SDL_JoystickSetVirtualAxis(pad, 0, SDL_JOYSTICK_AXIS_MAX);
    measure("stick held", count);
    manager.onFocusLost();
    measure("without focus", count);
    SDL_JoystickClose(pad);
    return 0;
}
