#include "app/ConnectPage.h"
#include "app/ConnectingOverlay.h"
#include "app/Content.h"
#include "app/DisconnectOverlay.h"
#include "app/HeadBanner.h"
#include "app/IPList.h"
#include "app/KeyRepeatFilter.h"
#include "app/LinkBadge.h"
#include "app/shell/EventDispatcher.h"
#include "app/shell/ShellLook.h"
#include "input/key_event_listener.h"
#include "input/key_subscription.h"
#include "network/events/AddMediaEvent.h"
#include "network/events/MsgEvent.h"
#include "network/events/UpdateSettingsEvent.h"
#include "pages/QuickKeysPage.h"
#include "pages/SettingsPage.h"
#include "pages/TestPatternPage.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/WindowRig.h"
#include "warp/Canvas.h"
#include "warp/Item.h"
#include "warp/WarpPage.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalSpy>
#include <QTest>

#include <optional>

using namespace MeshpadTest;
using namespace NetworkCompanion;
using namespace std::chrono_literals;
using Companion::Page;

namespace {

const QString kProducer = QStringLiteral("10.77.0.1"); // the virtual interface of this test
const QString kDisconnect = QStringLiteral("Disconnect");
const QString kFirst = QStringLiteral("10.0.0.1"); // addresses without a Producer
const QString kSecond = QStringLiteral("10.0.0.10");
const QString kSilent = QStringLiteral("10.77.0.99"); // no machine has it
constexpr Timing kFast{
    .firstCheckDelay = 10ms, .checkPeriod = 10ms, .tickPeriod = 5ms, .inputDelay = 30ms};

class KeyRecorder : public KeyEventListener {
public:
    void notified(QKeyEvent* event) override { keys << event->key(); }

    QList<int> keys;

private:
    KeySubscription subscription_{this};
};

} // namespace

/// The whole window with mouse and keyboard, and a Producer that is found by discovery.
class TestGuiCompanion : public GuardedTest {
    Q_OBJECT

private slots:
    void connectingRequestsTheShow() {
        QVERIFY(shows<ConnectPage>() && !showsMenu());
        auto* list = find<IPList>();
        QTRY_VERIFY(button(list, kProducer));
        QVERIFY(!list->isAncestorOf(QApplication::focusWidget()));
        QTest::keyClick(handle_, Qt::Key_Tab);
        QVERIFY(button(list, kProducer)->hasFocus());

        connectByHand();
        QVERIFY(rig_->gets(MsgEvent("getResources"), UpdateSettingsEvent("", 0)));
        QVERIFY(shows<WarpPage>() && showsMenu());
        QVERIFY(rig_->view->hasFocus());
        rig_->window->onServerAvailableAgain(); // does nothing while connected
        QVERIFY(rig_->getsNothing() && !client().isConnecting());
    }

    void cancelsAttempt_data() {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("Escape") << true;
        QTest::newRow("button") << false;
    }
    void cancelsAttempt() {
        QFETCH(bool, byKey);
        emit discovery().serverDiscovered(kSilent);
        connectTo(kSilent);
        auto* notice = find<ConnectingOverlay>();
        QVERIFY(notice && notice->geometry() == rig_->window->rect());
        QCOMPARE(notice->findChild<QLabel*>()->text(), "Connecting to " + kSilent);
        rig_->window->onServerAvailableAgain(); // does nothing meanwhile
        QTest::qWait(50);
        QVERIFY(client().isConnecting());
        if (byKey)
            QTest::keyClick(handle_, Qt::Key_Escape);
        else
            clickAt(inWindow(button(notice, "Cancel")).center());
        QTRY_VERIFY(!find<ConnectingOverlay>());
        QVERIFY(!client().isConnecting() && shows<ConnectPage>());
        emit discovery().serverTimeouted(kSilent);
        connectByHand();
    }

    /// Input that is delivered after the veil has gone but was made before that could be seen.
    void dropsInputMeantForTheVeil() {
        connectByHand();
        loseConnection();
        const KeyRecorder recorder;
        const QPoint settings = inWindow(button(find<HeadBanner>(), "Settings")).center();
        const auto operate = [&] {
            clickAt(settings);
            QTest::keyClick(handle_, Qt::Key_M);
            QTest::touchEvent(rig_->window.get(), touchscreen_.get()).press(0, settings);
            QTest::touchEvent(rig_->window.get(), touchscreen_.get()).release(0, settings);
        };
        connect(rig_->window.get(), &GuiCompanion::meshpadConnected, this, operate);
        operate();
        QTest::keyPress(handle_, Qt::Key_Right);
        startProducer();
        QTRY_VERIFY(rig_->isReady());
        QKeyEvent repetition(QEvent::KeyPress, Qt::Key_Right, {}, QString(), true);
        QApplication::sendEvent(handle_, &repetition);
        QVERIFY(recorder.keys.isEmpty() && shows<WarpPage>());
        find<Content>()->setPage(Page::QuickKeys);
        operate();
        QVERIFY(shows<SettingsPage>() && recorder.keys == QList<int>{Qt::Key_M});
    }

