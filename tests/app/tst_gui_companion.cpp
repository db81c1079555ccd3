#include "app/CheckConnection.h"
#include "app/ConnectPage.h"
#include "app/Content.h"
#include "app/DisconnectOverlay.h"
#include "app/EventDispatcher.h"
#include "app/GuiCompanion.h"
#include "app/HeadBanner.h"
#include "app/IPList.h"
#include "input/key_event_listener.h"
#include "input/key_event_manager.h"
#include "network/MsgEvent.h"
#include "network/UpdateSettingsEvent.h"
#include "pages/QuickKeysPage.h"
#include "pages/SettingsPage.h"
#include "pages/TestPatternPage.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/MessageGuard.h"
#include "tests/support/WindowUnderTest.h"
#include "warp/WarpPage.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QQuickWidget>
#include <QSignalSpy>
#include <QTest>

#include <optional>

using namespace NetworkCompanion;
using namespace std::chrono_literals;
using Companion::Page;
using MeshpadTest::FakeProducer;

namespace {

const QHostAddress kProducerAddress(QStringLiteral("10.77.0.1")); // this test's virtual interface
constexpr quint16 kProducerPort = 62330;

class KeyRecorder : public KeyEventListener {
public:
    KeyRecorder() { KeyEventManager::getInstance()->addListener(this); }
    ~KeyRecorder() override { KeyEventManager::getInstance()->removeListener(this); }
    Q_DISABLE_COPY_MOVE(KeyRecorder)
    void notified(QKeyEvent* event) override { keys << event->key(); }

    QList<int> keys;
};

} // namespace

/// The whole window with all its pages, used by mouse and keyboard, against a Producer that is
/// found by discovery and spoken to over TCP.
class TestGuiCompanion : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void startsOnTheConnectPage();
    void aProducerIsFoundAndAskedForItsShow();
    void aRefusedConnectionChangesNothing();
    void tabsShowTheirPages();
    void keysReachTheListeners();
    void controllerInputReachesTheWarpPage();
    void aLossVeilsTheWindow();
    void theVeilKeepsKeysAway();
    void aLossIsMendedAgainAndAgain();
    void aFailedReconnectionIsTriedAgain();
    void aConnectionThatBreaksAtOnceIsALoss();
    void theOperatorsDisconnectIsForGood_data();
    void theOperatorsDisconnectIsForGood();
    void theWindowMayGoInAnyState_data();
    void theWindowMayGoInAnyState();

private:
    template <typename Widget>
    Widget* find() const {
        return window_->findChild<Widget*>();
    }
    QWidget* currentPage() const { return find<Content>()->currentWidget(); }
    template <typename PageClass>
    bool shows() const {
        return qobject_cast<PageClass*>(currentPage()) != nullptr;
    }
    DisconnectOverlay* overlay() const;
    QPushButton* button(const QWidget* parent, const QString& text) const;
    void startProducer();
    void connectByHand();
    void loseConnection();
    void closeWindow();
    static CompanionClient& client() { return EventDispatcher::getInstance()->client(); }

    MeshpadTest::WindowUnderTest application_;
    std::optional<MeshpadTest::MessageGuard> messages_;
    std::unique_ptr<FakeProducer> producer_;
    std::unique_ptr<GuiCompanion> window_;
};

void TestGuiCompanion::initTestCase() {
    QVERIFY(application_.prepare());
}

void TestGuiCompanion::init() {
    messages_.emplace();
    CheckConnection::firstCheckDelay = 100ms;
    CheckConnection::checkPeriod = 100ms;
    window_ = std::make_unique<GuiCompanion>(nullptr);
    window_->show();
    QVERIFY(QTest::qWaitForWindowActive(window_.get()));
    startProducer();
}

void TestGuiCompanion::cleanup() {
    if (window_) {
        window_->onDisconnectFromServer();
        closeWindow();
    }
    client().disconnectFromServer();
    producer_.reset();
    EventDispatcher::getInstance()->networkUtils().serverHasDisconnected(
        kProducerAddress.toString());
    messages_->verify();
    messages_.reset();
}

void TestGuiCompanion::closeWindow() {
    find<Content>()->setPage(Page::Warp);
    auto* scene = find<QQuickWidget>();
    MeshpadTest::WindowUnderTest::clear(scene);
    window_.reset();
}

