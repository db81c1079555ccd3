// Loads any bytes as the user's file of controller mappings. Loading returns, a press emits at most
// one of the known actions, and a correct file works afterwards.

#include "fuzz/Harness.h"
#include "input/action_mapper.h"

#include <QCoreApplication>
#include <QSettings>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int kButtons = static_cast<int>(GamepadButton::Start) + 1;
constexpr std::string_view kGoodFile = "[ActionMappings]\nVertical Mirror=Start, ~Back\n";
constexpr int kGoodFileInterval = 64; // inputs between two checks of the good file
std::string folder;                   // in shared memory

/// The user's file. Each write advances its modification time.
class MappingFile {
public:
    MappingFile()
        : file_(open(path().c_str(), O_RDWR | O_TRUNC | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR)) {}
    ~MappingFile() { close(file_); }
    MappingFile(const MappingFile&) = delete;
    MappingFile& operator=(const MappingFile&) = delete;

    void write(std::string_view content) {
        constexpr long kNanosecondsPerMillisecond = 1'000'000;
        ++milliseconds_;
        const timespec time{milliseconds_ / 1000,
                            milliseconds_ % 1000 * kNanosecondsPerMillisecond};
        const timespec times[] = {time, time};
        if (pwrite(file_, content.data(), content.size(), 0) != ssize_t(content.size()) ||
            ftruncate(file_, off_t(content.size())) != 0 || futimens(file_, times) != 0)
            std::abort();
    }

private:
    static std::string path() {
        const QSettings settings(QSettings::IniFormat, QSettings::UserScope, "Orvex", "Meshpad");
        const std::string name = settings.fileName().toStdString();
        if (name.compare(0, folder.size(), folder) != 0)
            std::abort(); // never touch the real user's file
        std::filesystem::create_directories(std::filesystem::path(name).parent_path());
        return name;
    }

    int file_;
    long milliseconds_ = 0;
};

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

    MappingFile file;
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
    pad.file.write({reinterpret_cast<const char*>(data) + kChoice, size - kChoice});
    pad.mapper.reloadMappings();
    const int first = data[0] % kButtons;
    const int second = (first + 1 + data[1] % (kButtons - 1)) % kButtons;
    pad.press(first);
    pad.press(second);
    pad.releaseAll();

    if (++inputs % kGoodFileInterval == 0) {
        pad.file.write(kGoodFile);
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
