// Times of the mesh editor with the largest mesh of its dialog: two grids of 46 x 46 points of a
// media, beside the list, connected over a real socket. Needs a display and, because it connects, a
// network namespace:
//   scripts/in-namespace --display -- scene_bench

#include "app/shell/Configuration.h"
#include "app/shell/EventDispatcher.h"
#include "bench/Peer.h"
#include "mesh/MeshGridItem.h"
#include "network/LVNtc.h"
#include "network/events/AddMediaEvent.h"
#include "network/events/ItemDataEvent.h"
#include "resources/CompanionResources.h"
#include "warp/Canvas.h"
#include "warp/WarpPage.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QQmlContext>
#include <QQmlExpression>
#include <QQuickItem>
#include <QQuickWidget>
#include <QQuickWindow>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <chrono>
#include <memory>

using namespace NetworkCompanion;

namespace {

constexpr int kSide = 46;
constexpr int kPoints = kSide * kSide;
constexpr unsigned int kCue = 11;
constexpr int kMoveFrameSize = 4 + 9 + 298;
constexpr QSize kMediaSize(1920, 1080);

/// The warp page with one media in it.
class Editor {
public:
    static Editor& instance() {
        static auto* editor = new Editor; // never deleted, like the dispatcher
        return *editor;
    }

