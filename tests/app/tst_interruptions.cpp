#include "app/DisconnectOverlay.h"
#include "network/events/MsgEvent.h"
#include "network/events/RemoveMediaEvent.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/WindowRig.h"
#include "warp/Canvas.h"
#include "warp/Item.h"

#include <QTest>

using namespace NetworkCompanion;
using MeshpadTest::WindowRig;

/// The whole window when the edited item, the show or the connection ends during an edit, or when
/// another item is selected.
class TestInterruptions : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void editEndsWithItsItem_data() {
        QTest::addColumn<QString>("by");
        QTest::addColumn<bool>("dialog");
        for (const char* by : {"removal", "new show", "connection loss", "another item"}) {
            QTest::addRow("%s in a drag", by) << by << false;
            QTest::addRow("%s with a dialog open", by) << by << true;
        }
    }
    void editEndsWithItsItem() {
        QFETCH(QString, by);
        QFETCH(bool, dialog);
        WindowRig w;
        w.open();
        w.sendMedia(77, 4);
        startDrag(w, 77, 4);
        if (QTest::currentTestFailed())
            return;
        if (dialog) {
            w.release({600, 300});
            w.evaluate("deformationDialog.open(3, 4, 4)");
        } else {
            w.move(w.onScreen(5) + QPoint(7, 7));
            w.repeatKey(Qt::Key_Right);
            w.find<Canvas>()->updateProducer(); // without waiting for the tick
        }
        w.settle();
        w.producer.forget();

        if (by == "removal") {
            w.producer.send(RemoveMediaEvent(WindowRig::kCue, WindowRig::kMediaId, "Media"));
            QTRY_VERIFY(!w.find<Item>());
        } else if (by == "new show") {
            w.producer.send(MsgEvent("newShow"));
            QTRY_VERIFY(!w.producer.eventsOf<MsgEvent>().empty());
            QCOMPARE(w.producer.eventsOf<MsgEvent>().front()->message(), "getResources");
            QVERIFY(!w.find<Item>());
        } else if (by == "connection loss") {
            w.producer.abortConnections();
            QTRY_VERIFY(w.find<DisconnectOverlay>());
            w.producer.forget();
        } else {
            w.sendMedia(79, 5, WindowRig::kCue + 1);
            w.select(79, 5);
            w.settle(); // receives the deselection of the first item's points
            w.producer.forget();
        }
        QVERIFY(!w.isTrue("isMovingPoint"));
        QVERIFY(!w.isTrue("isDialogOpen"));
        QCOMPARE(w.string("currentPointText.text"), "Current point: --     X: -- px     Y: -- px");
        w.move({500, 250});
        w.key(Qt::Key_Left);
        w.release({500, 250});
        if (by == "connection loss") {
            w.window->onServerAvailableAgain();
            QTRY_COMPARE(w.producer.connectionCount(), 1);
            QTRY_VERIFY(!w.find<DisconnectOverlay>());
        }

        // The next item, with the number of the removed one, is edited from a clean state.
        w.sendMedia(78, 3, WindowRig::kCue + (by == "another item" ? 2 : 0));
        w.settle();
        QVERIFY(w.moves().empty());
        w.producer.forget();
        startDrag(w, 78, 3);
        w.release({600, 300});
    }

private:
    /// Selects all points, drags them and keeps the button pressed.
    static void startDrag(WindowRig& w, int dataIndex, int side) {
        w.select(dataIndex, side);
        if (QTest::currentTestFailed())
            return;
        w.view->setFocus();
        w.key(Qt::Key_A, Qt::ControlModifier);
        QTRY_COMPARE(w.moves().size(), std::size_t(side * side + 1));
        w.producer.forget();
        const QPoint start = w.onScreen(side + 1);
        w.press(start);
        w.move(start + QPoint(20, 10));
        QTRY_VERIFY(w.moves().size() >= std::size_t(side * side)); // by the tick
        for (const auto* event : w.moves())
            QCOMPARE(int(event->dataIndex()), dataIndex);
        QVERIFY(w.isTrue("isMovingPoint"));
    }
};

QTEST_MAIN(TestInterruptions)
#include "tst_interruptions.moc"
