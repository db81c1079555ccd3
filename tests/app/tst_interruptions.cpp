#include "app/DisconnectOverlay.h"
#include "mesh/MeshGridItem.h"
#include "network/events/MsgEvent.h"
#include "network/events/RemoveMediaEvent.h"
#include "tests/app/EditorWindow.h"
#include "warp/Item.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QTest>

using namespace NetworkCompanion;
using MeshpadTest::EditorWindow;

/// The whole window in the middle of an edit, when the Producer takes away what is edited: the
/// item, the show or the link; or when another item is selected.
class TestInterruptions : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(application_.prepare()); }
    void editIsCutShort_data();
    void editIsCutShort();

private:
    static QPoint onScreen(const EditorWindow& w, int point);
    static void moveTo(const EditorWindow& w, QPoint at);
    static void edit(EditorWindow& w, int dataIndex, int side);

    MeshpadTest::WindowUnderTest application_;
};

QPoint TestInterruptions::onScreen(const EditorWindow& w, int point) {
    auto* grid = w.evaluate("getCurrentItem().deformerGrids[0]").value<MeshGridItem*>();
    return grid->mapToScene({grid->point(point)->x(), grid->point(point)->y()}).toPoint();
}

void TestInterruptions::moveTo(const EditorWindow& w, QPoint at) {
    QMouseEvent event(QEvent::MouseMove, at, w.view->mapToGlobal(QPointF(at)), Qt::NoButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(w.view, &event);
}

/// Takes hold of the mesh with everything selected, drags, and leaves the button down.
void TestInterruptions::edit(EditorWindow& w, int dataIndex, int side) {
    w.select(dataIndex, side);
    if (QTest::currentTestFailed())
        return; // there may be no mesh
    w.view->setFocus();
    QTest::keyClick(w.view, Qt::Key_A, Qt::ControlModifier);
    QTRY_COMPARE(w.moves().size(), std::size_t(side * side + 1));
    w.producer.forget();
    const QPoint held = onScreen(w, side + 1);
    QTest::mousePress(w.view, Qt::LeftButton, Qt::NoModifier, held);
    moveTo(w, held + QPoint(20, 10));
    QTRY_VERIFY(w.moves().size() >= std::size_t(side * side)); // by the tick, which goes on
    for (const auto* event : w.moves())
        QCOMPARE(int(event->dataIndex()), dataIndex);
    QVERIFY(w.evaluate("isMovingPoint").toBool());
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
    EditorWindow w;
    w.open();
    w.sendMedia(77, 4);
    edit(w, 77, 4);
    if (QTest::currentTestFailed())
        return;
    if (dialog) {
        QTest::mouseRelease(w.view, Qt::LeftButton, Qt::NoModifier, {600, 300});
        w.evaluate("deformationDialog.open(3, 4, 4)");
    } else {
        moveTo(w, onScreen(w, 5) + QPoint(7, 7)); // waits for the next tick
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier, QString(), true);
        QCoreApplication::sendEvent(w.view, &held);
    }
    w.settle();
    w.producer.forget();

    if (by == "removal") {
        w.producer.send(RemoveMediaEvent(EditorWindow::kCue, EditorWindow::kMediaId, "Media"));
        QTRY_VERIFY(w.window->findChild<Item*>() == nullptr);
    } else if (by == "new show") {
        w.producer.send(MsgEvent("newShow"));
        QTRY_VERIFY(!w.producer.eventsOf<MsgEvent>().empty()); // "getResources"
    } else if (by == "loss of the link") {
        w.producer.abortConnections();
        QTRY_VERIFY(w.window->findChild<DisconnectOverlay*>() != nullptr);
        w.producer.forget();
    } else {
        w.sendMedia(79, 5, EditorWindow::kCue + 1);
        w.select(79, 5);
        w.settle(); // the points of the first were unselected and told
        w.producer.forget();
    }
    QVERIFY(!w.evaluate("isMovingPoint").toBool());
    QVERIFY(!w.evaluate("isDialogOpen").toBool());
    QCOMPARE(w.evaluate("currentPointText.text").toString(),
             "Current point: --     X: -- px     Y: -- px");
    // The hand and the keyboard do not know of it.
    moveTo(w, {500, 250});
    QTest::keyClick(w.view, Qt::Key_Left);
    QTest::mouseRelease(w.view, Qt::LeftButton, Qt::NoModifier, {500, 250});
    if (by == "loss of the link") {
        w.window->onServerAvailableAgain();
        QTRY_COMPARE(w.producer.connectionCount(), 1);
        QTRY_VERIFY(w.window->findChild<DisconnectOverlay*>() == nullptr);
    }

    // Another item, of the same number where the first is gone: it is edited like the first, and
    // nothing of that is left.
    w.sendMedia(78, 3, EditorWindow::kCue + (by == "another item" ? 2 : 0));
    w.settle();
    QCOMPARE(w.moves().size(), std::size_t(0));
    w.producer.forget();
    edit(w, 78, 3);
    QTest::mouseRelease(w.view, Qt::LeftButton, Qt::NoModifier, {600, 300});
}

QTEST_MAIN(TestInterruptions)
#include "tst_interruptions.moc"
