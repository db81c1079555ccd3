#include "app/ConnectPage.h"
#include "app/Content.h"
#include "app/DisconnectOverlay.h"
#include "app/HeadBanner.h"
#include "app/IPList.h"
#include "app/KeyRepeatFilter.h"
#include "app/ToolTipFilter.h"
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
#include "warp/Item.h"
#include "warp/WarpPage.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

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
constexpr Timing kFast{10ms, 10ms, 5ms};

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
    void init() {
        GuardedTest::init();
        qApp->installEventFilter(this);
        rig_.emplace(kFast);
        rig_->show();
        handle_ = rig_->window->windowHandle();
        startProducer();
    }

    void cleanup() {
        qApp->removeEventFilter(this);
        rig_.reset();
        discovery().serverHasDisconnected(kProducer);
        GuardedTest::cleanup();
        QCOMPARE(std::exchange(strayWindows_, {}), QStringList());
    }

    void connectingRequestsTheShow() {
        QVERIFY(!rig_->window->windowIcon().isNull());
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
        QVERIFY(rig_->getsNothing());
        QCOMPARE(rig_->producer.acceptedCount(), 1);
    }

    void operatorCanReconnectAtOnce() {
        connectByHand();
        rig_->window->onDisconnectFromServer();
        rig_->window->onConnectToServer(kProducer);
        rig_->window->onDisconnectFromServer();
        QTest::qWait(1);
        QVERIFY(shows<ConnectPage>() && !showsMenu());
    }

    void refusedConnectionChangesNothing() {
        QTRY_VERIFY(button(find<IPList>(), kProducer));
        rig_->producer.stopListening();
        pressConnect();
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
    }

    void purgedAddressReturnsAfterItsLoss() {
        emit discovery().serverDiscovered(kFirst);
        find<Content>()->purgeIp();
        emit discovery().serverDiscovered(kFirst);
        QCOMPARE(listed(), QStringList());
        emit discovery().serverTimeouted(kFirst);
        emit discovery().serverDiscovered(kFirst);
        QCOMPARE(listed(), QStringList({kFirst}));
    }

    void selectedAddressIsConnectedTo() {
        emit discovery().serverDiscovered(kFirst);
        emit discovery().serverDiscovered(kSecond);
        disconnect(find<ConnectPage>(), nullptr, rig_->window.get(), nullptr);
        QSignalSpy connections(find<ConnectPage>(), &ConnectPage::connection);
        QPushButton* connect = button(page(), QString());
        QTest::mouseClick(connect, Qt::LeftButton); // nothing is selected
        QVERIFY(connections.isEmpty() && !offersConnection());

        QTRY_VERIFY(button(find<IPList>(), kSecond));
        QTest::mouseClick(button(find<IPList>(), kSecond), Qt::LeftButton);
        QTest::mouseClick(button(find<IPList>(), kFirst), Qt::LeftButton);
        QCOMPARE(listed(), QStringList({kFirst + " selected", kSecond}));
        emit discovery().serverTimeouted(kFirst); // stays selected without its button
        QVERIFY(offersConnection());
        emit discovery().serverDiscovered(kFirst);
        QCOMPARE(listed(), QStringList({kSecond, kFirst + " selected"}));

        QTest::mouseClick(connect, Qt::LeftButton);
        QTest::mouseClick(connect, Qt::LeftButton);
        QCOMPARE(connections.size(), 1);
        QCOMPARE(connections.first(), QVariantList{kFirst});
        QCOMPARE(listed(), QStringList({kSecond, kFirst}));
        QVERIFY(!offersConnection());
    }

    void pressedAddressMayDisappear() {
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

    void longListScrolls() {
        for (int i = 0; i < 40; ++i)
            emit discovery().serverDiscovered(QStringLiteral("10.0.1.%1").arg(i));
        auto* scrollBar = page()->findChild<QScrollArea*>()->verticalScrollBar();
        QTRY_VERIFY(scrollBar->maximum() > 0);
        scrollBar->setValue(scrollBar->maximum());
        QVERIFY(inWindow(page()).contains(inWindow(button(find<IPList>(), "10.0.1.39"))));
        QVERIFY(inWindow(page()).contains(inWindow(button(page(), QString()))));
    }

    void tabShowsItsPage_data() {
        QTest::addColumn<int>("position"); // cap, tabs, cap
        QTest::addColumn<QByteArray>("page");
        QTest::addColumn<QByteArray>("lit"); // which of them look selected
        QTest::newRow("left cap") << 0 << QByteArray("WarpPage") << QByteArray("110000");
        QTest::newRow("first tab") << 1 << QByteArray("WarpPage") << QByteArray("110000");
        QTest::newRow("second tab") << 2 << QByteArray("QuickKeysPage") << QByteArray("001000");
        QTest::newRow("third tab") << 3 << QByteArray("TestPatternPage") << QByteArray("000100");
        QTest::newRow("last tab") << 4 << QByteArray("SettingsPage") << QByteArray("000011");
        QTest::newRow("right cap") << 5 << QByteArray("SettingsPage") << QByteArray("000011");
    }

    void tabShowsItsPage() {
        QFETCH(int, position);
        connectByHand();
        const auto row = find<HeadBanner>()->findChild<QButtonGroup*>()->buttons();
        const auto lit = [&row] {
            QByteArray marks;
            for (const QAbstractButton* each : row) {
                const QString on[] = {ShellLook::kLeftCapOn, ShellLook::kTabOn,
                                      ShellLook::kRightCapOn};
                marks += std::ranges::count(on, each->styleSheet()) > 0 ? '1' : '0';
            }
            return marks;
        };
        QCOMPARE(lit(), QByteArray("110000"));
        find<Content>()->setPage(position < 2 ? Page::Settings : Page::Warp);
        QTest::mousePress(row[position], Qt::LeftButton);
        QTEST(QByteArray(page()->metaObject()->className()), "page");
        QTEST(lit(), "lit");
        QVERIFY(!find<HeadBanner>()->isAncestorOf(QApplication::focusWidget()));
    }

    void unknownTabShowsNoPage() {
        messages_->expect(QtDebugMsg, "This menu page does not exist!", 2);
        find<HeadBanner>()->onMenuTabPressed(0);
        find<HeadBanner>()->onMenuTabPressed(5);
        QVERIFY(shows<ConnectPage>());
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
        QPushButton* tab = button(find<HeadBanner>(), "Test patterns");
        const QImage unfocused = tab->grab().toImage();
        QVERIFY(tabTo(tab));
        QVERIFY(tab->grab().toImage() != unfocused);
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

    void keysOfEveryPageReachTheListeners() {
        connectByHand();
        KeyRecorder recorder;
        for (const Page page : {Page::QuickKeys, Page::TestPatterns, Page::Settings, Page::Warp}) {
            find<Content>()->setPage(page);
            QList<int> keys{Qt::Key_M, Qt::Key_Space, Qt::Key_Left};
            if (page == Page::Warp) {
                find<WarpPage>()->findChild<QCheckBox*>()->setFocus();
                keys = {Qt::Key_M}; // a check box uses the others
            }
            for (const int key : keys)
                QTest::keyClick(handle_, Qt::Key(key));
            QCOMPARE(std::exchange(recorder.keys, {}), keys);
        }
    }

    void lossShowsTheOverlay() {
        connectByHand();
        const QRect position = inWindow(button(find<HeadBanner>(), kDisconnect));
        QSignalSpy forgotten(&discovery(), &NetworkUtils::serverDisconnected);
        loseConnection();
        QCOMPARE(forgotten.size(), 1);
        QCOMPARE(forgotten.first(), QVariantList{kProducer});
        QVERIFY(shows<WarpPage>());
        QCOMPARE(overlay()->geometry(), rig_->window->rect());
        QTRY_COMPARE(inWindow(button(overlay(), kDisconnect)), position);
        emit EventDispatcher::getInstance()->disconnected(); // again
        QCOMPARE(forgotten.size(), 2);
        QCOMPARE(rig_->window->findChildren<DisconnectOverlay*>().size(), 1);
        rig_->window->resize(1600, 900);
        QTRY_COMPARE(overlay()->geometry(), QRect(0, 0, 1600, 900));
    }

    void overlayBlocksKeys() {
        connectByHand();
        find<WarpPage>()->findChild<QCheckBox*>()->setFocus();
        loseConnection();
        const KeyRecorder recorder;
        for (const auto key : {Qt::Key_M, Qt::Key_Space, Qt::Key_Left, Qt::Key_Tab, Qt::Key_Tab})
            QTest::keyClick(handle_, key); // the second Tab leaves the button again
        QTest::keyClick(handle_, Qt::Key_Escape);
        QCOMPARE(recorder.keys, QList<int>());
        QVERIFY(overlay());
        startProducer();
        QTRY_VERIFY(!overlay());
        QVERIFY(find<WarpPage>()->findChild<QCheckBox*>()->hasFocus());
    }

    void everyLossIsFollowedByAReconnection() {
        connectByHand();
        rig_->producer.send(AddMediaEvent(MediaType::Image, 1, 2, 3, 16, 9, 0, 0, "Media", false));
        find<SettingsPage>()->findChild<QCheckBox*>()->setChecked(true);
        for (auto* choice : find<SettingsPage>()->findChildren<QComboBox*>())
            choice->setCurrentIndex(choice->count() - 1);
        QTRY_VERIFY(find<Item>());
        QSignalSpy forgotten(&discovery(), &NetworkUtils::serverDisconnected);
        for (int loss = 1; loss <= 2; ++loss) {
            find<Content>()->setPage(Page::QuickKeys);
            loseConnection();
            QCOMPARE(forgotten.size(), loss);
            QVERIFY(shows<QuickKeysPage>());
            startProducer();
            QTRY_VERIFY(client().isConnected() && !overlay());
            QVERIFY(rig_->gets(MsgEvent("getResources"), UpdateSettingsEvent("#ffff00", 4)));
            QVERIFY(shows<WarpPage>());
            QVERIFY(!find<Item>());
            QCOMPARE(button(find<HeadBanner>(), "Warp")->styleSheet(), QString(ShellLook::kTabOn));
        }
    }

    void overlayGoesBeforeARefusedReconnection() {
        connectByHand();
        loseConnection();
        QVERIFY(rig_->producer.answerDiscovery(QHostAddress(kProducer))); // but refuses connections
        QTRY_VERIFY(!overlay());
        QVERIFY(!client().isConnected());
        QVERIFY(rig_->producer.listen(QHostAddress(kProducer), WindowRig::kProducerPort));
        QTRY_VERIFY(client().isConnected());
    }

    void connectionThatBreaksAtOnceIsALoss() {
        QTRY_VERIFY(button(find<IPList>(), kProducer));
        rig_->producer.stopAnswering();
        QCoreApplication::processEvents(); // receives an answer that has been sent
        const auto breaking = connect(&rig_->producer, &FakeProducer::connected, this, [this] {
            rig_->producer.stopListening();
            rig_->producer.abortConnections();
        });
        pressConnect();
        QTRY_VERIFY(overlay());
        QVERIFY(shows<WarpPage>());
        disconnect(breaking);
        startProducer();
        QTRY_VERIFY(client().isConnected() && !overlay());
    }

    void disconnectEndsWatching_data() {
        QTest::addColumn<bool>("lost");
        QTest::newRow("connected") << false;
        QTest::newRow("connection lost") << true;
    }

    void disconnectEndsWatching() {
        QFETCH(bool, lost);
        QPushButton* disconnecting = disconnectButton();
        rig_->producer.send(AddMediaEvent(MediaType::Image, 1, 2, 3, 16, 9, 0, 0, "Media", false));
        QTest::mousePress(disconnecting, Qt::LeftButton);
        QVERIFY(shows<WarpPage>()); // until the release
        QTRY_COMPARE(find<Item>() != nullptr, !lost);
        QTest::mouseRelease(disconnecting, Qt::LeftButton);
        QVERIFY(!overlay() && !client().isConnected());
        QVERIFY(shows<ConnectPage>() && !showsMenu());
        QVERIFY(!find<Item>());

        if (lost)
            startProducer();
        QTRY_COMPARE(rig_->producer.connectionCount(), 0);
        const int accepted = rig_->producer.acceptedCount();
        QTRY_VERIFY(button(find<IPList>(), kProducer));
        QTest::qWait(50); // several periods of the watcher
        QCOMPARE(rig_->producer.acceptedCount(), accepted);
        QVERIFY(shows<ConnectPage>() && !overlay());

        rig_->producer.forget();
        connectByHand(); // starts the watcher again
        loseConnection();
        startProducer();
        QTRY_VERIFY(client().isConnected());
    }

    void slidingOffCancelsDisconnect_data() { disconnectEndsWatching_data(); }
    void slidingOffCancelsDisconnect() {
        const QPushButton* disconnecting = disconnectButton();
        const bool wasConnected = client().isConnected();
        const QPoint on = inWindow(disconnecting).center();
        const QPoint off = on - QPoint(disconnecting->width(), 0);
        QTest::mousePress(handle_, Qt::LeftButton, {}, on);
        QTest::mouseMove(handle_, off);
        QVERIFY(!disconnecting->isDown());
        QTest::mouseRelease(handle_, Qt::LeftButton, {}, off);
        QCOMPARE(client().isConnected(), wasConnected);
        QVERIFY(shows<WarpPage>());
        QCOMPARE(overlay() != nullptr, !wasConnected);
    }

    void windowMayCloseInAnyState_data() { disconnectEndsWatching_data(); }
    void windowMayCloseInAnyState() {
        QFETCH(bool, lost);
        static_cast<void>(disconnectButton());
        if (lost)
            startProducer();
        rig_->close();
        rig_->producer.send(MsgEvent("newShow")); // without a listener
        QTest::qWait(50);                         // several periods of the watcher
        QCOMPARE(client().isConnected(), !lost);
    }

    /// Some window systems report a repetition as release and press of the same time.
    void heldKeyPressesOnce() {
        KeyRepeatFilter filter(nullptr);
        qApp->installEventFilter(&filter);
        QPushButton button;
        QSignalSpy pressed(&button, &QPushButton::pressed);
        QLineEdit edit;
        const auto press = [](QWidget& widget, quint64 from, quint64 to) {
            for (auto [type, time] :
                 {std::pair{QEvent::KeyPress, from}, {QEvent::KeyRelease, to}}) {
                QKeyEvent event(type, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
                event.setTimestamp(time);
                QApplication::sendEvent(&widget, &event);
            }
        };
        for (quint64 time = 1000; time < 1400; time += 40)
            press(button, time, time + 40);
        QCOMPARE(pressed.size(), 1);
        press(button, 1401, 1440);
        QCOMPARE(pressed.size(), 2);
        for (quint64 time = 2000; time < 2400; time += 40)
            press(edit, time, time + 40);
        QCOMPARE(edit.text(), QString(10, ' ')); // repeats
    }

    void toolTipHasTheApplicationsStyle() {
        ToolTipFilter filter(nullptr);
        qApp->installEventFilter(&filter);
        connectByHand();
        QPushButton* styled = button(find<HeadBanner>(), kDisconnect);
        styled->setToolTip("Tip");
        QHelpEvent rest(QEvent::ToolTip, QPoint(2, 2), styled->mapToGlobal(QPoint(2, 2)));
        QApplication::sendEvent(styled, &rest);
        QCOMPARE(QToolTip::text(), "Tip");
        const auto windows = QApplication::topLevelWidgets();
        const auto tip = std::ranges::find_if(windows, [](const QWidget* window) {
            return window->windowType() == Qt::ToolTip && window->isVisible();
        });
        QVERIFY(tip != windows.end());
        QCOMPARE((*tip)->grab().toImage().pixelColor(4, (*tip)->height() / 2), QColor(0x1e1e1e));
        QToolTip::hideText();
    }

protected:
    /// Notes every other window than the main window and tool tips.
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* widget = qobject_cast<QWidget*>(watched);
        if (event->type() == QEvent::Show && widget && widget->isWindow() &&
            widget != rig_->window.get() && widget->windowType() != Qt::ToolTip)
            strayWindows_ << widget->metaObject()->className();
        return QObject::eventFilter(watched, event);
    }

private:
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
        for (const auto* address : find<IPList>()->findChildren<QPushButton*>()) {
            const bool isOn =
                address->styleSheet() == QLatin1StringView(ShellLook::kAddressButtonOn);
            if (address->text().startsWith("10.0."))
                texts << address->text() + (isOn ? " selected" : "");
        }
        return texts;
    }

    bool offersConnection() const {
        const QPushButton* connect = button(page(), QString());
        const bool isOn = connect->styleSheet() == QLatin1StringView(ShellLook::kConnectButtonOn);
        [&] { QCOMPARE(connect->cursor().shape() == Qt::PointingHandCursor, isOn); }();
        return isOn;
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

    void pressConnect() {
        QTRY_VERIFY(button(find<IPList>(), kProducer));
        QTest::mouseClick(button(find<IPList>(), kProducer), Qt::LeftButton);
        QTest::mouseClick(button(page(), QString()), Qt::LeftButton);
    }

    void connectByHand() {
        pressConnect();
        QVERIFY(client().isConnected());
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
    QStringList strayWindows_;
};

QTEST_MAIN(TestGuiCompanion)
#include "tst_gui_companion.moc"