    void badgeShowsStateOfLink() {
        QVERIFY(!find<LinkBadge>());
        rig_->producer.stopListening();
        QVERIFY(rig_->producer.listen(QHostAddress::LocalHost, WindowRig::kProducerPort));
        rig_->window->onConnectToServer("127.0.0.1");
        QTRY_VERIFY(rig_->isReady());
        QCOMPARE(words(), "127.0.0.1: connected");
        rig_->window->onDisconnectFromServer();
        rig_->producer.stopListening();
        QTRY_VERIFY(find<InputGate>()->isOpen());
        rig_->producer.forget();
        startProducer();
        connectByHand();
        QTRY_COMPARE(words(), "10.77.0.1: connected");
        rig_->producer.stopAnswering();
        emit discovery().serverTimeouted(kProducer);
        QCOMPARE(words(), "10.77.0.1: connected, but not answering");
        QCOMPARE(find<LinkBadge>()->toolTip(), words());
        emit discovery().serverDiscovered(kProducer);
        QCOMPARE(words(), "10.77.0.1: connected");
        auto* canvas = find<Canvas>();
        emit canvas->pointWritten(); // this Producer may not echo at all
        QTest::qWait(1500);
        QCOMPARE(words(), "10.77.0.1: connected");
        for (const int time : {9000, 50, 50, 30, 30, 10, 10, 90, 90, 70, 70})
            emit canvas->pointConfirmed(time);
        emit canvas->pointsSettled();
        QTRY_COMPARE(words(), "10.77.0.1: connected, confirms a change after 50 ms");
        emit canvas->pointWritten();
        QTRY_COMPARE(words(), "10.77.0.1: connected, but not answering");
        emit canvas->pointConfirmed(1200);
        emit canvas->pointsSettled();
        QTRY_COMPARE(words(), "10.77.0.1: connected, confirms a change after 60 ms");
        loseConnection();
        QCOMPARE(overlay()->findChild<LinkBadge*>()->accessibleName(),
                 "10.77.0.1: not connected, trying to connect again");
        QCOMPARE(words(), overlay()->findChild<LinkBadge*>()->accessibleName());
    }

    void reconnectsAtOnceAfterDisconnect() {
        connectByHand();
        rig_->window->onDisconnectFromServer();
        rig_->window->onConnectToServer(kProducer);
        QTRY_VERIFY(client().isConnected());
        rig_->window->onDisconnectFromServer();
        QCoreApplication::processEvents();
        QVERIFY(shows<ConnectPage>() && !showsMenu());
    }

    void refusedConnectionChangesNothing() {
        QTRY_VERIFY(button(find<IPList>(), kProducer));
        rig_->producer.stopListening();
        pressConnect();
        QTRY_VERIFY(find<InputGate>()->isOpen());
        QVERIFY(!client().isConnected());
        QVERIFY(shows<ConnectPage>() && !showsMenu() && !overlay());
        QVERIFY(find<IPList>()->selectedIp().isEmpty());
    }

    void listFollowsDiscovery() {
        for (const QString& ip : {kFirst, kSecond, kFirst})
            emit discovery().serverDiscovered(ip);
        QCOMPARE(listed(), QStringList({kFirst, kSecond}));
        emit discovery().serverTimeouted("10.0.0.100");
        emit discovery().serverTimeouted(kFirst);
        QCOMPARE(listed(), QStringList({kSecond}));
        emit discovery().serverDiscovered(kFirst);
        emit discovery().serverDisconnected(kSecond);
        QCOMPARE(listed(), QStringList({kFirst}));

        find<Content>()->purgeIp();
        emit discovery().serverDiscovered(kFirst);
        QCOMPARE(listed(), QStringList());
        emit discovery().serverTimeouted(kFirst);
        emit discovery().serverDiscovered(kFirst);
        QCOMPARE(listed(), QStringList({kFirst}));
    }

