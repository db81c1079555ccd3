#include "app/ConnectPage.h"
#include "app/Content.h"
#include "app/DisconnectOverlay.h"
#include "app/GuiCompanion.h"
#include "app/HeadBanner.h"
#include "app/IPList.h"
#include "app/KeyRepeatFilter.h"
#include "app/ToolTipFilter.h"
#include "app/shell/CheckConnection.h"
#include "app/shell/EventDispatcher.h"
#include "app/shell/ShellLook.h"
#include "input/key_event_listener.h"
#include "input/key_subscription.h"
#include "network/events/MsgEvent.h"
#include "network/events/UpdateSettingsEvent.h"
#include "pages/QuickKeysPage.h"
#include "pages/SettingsPage.h"
#include "pages/TestPatternPage.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/WindowRig.h"
#include "warp/WarpPage.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QQuickWidget>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

#include <optional>

using namespace NetworkCompanion;
using namespace std::chrono_literals;
using Companion::Page;
using MeshpadTest::FakeProducer;

namespace {

const QHostAddress kProducerAddress(QStringLiteral("10.77.0.1")); // this test's virtual interface
constexpr quint16 kProducerPort = 62330;
const QString kDisconnect = QStringLiteral("Disconnect");
const QString kFirst = QStringLiteral("10.0.0.1");   // addresses that nobody answers from
const QString kSecond = QStringLiteral("10.0.0.10"); // begins like the first one

class KeyRecorder : public KeyEventListener {
public:
    void notified(QKeyEvent* event) override { keys << event->key(); }

    QList<int> keys;

private:
    KeySubscription subscription_{this};
};

} // namespace

/// The whole window with all its pages, used by mouse and keyboard, against a Producer that is
/// found by discovery and spoken to over TCP.
class TestGuiCompanion : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aProducerIsFoundAndAskedForItsShow();
    void aRefusedConnectionChangesNothing();
    void theListOfProducersFollowsDiscovery();
    void oneAddressIsMarkedAndConnectedTo();
    void anAddressMayGoWhileItIsBeingPressed();
    void manyProducersCanBeScrolledTo();
    void tabsShowTheirPages();
    void aLossVeilsTheWindow();
    void aLossIsMendedAgainAndAgain();
    void aConnectionThatBreaksAtOnceIsALoss();
    void theOperatorsDisconnectIsForGood_data();
    void theOperatorsDisconnectIsForGood();
    void theWindowMayGoInAnyState_data();
    void theWindowMayGoInAnyState();
    void aHeldKeyPressesOnce();
    void aTipHasTheLookOfTheApplication();

protected:
    /// Nothing but the window, and tips, ever becomes a window.
    bool eventFilter(QObject* watched, QEvent* event) override;

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
    bool showsWayOut() const { return button(find<HeadBanner>(), kDisconnect) != nullptr; }
    DisconnectOverlay* overlay() const;
    QStringList listed() const;
    QString connectLook() const;
    QPushButton* button(const QWidget* parent, const QString& text) const;
    void startProducer();
    void pressConnect();
    void connectByHand();
    void loseConnection();
    static CompanionClient& client() { return EventDispatcher::getInstance()->client(); }
    static NetworkUtils& discovery() { return EventDispatcher::getInstance()->networkUtils(); }

    std::unique_ptr<FakeProducer> producer_;
    std::optional<MeshpadTest::WindowRig> rig_;
    GuiCompanion* window_ = nullptr; // the rig's
    QStringList strayWindows_;
};

void TestGuiCompanion::init() {
    GuardedTest::init();
    CheckConnection::firstCheckDelay = 10ms;
    CheckConnection::checkPeriod = 10ms;
    strayWindows_.clear();
    qApp->installEventFilter(this);
    rig_.emplace();
    window_ = rig_->window.get();
    rig_->show();
    startProducer();
}

void TestGuiCompanion::cleanup() {
    qApp->removeEventFilter(this);
    rig_.reset();
    producer_.reset();
    discovery().serverHasDisconnected(kProducerAddress.toString());
    GuardedTest::cleanup();
    QCOMPARE(strayWindows_, QStringList());
}

