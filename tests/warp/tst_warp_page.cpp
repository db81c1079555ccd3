#include "app/Configuration.h"
#include "app/EventDispatcher.h"
#include "app/UpdateProducer.h"
#include "network/AddMediaEvent.h"
#include "network/AddScreenEvent.h"
#include "network/AddScreenPartEvent.h"
#include "network/ItemDataEvent.h"
#include "network/MediaMovePointEvent.h"
#include "network/MsgEvent.h"
#include "network/RemoveMediaEvent.h"
#include "network/ScreenModeEvent.h"
#include "tests/warp/WarpTest.h"
#include "warp/Canvas.h"
#include "warp/Item.h"
#include "warp/MediaList.h"
#include "warp/MediaListContainer.h"
#include "warp/WarpPage.h"

#include <QApplication>
#include <QKeyEvent>
#include <QQuickItem>
#include <QQuickWidget>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace NetworkCompanion;

/// List and editor side by side, with a stand-in for the scene and a Producer on the loopback.
class TestWarpPage : public QObject, private WarpTest {
    Q_OBJECT

private slots:
    void initTestCase() {
        configuration_.canvasPath = QUrl::fromLocalFile(QFINDTESTDATA("StandIn.qml")).toString();
    }
    void init() {
        QVERIFY(connectProducer());
        page_ = std::make_unique<WarpPage>(configuration_, nullptr);
        page_->resize(1280, 610);
        page_->show();
        page_->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(page_.get()));
        canvas_ = page_->findChild<Canvas*>();
        list_ = page_->findChild<MediaList*>();
        scene_ = canvas_->findChild<QQuickWidget*>()->rootObject();
        QSignalSpy added(list_, &MediaList::screenPartItemAdded);
        producer().send(AddMediaEvent(MediaType::Image, 1, 2, 100, 8, 8, 0, 0.0, "Clip", false));
        producer().send(AddMediaEvent(MediaType::Image, 3, 4, 300, 8, 8, 0, 0.0, "Dust", false));
        producer().send(AddScreenEvent(5, 500, 8, 8, 0, 0.0, "Wall", false, false));
        producer().send(AddScreenPartEvent(5, 0, 600, 8, 8, 0, 0.0, "Left", false));
        QVERIFY(added.wait());
    }
    void cleanup() {
        page_.reset();
        disconnectProducer();
    }

    void theEditorFollowsTheList() {
        QSignalSpy current(canvas_, &Canvas::currentItemChanged);
        QSignalSpy modes(canvas_, &Canvas::screenMode);
        list_->selectFirstVisibleItem();
        producer().send(ScreenModeEvent(LV_NTC_ModeType::Parts, 5, 500, ""));
        QVERIFY(modes.wait());
        list_->selectFirstVisibleItem();
        page_->lockPage();
        QCOMPARE(modes.value(0), QVariantList({5, 3}));
        QCOMPARE(current.size(), 4);
        QCOMPARE(current.value(0), QVariantList({3, 5, 0}));
        QCOMPARE(current.value(1), QVariantList({0, 0, 0}));
        QCOMPARE(current.value(2), QVariantList({4, 5, 0}));
        QVERIFY(gets(ItemDataEvent(500), ItemDataEvent(-1), ItemDataEvent(600), ItemDataEvent(-1)));
        QSignalSpy removed(canvas_, &Canvas::removeMediaItem);
        page_->purgeMedia();
        QCOMPARE(removed.size(), 2);
    }

    void controllersReachEditorThenList() {
        QStringList order;
        connect(canvas_, &Canvas::action, this, [&] { order << "editor"; });
        connect(list_, &MediaList::selectedItem, this, [&] { order << "list"; });
        page_->onAction(Action::SELECT_NEXT_SCREEN);
        QCOMPARE(order, QStringList({"editor", "list"}));
        QSignalSpy right(canvas_, &Canvas::rightAxisMoved);
        QSignalSpy pressure(canvas_, &Canvas::pressure);
        page_->onLeftAxisMoved(0.25F, 0.5F);
        page_->onRightAxisMoved(-1.0F, 0.0F);
        page_->onPressure(1.5F);
        QCOMPARE(scene_->property("heard").toList().last(),
                 QVariant(QVariantList{"axis", 0.25, 0.5}));
        QCOMPARE(right.value(0), QVariantList({-1.0F, 0.0F}));
        QCOMPARE(pressure.value(0), QVariantList({1.5F}));
    }

    void keysFindTheirWayBetweenListAndEditor() {
        page_->giveFocusToCanvas();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Left);
        canvas_->notifyKeyEventFromQml(QEvent::KeyPress, Qt::Key_M, 0, "m", false, 1);
        canvas_->notifyKeyEventFromQml(QEvent::KeyPress, Qt::Key_M, 0, "m", false, 1);
        QVERIFY(list_->selection() && list_->selection()->name() == "Clip");
        QTest::mouseClick(list_->selection(), Qt::LeftButton);
        list_->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down, Qt::AltModifier);
        QTRY_COMPARE(scene_->property("keys").toList().size(), 2);
        QCOMPARE(scene_->property("keys").toList().last().toList().value(0), int(Qt::Key_Down));
    }

    void nothingIsSentForItemsOfAShowThatIsOver() {
        QSignalSpy removed(list_, &MediaList::itemRemoved);
        list_->onSelectedItem(row("Clip"));
        canvas_->startMovePointTimer();
        canvas_->moveMediaPoint(1, 2, "Clip", 0, 1, 1, 0, true, true);
        producer().send(RemoveMediaEvent(1, 2, ""));
        QVERIFY(removed.wait());
        canvas_->moveMediaPoint(1, 2, "Clip", 0, 2, 2, 0, true, true); // the finger is still down
        list_->onSelectedItem(row("Dust"));
        canvas_->moveMediaPoint(3, 4, "Dust", 7, 3, 3, 0, true, true);
        canvas_->stopMovePointTimer();
        QCoreApplication::processEvents();
        QVERIFY(gets(ItemDataEvent(100), ItemDataEvent(-1), ItemDataEvent(300),
                     MediaMovePointEvent(3, 4, 300, "Dust", 7, 3, 3, 0, true, true)));

        canvas_->startMovePointTimer();
        canvas_->moveMediaPoint(3, 4, "Dust", 7, 4, 4, 0, true, true);
        producer().send(MsgEvent("newShow"));
        QTRY_COMPARE(removed.size(), 4);
        // The same numbers, another item.
        list_->addMedia(MediaType::Image, 3, 4, 301, 8, 8, 0.0, false, "New");
        list_->onSelectedItem(row("New"));
        canvas_->stopMovePointTimer();
        QCoreApplication::processEvents();
        QVERIFY(gets(ItemDataEvent(-1), MsgEvent("getResources"), ItemDataEvent(301)));
    }

    void aLinkThatIsLostInADragLeavesNothingBehind() {
        list_->onSelectedItem(row("Clip"));
        canvas_->startMovePointTimer();
        canvas_->moveMediaPoint(1, 2, "Clip", 0, 1, 1, 0, true, true);
        QSignalSpy lost(EventDispatcher::getInstance(), &EventDispatcher::disconnected);
        producer().abortConnections();
        QVERIFY(lost.wait());
        page_->lockPage();
        canvas_->stopMovePointTimer();
        QCoreApplication::processEvents();
        producer().forget();
        QVERIFY(EventDispatcher::getInstance()->client().connectToServer(producer().host(),
                                                                         producer().port()));
        canvas_->updateProducer();
        page_->purgeMedia();
        QVERIFY(getsNothing());
    }

private:
    Item* row(const QString& name) const {
        for (Item* item : list_->findChildren<Item*>()) {
            if (item->name() == name) {
                return item;
            }
        }
        return nullptr;
    }

    Configuration configuration_ = makeConfiguration();
    std::unique_ptr<WarpPage> page_;
    Canvas* canvas_ = nullptr;
    MediaList* list_ = nullptr;
    QQuickItem* scene_ = nullptr;
};

QTEST_MAIN(TestWarpPage)
#include "tst_warp_page.moc"
