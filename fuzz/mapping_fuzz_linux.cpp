// Loads any bytes as the user's file of controller mappings. Loading returns, a press emits at most
// one of the known actions, and a correct file works afterwards.

#include "fuzz/Harness.h"
#include "input/action_mapper.h"

#include <QCoreApplication>
#include <QSettings>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <stdlib.h>

namespace {

constexpr int kButtons = static_cast<int>(GamepadButton::Start) + 1;
constexpr std::string_view kGoodFile = "[ActionMappings]\nVertical Mirror=Start, ~Back\n";
constexpr int kGoodFileInterval = 64; // inputs between two checks of the good file
std::string folder;                   // in shared memory

/// Writes the user's file, with another modification time than before.
void writeFile(std::string_view content) {
    static const std::filesystem::path path = [] {
        const QSettings settings(QSettings::IniFormat, QSettings::UserScope, "Orvex", "Meshpad");
        const std::string name = settings.fileName().toStdString();
        if (!name.starts_with(folder))
            std::abort(); // never touch the real user's file
        std::filesystem::create_directories(std::filesystem::path(name).parent_path());
        return name;
    }();
    static std::filesystem::file_time_type time;
    std::ofstream(path, std::ios::binary) << content;
    std::filesystem::last_write_time(path, time += std::chrono::milliseconds(1));
}

struct Pad {
    Pad() {
        QObject::connect(
            &mapper, &ActionMapper::action, &mapper,
            [this](Action action) {
                if (action < Action::TOGGLE_BLIND || action > Action::TOGGLE_EDIT_UV)
                    std::abort();
                last = action;
                ++actions;
            });
    }
    void press(int button) {
        actions = 0;
        mapper.onButtonPressed(static_cast<GamepadButton>(button));
        if (actions > 1)
            std::abort();
    }
    void releaseAll() {
        for (int button = 0; button < kButtons; ++button)
            mapper.onButtonReleased(static_cast<GamepadButton>(button));
    }

    ActionMapper mapper;
    int actions = 0;
    Action last{};
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    dropMessages();
    static QCoreApplication application(*argc, *argv);
    char name[] = "/dev/shm/meshpad-mapping-XXXXXX";
    if (!mkdtemp(name)) {
        std::fprintf(stderr, "needs a folder in /dev/shm\n");
        std::exit(1);
    }
    folder = name;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, QString::fromLatin1(name));
    std::atexit([] { std::filesystem::remove_all(folder); });
    return 0;
}

/// The first two bytes choose two buttons to press; the rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kChoice = 2;
    if (size < kChoice)
        return 0;
    static Pad pad;
    static int inputs = 0;
    writeFile({reinterpret_cast<const char*>(data) + kChoice, size - kChoice});
    pad.mapper.reloadMappings();
    const int first = data[0] % kButtons;
    const int second = (first + 1 + data[1] % (kButtons - 1)) % kButtons;
    pad.press(first);
    pad.press(second);
    pad.releaseAll();

    if (++inputs % kGoodFileInterval == 0) {
        writeFile(kGoodFile);
        pad.mapper.reloadMappings();
        pad.press(static_cast<int>(GamepadButton::Back));
        if (pad.actions != 0)
            std::abort();
        pad.press(static_cast<int>(GamepadButton::Start));
        if (pad.actions != 1 || pad.last != Action::VERTICAL_MIRROR)
            std::abort();
        pad.releaseAll();
    }
    return 0;
}
