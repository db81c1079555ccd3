// How long an operator waits for the window, and what it takes. Each round starts a process of its
// own, so that loading, static initialisation and the style sheet are in the figure; one kind goes
// on until a large show is on screen. Needs a display and, as discovery looks for Producers, a
// network namespace.

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

void say(const char* word) {
    std::puts(word);
    std::fflush(stdout);
}

/// As if a Producer had sent a show: the items, each with a mesh.
void takeShow(GuiCompanion& window) {
    window.findChild<Content*>()->setPage(Companion::Page::Warp);
    const auto take = [](Event* event) {
        EventDispatcher::getInstance()->onEventData(
            {{static_cast<std::uint32_t>(event->getSize()), event->type()}, event});
    };
    for (unsigned int i = 0; i < kItems; ++i) {
        const QByteArray name = "Media " + QByteArray::number(i);
        take(new AddMediaEvent(MediaType::Video, i, i, i, 1920, 1080, 0, 0, name.constData(),
                               false));
        take(new MediaDeformationModeEvent(LV_NTC_ElementType::Media, LV_NTC_DeformationType::Curve,
                                           i, i, i, name.constData(), 4, 4, false));
    }
    QTimer::singleShot(0, &window, [] { QTimer::singleShot(0, [] { say("show"); }); });
}

/// Says "frame" on standard output when the main window has been painted for the first time, and
/// goes on with the show, if there is to be one.
class FirstFrame final : public QObject {
public:
    FirstFrame(GuiCompanion* window, bool withShow)
        : QObject(window), window_(window), withShow_(withShow) {
        window_->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == window_ && event->type() == QEvent::Paint && !seen_) {
            seen_ = true;
            // Behind the paint that is under way: by then it has reached the window system.
            QTimer::singleShot(0, window_, [this] {
                say("frame");
                if (withShow_)
                    takeShow(*window_);
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

/// Resident memory of a process in MiB, 0 where the system does not tell it this way.
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