void TestGuiCompanion::startProducer() {
    producer_ = std::make_unique<FakeProducer>();
    QVERIFY(producer_->listen(kProducerAddress, kProducerPort));
    QVERIFY(producer_->answerDiscovery(kProducerAddress));
    EventDispatcher::getInstance()->networkUtils().pingServers(); // need not wait for the next one
}

DisconnectOverlay* TestGuiCompanion::overlay() const {
    for (auto* overlay : window_->findChildren<DisconnectOverlay*>()) {
        if (overlay->isVisible()) {
            return overlay;
        }
    }
    return nullptr;
}

QPushButton* TestGuiCompanion::button(const QWidget* parent, const QString& text) const {
    for (auto* candidate : parent->findChildren<QPushButton*>()) {
        if (candidate->text() == text && candidate->isVisible()) {
            return candidate;
        }
    }
    return nullptr;
}

/// As an operator does it.
void TestGuiCompanion::connectByHand() {
    const QString ip = kProducerAddress.toString();
    QTRY_VERIFY(button(find<IPList>(), ip) != nullptr);
    QTest::mouseClick(button(find<IPList>(), ip), Qt::LeftButton);
    QTest::mouseClick(button(currentPage(), QString()), Qt::LeftButton);
    QVERIFY(client().isConnected());
    QTRY_VERIFY(producer_->eventsOf<UpdateSettingsEvent>().size() == 1);
}

void TestGuiCompanion::loseConnection() {
    producer_->stopAnswering();
    producer_->stopListening();
    QCoreApplication::processEvents(); // takes an answer that is on its way
    producer_->abortConnections();
    QTRY_VERIFY(overlay() != nullptr);
}

void TestGuiCompanion::startsOnTheConnectPage() {
    QCOMPARE(window_->windowTitle(), QStringLiteral("Meshpad 1.7.2"));
    QVERIFY(!window_->windowIcon().isNull());
    QCOMPARE(window_->minimumSize(), QSize(1280, 720));
    QCOMPARE(window_->size(), QSize(1280, 720));
    QVERIFY(shows<ConnectPage>());
    // Nothing looks chosen, and the first Tab leads to the first address.
    auto* list = find<IPList>();
    QTRY_VERIFY(button(list, kProducerAddress.toString()) != nullptr);
    QVERIFY(window_->isActiveWindow() && !list->isAncestorOf(QApplication::focusWidget()));
    QTest::keyClick(window_->windowHandle(), Qt::Key_Tab);
    QVERIFY(button(list, kProducerAddress.toString())->hasFocus());
    QCOMPARE(find<HeadBanner>()->geometry(), QRect(0, 0, 1280, 110));
    QCOMPARE(find<Content>()->geometry().bottomRight(), window_->rect().bottomRight());
    QVERIFY(button(find<HeadBanner>(), QStringLiteral("Disconnect")) == nullptr);
}

void TestGuiCompanion::aProducerIsFoundAndAskedForItsShow() {
    QSignalSpy connected(window_.get(), &GuiCompanion::meshpadConnected);
    connectByHand();
    QCOMPARE(connected.count(), 1);
    const auto& events = producer_->events();
    QCOMPARE(events.size(), std::size_t(2));
    QVERIFY(*events[0] == MsgEvent("getResources"));
    QVERIFY(*events[1] == UpdateSettingsEvent("", 0));

    QVERIFY(shows<WarpPage>());
    QVERIFY(button(find<HeadBanner>(), QStringLiteral("Disconnect")) != nullptr);
    QCOMPARE(button(find<HeadBanner>(), QStringLiteral("Warp"))->styleSheet(),
             QLatin1StringView(ShellLook::kTabOn));
    QVERIFY(currentPage()->isAncestorOf(QApplication::focusWidget()));

    // The Producer is watched; as long as the connection stands that changes nothing.
    auto* watcher = &EventDispatcher::getInstance()->networkUtils();
    QVERIFY(watcher->getAvailableServers().contains(kProducerAddress.toString()));
    window_->onServerAvailableAgain();
    QTest::qWait(300);
    QCOMPARE(producer_->acceptedCount(), 1);
    QCOMPARE(producer_->events().size(), std::size_t(2));
}