    QVariant evaluate(const QString& expression) const {
        return QQmlExpression(qmlContext(view->rootObject()), view->rootObject(), expression)
            .evaluate();
    }
    MeshGridItem* grid() const {
        return evaluate("getCurrentItem().deformerGrids[0]").value<MeshGridItem*>();
    }
    void waitFor(qint64 bytes) const {
        while (peer.received < bytes)
            QCoreApplication::processEvents();
    }
    void drain() const {
        qint64 before = -1;
        while (before != peer.received) {
            before = peer.received;
            for (QElapsedTimer quiet = started(); quiet.elapsed() < 150;)
                QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
    }
    void key(int key, Qt::KeyboardModifiers modifiers, const QString& text = {}) const {
        QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
        QCoreApplication::sendEvent(view, &press);
    }
    void releaseKey(int key, Qt::KeyboardModifiers modifiers) const {
        QKeyEvent release(QEvent::KeyRelease, key, modifiers);
        QCoreApplication::sendEvent(view, &release);
    }
    void mouse(QEvent::Type type, QPointF at) const {
        QMouseEvent event(type, at, view->mapToGlobal(at),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(view, &event);
    }
    static QElapsedTimer started() {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }

    Peer& peer = *new Peer;
    Configuration configuration = makeConfiguration();
    WarpPage* page = nullptr;
    Canvas* canvas = nullptr;
    QQuickWidget* view = nullptr;

private:
    Editor() {
        EventDispatcher::getInstance()->client().connectToServer("127.0.0.1", peer.port());
        page = new WarpPage(configuration, nullptr);
        canvas = page->findChild<Canvas*>();
        view = page->findChild<QQuickWidget*>();
        page->resize(1280, 610);
        page->show();
        page->activateWindow();
        while (!page->isActiveWindow())
            QCoreApplication::processEvents();
        send(AddMediaEvent(MediaType::Image, kCue, 1, 77, kMediaSize.width(), kMediaSize.height(),
                           0, 0, "Media", false));
        while (evaluate("canvasMediaItemArray[11] ? 1 : 0").toInt() == 0)
            QCoreApplication::processEvents();
        page->onAction(Action::SELECT_NEXT_SCREEN);
        view->setFocus();
        drain();
        if (!view->rootObject()->hasActiveFocus())
            qFatal("The editor has no keyboard focus");
    }

    void send(const Event& event) const { peer.send(framed(event)); }

public:
    static QByteArray framed(const Event& event) {
        const LV_NTC_Header header{static_cast<std::uint32_t>(event.getSize()), event.type()};
        return LVNtc::serializeWithLength(header, event);
    }
};

QByteArray itemData() {
    ItemDataEvent event(77);
    constexpr unsigned int kNoItem = 0xFFFFFFFFU;
    event.setDeformationModeEvent(
        DeformationModeEvent(LV_NTC_DeformationType::None, kNoItem, 0, "", 2, 2, false));
    event.setScreenPartDeformationModeEvent(ScreenPartDeformationModeEvent(
        LV_NTC_DeformationType::Keystone, kNoItem, kNoItem, 0, "", 2, 2, false));
    event.setMediaDeformationModeEvent(
        MediaDeformationModeEvent(LV_NTC_ElementType::Media, LV_NTC_DeformationType::Bezier, kCue,
                                  1, 77, "Media", kSide, kSide, false));
    for (unsigned int point = 0; point < kPoints; ++point) {
        const double column = point % kSide;
        const double row = point / kSide;
        event.addMediaMovePointEvent(
            MediaMovePointEvent(kCue, 1, 77, "Media", point, column / (kSide - 1) * 1920 - 960,
                                row / (kSide - 1) * 1080 - 540, 0, true, false));
        event.addMediaMovePointEvent(MediaMovePointEvent(
            kCue, 1, 77, "Media", point, column / (kSide - 1), row / (kSide - 1), 0, false, false));
    }
    return Editor::framed(event);
}

void loadMesh(const Editor& editor, int side = kSide) {
    if (side != kSide) {
        editor.canvas->onMediaDeformationMode(LV_NTC_ElementType::Media,
                                              LV_NTC_DeformationType::Curve, kCue, 1, "", side,
                                              side, false);
        editor.drain();
        return;
    }
    static const QByteArray bytes = itemData();
    editor.peer.send(bytes);
    while (editor.grid()->pointCount() != kPoints)
        QCoreApplication::processEvents();
    editor.evaluate("getCurrentItem().itemDeformer.adjustView()");
    editor.drain();
}

void itemDataToScreen(benchmark::State& state) {
    Editor& editor = Editor::instance();
    const QByteArray bytes = itemData();
    for (auto _ : state) {
        editor.canvas->onMediaDeformationMode(
            LV_NTC_ElementType::Media, LV_NTC_DeformationType::None, kCue, 1, "", 2, 2, false);
        editor.peer.send(bytes.chopped(1));
        editor.drain();
        bool drawn = false;
        const auto connection =
            QObject::connect(editor.view->quickWindow(), &QQuickWindow::afterRendering, editor.view,
                             [&] { drawn = drawn || editor.grid()->pointCount() == kPoints; });
        QElapsedTimer timer = Editor::started();
        editor.peer.send(bytes.last(1));
        while (!drawn)
            QCoreApplication::processEvents();
        QCoreApplication::processEvents(); // paints the window
        state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) * 1e-9);
        QObject::disconnect(connection);
    }
}

void rebuildBothGrids(benchmark::State& state) {
    Editor& editor = Editor::instance();
    const auto type = static_cast<LV_NTC_DeformationType>(state.range(0));
    for (auto _ : state) {
        editor.canvas->onMediaDeformationMode(LV_NTC_ElementType::Media, type, kCue, 1, "", kSide,
                                              kSide, false);
        for (const char* grid : {"[0]", "[1]"}) { // reading builds the mesh
            editor.evaluate(QLatin1String("getCurrentItem().deformerGrids") + QLatin1String(grid) +
                            QLatin1String(".pointsArray.length"));
        }
    }
}

void dragAllPoints(benchmark::State& state) {
    Editor& editor = Editor::instance();
    loadMesh(editor);
    editor.key(Qt::Key_A, Qt::ControlModifier);
    editor.drain();
    QPointF at = editor.grid()->mapToScene(QPointF(960, 540));
    editor.mouse(QEvent::MouseButtonPress, at);
    double step = 1;
    for (auto _ : state) {
        at += QPointF(step, step);
        step = -step;
        editor.mouse(QEvent::MouseMove, at);
    }
    editor.mouse(QEvent::MouseButtonRelease, at);
    editor.drain();
}

/// Sees whether a widget was painted into its window after the scene was rendered.
class PaintWatch final : public QObject {
public:
    PaintWatch(QWidget* widget, const bool& isReady) : isReady_(isReady) {
        widget->installEventFilter(this);
    }
    bool isSeen() const { return isSeen_; }

private:
    bool eventFilter(QObject*, QEvent* event) override {
        isSeen_ = isSeen_ || (isReady_ && event->type() == QEvent::Paint);
        return false;
    }