bool TestGuiCompanion::eventFilter(QObject* watched, QEvent* event) {
    const auto* widget = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::Show && widget != nullptr && widget->isWindow() &&
        widget != window_ && widget->windowType() != Qt::ToolTip)
        strayWindows_ << QString::fromLatin1(widget->metaObject()->className());
    return QObject::eventFilter(watched, event);
}

void TestGuiCompanion::startProducer() {
    producer_ = std::make_unique<FakeProducer>();
    QVERIFY(producer_->listen(kProducerAddress, kProducerPort));
    QVERIFY(producer_->answerDiscovery(kProducerAddress));
    discovery().pingServers(); // need not wait for the next one
}

DisconnectOverlay* TestGuiCompanion::overlay() const {
    for (auto* overlay : window_->findChildren<DisconnectOverlay*>())
        if (overlay->isVisible())
            return overlay;
    return nullptr;
}

QPushButton* TestGuiCompanion::button(const QWidget* parent, const QString& text) const {
    for (auto* candidate : parent->findChildren<QPushButton*>())
        if (candidate->text() == text && candidate->isVisible())
            return candidate;
    return nullptr;
}

/// The addresses that nobody answers from.
QStringList TestGuiCompanion::listed() const {
    QStringList texts;
    for (const auto* address : find<IPList>()->findChildren<QPushButton*>()) {
        const bool isMarked =
            address->styleSheet() == QLatin1StringView(ShellLook::kAddressButtonOn);
        if (address->text().startsWith("10.0."))
            texts << address->text() + (isMarked ? " marked" : "");
    }
    return texts;
}

/// What offers to connect: a picture and a cursor.
QString TestGuiCompanion::connectLook() const {
    const QPushButton* connect = button(currentPage(), QString());
    const bool isOn = connect->styleSheet() == QLatin1StringView(ShellLook::kConnectButtonOn);
    const bool isHand = connect->cursor().shape() == Qt::PointingHandCursor;
    return QStringLiteral("%1 %2").arg(isOn ? "on" : "off", isHand ? "hand" : "arrow");
}

/// As an operator does it, once the Producer is found.
void TestGuiCompanion::pressConnect() {
    const QString ip = kProducerAddress.toString();
    QTRY_VERIFY(button(find<IPList>(), ip) != nullptr);
    QTest::mouseClick(button(find<IPList>(), ip), Qt::LeftButton);
    QTest::mouseClick(button(currentPage(), QString()), Qt::LeftButton);
}