    void selectedAddressIsConnectedToOnce() {
        emit discovery().serverDiscovered(kFirst);
        emit discovery().serverDiscovered(kSecond);
        disconnect(find<ConnectPage>(), nullptr, rig_->window.get(), nullptr);
        QSignalSpy connections(find<ConnectPage>(), &ConnectPage::connection);
        QPushButton* connect = button(page(), QString());
        QTest::mouseClick(connect, Qt::LeftButton); // nothing is selected
        QVERIFY(connections.isEmpty());

        QTRY_VERIFY(button(find<IPList>(), kSecond));
        QTest::mouseClick(button(find<IPList>(), kSecond), Qt::LeftButton);
        QTest::mouseClick(button(find<IPList>(), kFirst), Qt::LeftButton);
        QCOMPARE(listed(), QStringList({kFirst + " selected", kSecond}));
        emit discovery().serverTimeouted(kFirst); // stays selected without its button
        emit discovery().serverDiscovered(kFirst);
        QCOMPARE(listed(), QStringList({kFirst + " selected", kSecond})); // its old place
        QTest::mouseClick(connect, Qt::LeftButton);
        QTest::mouseClick(connect, Qt::LeftButton);
        QCOMPARE(connections.size(), 1);
        QCOMPARE(connections.first(), QVariantList{kFirst});
        QCOMPARE(listed(), QStringList({kFirst, kSecond}));

        QTest::keyClick(handle_, Qt::Key_Down);
        for (const QString& selected : {kFirst, kSecond})
            if (find<IPList>()->selectedIp() != selected) // a real one may stand above
                QTest::keyClick(handle_, Qt::Key_Down);
        QTest::keyClick(handle_, Qt::Key_Up);
        QTest::keyClick(handle_, Qt::Key_Return);
        QCOMPARE(connections.size(), 2);
        QCOMPARE(connections.last(), QVariantList{kFirst});
    }

    void addressesStayUnderTheFinger() {
        for (const QString& ip : {kFirst, kSecond})
            emit discovery().serverDiscovered(ip);
        QTRY_VERIFY(button(find<IPList>(), kProducer));
        QCoreApplication::processEvents(); // lays the list out
        const QRect second = inWindow(button(find<IPList>(), kSecond));
        const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
        const auto finger = [&] { return QTest::touchEvent(handle_, screen.get()); };
        finger().press(0, second.center());
        emit discovery().serverTimeouted(kFirst);
        for (int i = 0; i < 30; ++i)
            emit discovery().serverDiscovered(QString("10.0.1.%1").arg(i));
        QCoreApplication::processEvents();
        QCOMPARE(inWindow(button(find<IPList>(), kSecond)).y(), second.y());
        QVERIFY(button(find<IPList>(), kSecond)->isDown());
        finger().release(0, second.center());
        QCOMPARE(find<IPList>()->selectedIp(), kSecond);

        auto* area = qobject_cast<QScrollArea*>(find<IPList>()->parent()->parent());
        area->ensureWidgetVisible(button(find<IPList>(), "10.0.1.29"));
        auto* last = button(find<IPList>(), "10.0.1.28");
        QMouseEvent press(QEvent::MouseButtonPress, {5, 5}, {}, {}, Qt::LeftButton, Qt::LeftButton,
                          {}, Qt::MouseEventSynthesizedBySystem);
        QCoreApplication::sendEvent(last, &press); // Windows makes it from a touch
        QVERIFY(!last->isDown());
        const QRect place = inWindow(last);
        finger().press(0, place.center());
        emit discovery().serverTimeouted("10.0.1.29");
        QCoreApplication::processEvents();
        QCOMPARE(inWindow(last).y(), place.y()); // although the list becomes shorter
        finger().release(0, place.center());
        QCOMPARE(find<IPList>()->selectedIp(), last->text());

        area->ensureWidgetVisible(button(find<IPList>(), kProducer));
        const QPoint start = inWindow(button(find<IPList>(), kProducer)).center();
        finger().press(0, start);
        for (int y = 10; y <= 150; y += 10) {
            QTest::qWait(1); // QScroller computes a velocity from the time between events
            finger().move(0, start - QPoint(0, y));
        }
        QTRY_VERIFY(inWindow(button(find<IPList>(), kProducer)).center().y() < start.y() - 100);
        finger().release(0, start - QPoint(0, 150));
        QCOMPARE(find<IPList>()->selectedIp(), last->text());
    }

