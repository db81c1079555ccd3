// The mesh editor as one would write it first, to compare the real one's figures with: an item with
// a rounded rectangle, a text and a mouse area for each point, a rotated rectangle bound to its two
// points for each line, and one message to the Producer for each point written. Needs a display
// and, as it connects, a network namespace:
//   scripts/in-namespace --display -- naive_scene_bench

#include "bench/Peer.h"
#include "network/CompanionClient.h"
#include "network/events/MediaMovePointEvent.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWidget>
#include <QQuickWindow>

#include <benchmark/benchmark.h>

using namespace NetworkCompanion;

namespace {

constexpr int kSide = 46;
constexpr int kPoints = kSide * kSide;
constexpr int kMoveFrameSize = 4 + 9 + 298;

constexpr char kScene[] = R"qml(
import QtQuick

Rectangle {
    id: scene

    property real zoom: 0.25
    property var grids: [[], []]
    property var lines: [[], []]

    component Point: Rectangle {
        property int pointNum
        property real px
        property real py
        x: px - width / 2
        y: py - height / 2
        z: 1
        width: 20
        height: 20
        radius: 10
        scale: 1 / scene.zoom
        state: "UNSELECTED"
        border.width: 2
        states: [
            State {
                name: "UNSELECTED"
                PropertyChanges { target: circle; color: "#323232"; border.color: "#0096ff" }
                PropertyChanges { target: number; color: "#ffffff" }
            },
            State {
                name: "SELECTED"
                PropertyChanges { target: circle; color: "#b3dffe"; border.color: "#004c99" }
                PropertyChanges { target: number; color: "#004c99" }
            },
            State {
                name: "CURRENT"
                PropertyChanges { target: circle; color: "#b3dffe"; border.color: "#0096ff" }
                PropertyChanges { target: number; color: "#000000" }
            }
        ]
        id: circle
        Text { id: number; anchors.centerIn: parent; text: circle.pointNum; font.pixelSize: 8 }
        MouseArea { anchors.fill: parent }
    }
    component Line: Rectangle {
        property var from
        property var to
        x: from.px
        y: from.py - height / 2
        width: Math.hypot(to.px - from.px, to.py - from.py)
        height: 2 / scene.zoom
        transformOrigin: Item.Left
        rotation: Math.atan2(to.py - from.py, to.px - from.px) * 180 / Math.PI
        color: "#dddddd"
        antialiasing: true
    }
    Component { id: point; Point {} }
    Component { id: line; Line {} }

    color: "black"

    Item {
        anchors.fill: parent
        scale: scene.zoom
        Rectangle {
            id: media
            x: (scene.width - 1920) / 2; y: (scene.height - 1080) / 2
            width: 1920; height: 1080
            color: "#303030"; border.color: "#505050"
        }
    }

    function build(side) {
        for (let grid = 0; grid < 2; ++grid) {
            lines[grid].forEach(each => each.destroy());
            grids[grid].forEach(each => each.destroy());
            const points = [], joined = [];
            for (let id = 0; id < side * side; ++id) {
                points.push(point.createObject(media, {
                    pointNum: id, visible: grid === 0,
                    px: id % side * 1920 / (side - 1), py: Math.floor(id / side) * 1080 / (side - 1)
                }));
            }
            for (let id = 0; id < side * side; ++id) {
                const visible = grid === 0;
                if (id % side)
                    joined.push(line.createObject(media, { from: points[id - 1], to: points[id], visible: visible }));
                if (id >= side)
                    joined.push(line.createObject(media, { from: points[id - side], to: points[id], visible: visible }));
            }
            grids[grid] = points;
            lines[grid] = joined;
        }
    }
    function write(each, x, y) {
        each.px = x;
        each.py = y;
        bridge.move(each.pointNum, x - 960, y - 540, each.state !== "UNSELECTED");
    }
    function moveSelected(dx, dy) {
        for (const each of grids[0]) {
            if (each.state !== "UNSELECTED")
                write(each, each.px + dx, each.py + dy);
        }
    }
    function select(state) {
        for (const each of grids[0]) {
            each.state = state;
            write(each, each.px, each.py);
        }
    }
    function place(id, x, y) { grids[0][id].px = x; grids[0][id].py = y; }
}
)qml";

/// What the scene tells is sent at once, or collected as in a drag.
class Bridge : public QObject {
    Q_OBJECT

public:
    Bridge() { client.connectToServer("127.0.0.1", peer.port()); }