void TestGuiCompanion::aRefusedConnectionChangesNothing() {
    const QString ip = kProducerAddress.toString();
    QTRY_VERIFY(button(find<IPList>(), ip) != nullptr);
    producer_->stopListening();
    QTest::mouseClick(button(find<IPList>(), ip), Qt::LeftButton);
    QTest::mouseClick(button(currentPage(), QString()), Qt::LeftButton);
    QVERIFY(!client().isConnected());
    QVERIFY(shows<ConnectPage>());
    QVERIFY(button(find<HeadBanner>(), QStringLiteral("Disconnect")) == nullptr);
    QVERIFY(find<IPList>()->selectedIp().isEmpty());
    QVERIFY(overlay() == nullptr);

    // The second attempt finds everything as the first one did.
    QVERIFY(producer_->listen(kProducerAddress, kProducerPort));
    connectByHand();
}

void TestGuiCompanion::tabsShowTheirPages() {
    connectByHand();
    auto* banner = find<HeadBanner>();
    const auto press = [&](const char* tab) {
        QTest::mouseClick(button(banner, QString::fromLatin1(tab)), Qt::LeftButton);
    };
    press("Quick Keys");
    QVERIFY(shows<QuickKeysPage>());
    press("Test patterns");
    QVERIFY(shows<TestPatternPage>());
    press("Settings");
    QVERIFY(shows<SettingsPage>());
    messages_->expect(QtDebugMsg, QStringLiteral("This menu page does not exist!"), 2);
    for (const int tab : {-1, 4}) {
        window_->goToPageFromMenu(tab);
        QVERIFY(shows<SettingsPage>());
    }
    auto* content = find<Content>();
    messages_->expect(QtDebugMsg, QStringLiteral("Page none should never be called"));
    content->setPage(Page::None);
    messages_->expect(QtDebugMsg, QStringLiteral("This page does not exist."));
    content->setPage(static_cast<Page>(6));
    QVERIFY(shows<SettingsPage>());

    // Without a mouse: Tab leads to the tabs and to the way out, and shows where it is.
    const auto tabTo = [&](const char* text) {
        QPushButton* target = button(banner, QString::fromLatin1(text));
        for (int i = 0; i < 20 && !target->hasFocus(); ++i) {
            QTest::keyClick(window_->windowHandle(), Qt::Key_Tab);
        }
        return target->hasFocus();
    };
    QVERIFY(currentPage()->hasFocus());
    QVERIFY(tabTo("Disconnect"));
    const auto look = [&] { return button(banner, "Test patterns")->grab().toImage(); };
    const QImage idle = look();
    QVERIFY(tabTo("Test patterns"));
    QVERIFY(look() != idle);
    QTest::keyClick(window_->windowHandle(), Qt::Key_Space);
    QVERIFY(shows<TestPatternPage>());
    QVERIFY(currentPage()->hasFocus());

    press("Warp");
    QVERIFY(shows<WarpPage>());
    QVERIFY(currentPage()->isAncestorOf(QApplication::focusWidget()));
    // To the page that is shown already the keyboard is not given again.
    auto* search = find<WarpPage>()->findChild<QLineEdit*>();
    search->setFocus();
    press("Warp");
    QVERIFY(search->hasFocus());
}

void TestGuiCompanion::keysReachTheListeners() {
    connectByHand();
    KeyRecorder recorder;
    auto* search = find<WarpPage>()->findChild<QLineEdit*>();
    QTest::mouseClick(search, Qt::LeftButton);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("map t"));
    QCOMPARE(search->text(), QStringLiteral("map t"));
    QCOMPARE(recorder.keys, QList<int>());

    find<WarpPage>()->findChild<QCheckBox*>()->setFocus();
    QTest::keyClick(window_->windowHandle(), Qt::Key_M);
    QCOMPARE(recorder.keys, QList<int>({Qt::Key_M}));
}

