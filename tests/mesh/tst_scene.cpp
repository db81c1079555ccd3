#include "tests/mesh/SceneTest.h"

#include "network/events/MediaMovePointEvent.h"
#include "network/events/ScreenPartMovePointEvent.h"

#include <QRandomGenerator>

#include <ctime>
#include <limits>

using namespace MeshpadTest;
using namespace NetworkCompanion;
using namespace std::chrono_literals;

/// Cases with more than a row of steps: touch gestures, echoes, outlines, drawing, and random
/// gestures, of which every position has to reach the Producer.
class SceneCasesTest : public SceneTest {
    Q_OBJECT

private slots:
    void dragIsCoalesced() {
        play("part");
        const QPoint start = scene->onScreen(4);
        scene->press(start);
        for (int step = 1; step <= 30; ++step)
            scene->move(start + QPoint(step, 0));
        scene->release(start + QPoint(30, 0));
        play("key Down"); // sent at once, and after the last move of the drag
        compareWithProducer(true);
        const auto moves = scene->producer.eventsOf<ScreenPartMovePointEvent>();
        QVERIFY2(moves.size() >= 3 && moves.size() < 8, qPrintable(QString::number(moves.size())));
    }

    void echoMovesPointsUnlessDragged() {
        play("screen; click 4; press 4");
        scene->producer.send(screenMove(4, 5, 5));
        scene->producer.send(screenMove(4'000'000'000U, 1, 1)); // no such point
        scene->producer.send(screenMove(9, 1, 1));
        scene->producer.send(screenMove(1, 0.25, 0.5, false));
        scene->producer.send(screenMove(0, -900, -500.25));
        QTRY_COMPARE(scene->position(0), QPointF(60, 39.75)); // not selected
        QCOMPARE(scene->uvGrid()->point(1)->x(), 480.0);
        QCOMPARE(scene->uvGrid()->point(1)->y(), 540.0);
        QCOMPARE(scene->position(4), QPointF(960, 540));
        scene->release(scene->onScreen(4));
        QCOMPARE(scene->position(4), QPointF(965, 545));
        scene->settle();
        scene->producer.forget();
        QCOMPARE(scene->string("currentPointText.text"),
                 "Current point: 4     X: 965.00 px     Y: 545.00 px");
        play("key Right"); // moves on from there
        QVERIFY(scene->gets(screenMove(4, 6, 5)));
    }

    void restingFingerGrabsPoint() {
        play("screen");
        const QPoint centre = scene->onScreen(4);
        touch().press(0, centre);
        QTRY_VERIFY(scene->isTrue("isMovingPoint"));
        QCOMPARE(scene->selectedPoints(), QList{4});
        QTest::qWait(250);
        touch().move(0, centre + QPoint(3, 4)); // after a rest 1.5 pixels do not move the point
        QTRY_COMPARE(valueOf("moved(4)"), "2,3");
        touch().release(0, centre + QPoint(3, 4));
    }

    void twoFingersZoomAndMoveNoPoint() {
        play("screen");
        const double zoom = scene->number("mediaScaleFactor");
        const QPoint corner = scene->onScreen(0);
        touch().press(0, corner);
        touch().stationary(0).press(1, corner + QPoint(100, 0));
        touch().move(0, corner).move(1, corner + QPoint(200, 0));
        QTRY_COMPARE(scene->number("mediaScaleFactor"), 2 * zoom);
        touch().release(0, corner).release(1, corner + QPoint(200, 0));
        QCOMPARE(scene->position(0), QPointF());
        QCOMPARE(scene->selectedPoints(), QList<int>());
        QVERIFY((scene->onScreen(0) - corner).manhattanLength() <= 1); // stays under its finger
        QVERIFY(scene->getsNothing());
    }

    void secondFingerUndoesDragOfFirst() {
        play("screen");
        const QPoint start = scene->onScreen(0);
        touch().press(0, start);
        touch().move(0, start + QPoint(40, 0));
        QTRY_VERIFY(scene->position(0) != QPointF());
        touch().stationary(0).press(1, QPoint(900, 500));
        QCOMPARE(scene->position(0), QPointF());
        touch().release(0, start).release(1, QPoint(900, 500));
        QVERIFY(!scene->isTrue("isMovingPoint"));
        compareWithProducer(true);
    }

    void thirdFingerKeepsView() {
        play("screen");
        const QPoint seen = scene->onScreen(4);
        touch().press(0, QPoint(400, 450));
        touch().stationary(0).press(1, QPoint(500, 450));
        touch().stationary(0).stationary(1).press(2, QPoint(700, 400));
        touch().release(0, QPoint(400, 450)).stationary(1).stationary(2);
        QCOMPARE(scene->onScreen(4), seen);
        touch().move(1, QPoint(520, 460)).move(2, QPoint(720, 410));
        QTRY_COMPARE(scene->onScreen(4), seen + QPoint(20, 10));
        touch().release(1, QPoint(520, 460)).release(2, QPoint(720, 410));
    }

    void meshBesideStaysOutline() {
        play("screen");
        MeshGridItem* xy = scene->xyGrid();
        MeshGridItem* uv = scene->uvGrid();
        QVERIFY(uv->isOutline());
        play("media");
        QVERIFY(xy->isOutline() && xy->findChildren<MeshPoint*>().isEmpty());
        scene->producer.send(screenMove(0, -900, -500.25));
        scene->producer.send(screenMove(9, 1, 1)); // no such point
        scene->producer.send(screenMove(1, 0.25, 0.5, false));
        scene->settle();
        QVERIFY(xy->isOutline() && uv->isOutline());
        play("show screen");
        QCOMPARE(valueOf("[at(0), at(8), selected, grid.linesArray.length]"),
                 "60,39.75,1920,1080,,12");
        QCOMPARE(QPointF(uv->point(1)->x(), uv->point(1)->y()), QPointF(480, 540));
    }

    void softwareRendererDrawsMesh() {
        play("media 3 4 4; click 5; add 9");
        for (const double zoom : {0.37, 0.9}) {
            scene->evaluate(QString("zoomSlider.value = %1").arg(zoom));
            for (const int point : {5, 9, 6}) // selected, current, neither
                QCOMPARE(scene->faultInPicture(point), QString());
        }
        play("deform media 0 2 2");
        QCOMPARE(scene->view->grabFramebuffer().pixelColor(scene->view->rect().center()),
                 QColor("#303030"));
    }

    void editsItemOfAnySizeInTime_data() {
        QTest::addColumn<QSize>("size");
        for (const QSize size : {QSize(1000, 600), QSize(1, std::numeric_limits<int>::max()),
                                 QSize(0, 0), QSize(-1, 5)})
            QTest::addRow("%d x %d", size.width(), size.height()) << size;
    }

    void editsItemOfAnySizeInTime() {
        QFETCH(QSize, size);
        const std::clock_t start = std::clock(); // not the wall time of a busy machine
        MediaItem item(MediaType::Image, 100, 5, 1, size.width(), size.height(), false, "Turned",
                       scene->configuration, nullptr);
        scene->canvas->onMediaItemAdded(1, 100, 5, size.width(), size.height(), 30, "Turned");
        scene->canvas->onSelectedItem(&item);
        play("cppCanvas.mediaDeformationMode(1, 3, 100, 5, '', 4, 4, false)");
        QCOMPARE(scene->grid()->point(0)->viewingRotation(), -30.0);
        for (const double far : {1e308, -1e308, 1e9, 5e-324}) {
            scene->view->grabFramebuffer();
            MediaMovePointEvent move(100, 5, 1, "Turned", 5, far, -far, 0, true, false);
            scene->canvas->receive(&move);
        }
        scene->view->grabFramebuffer();
        play("key R; key Ctrl+A; key Left");
        scene->view->grabFramebuffer();
        QCOMPARE(scene->grid()->pointCount(), 16);
        scene->canvas->onSelectedItem(nullptr);
        QVERIFY(std::clock() - start < 2 * CLOCKS_PER_SEC);
    }

    void randomGesturesLoseNothing_data() {
        QTest::addColumn<bool>("isXy");
        QTest::newRow("XY") << true;
        QTest::newRow("UV") << false;
    }

    void randomGesturesLoseNothing() {
        QFETCH(bool, isXy);
        scene.reset();
        scene = std::make_unique<SceneRig>(QSize(1060, 610), Timing{.tickPeriod = 3ms});
        QRandomGenerator random(isXy ? 20260217 : 20260218);
        const QStringList modifiers{"",     "Shift+",     "Ctrl+",     "Ctrl+Shift+",
                                    "Alt+", "Shift+Alt+", "Ctrl+Alt+", "Ctrl+Shift+Alt+"};
        const QStringList arrows{"Left", "Up", "Right", "Down"};
        const QStringList actions{"action 3", "action 4", "action 21", "action 20",
                                  "key Ctrl+Alt+Left"};
        play(isXy ? "media 3 5 6" : "media 3 5 6; action 25");
        for (int gesture = 1; gesture <= 500 && !QTest::currentTestFailed(); ++gesture) {
            const QString arrow = arrows[random.bounded(4)];
            const int kind = random.bounded(8);
            if (kind < 3) {
                const bool adds = random.bounded(3) == 0;
                QPoint at = scene->onScreen(random.bounded(30));
                scene->press(at, adds ? Qt::ControlModifier : Qt::NoModifier);
                for (int step = random.bounded(12); step > 0; --step) {
                    scene->move(at += QPoint(random.bounded(41) - 20, random.bounded(41) - 20));
                    if (random.bounded(6) == 0)
                        QTest::qWait(4); // into a tick
                }
                scene->release(at);
            } else {
                play(kind == 3   ? "key " + modifiers[random.bounded(8)] + arrow
                     : kind == 4 ? "repeat " + arrow + "; release " + arrow
                     : kind == 5
                         ? QString("stick %1 0.1; stick 0 0").arg(random.generateDouble() - 0.5)
                     : kind == 6 ? "bar 0"
                                 : actions[random.bounded(5)]);
            }
            if (gesture % 50 == 0) {
                play("getCurrentItem().itemDeformer.adjustView()");
                compareWithProducer(isXy);
            }
        }
        QCOMPARE(scene->sentPoints(isXy).size(), 30);
    }
};

QTEST_MAIN(SceneCasesTest)
#include "tst_scene.moc"