    Q_INVOKABLE void move(int point, double x, double y, bool selected) {
        MediaMovePointEvent event(11, 1, 77, "Media", static_cast<unsigned int>(point), x, y, 0,
                                  true, selected);
        if (collects)
            pending.insert(point, event);
        else
            client.sendEvent(event);
    }

    Peer& peer = *new Peer;
    CompanionClient& client = *new CompanionClient(nullptr);
    bool collects = false;
    QMap<int, MediaMovePointEvent> pending;
};

struct Editor {
    static Editor& instance() {
        static auto* editor = new Editor;
        return *editor;
    }

    Editor() {
        view.rootContext()->setContextProperty("bridge", &bridge);
        QQmlComponent component(view.engine());
        component.setData(kScene, {});
        QObject* root = component.create(view.rootContext());
        if (!root)
            qFatal("%s", qPrintable(component.errorString()));
        view.setResizeMode(QQuickWidget::SizeRootObjectToView);
        view.setContent({}, &component, root);
        view.resize(1060, 610);
        view.show();
        call("build", kSide);
        drain();
    }
    template <typename... Arguments>
    void call(const char* function, const Arguments&... arguments) {
        QMetaObject::invokeMethod(view.rootObject(), function,
                                  Q_ARG(QVariant, QVariant(arguments))...);
    }
    void drain() {
        for (QElapsedTimer quiet = started(); quiet.elapsed() < 400;)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    /// Until a frame has been drawn; in seconds, without waiting for it.
    double frame() {
        bool drawn = false;
        const auto connection = QObject::connect(view.quickWindow(), &QQuickWindow::afterRendering,
                                                 &view, [&drawn] { drawn = true; });
        qint64 last = 0;
        while (!drawn) {
            QElapsedTimer timer = started();
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents();
            last = timer.nsecsElapsed();
        }
        QObject::disconnect(connection);
        return static_cast<double>(last) * 1e-9;
    }
    static QElapsedTimer started() {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }

    Bridge bridge;
    QQuickWidget view;
};

void rebuildBothGrids(benchmark::State& state) {
    Editor& editor = Editor::instance();
    for (auto _ : state) {
        editor.call("build", kSide);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    editor.drain();
}

/// Without the network: the meshes built, all points placed, and the frame.
void itemDataToScreen(benchmark::State& state) {
    Editor& editor = Editor::instance();
    for (auto _ : state) {
        QElapsedTimer timer = Editor::started();
        editor.call("build", kSide);
        for (int point = 0; point < kPoints; ++point)
            editor.call("place", point, point % kSide * 40.0, point / kSide * 20.0);
        editor.frame();
        state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) * 1e-9);
        editor.drain();
    }
}

void dragAllPoints(benchmark::State& state) {
    Editor& editor = Editor::instance();
    editor.call("select", QString("SELECTED"));
    editor.bridge.collects = true;
    double step = 1;
    for (auto _ : state) {
        editor.call("moveSelected", step, step);
        step = -step;
    }
    editor.bridge.collects = false;
    editor.drain();
}

void frameOfADrag(benchmark::State& state) {
    Editor& editor = Editor::instance();
    editor.call("select", QString("SELECTED"));
    editor.drain();
    editor.bridge.collects = true;
    double step = 1;
    for (auto _ : state) {
        editor.call("moveSelected", step, step);
        step = -step;
        state.SetIterationTime(editor.frame());
    }
    editor.bridge.collects = false;
}

void selectAll(benchmark::State& state) {
    Editor& editor = Editor::instance();
    for (auto _ : state) {
        editor.call("select", QString("UNSELECTED"));
        editor.drain();
        const qint64 before = editor.bridge.peer.received;
        QElapsedTimer timer = Editor::started();
        editor.call("select", QString("SELECTED"));
        const qint64 called = timer.nsecsElapsed();
        while (editor.bridge.peer.received < before + kPoints * kMoveFrameSize)
            QCoreApplication::processEvents();
        state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) * 1e-9);
        state.counters["call_ms"] = static_cast<double>(called) * 1e-6;
    }
}

BENCHMARK(rebuildBothGrids)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(itemDataToScreen)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(5);
BENCHMARK(dragAllPoints)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(frameOfADrag)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(20);
BENCHMARK(selectAll)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(5);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
    QApplication application(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::_Exit(0); // the scene is still up
}

#include "naive_scene_bench.moc"