void TestGuiCompanion::connectByHand() {
    pressConnect();
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

void TestGuiCompanion::aProducerIsFoundAndAskedForItsShow() {
    QVERIFY(!window_->windowIcon().isNull());
    QVERIFY(shows<ConnectPage>() && !showsWayOut());
    // Nothing looks chosen, and the first Tab leads to the first address.
    auto* list = find<IPList>();
    QTRY_VERIFY(button(list, kProducerAddress.toString()) != nullptr);
    QVERIFY(!list->isAncestorOf(QApplication::focusWidget()));
    QTest::keyClick(window_->windowHandle(), Qt::Key_Tab);
    QVERIFY(button(list, kProducerAddress.toString())->hasFocus());

    connectByHand();
    const auto& events = producer_->events();
    QCOMPARE(events.size(), std::size_t(2));
    QVERIFY(*events[0] == MsgEvent("getResources"));
    QVERIFY(*events[1] == UpdateSettingsEvent("", 0));
    QVERIFY(shows<WarpPage>() && showsWayOut());
    QVERIFY(currentPage()->isAncestorOf(QApplication::focusWidget()));

    // The Producer is watched; as long as the connection stands that changes nothing.
    window_->onServerAvailableAgain();
    QVERIFY(producer_->receivesAllOf(client()));
    QCOMPARE(events.size(), std::size_t(2));
    QCOMPARE(producer_->acceptedCount(), 1);

    // Back and forth within one turn of the event loop, as fast as it gets.
    window_->onDisconnectFromServer();
    window_->onConnectToServer(kProducerAddress.toString());
    window_->onDisconnectFromServer();
    QTest::qWait(1);
    QVERIFY(shows<ConnectPage>() && !showsWayOut());
}

void TestGuiCompanion::aRefusedConnectionChangesNothing() {
    QTRY_VERIFY(button(find<IPList>(), kProducerAddress.toString()) != nullptr);
    producer_->stopListening();
    pressConnect();
    QVERIFY(!client().isConnected());
    QVERIFY(shows<ConnectPage>() && !showsWayOut());
    QVERIFY(find<IPList>()->selectedIp().isEmpty());
    QVERIFY(overlay() == nullptr);

    // The second attempt finds everything as the first one did.
    QVERIFY(producer_->listen(kProducerAddress, kProducerPort));
    connectByHand();
}

void TestGuiCompanion::theListOfProducersFollowsDiscovery() {
    emit discovery().serverDiscovered(kFirst);
    emit discovery().serverDiscovered(kSecond);
    emit discovery().serverDiscovered(kFirst);
    QCOMPARE(listed(), QStringList({kFirst, kSecond}));
    emit discovery().serverTimeouted(QStringLiteral("10.0.0.100"));
    emit discovery().serverTimeouted(kFirst);
    QCOMPARE(listed(), QStringList({kSecond}));
    emit discovery().serverDiscovered(kFirst);
    emit discovery().serverDisconnected(kSecond);
    QCOMPARE(listed(), QStringList({kFirst}));

    // A purged address comes back only after it was dropped.
    find<ConnectPage>()->purgeIp();
    emit discovery().serverDiscovered(kFirst);
    QCOMPARE(listed(), QStringList());
    emit discovery().serverTimeouted(kFirst);
    emit discovery().serverDiscovered(kFirst);
    QCOMPARE(listed(), QStringList({kFirst}));
}

void TestGuiCompanion::oneAddressIsMarkedAndConnectedTo() {
    emit discovery().serverDiscovered(kFirst);
    emit discovery().serverDiscovered(kSecond);
    disconnect(find<ConnectPage>(), nullptr, window_, nullptr);
    QSignalSpy connections(find<ConnectPage>(), &ConnectPage::connection);
    QPushButton* connect = button(currentPage(), QString());
    QTest::mouseClick(connect, Qt::LeftButton); // nothing is selected
    QCOMPARE(connections.count(), 0);
    QCOMPARE(connectLook(), "off arrow");

    QTRY_VERIFY(button(find<IPList>(), kSecond) != nullptr); // once it is laid out
    QTest::mouseClick(button(find<IPList>(), kSecond), Qt::LeftButton);
    QTest::mouseClick(button(find<IPList>(), kFirst), Qt::LeftButton);
    QCOMPARE(listed(), QStringList({kFirst + " marked", kSecond}));
    QCOMPARE(connectLook(), "on hand");
    // The selection outlives its button.
    emit discovery().serverTimeouted(kFirst);
    QCOMPARE(listed(), QStringList({kSecond}));
    QCOMPARE(connectLook(), "on hand");
    emit discovery().serverDiscovered(kFirst);
    QCOMPARE(listed(), QStringList({kSecond, kFirst + " marked"}));

    QTest::mouseClick(connect, Qt::LeftButton);
    QCOMPARE(connections.count(), 1);
    QCOMPARE(connections.first().first().toString(), kFirst);
    QCOMPARE(listed(), QStringList({kSecond, kFirst}));
    QCOMPARE(connectLook(), "off arrow");
    QTest::mouseClick(connect, Qt::LeftButton);
    QCOMPARE(connections.count(), 1);
}

void TestGuiCompanion::anAddressMayGoWhileItIsBeingPressed() {
    emit discovery().serverDiscovered(kFirst);
    QTRY_VERIFY(button(find<IPList>(), kFirst) != nullptr);
    QPushButton* address = button(find<IPList>(), kFirst);
    QCoreApplication::processEvents(); // to its place
    const QPoint place = address->mapTo(window_, address->rect().center());
    QTest::mousePress(window_->windowHandle(), Qt::LeftButton, {}, place);
    QVERIFY(address->isDown());
    emit discovery().serverTimeouted(kFirst);
    QTest::mouseRelease(window_->windowHandle(), Qt::LeftButton, {}, place);
    QVERIFY(find<IPList>()->selectedIp().isEmpty());
}

void TestGuiCompanion::manyProducersCanBeScrolledTo() {
    for (int i = 0; i < 40; ++i)
        emit discovery().serverDiscovered(QStringLiteral("10.0.1.%1").arg(i));
    auto* scrollBar = find<ConnectPage>()->findChild<QScrollArea*>()->verticalScrollBar();
    QTRY_VERIFY(scrollBar->maximum() > 0);
    scrollBar->setValue(scrollBar->maximum());
    for (const auto* seen :
         {button(find<IPList>(), QStringLiteral("10.0.1.39")), button(currentPage(), QString())}) {
        QVERIFY(currentPage()->rect().contains(
            QRect(seen->mapTo(currentPage(), QPoint()), seen->size())));
    }
}

void TestGuiCompanion::tabsShowTheirPages() {
    connectByHand();
    auto* banner = find<HeadBanner>();
    // From left to right: a cap, the tabs, a cap; which of them are lit.
    const QList<QAbstractButton*> row = banner->findChild<QButtonGroup*>()->buttons();
    const auto lit = [&row] {
        QString marks;
        for (const QAbstractButton* each : row) {
            const QLatin1StringView look[] = {QLatin1StringView(ShellLook::kLeftCapOn),
                                              QLatin1StringView(ShellLook::kTabOn),
                                              QLatin1StringView(ShellLook::kRightCapOn)};
            marks += std::ranges::count(look, each->styleSheet()) > 0 ? '1' : '0';
        }
        return marks;
    };
    QCOMPARE(lit(), "110000");
    struct Press {
        int position;
        bool (TestGuiCompanion::*isShown)() const;
        QString lit;
    };
    for (const Press& press : {Press{5, &TestGuiCompanion::shows<SettingsPage>, "000011"},
                               Press{1, &TestGuiCompanion::shows<WarpPage>, "110000"},
                               Press{2, &TestGuiCompanion::shows<QuickKeysPage>, "001000"},
                               Press{3, &TestGuiCompanion::shows<TestPatternPage>, "000100"},
                               Press{4, &TestGuiCompanion::shows<SettingsPage>, "000011"},
                               Press{0, &TestGuiCompanion::shows<WarpPage>, "110000"}}) {
        QTest::mousePress(row[press.position], Qt::LeftButton);
        QVERIFY((this->*press.isShown)()); // already on the press
        QTest::mouseRelease(row[press.position], Qt::LeftButton);
        QCOMPARE(lit(), press.lit);
        QVERIFY(!banner->isAncestorOf(QApplication::focusWidget()));
    }
    // What is no page stays away.
    messages_->expect(QtDebugMsg, "This menu page does not exist!", 2);
    for (const int tab : {0, 5})
        banner->onMenuTabPressed(tab);
    QVERIFY(shows<WarpPage>());

    // Without a mouse: Tab leads to the tabs and to the way out, and shows where it is.
    QTest::mouseClick(row[4], Qt::LeftButton);
    const auto tabTo = [&](const QString& text) {
        QPushButton* target = button(banner, text);
        for (int i = 0; i < 20 && !target->hasFocus(); ++i)
            QTest::keyClick(window_->windowHandle(), Qt::Key_Tab);
        return target->hasFocus();
    };
    QVERIFY(tabTo(kDisconnect));
    const auto look = [&] { return row[3]->grab().toImage(); };
    const QImage idle = look();
    QVERIFY(tabTo("Test patterns"));
    QVERIFY(look() != idle);
    QTest::keyClick(window_->windowHandle(), Qt::Key_Space);
    QVERIFY(shows<TestPatternPage>());
    QVERIFY(currentPage()->hasFocus());

    // To the page that is shown already the keyboard is not given again.
    QTest::mouseClick(row[1], Qt::LeftButton);
    auto* search = find<WarpPage>()->findChild<QLineEdit*>();
    search->setFocus();
    QTest::mouseClick(row[1], Qt::LeftButton);
    QVERIFY(search->hasFocus());
}

void TestGuiCompanion::aLossVeilsTheWindow() {
    CheckConnection::firstCheckDelay = 1h;
    connectByHand();
    KeyRecorder recorder;
    const QList<int> keys{Qt::Key_M, Qt::Key_Space, Qt::Key_Left};
    for (const Page page : {Page::QuickKeys, Page::TestPatterns, Page::Settings}) {
        find<Content>()->setPage(page);
        for (const int key : keys)
            QTest::keyClick(window_->windowHandle(), Qt::Key(key));
        QCOMPARE(std::exchange(recorder.keys, {}), keys);
    }
    find<Content>()->setPage(Page::Warp);
    find<WarpPage>()->findChild<QCheckBox*>()->setFocus();
    QTest::keyClick(window_->windowHandle(), Qt::Key_M);
    QCOMPARE(std::exchange(recorder.keys, {}), QList<int>({Qt::Key_M}));

    const QPushButton* bannerButton = button(find<HeadBanner>(), kDisconnect);
    const QRect place(bannerButton->mapTo(window_, QPoint()), bannerButton->size());
    QSignalSpy forgotten(&discovery(), &NetworkUtils::serverDisconnected);
    loseConnection();
    QCOMPARE(overlay()->geometry(), window_->rect());
    QCOMPARE(forgotten.count(), 1);
    QCOMPARE(forgotten.first().first().toString(), kProducerAddress.toString());
    QVERIFY(shows<WarpPage>());
    // The way out is where the operator's finger knows it.
    const QPushButton* way = button(overlay(), kDisconnect);
    QTRY_COMPARE(QRect(way->mapTo(window_, QPoint()), way->size()), place);
    emit EventDispatcher::getInstance()->disconnected(); // once more
    QCOMPARE(window_->findChildren<DisconnectOverlay*>().size(), 1);
    window_->resize(1600, 900);
    QTRY_COMPARE(overlay()->geometry(), QRect(0, 0, 1600, 900));

    // No key gets below, and afterwards they go where they went before.
    for (const auto key : {Qt::Key_M, Qt::Key_Space, Qt::Key_Left, Qt::Key_Tab})
        QTest::keyClick(window_->windowHandle(), key);
    QTest::keyClick(window_->windowHandle(), Qt::Key_Tab); // off the button again
    QTest::keyClick(window_->windowHandle(), Qt::Key_Escape);
    QCOMPARE(recorder.keys, QList<int>());
    QVERIFY(overlay() != nullptr);
    startProducer();
    window_->onServerAvailableAgain();
    QVERIFY(client().isConnected());
    QVERIFY(find<WarpPage>()->findChild<QCheckBox*>()->hasFocus());
}

void TestGuiCompanion::aLossIsMendedAgainAndAgain() {
    connectByHand();
    find<Content>()->setPage(Page::Settings);
    QTest::mouseClick(find<SettingsPage>()->findChild<QCheckBox*>(), Qt::LeftButton);
    for (auto* choice : find<SettingsPage>()->findChildren<QComboBox*>())
        QTest::keyClick(choice, Qt::Key_End); // the last colour, the last shape
    QTRY_VERIFY(*producer_->events().back() == UpdateSettingsEvent("#ffff00", 4));
    QSignalSpy forgotten(&discovery(), &NetworkUtils::serverDisconnected);
    for (int loss = 1; loss <= 3; ++loss) {
        find<Content>()->setPage(Page::QuickKeys);
        loseConnection();
        QCOMPARE(forgotten.count(), loss); // each is handled once
        QVERIFY(shows<QuickKeysPage>());
        if (loss == 2) {
            QVERIFY(producer_->answerDiscovery(kProducerAddress)); // there, but not ready
            QTRY_VERIFY(overlay() == nullptr);
            QVERIFY(!client().isConnected());
            QVERIFY(shows<QuickKeysPage>());
        }
        startProducer();
        QTRY_VERIFY(client().isConnected());
        QVERIFY(overlay() == nullptr);
        QTRY_VERIFY(producer_->events().size() == 2);
        QVERIFY(*producer_->events()[0] == MsgEvent("getResources"));
        QVERIFY(*producer_->events()[1] == UpdateSettingsEvent("#ffff00", 4));
        QVERIFY(shows<WarpPage>());
        QCOMPARE(button(find<HeadBanner>(), "Warp")->styleSheet(),
                 QLatin1StringView(ShellLook::kTabOn));
    }
}

void TestGuiCompanion::aConnectionThatBreaksAtOnceIsALoss() {
    QTRY_VERIFY(button(find<IPList>(), kProducerAddress.toString()) != nullptr);
    producer_->stopAnswering();
    QCoreApplication::processEvents(); // takes an answer that is on its way
    connect(producer_.get(), &FakeProducer::connected, producer_.get(), [this] {
        producer_->stopListening();
        producer_->abortConnections();
    });
    pressConnect();
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
    if (lost)
        loseConnection();
    const QWidget* parent = lost ? static_cast<QWidget*>(overlay()) : find<HeadBanner>();
    QPushButton* way = button(parent, kDisconnect);
    // Sliding off takes the press back.
    const QPoint on = way->mapTo(window_, way->rect().center());
    const QPoint off = on - QPoint(way->width(), 0);
    QTest::mousePress(window_->windowHandle(), Qt::LeftButton, {}, on);
    QTest::mouseMove(window_->windowHandle(), off);
    QVERIFY(!way->isDown());
    QTest::mouseRelease(window_->windowHandle(), Qt::LeftButton, {}, off);
    QCOMPARE(client().isConnected(), !lost);
    QCOMPARE(overlay() != nullptr, lost);

    QTest::mousePress(way, Qt::LeftButton);
    QVERIFY(shows<WarpPage>()); // not before the release
    QTest::mouseRelease(way, Qt::LeftButton);
    QVERIFY(overlay() == nullptr);
    QVERIFY(!client().isConnected());
    QVERIFY(shows<ConnectPage>() && !showsWayOut());

    // The Producer is seen, for long, and left alone.
    if (lost)
        startProducer();
    QTRY_COMPARE(producer_->connectionCount(), 0);
    const int accepted = producer_->acceptedCount();
    QTRY_VERIFY(button(find<IPList>(), kProducerAddress.toString()) != nullptr);
    QTest::qWait(50); // several checks of a watcher that went on
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
    rig_->close();
    producer_->send(MsgEvent("newShow")); // to nobody
    QTest::qWait(50);                     // a watcher that had survived would reconnect
    QCOMPARE(client().isConnected(), !lost);
}

/// As a window system reports it that releases the key between repetitions.
void TestGuiCompanion::aHeldKeyPressesOnce() {
    KeyRepeatFilter filter(nullptr);
    qApp->installEventFilter(&filter);
    QPushButton button;
    QSignalSpy pressed(&button, &QPushButton::pressed);
    QLineEdit edit;
    const auto send = [](QWidget& to, QEvent::Type type, quint64 time) {
        QKeyEvent event(type, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
        event.setTimestamp(time);
        QApplication::sendEvent(&to, &event);
    };
    for (QWidget* to : {static_cast<QWidget*>(&button), static_cast<QWidget*>(&edit)}) {
        for (quint64 time = 1000; time < 1400; time += 40) {
            send(*to, QEvent::KeyPress, time);
            send(*to, QEvent::KeyRelease, time + 40);
        }
    }
    QCOMPARE(pressed.size(), 1);
    QCOMPARE(edit.text(), QString(10, QLatin1Char(' '))); // text repeats

    send(button, QEvent::KeyPress, 2000); // pressed anew
    send(button, QEvent::KeyRelease, 2050);
    send(button, QEvent::KeyPress, 2051);
    QCOMPARE(pressed.size(), 3);
}

/// Over a widget that styles itself, and over a part of it that has no tip of its own.
void TestGuiCompanion::aTipHasTheLookOfTheApplication() {
    ToolTipFilter filter(nullptr);
    qApp->installEventFilter(&filter);
    connectByHand();
    QPushButton* button = this->button(find<HeadBanner>(), kDisconnect);
    button->setToolTip(QStringLiteral("What it does"));
    auto* part = new QLabel(QStringLiteral("part"), button);
    part->show();
    const auto shownTip = []() -> QWidget* {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->windowType() == Qt::ToolTip && widget->isVisible())
                return widget;
        return nullptr;
    };
    for (QWidget* under : {static_cast<QWidget*>(button), static_cast<QWidget*>(part)}) {
        QHelpEvent rest(QEvent::ToolTip, QPoint(2, 2), under->mapToGlobal(QPoint(2, 2)));
        QApplication::sendEvent(under, &rest);
        QCOMPARE(QToolTip::text(), button->toolTip());
        QVERIFY(shownTip() != nullptr);
        const QImage image = shownTip()->grab().toImage();
        QCOMPARE(image.pixelColor(0, image.height() / 2), QColor(0xa0a0a0));
        QCOMPARE(image.pixelColor(4, image.height() / 2), QColor(0x1e1e1e));
        QToolTip::hideText();
        QTRY_VERIFY(shownTip() == nullptr);
    }
}

QTEST_MAIN(TestGuiCompanion)
#include "tst_gui_companion.moc"