    const bool& isReady_;
    bool isSeen_ = false;
};

void frameOfADrag(benchmark::State& state) {
    Editor& editor = Editor::instance();
    loadMesh(editor, static_cast<int>(state.range(0)));
    editor.key(Qt::Key_A, Qt::ControlModifier);
    editor.drain();
    QPointF at = editor.grid()->mapToScene(
        QPointF(editor.grid()->point(0)->x(), editor.grid()->point(0)->y()));
    editor.mouse(QEvent::MouseButtonPress, at);
    double step = 1;
    bool isRendered = false;
    const auto connection =
        QObject::connect(editor.view->quickWindow(), &QQuickWindow::afterRendering, editor.view,
                         [&] { isRendered = true; });
    for (auto _ : state) {
        at += QPointF(step, step);
        step = -step;
        editor.mouse(QEvent::MouseMove, at);
        isRendered = false;
        PaintWatch paint(editor.view, isRendered);
        // The time from rendering to the painted window, without waiting for the next frame.
        qint64 time = 0;
        while (!isRendered || !paint.isSeen()) {
            QElapsedTimer timer = Editor::started();
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents();
            time += isRendered ? timer.nsecsElapsed() : 0;
        }
        state.SetIterationTime(static_cast<double>(time) * 1e-9);
    }
    QObject::disconnect(connection);
    editor.mouse(QEvent::MouseButtonRelease, at);
    editor.drain();
}

void arrowKey(benchmark::State& state) {
    Editor& editor = Editor::instance();
    loadMesh(editor);
    editor.key(Qt::Key_Escape, Qt::NoModifier);
    editor.key(Qt::Key_Right, Qt::AltModifier);
    editor.drain();
    int key = Qt::Key_Right;
    for (auto _ : state) {
        editor.drain(); // the frame of the last key does not count
        const qint64 before = editor.peer.received;
        QElapsedTimer timer = Editor::started();
        editor.key(key, Qt::NoModifier);
        const qint64 called = timer.nsecsElapsed();
        while (editor.peer.received < before + kMoveFrameSize)
            QCoreApplication::processEvents();
        state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) * 1e-9);
        state.counters["call_ms"] = static_cast<double>(called) * 1e-6;
        editor.releaseKey(key, Qt::NoModifier);
        key = key == Qt::Key_Right ? Qt::Key_Left : Qt::Key_Right;
    }
}

void selectAll(benchmark::State& state) {
    Editor& editor = Editor::instance();
    loadMesh(editor);
    for (auto _ : state) {
        editor.key(Qt::Key_Escape, Qt::NoModifier);
        editor.drain();
        const qint64 before = editor.peer.received;
        QElapsedTimer timer = Editor::started();
        editor.key(Qt::Key_A, Qt::ControlModifier);
        const qint64 called = timer.nsecsElapsed();
        editor.waitFor(before + (kPoints + 1) * kMoveFrameSize);
        state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) * 1e-9);
        state.counters["call_ms"] = static_cast<double>(called) * 1e-6;
    }
}

void addMediaItems(benchmark::State& state) {
    Editor& editor = Editor::instance();
    const auto count = static_cast<unsigned int>(state.range(0));
    for (auto _ : state) {
        QElapsedTimer timer = Editor::started();
        for (unsigned int cue = 100; cue < 100 + count; ++cue)
            editor.canvas->onMediaItemAdded(1, cue, 1, 1920, 1080, 0, "Media");
        state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) * 1e-9);
        for (unsigned int cue = 100; cue < 100 + count; ++cue)
            editor.canvas->onRemoveMediaItem(cue);
        for (QElapsedTimer wait = Editor::started(); wait.elapsed() < 1200;)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
}

/// Processor time of one idle second, and wake-ups: a connected mesh must run no timer.
void idle(benchmark::State& state) {
    Editor& editor = Editor::instance();
    loadMesh(editor);
    const auto usage = [] {
        rusage now{};
        getrusage(RUSAGE_SELF, &now);
        return now;
    };
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    constexpr int kSeconds = 10;
    for (auto _ : state) {
        const rusage before = usage();
        QEventLoop loop;
        QTimer::singleShot(std::chrono::seconds(kSeconds), &loop, &QEventLoop::quit);
        loop.exec();
        const rusage after = usage();
        state.SetIterationTime((seconds(after.ru_utime) - seconds(before.ru_utime) +
                                seconds(after.ru_stime) - seconds(before.ru_stime)) /
                               kSeconds);
        state.counters["wakeups_per_s"] =
            static_cast<double>(after.ru_nvcsw - before.ru_nvcsw) / kSeconds;
    }
}

BENCHMARK(itemDataToScreen)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseManualTime()
    ->Iterations(8);
BENCHMARK(rebuildBothGrids)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->Arg(static_cast<int>(LV_NTC_DeformationType::Bezier))
    ->Arg(static_cast<int>(LV_NTC_DeformationType::Curve))
    ->Iterations(15);
BENCHMARK(dragAllPoints)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->Iterations(200);
BENCHMARK(frameOfADrag)
    ->Arg(2)
    ->Arg(16)
    ->Arg(kSide)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseManualTime()
    ->Iterations(100);
BENCHMARK(addMediaItems)
    ->Arg(1000)
    ->Arg(2000)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(3);
BENCHMARK(arrowKey)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseManualTime()
    ->Iterations(60);
BENCHMARK(selectAll)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseManualTime()
    ->Iterations(10);

BENCHMARK(idle)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    initCompanionResources();
    QApplication application(argc, argv);
    application.setStartDragDistance(0);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::_Exit(0); // the page is never deleted
}
