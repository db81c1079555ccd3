#include "app/DisconnectOverlay.h"
#include "app/EventDispatcher.h"
#include "app/GuiCompanion.h"
#include "app/UpdateProducer.h"
#include "network/AddMediaEvent.h"
#include "network/ItemDataEvent.h"
#include "network/MediaDeformationModeEvent.h"
#include "network/MediaMovePointEvent.h"
#include "network/MsgEvent.h"
#include "network/RemoveMediaEvent.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/MessageGuard.h"
#include "tests/support/WindowUnderTest.h"
#include "warp/Item.h"
#include "warp/MeshGridItem.h"

#include <QMouseEvent>
#include <QQmlContext>
#include <QQmlExpression>
#include <QQuickItem>
#include <QQuickWidget>
#include <QTest>

#include <optional>

using namespace NetworkCompanion;
using MeshpadTest::FakeProducer;

namespace {

constexpr unsigned int kCue = 11;
constexpr int kMediaId = 5;
constexpr quint16 kProducerPort = 62330;

} // namespace

/// The whole window in the middle of an edit, when the Producer takes away what is edited: the
/// item, the show or the link.
class TestInterruptions : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void editIsCutShort_data();
    void editIsCutShort();

private:
    QVariant evaluate(const QString& expression) const;
    MeshGridItem* grid() const;
    QPoint onScreen(int point) const;
    void moveTo(QPoint at) const;
    void sendShow(int dataIndex, int side);
    void edit(int dataIndex, int side);
    std::size_t moves() const { return producer_->eventsOf<MediaMovePointEvent>().size(); }

    MeshpadTest::WindowUnderTest application_;
    std::optional<MeshpadTest::MessageGuard> messages_;
    std::unique_ptr<FakeProducer> producer_;
    std::unique_ptr<GuiCompanion> window_;
    QQuickWidget* view_ = nullptr;
};

void TestInterruptions::initTestCase() {
    QVERIFY(application_.prepare());
}

void TestInterruptions::init() {
    messages_.emplace();
    UpdateProducer::tickPeriod = std::chrono::milliseconds(5);
    producer_ = std::make_unique<FakeProducer>();
    QVERIFY(producer_->listen(QHostAddress::LocalHost, kProducerPort));
    window_ = std::make_unique<GuiCompanion>(nullptr);
    window_->show();
    QVERIFY(QTest::qWaitForWindowActive(window_.get()));
    view_ = window_->findChild<QQuickWidget*>();
    window_->onConnectToServer(producer_->host());
    QTRY_COMPARE(producer_->connectionCount(), 1);
}

void TestInterruptions::cleanup() {
    window_->onDisconnectFromServer();
    MeshpadTest::WindowUnderTest::clear(view_);
    window_.reset();
    producer_.reset();
    UpdateProducer::tickPeriod = UpdateProducer::kTickPeriod;
    messages_->verify();
    messages_.reset();
}

QVariant TestInterruptions::evaluate(const QString& expression) const {
    QQuickItem* root = view_->rootObject();
    return QQmlExpression(qmlContext(root), root, expression).evaluate();
}

MeshGridItem* TestInterruptions::grid() const {
    return evaluate("getCurrentItem().deformerGrids[0]").value<MeshGridItem*>();
}

QPoint TestInterruptions::onScreen(int point) const {
    return grid()->mapToScene({grid()->point(point)->x(), grid()->point(point)->y()}).toPoint();
}

void TestInterruptions::moveTo(QPoint at) const {
    QMouseEvent event(QEvent::MouseMove, at, view_->mapToGlobal(QPointF(at)), Qt::NoButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view_, &event);
}

/// One media with a curve of that many points a side.
void TestInterruptions::sendShow(int dataIndex, int side) {
    producer_->send(AddMediaEvent(MediaType::Image, kCue, kMediaId, dataIndex, 1920, 1080, 0, 0.0,
                                  "Media", false));
    producer_->send(MediaDeformationModeEvent(LV_NTC_ElementType::Media,
                                              LV_NTC_DeformationType::Curve, kCue, kMediaId,
                                              dataIndex, "Media", side, side, false));
}

