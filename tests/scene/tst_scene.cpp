#include "tests/scene/SceneUnderTest.h"
#include "tests/support/MessageGuard.h"

#include "network/ScreenMovePointEvent.h"

#include <QTest>

#include <optional>

using namespace NetworkCompanion;
using MeshpadTest::SceneUnderTest;

class SceneTest : public QObject {
    Q_OBJECT

private slots:
    void init() {
        messages_.emplace();
        scene_.emplace();
    }
    void cleanup() {
        scene_.reset();
        messages_->verify();
        messages_.reset();
    }

    void dragMovesSelection();

private:
    std::optional<MeshpadTest::MessageGuard> messages_;
    std::optional<SceneUnderTest> scene_;
};

void SceneTest::dragMovesSelection() {
    SceneUnderTest& s = *scene_;
    s.selectScreen();
    QCOMPARE(s.grid()->pointCount(), 9);
    QCOMPARE(s.position(4), QPointF(960, 540));

    s.click(s.onScreen(0));
    QCOMPARE(s.state(0), "CURRENT");
    s.click(s.onScreen(4), Qt::ControlModifier);
    QCOMPARE(s.selectedPoints(), (QList{0, 4}));
    QCOMPARE(s.currentPoint(), 4);

    const double zoom = s.evaluate("mediaScaleFactor").toDouble();
    const QPoint start = s.onScreen(4);
    s.press(start);
    QVERIFY(s.evaluate("isMovingPoint").toBool());
    s.move(start + QPoint(20, 10));
    QCOMPARE(s.position(4), QPointF(960 + 20 / zoom, 540 + 10 / zoom));
    QCOMPARE(s.position(0), QPointF(20 / zoom, 10 / zoom));
    s.release(start + QPoint(20, 10));
    QVERIFY(!s.evaluate("isMovingPoint").toBool());
    s.key(Qt::Key_Right);
    QCOMPARE(s.position(4).x(), 961 + 20 / zoom);
    s.settle();
    QCOMPARE(s.told(true)[4].x, s.held(true)[4].x);
    QVERIFY(s.told(true)[4].selected);
}

QTEST_MAIN(SceneTest)
#include "tst_scene.moc"
