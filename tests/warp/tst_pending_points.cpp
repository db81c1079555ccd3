#include "app/shell/EventDispatcher.h"
#include "network/events/MediaMovePointEvent.h"
#include "tests/mesh/SceneTest.h"

#include <QSignalSpy>
#include <QTimer>

#include <algorithm>
#include <map>
#include <utility>

using namespace MeshpadTest;
using namespace NetworkCompanion;
using namespace std::chrono_literals;

/// What the operator sets stays set, with a Producer that answers late, otherwise or not at all.
class TestPendingPoints : public SceneTest {
    Q_OBJECT

private slots:
    void init() { GuardedTest::init(); } // each function starts its own scene

    void stepsArrive_data() {
        QTest::addColumn<int>("delay"); // of the Producer's answers, in ms
        QTest::addColumn<QString>("producer");
        QTest::addColumn<QString>("steps");
        QTest::addColumn<double>("net"); // of point 4 to the right, in px of the item
        const QString right = "key Right; ";
        const QString around = "key Alt+Right; key Alt+Left; ";
        for (const int delay : {0, 50, 150, 400}) {
            QTest::addRow("ten taps, %d ms", delay) << delay << "" << right.repeated(10) << 10.;
            QTest::addRow("to and fro, %d ms", delay)
                << delay << "" << (right + "key Left; " + right).repeated(4) << 4.;
        }
        QTest::newRow("taps after a drag") << 150 << ""
                                           << "drag 4 20 0; " + right + right << 22.;
        QTest::newRow("flips") << 50 << "" << (right + "action 21; action 21; ").repeated(2) << 2.;
        QTest::newRow("UV") << 150 << ""
                            << "entry 'UV'; click 4; " + (right + "key Left; " + right).repeated(2)
                            << 2.;
        QTest::newRow("stick") << 150 << "" << QString("stick 1 0; ").repeated(2) + "stick 0 0; "
                               << 4.;
        QTest::newRow("selections") << 150 << "" << (right + around).repeated(3) << 3.;
        QTest::newRow("32 bits") << 50 << "rounds" << QString("key Shift+Right; ").repeated(4)
                                 << .8;
        QTest::newRow("no echo") << 0 << "is silent" << right.repeated(3) << 3.;
        QTest::newRow("stall") << 0 << "stalls" << right.repeated(3) + "pause; " << 3.;
        QTest::newRow("late, then stall")
            << 0 << "stalls late" << right.repeated(3) + "pause; " << 3.;
        QTest::newRow("merged moves") << 50 << "merges" << right.repeated(3) << 3.;
        QTest::newRow("refusal") << 50 << "refuses" << right.repeated(3) << 0.;
        QTest::newRow("second companion") << 50 << "follows another" << right.repeated(3) << -7.;
    }
    void stepsArrive() {
        QFETCH(const int, delay);
        QFETCH(const QString, producer);
        QFETCH(const QString, steps);
        QFETCH(const double, net);
        const std::chrono::milliseconds wait(delay + 300);
        restart({.tickPeriod = 20ms, .echoWait = wait});
        play("media; zoomSlider.value = 1; click 4");
        scene->settle();
        const QObject answers;                                   // until the end of this function
        std::map<std::pair<unsigned int, bool>, QPointF> places; // by point and mesh
        std::vector<MediaMovePointEvent> unanswered;
        int waiting = 0;
        const auto answer = [&](const MediaMovePointEvent& move, int later) {
            ++waiting;
            QTimer::singleShot(later, &answers, [&, move] {
                --waiting;
                scene->producer.send(move);
            });
        };
        connect(&scene->producer, &FakeProducer::received, &answers, [&](const Event* event) {
            const auto* move = dynamic_cast<const MediaMovePointEvent*>(event);
            if (!move || producer == "is silent")
                return;
            QPointF& place = places[{move->pointId(), move->xy()}];
            if (producer != "refuses")
                place = {move->x(), move->y()};
            if (producer == "rounds")
                place = {float(place.x()), float(place.y())};
            const auto echo = mediaMove(move->pointId(), place, move->xy());
            const bool isLate = producer == "stalls late" && move->x() > 0;
            if (isLate || (producer == "stalls" && move->x() > 1))
                unanswered.push_back(echo);
            else if (producer != "merges" || move->x() == net)
                answer(echo, delay);
            if (isLate && move->x() == 2)
                answer(unanswered.front(), 0); // to an older write than the newest
        });
        const QSignalSpy returns(scene->canvas.get(), &Canvas::pointWentBack);
        const QSignalSpy shown(scene->canvas.get(), &Canvas::mediaMovePoint);
        const QSignalSpy echoes(scene->canvas.get(), &Canvas::pointConfirmed);

        for (const QString& step : steps.split("; ", Qt::SkipEmptyParts)) {
            step == "pause" ? QTest::qWait(int(2 * wait.count())) : play(step);
            QTest::qWait(20);
        }
        int later = 0;
        for (const MediaMovePointEvent& echo : unanswered)
            answer(echo, later += 20);
        if (producer == "follows another")
            answer(mediaMove(4, {-7, 0}), delay);
        QTRY_COMPARE(waiting, 0);
        scene->deliver();
        QTRY_VERIFY(scene->canvas->findChild<PendingPoints*>()->isEmpty());
        QCOMPARE(qRound(1000 * (scene->position(4).x() - 500)), qRound(1000 * net));
        QCOMPARE(returns.count(), net > 0 ? 0 : 1);
        QCOMPARE(std::ranges::count(shown, 4, [](const auto& move) { return move[3].toInt(); }),
                 net > 0 ? 0 : 1); // no step back, however short
        QCOMPARE(echoes.isEmpty(), producer == "is silent" || producer == "refuses");
        if (producer.isEmpty()) {
            const bool xy = !steps.contains("UV");
            const double x = places[{4, xy}].x();
            QCOMPARE(qRound(1000 * (xy ? x : 1000 * x - 500)), qRound(1000 * net));
            QVERIFY(net < 10 || echoes.last()[0].toInt() >= delay * 9 / 10);
        }
    }