    void survivesLossOfPressedAddress() {
        emit discovery().serverDiscovered(kFirst);
        QTRY_VERIFY(button(find<IPList>(), kFirst));
        QCoreApplication::processEvents(); // lays the list out
        const QPoint position = inWindow(button(find<IPList>(), kFirst)).center();
        QTest::mousePress(handle_, Qt::LeftButton, {}, position);
        QVERIFY(button(find<IPList>(), kFirst)->isDown());
        emit discovery().serverTimeouted(kFirst);
        QTest::mouseRelease(handle_, Qt::LeftButton, {}, position);
        QVERIFY(find<IPList>()->selectedIp().isEmpty());
    }

    void tabShowsPageThatPassesKeysOn_data() {
        QTest::addColumn<int>("position"); // cap, tabs, cap
        QTest::addColumn<QByteArray>("page");
        for (int position = 0;
             const char* page : {"WarpPage", "WarpPage", "QuickKeysPage", "TestPatternPage",
                                 "SettingsPage", "SettingsPage"})
            QTest::addRow("%s at %d", page, position) << position << QByteArray(page), ++position;
    }
    void tabShowsPageThatPassesKeysOn() {
        QFETCH(int, position);
        connectByHand();
        const auto buttons = find<HeadBanner>()->findChild<QButtonGroup*>()->buttons();
        find<Content>()->setPage(position < 2 ? Page::Settings : Page::Warp);
        QTest::mousePress(buttons[position], Qt::LeftButton);
        QTEST(QByteArray(page()->metaObject()->className()), "page");
        QCOMPARE(buttons[position == 0 ? 1 : qMin(position, 4)]->styleSheet(),
                 QString(ShellLook::kTabOn));
        const KeyRecorder recorder;
        const QList<int> keys{Qt::Key_M, Qt::Key_Space, Qt::Key_Left};
        for (const int key : keys)
            QTest::keyClick(handle_, Qt::Key(key));
        QCOMPARE(recorder.keys, position < 2 ? QList<int>() : keys); // the scene takes all keys
    }

    void tabKeyReachesTheBanner() {
        connectByHand();
        find<Content>()->setPage(Page::Settings);
        const auto tabTo = [&](QPushButton* target) {
            for (int i = 0; i < 20 && !target->hasFocus(); ++i)
                QTest::keyClick(handle_, Qt::Key_Tab);
            return target->hasFocus();
        };
        QVERIFY(tabTo(button(find<HeadBanner>(), kDisconnect)));
        QVERIFY(tabTo(button(find<HeadBanner>(), "Test patterns")));
        QTest::keyClick(handle_, Qt::Key_Space);
        QVERIFY(shows<TestPatternPage>() && page()->hasFocus());
    }

    void shownPageKeepsItsFocus() {
        connectByHand();
        auto* search = page()->findChild<QLineEdit*>();
        search->setFocus();
        QTest::mouseClick(button(find<HeadBanner>(), "Warp"), Qt::LeftButton);
        QVERIFY(search->hasFocus());
    }

    void lossShowsTheOverlay() {
        connectByHand();
        QSignalSpy forgotten(&discovery(), &NetworkUtils::serverDisconnected);
        loseConnection();
        QCOMPARE(forgotten.size(), 1);
        QCOMPARE(forgotten.first(), QVariantList{kProducer});
        QCOMPARE(overlay()->geometry(), rig_->window->rect());
        emit EventDispatcher::getInstance()->disconnected(); // again
        QCOMPARE(forgotten.size(), 2);
        QCOMPARE(rig_->window->findChildren<DisconnectOverlay*>().size(), 1);
        rig_->window->resize(1600, 900);
        QTRY_COMPARE(overlay()->geometry(), rig_->window->rect());
    }

    void overlayBlocksKeys() {
        connectByHand();
        find<WarpPage>()->findChild<QCheckBox*>()->setFocus();
        const KeyRecorder recorder;
        QTest::keyClick(handle_, Qt::Key_M);
        loseConnection();
        for (const auto key : {Qt::Key_M, Qt::Key_Space, Qt::Key_Left, Qt::Key_Tab, Qt::Key_Tab})
            QTest::keyClick(handle_, key); // the second Tab leaves the button again
        QTest::keyClick(handle_, Qt::Key_Escape);
        QCOMPARE(recorder.keys, QList<int>{Qt::Key_M}); // of before the loss
        QVERIFY(overlay());
        startProducer();
        QTRY_VERIFY(rig_->isReady());
        QVERIFY(find<WarpPage>()->findChild<QCheckBox*>()->hasFocus());
    }

