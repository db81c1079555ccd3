// How long an operator waits for the window, and what it takes. Each round starts a process of its
// own, so that loading, static initialisation and the style sheet are in the figure. Needs a
// display.

#include "app/Configuration.h"
#include "app/GuiCompanion.h"
#include "resources/CompanionResources.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>

namespace {

constexpr char kChildFlag[] = "--first-frame";

/// Says "frame" on standard output when the main window has been painted for the first time.
class FirstFrame final : public QObject {
public:
    explicit FirstFrame(QWidget* window) : QObject(window), window_(window) {
        window_->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == window_ && event->type() == QEvent::Paint && !seen_) {
            seen_ = true;
            // Behind the paint that is under way: by then it has reached the window system.
            QTimer::singleShot(0, window_, [] {
                std::puts("frame");
                std::fflush(stdout);
            });
        }
        return false;
    }

private:
    QWidget* window_;
    bool seen_ = false;
};

int runChild(int argc, char** argv) {
    initCompanionResources();
    QApplication application(argc, argv);
    QFile styleSheet(QLatin1StringView(ShellLook::kStyleSheetPath));
    if (styleSheet.open(QIODevice::ReadOnly | QIODevice::Text)) {
        application.setStyleSheet(QString::fromUtf8(styleSheet.readAll()));
    }
    GuiCompanion window(nullptr);
    new FirstFrame(&window);
    window.show();
    return QApplication::exec();
}

/// Resident memory of a process in MiB, 0 where the system does not tell it this way.
double residentMiB(qint64 processId) {
    QFile status(QStringLiteral("/proc/%1/status").arg(processId));
    if (!status.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QByteArray text = status.readAll();
    const qsizetype at = text.indexOf("VmRSS:");
    return at < 0 ? 0 : text.mid(at + 6).simplified().split(' ').first().toDouble() / 1024.0;
}

void startToFirstFrame(benchmark::State& state) {
    double memory = 0;
    for (auto _ : state) {
        QProcess child;
        QElapsedTimer timer;
        timer.start();
        child.start(QCoreApplication::applicationFilePath(), {QLatin1StringView(kChildFlag)});
        QByteArray output;
        while (!output.contains("frame") && child.waitForReadyRead(30'000)) {
            output += child.readAllStandardOutput();
        }
        state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) * 1e-9);
        if (!output.contains("frame")) {
            state.SkipWithError("no frame");
        }
        memory = residentMiB(child.processId());
        child.kill();
        child.waitForFinished();
    }
    state.counters["resident_MiB"] = memory;
}
BENCHMARK(startToFirstFrame)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && std::strcmp(argv[1], kChildFlag) == 0) {
        return runChild(argc, argv);
    }
    benchmark::Initialize(&argc, argv);
    QCoreApplication application(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