/// Takes hold of the mesh with everything selected, drags, and leaves the button down.
void TestInterruptions::edit(int dataIndex, int side) {
    QTRY_VERIFY(window_->findChild<Item*>() != nullptr);
    window_->findChild<Item*>()->selected(window_->findChild<Item*>());
    QTRY_COMPARE(grid()->pointCount(), side * side);
    evaluate("getCurrentItem().itemDeformer.adjustView()");
    view_->setFocus();
    QTest::keyClick(view_, Qt::Key_A, Qt::ControlModifier);
    QTRY_COMPARE(moves(), std::size_t(side * side + 1));
    producer_->forget();
    const QPoint held = onScreen(side + 1);
    QTest::mousePress(view_, Qt::LeftButton, Qt::NoModifier, held);
    moveTo(held + QPoint(20, 10));
    QTRY_VERIFY(moves() >= std::size_t(side * side)); // by the tick, which goes on
    for (const auto* event : producer_->eventsOf<MediaMovePointEvent>())
        QCOMPARE(int(event->dataIndex()), dataIndex);
    QVERIFY(evaluate("isMovingPoint").toBool());
}

void TestInterruptions::editIsCutShort_data() {
    QTest::addColumn<QString>("by");
    QTest::addColumn<bool>("dialog");
    for (const char* by : {"removal", "new show", "loss of the link"}) {
        QTest::addRow("%s in a drag", by) << by << false;
        QTest::addRow("%s with a dialog open", by) << by << true;
    }
}

void TestInterruptions::editIsCutShort() {
    QFETCH(QString, by);
    QFETCH(bool, dialog);
    sendShow(77, 4);
    edit(77, 4);
    if (dialog) {
        QTest::mouseRelease(view_, Qt::LeftButton, Qt::NoModifier, {600, 300});
        evaluate("deformationDialog.open(3, 4, 4)");
    } else {
        moveTo(onScreen(5) + QPoint(7, 7)); // waits for the next tick
    }
    MsgEvent mark("mark");
    EventDispatcher::getInstance()->client().sendEvent(mark);
    QTRY_VERIFY(!producer_->eventsOf<MsgEvent>().empty());
    producer_->forget();

    if (by == "removal") {
        producer_->send(RemoveMediaEvent(kCue, kMediaId, "Media"));
        QTRY_VERIFY(window_->findChild<Item*>() == nullptr);
    } else if (by == "new show") {
        producer_->send(MsgEvent("newShow"));
        QTRY_VERIFY(!producer_->eventsOf<MsgEvent>().empty()); // "getResources"
    } else {
        producer_->abortConnections();
        QTRY_VERIFY(window_->findChild<DisconnectOverlay*>() != nullptr);
        producer_->forget();
    }
    QVERIFY(!evaluate("isMovingPoint").toBool());
    QVERIFY(!evaluate("isDialogOpen").toBool());
    // The hand and the keyboard do not know of it.
    moveTo({500, 250});
    QTest::keyClick(view_, Qt::Key_Left);
    QTest::mouseRelease(view_, Qt::LeftButton, Qt::NoModifier, {500, 250});
    if (by == "loss of the link") {
        window_->onServerAvailableAgain();
        QTRY_COMPARE(producer_->connectionCount(), 1);
        QTRY_VERIFY(window_->findChild<DisconnectOverlay*>() == nullptr);
    }

    // Another item of the same number: it is edited like the first, and nothing of that is left.
    sendShow(78, 3);
    QTRY_VERIFY(window_->findChild<Item*>() != nullptr);
    EventDispatcher::getInstance()->client().sendEvent(mark);
    QTRY_VERIFY(!producer_->eventsOf<MsgEvent>().empty() &&
                producer_->eventsOf<MsgEvent>().back()->message() == "mark");
    QCOMPARE(moves(), std::size_t(0));
    producer_->forget();
    edit(78, 3);
    QTest::mouseRelease(view_, Qt::LeftButton, Qt::NoModifier, {600, 300});
}

QTEST_MAIN(TestInterruptions)
#include "tst_interruptions.moc"