    void reconnectsAfterEveryLoss() {
        connectByHand();
        rig_->producer.send(AddMediaEvent(MediaType::Image, 1, 2, 3, 16, 9, 0, 0, "Media", false));
        find<SettingsPage>()->findChild<QCheckBox*>()->setChecked(true);
        for (auto* choice : find<SettingsPage>()->findChildren<QComboBox*>())
            choice->setCurrentIndex(choice->count() - 1);
        QTRY_VERIFY(find<Item>());
        for (int loss = 1; loss <= 2; ++loss) {
            find<Content>()->setPage(Page::QuickKeys);
            loseConnection();
            QVERIFY(shows<QuickKeysPage>());
            const QSignalSpy attempts(&client(), &CompanionClient::connectingFinished);
            QVERIFY(rig_->producer.answerDiscovery(QHostAddress(kProducer))); // but refuses
            QTRY_VERIFY(attempts.size() >= 3);
            QVERIFY(overlay() && !client().isConnected());
            startProducer();
            QTRY_VERIFY(client().isConnected() && !overlay());
            QVERIFY(rig_->gets(MsgEvent("getResources"), UpdateSettingsEvent("#ffff00", 4)));
            QVERIFY(shows<WarpPage>());
            QVERIFY(!find<Item>());
            QCOMPARE(button(find<HeadBanner>(), "Warp")->styleSheet(), QString(ShellLook::kTabOn));
        }
    }

    void disconnectEndsWatching_data() {
        QTest::addColumn<bool>("lost");
        QTest::newRow("connected") << false;
        QTest::newRow("connection lost") << true;
    }

    void disconnectEndsWatching() {
        QFETCH(bool, lost);
        const QPushButton* disconnecting = disconnectButton();
        rig_->producer.send(AddMediaEvent(MediaType::Image, 1, 2, 3, 16, 9, 0, 0, "Media", false));
        QTRY_COMPARE(find<Item>() != nullptr, !lost);
        const QPoint on = inWindow(disconnecting).center();
        const QPoint off = on - QPoint(disconnecting->width(), 0);
        QTest::mousePress(handle_, Qt::LeftButton, {}, on);
        QTest::mouseMove(handle_, off);
        QTest::mouseRelease(handle_, Qt::LeftButton, {}, off);
        QVERIFY(shows<WarpPage>() && client().isConnected() == !lost); // until a whole click
        QTest::mouseClick(handle_, Qt::LeftButton, {}, on);
        QVERIFY(!overlay() && !client().isConnected());
        QVERIFY(shows<ConnectPage>() && !showsMenu() && !find<Item>());

        if (lost)
            startProducer();
        QTRY_COMPARE(rig_->producer.connectionCount(), 0);
        const int accepted = rig_->producer.acceptedCount();
        QTRY_VERIFY(button(find<IPList>(), kProducer));
        QTest::qWait(50); // several periods of the watcher
        QCOMPARE(rig_->producer.acceptedCount(), accepted);

        rig_->producer.forget();
        connectByHand(); // starts the watcher again
        loseConnection();
        startProducer();
        QTRY_VERIFY(client().isConnected());
    }

    void closesWindowInAnyState_data() { disconnectEndsWatching_data(); }
    void closesWindowInAnyState() {
        QFETCH(bool, lost);
        static_cast<void>(disconnectButton());
        if (lost)
            startProducer();
        rig_->close();
        rig_->producer.send(MsgEvent("newShow")); // without a listener
        QTest::qWait(50);                         // several periods of the watcher
        QCOMPARE(client().isConnected(), !lost);
    }

    /// Some window systems report a repetition as a release and a press.
    void heldKeyPressesOnce() {
        KeyRepeatFilter filter(nullptr);
        qApp->installEventFilter(&filter);
        QPushButton button;
        button.show();
        QSignalSpy pressed(&button, &QPushButton::pressed);
        QSignalSpy released(&button, &QPushButton::released);
        const auto send = [&](QEvent::Type type, quint64 time, Qt::Key key = Qt::Key_Space) {
            QKeyEvent event(type, key, Qt::NoModifier);
            event.setTimestamp(time);
            QSpontaneKeyEvent::setSpontaneous(&event); // as from the window system
            qApp->notify(button.windowHandle(), &event);
        };
        for (const quint64 time : {1000, 1070, 1111}) { // 30 and 1 ms after the release
            send(QEvent::KeyPress, time);
            send(QEvent::KeyRelease, time + 40);
        }
        QCOMPARE(pressed.size(), 1);
        QCOMPARE(released.size(), 0);
        QTRY_COMPARE(released.size(), 1);
        send(QEvent::KeyPress, 1182); // 31 ms after the release
        send(QEvent::KeyRelease, 1200);
        send(QEvent::KeyPress, 1201, Qt::Key_A);
        QCOMPARE(pressed.size(), 2);
        QCOMPARE(released.size(), 2);
    }

private:
    void setUp() override {
        rig_.emplace(kFast);
        rig_->show();
        handle_ = rig_->window->windowHandle();
        startProducer();
    }
    void tearDown() override {
        rig_.reset();
        discovery().serverHasDisconnected(kProducer);
    }