    void unsentWritesGoBack() {
        restart({.tickPeriod = 1h});
        play("screen; click 4; forget; press 4; move 20 0; move 30 0"); // waits for the tick
        const QPointF place(960, 540);
        QVERIFY(scene->position(4) != place);
        scene->producer.abortConnections();
        QTRY_COMPARE(scene->position(4), place);
        play("move 60 0");
        QCOMPARE(scene->position(4), place);
        play("lift; key Right");
        QCOMPARE(scene->position(4), place);
        const auto ring = [this] {
            return scene->view->grabFramebuffer().pixelColor(scene->onScreen(4) + QPoint(0, 15));
        };
        QCOMPARE(ring(), QColor("#ffb000"));
        QTRY_VERIFY(ring() != QColor("#ffb000"));
    }

    void requestedMeshKeepsPlaces_data() {
        QTest::addColumn<int>("columns"); // of the mesh that replaces one of 3 x 3
        QTest::addColumn<double>("x");
        QTest::newRow("as requested") << 5 << 101.;
        QTest::newRow("another") << 4 << 0.;
    }
    void requestedMeshKeepsPlaces() {
        QFETCH(const int, columns);
        QFETCH(const double, x);
        restart(Timing());
        play("screen; updatePoint(0, 5, 7, 7)"); // of the former mesh
        scene->canvas->newCurveDeformation(3, 5, true);
        play("updatePoint(0, 4, 101, 0)");
        scene->deform(scene->screen, 3, 3, columns);
        scene->deliver(screenMove(5, -960, 0), screenMove(4, columns == 5 ? 960 : -960, -540));
        QCOMPARE(scene->position(4).x(), x);
        QCOMPARE(scene->position(5).x(), 0);
        play("updatePoint(0, 4, 102, 0)");
        scene->deform(scene->screen, 3, 3, 5); // another request's, because this one has ended
        scene->deliver(screenMove(4, 960, -540));
        QCOMPARE(scene->position(4).x(), 1920);
    }

private:
    void restart(const Timing& timing) {
        scene.reset();
        scene = std::make_unique<SceneRig>(QSize(1060, 610), timing);
    }
    static MediaMovePointEvent mediaMove(unsigned int point, QPointF place, bool xy = true) {
        return {SceneRig::kMediaCue, 5, 102, "", point, place.x(), place.y(), 0, xy, true};
    }
};

QTEST_MAIN(TestPendingPoints)
#include "tst_pending_points.moc"