void TestGuiCompanion::controllerInputReachesTheWarpPage() {
    connectByHand();
    auto* content = find<Content>();
    auto* page = find<WarpPage>();
    QSignalSpy actions(page, &WarpPage::action);
    QSignalSpy left(page, &WarpPage::leftAxisMoved);
    QSignalSpy right(page, &WarpPage::rightAxisMoved);
    QSignalSpy pressure(page, &WarpPage::pressure);
    content->setPage(Page::Settings); // whichever page is shown
    content->onAction(Action::SELECT_ALL_POINTS);
    content->onLeftAxisMoved(0.25F, -0.5F);
    content->onRightAxisMoved(-1.0F, 1.0F);
    content->onPressure(0.75F);
    QCOMPARE(actions.count(), 1);
    QCOMPARE(actions.first().first().value<Action>(), Action::SELECT_ALL_POINTS);
    QCOMPARE(left.value(0), QVariantList({0.25F, -0.5F}));
    QCOMPARE(right.value(0), QVariantList({-1.0F, 1.0F}));
    QCOMPARE(pressure.value(0).value(0).toFloat(), 0.75F);
}

void TestGuiCompanion::aLossVeilsTheWindow() {
    CheckConnection::firstCheckDelay = 1h;
    connectByHand();
    const QPushButton* bannerButton = button(find<HeadBanner>(), QStringLiteral("Disconnect"));
    const QRect place(bannerButton->mapTo(window_.get(), QPoint()), bannerButton->size());
    QSignalSpy forgotten(&EventDispatcher::getInstance()->networkUtils(),
                         &NetworkUtils::serverDisconnected);
    loseConnection();
    QCOMPARE(overlay()->geometry(), window_->rect());
    QCOMPARE(forgotten.count(), 1);
    QCOMPARE(forgotten.first().first().toString(), kProducerAddress.toString());
    QVERIFY(shows<WarpPage>());

    // The way out is where the operator's finger knows it.
    const QPushButton* way = button(overlay(), QStringLiteral("Disconnect"));
    QTRY_COMPARE(QRect(way->mapTo(window_.get(), QPoint()), way->size()), place);

    emit EventDispatcher::getInstance()->disconnected(); // once more
    QCOMPARE(window_->findChildren<DisconnectOverlay*>().size(), 1);
    QCOMPARE(forgotten.count(), 2);

    window_->resize(1600, 900);
    QTRY_COMPARE(overlay()->geometry(), QRect(0, 0, 1600, 900));
}

void TestGuiCompanion::theVeilKeepsKeysAway() {
    CheckConnection::firstCheckDelay = 1h;
    connectByHand();
    QPointer<QWidget> focus = QApplication::focusWidget();
    QVERIFY(currentPage()->isAncestorOf(focus));
    KeyRecorder recorder;
    loseConnection();
    for (const auto key : {Qt::Key_M, Qt::Key_Space, Qt::Key_Left, Qt::Key_Tab}) {
        QTest::keyClick(window_->windowHandle(), key);
    }
    QTest::keyClick(window_->windowHandle(), Qt::Key_Tab); // off the button again
    QTest::keyClick(window_->windowHandle(), Qt::Key_Escape);
    QCOMPARE(recorder.keys, QList<int>());
    QVERIFY(overlay() != nullptr);

    startProducer();
    window_->onServerAvailableAgain();
    QVERIFY(client().isConnected());
    QCOMPARE(QApplication::focusWidget(), focus.data());
}

void TestGuiCompanion::aLossIsMendedAgainAndAgain() {
    connectByHand();
    find<Content>()->setPage(Page::Settings);
    QTest::mouseClick(find<SettingsPage>()->findChild<QCheckBox*>(), Qt::LeftButton);
    for (auto* choice : find<SettingsPage>()->findChildren<QComboBox*>()) {
        QTest::keyClick(choice, Qt::Key_End); // the last colour, the last shape
    }
    QTRY_VERIFY(*producer_->events().back() == UpdateSettingsEvent("#ffff00", 4));
    QSignalSpy forgotten(&EventDispatcher::getInstance()->networkUtils(),
                         &NetworkUtils::serverDisconnected);
    for (int loss = 1; loss <= 3; ++loss) {
        find<Content>()->setPage(Page::QuickKeys);
        loseConnection();
        QCOMPARE(forgotten.count(), loss); // each is handled once
        QVERIFY(shows<QuickKeysPage>());

        startProducer();
        QTRY_VERIFY(client().isConnected());
        QVERIFY(overlay() == nullptr);
        QTRY_VERIFY(producer_->events().size() == 2);
        QVERIFY(*producer_->events()[0] == MsgEvent("getResources"));
        QVERIFY(*producer_->events()[1] == UpdateSettingsEvent("#ffff00", 4));
        QVERIFY(shows<WarpPage>());
        QCOMPARE(button(find<HeadBanner>(), QStringLiteral("Warp"))->styleSheet(),
                 QLatin1StringView(ShellLook::kTabOn));
    }
}