    template <typename Widget>
    Widget* find() const {
        return rig_->find<Widget>();
    }

    QWidget* page() const { return find<Content>()->currentWidget(); }
    template <typename PageClass>
    bool shows() const {
        return qobject_cast<PageClass*>(page()) != nullptr;
    }

    bool showsMenu() const { return button(find<HeadBanner>(), kDisconnect) != nullptr; }
    DisconnectOverlay* overlay() const {
        const auto overlays = rig_->window->findChildren<DisconnectOverlay*>();
        const auto shown = std::ranges::find_if(overlays, &QWidget::isVisible);
        return shown == overlays.end() ? nullptr : *shown;
    }

    QRect inWindow(const QWidget* widget) const {
        return {widget->mapTo(rig_->window.get(), QPoint()), widget->size()};
    }

    /// The addresses without a Producer; the selected one is marked.
    QStringList listed() const {
        QStringList texts;
        const QLayout* layout = find<IPList>()->layout();
        for (int i = 0; i < layout->count(); ++i) {
            const auto* address = qobject_cast<QPushButton*>(layout->itemAt(i)->widget());
            const bool isOn =
                address && address->styleSheet() == QLatin1StringView(ShellLook::kAddressButtonOn);
            if (address && address->text().startsWith("10.0."))
                texts << address->text() + (isOn ? " selected" : "");
        }
        return texts;
    }

    static QPushButton* button(const QWidget* parent, const QString& text) {
        for (auto* candidate : parent->findChildren<QPushButton*>())
            if (candidate->text() == text && candidate->isVisible())
                return candidate;
        return nullptr;
    }

    void startProducer() {
        QVERIFY(rig_->producer.listen(QHostAddress(kProducer), WindowRig::kProducerPort));
        QVERIFY(rig_->producer.answerDiscovery(QHostAddress(kProducer)));
        discovery().pingServers();
    }

    void pressConnect() { connectTo(kProducer); }
    void connectTo(const QString& ip) {
        QTRY_VERIFY(button(find<IPList>(), ip));
        QTest::mouseClick(button(find<IPList>(), ip), Qt::LeftButton);
        QTest::mouseClick(button(page(), QString()), Qt::LeftButton);
    }
    void clickAt(QPoint position) { QTest::mouseClick(handle_, Qt::LeftButton, {}, position); }
    /// What the badge of the banner says.
    QString words() const { return find<HeadBanner>()->findChild<LinkBadge*>()->accessibleName(); }

    void connectByHand() {
        pressConnect();
        QTRY_VERIFY(rig_->isReady());
        QTRY_COMPARE(rig_->producer.eventsOf<UpdateSettingsEvent>().size(), 1U);
    }

    void loseConnection() {
        rig_->producer.stopAnswering();
        rig_->producer.stopListening();
        QCoreApplication::processEvents(); // receives an answer that has been sent
        rig_->producer.abortConnections();
        QTRY_VERIFY(overlay());
        rig_->producer.forget();
    }

    /// The visible "Disconnect" button, after a loss of the connection if the data row says so.
    QPushButton* disconnectButton() {
        QFETCH(bool, lost);
        connectByHand();
        if (lost)
            loseConnection();
        return button(lost ? static_cast<QWidget*>(overlay()) : find<HeadBanner>(), kDisconnect);
    }

    static CompanionClient& client() { return EventDispatcher::getInstance()->client(); }
    static NetworkUtils& discovery() { return EventDispatcher::getInstance()->networkUtils(); }

    std::optional<WindowRig> rig_;
    QWindow* handle_ = nullptr;
    const std::unique_ptr<QPointingDevice> touchscreen_{QTest::createTouchDevice()};
};

QTEST_MAIN(TestGuiCompanion)
#include "tst_gui_companion.moc"
