// Time and memory from the start of a process to the window's first frame, and to a show of 1,000
// items. Each iteration starts a new process, so that loading and static initialisation count.
// Needs a display and a network namespace, because discovery broadcasts.

#include "app/Content.h"
#include "app/GuiCompanion.h"
#include "app/shell/EventDispatcher.h"
#include "app/shell/ShellLook.h"
#include "network/events/AddMediaEvent.h"
#include "network/events/MediaDeformationModeEvent.h"
#include "resources/CompanionResources.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>

using namespace NetworkCompanion;

namespace {

constexpr char kChildFlag[] = "--first-frame";
constexpr char kShowFlag[] = "--show";
constexpr unsigned int kItems = 1000;

void printLine(const char* word) {
    std::puts(word);
    std::fflush(stdout);
}

/// Dispatches the events of a show: items with a mesh each.
void dispatchShow(GuiCompanion& window) {
    window.findChild<Content*>()->setPage(Companion::Page::Warp);
    const auto dispatch = [](Event* event) {
        EventDispatcher::getInstance()->onEventData(
            {{static_cast<std::uint32_t>(event->getSize()), event->type()}, event});
    };
    for (unsigned int i = 0; i < kItems; ++i) {
        const QByteArray name = "Media " + QByteArray::number(i);
        dispatch(new AddMediaEvent(MediaType::Video, i, i, i, 1920, 1080, 0, 0, name.constData(),
                                   false));
        dispatch(new MediaDeformationModeEvent(LV_NTC_ElementType::Media,
                                               LV_NTC_DeformationType::Curve, i, i, i,
                                               name.constData(), 4, 4, false));
    }
    QTimer::singleShot(0, &window, [] { QTimer::singleShot(0, [] { printLine("show"); }); });
}

/// Prints "frame" after the main window's first paint, then dispatches the show if `withShow`.
class FirstFrame final : public QObject {
public:
    FirstFrame(GuiCompanion* window, bool withShow)
        : QObject(window), window_(window), withShow_(withShow) {
        window_->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == window_ && event->type() == QEvent::Paint && !seen_) {
            seen_ = true;
            // In the next event-loop iteration, when the paint has reached the window system.
            QTimer::singleShot(0, window_, [this] {
                printLine("frame");
                if (withShow_)
                    dispatchShow(*window_);
            });
        }
        return false;
    }

private:
    GuiCompanion* window_;
    bool withShow_;
    bool seen_ = false;
};

int runChild(int argc, char** argv, bool withShow) {
    initCompanionResources();
    QApplication application(argc, argv);
    QFile styleSheet(QLatin1StringView(ShellLook::kStyleSheetPath));
    if (styleSheet.open(QIODevice::ReadOnly | QIODevice::Text))
        application.setStyleSheet(QString::fromUtf8(styleSheet.readAll()));
    GuiCompanion window(nullptr);
    new FirstFrame(&window, withShow);
    window.show();
    return QApplication::exec();
}

/// Resident memory of a process in MiB; 0 where /proc does not report it.
double residentMiB(qint64 processId) {
    QFile status(QStringLiteral("/proc/%1/status").arg(processId));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    const qsizetype at = text.indexOf("VmRSS:");
    return at < 0 ? 0 : text.mid(at + 6).simplified().split(' ').first().toDouble() / 1024.0;
}

void startUntil(benchmark::State& state, const char* flag, const char* word) {
    double memory = 0;
    for (auto _ : state) {
        QProcess child;
        QElapsedTimer timer;
        timer.start();
        child.start(QCoreApplication::applicationFilePath(), {QLatin1StringView(flag)});
        QByteArray output;
        while (!output.contains(word) && child.waitForReadyRead(30'000))
            output += child.readAllStandardOutput();
        state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) * 1e-9);
        if (!output.contains(word))
            state.SkipWithError("no answer");
        memory = residentMiB(child.processId());
        child.kill();
        child.waitForFinished();
    }
    state.counters["resident_MiB"] = memory;
}

void startToFirstFrame(benchmark::State& state) {
    startUntil(state, kChildFlag, "frame");
}
BENCHMARK(startToFirstFrame)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

void startToShowOfThousandItems(benchmark::State& state) {
    startUntil(state, kShowFlag, "show");
}
BENCHMARK(startToShowOfThousandItems)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

} // namespace

int main(int argc, char** argv) {
    for (const char* flag : {kChildFlag, kShowFlag})
        if (argc > 1 && std::strcmp(argv[1], flag) == 0)
            return runChild(argc, argv, flag == kShowFlag);
    benchmark::Initialize(&argc, argv);
    QCoreApplication application(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