void TestGuiCompanion::aFailedReconnectionIsTriedAgain() {
    connectByHand();
    loseConnection();
    QVERIFY(producer_->answerDiscovery(kProducerAddress)); // there, but not ready
    QTRY_VERIFY(overlay() == nullptr);
    QVERIFY(!client().isConnected());
    QVERIFY(shows<WarpPage>());
    producer_->forget();
    QVERIFY(producer_->listen(kProducerAddress, kProducerPort));
    QTRY_VERIFY(client().isConnected());
    QTRY_VERIFY(producer_->events().size() == 2);
}

void TestGuiCompanion::aConnectionThatBreaksAtOnceIsALoss() {
    connect(producer_.get(), &FakeProducer::connected, producer_.get(), [this] {
        producer_->stopAnswering();
        producer_->stopListening();
        producer_->abortConnections();
    });
    const QString ip = kProducerAddress.toString();
    QTRY_VERIFY(button(find<IPList>(), ip) != nullptr);
    QTest::mouseClick(button(find<IPList>(), ip), Qt::LeftButton);
    QTest::mouseClick(button(currentPage(), QString()), Qt::LeftButton);
    QTRY_VERIFY(overlay() != nullptr);
    QVERIFY(shows<WarpPage>());
    producer_->disconnect();
    startProducer();
    QTRY_VERIFY(client().isConnected());
    QVERIFY(overlay() == nullptr);
}

void TestGuiCompanion::theOperatorsDisconnectIsForGood_data() {
    QTest::addColumn<bool>("lost");
    QTest::newRow("while connected") << false;
    QTest::newRow("while the connection is lost") << true;
}

void TestGuiCompanion::theOperatorsDisconnectIsForGood() {
    QFETCH(bool, lost);
    connectByHand();
    if (lost) {
        loseConnection();
        CheckConnection::checkPeriod = 1ms;
    }
    const QWidget* parent = lost ? static_cast<QWidget*>(overlay()) : find<HeadBanner>();
    QTest::mouseClick(button(parent, QStringLiteral("Disconnect")), Qt::LeftButton);
    QVERIFY(overlay() == nullptr);
    QVERIFY(!client().isConnected());
    QVERIFY(shows<ConnectPage>());
    QVERIFY(button(find<HeadBanner>(), QStringLiteral("Disconnect")) == nullptr);

    // The Producer is seen, for long, and left alone.
    if (lost) {
        startProducer();
    }
    QTRY_COMPARE(producer_->connectionCount(), 0);
    const int accepted = producer_->acceptedCount();
    QTRY_VERIFY(button(find<IPList>(), kProducerAddress.toString()) != nullptr);
    QTest::qWait(400);
    QCOMPARE(producer_->acceptedCount(), accepted);
    QVERIFY(shows<ConnectPage>());
    QVERIFY(overlay() == nullptr);

    // The next connection is watched again.
    producer_->forget();
    connectByHand();
    loseConnection();
    startProducer();
    QTRY_VERIFY(client().isConnected());
}

void TestGuiCompanion::theWindowMayGoInAnyState_data() {
    QTest::addColumn<bool>("lost");
    QTest::newRow("connected") << false;
    QTest::newRow("lost") << true;
}

void TestGuiCompanion::theWindowMayGoInAnyState() {
    QFETCH(bool, lost);
    connectByHand();
    if (lost) {
        loseConnection();
        startProducer();
    }
    closeWindow();
    producer_->send(MsgEvent("newShow")); // to nobody
    QTest::qWait(300);                    // a watcher that had survived would reconnect
    QCOMPARE(client().isConnected(), !lost);
}

QTEST_MAIN(TestGuiCompanion)
#include "tst_gui_companion.moc"
