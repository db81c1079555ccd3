#include "app/DisconnectOverlay.h"
#include "network/events/MsgEvent.h"
#include "network/events/RemoveMediaEvent.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/WindowRig.h"
#include "warp/Item.h"

#include <QTest>

using namespace NetworkCompanion;
using MeshpadTest::WindowRig;

/// The whole window in the middle of an edit, when the Producer takes away what is edited: the
/// item, the show or the link; or when another item is selected.
class TestInterruptions : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void editIsCutShort_data();
    void editIsCutShort();

private:
    static void edit(WindowRig& w, int dataIndex, int side);
};

/// Takes hold of the mesh with everything selected, drags, and leaves the button down.
void TestInterruptions::edit(WindowRig& w, int dataIndex, int side) {
    w.select(dataIndex, side);
    if (QTest::currentTestFailed())
        return; // there may be no mesh
    w.view->setFocus();
    w.key(Qt::Key_A, Qt::ControlModifier);
    QTRY_COMPARE(w.moves().size(), std::size_t(side * side + 1));
    w.producer.forget();
    const QPoint held = w.onScreen(side + 1);
    w.press(held);
    w.move(held + QPoint(20, 10));
    QTRY_VERIFY(w.moves().size() >= std::size_t(side * side)); // by the tick, which goes on
    for (const auto* event : w.moves())
        QCOMPARE(int(event->dataIndex()), dataIndex);
    QVERIFY(w.isTrue("isMovingPoint"));
}

void TestInterruptions::editIsCutShort_data() {
    QTest::addColumn<QString>("by");
    QTest::addColumn<bool>("dialog");
    for (const char* by : {"removal", "new show", "loss of the link", "another item"}) {
        QTest::addRow("%s in a drag", by) << by << false;
        QTest::addRow("%s with a dialog open", by) << by << true;
    }
}

void TestInterruptions::editIsCutShort() {
    QFETCH(QString, by);
    QFETCH(bool, dialog);
    WindowRig w;
    w.open();
    w.sendMedia(77, 4);
    edit(w, 77, 4);
    if (QTest::currentTestFailed())
        return;
    if (dialog) {
        w.release({600, 300});
        w.evaluate("deformationDialog.open(3, 4, 4)");
    } else {
        w.move(w.onScreen(5) + QPoint(7, 7)); // waits for the next tick
        w.repeatKey(Qt::Key_Right);
    }
    w.settle();
    w.producer.forget();

    if (by == "removal") {
        w.producer.send(RemoveMediaEvent(WindowRig::kCue, WindowRig::kMediaId, "Media"));
        QTRY_VERIFY(w.find<Item>() == nullptr);
    } else if (by == "new show") {
        w.producer.send(MsgEvent("newShow"));
        QTRY_VERIFY(!w.producer.eventsOf<MsgEvent>().empty()); // "getResources"
    } else if (by == "loss of the link") {
        w.producer.abortConnections();
        QTRY_VERIFY(w.find<DisconnectOverlay>() != nullptr);
        w.producer.forget();
    } else {
        w.sendMedia(79, 5, WindowRig::kCue + 1);
        w.select(79, 5);
        w.settle(); // the points of the first were unselected and told
        w.producer.forget();
    }
    QVERIFY(!w.isTrue("isMovingPoint"));
    QVERIFY(!w.isTrue("isDialogOpen"));
    QCOMPARE(w.string("currentPointText.text"), "Current point: --     X: -- px     Y: -- px");
    // The hand and the keyboard do not know of it.
    w.move({500, 250});
    w.key(Qt::Key_Left);
    w.release({500, 250});
    if (by == "loss of the link") {
        w.window->onServerAvailableAgain();
        QTRY_COMPARE(w.producer.connectionCount(), 1);
        QTRY_VERIFY(w.find<DisconnectOverlay>() == nullptr);
    }

    // Another item, of the same number where the first is gone: it is edited like the first, and
    // nothing of that is left.
    w.sendMedia(78, 3, WindowRig::kCue + (by == "another item" ? 2 : 0));
    w.settle();
    QCOMPARE(w.moves().size(), std::size_t(0));
    w.producer.forget();
    edit(w, 78, 3);
    w.release({600, 300});
}

QTEST_MAIN(TestInterruptions)
#include "tst_interruptions.moc"
