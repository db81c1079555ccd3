#include "input/gamepad_input_manager.h"
#include "tests/input/FakeController.h"
#include "tests/input/InputLog.h"
#include "tests/support/GuardedTest.h"

#include <QEventLoop>
#include <QTest>
#include <QTimer>

using namespace MeshpadTest;

namespace {

constexpr std::uint32_t kDown = ControllerDevice::kButtonDown;
constexpr std::uint32_t kCentre = 32768;

} // namespace

class TestGamepadInputManager : public GuardedTest {
    Q_OBJECT

private slots:
    void init() {
        GuardedTest::init();
        pads_ = {};
        pad_ = pads_.plugIn();
    }
    void cleanup() {
        manager_.reset();
        GuardedTest::cleanup();
    }

    void pressesAreToldOnceAndInOrder();
    void hatDirections();
    void axes();
    void stickReportsEveryPollAndOneFinalZero();
    void triggersOfTheirOwnCancelAtRest();

    void deviceIsConfigured();
    void brokenControllersAreSkippedAndOthersIgnored();
    void interfaceFailures();

    void overflowLosesNothingThatLasts();
    void inputLostAndRecovered();
    void inputLossToldByAnyCall();
    void unpluggedAndPluggedInAgain();
    void failedReadsAreLoggedAndSurvived();
    void looksForControllersWhereNoMessageTells();
    void readsOnlyWithFocus();
    void restsWhileTheFocusIsAway();
    void swappedWhileTheFocusIsAway();

private:
    void start();
    void feed(std::initializer_list<ControllerRecord> records);
    void nextPoll();
    void announceChange();
    void loseForGood() {
        pad_->pollResult = ControllerResult::InputLost;
        pad_->acquireResult = ControllerResult::Failed;
    }

    FakePads pads_;
    std::shared_ptr<FakePad> pad_;
    std::unique_ptr<GamepadInputManager> manager_;
    std::unique_ptr<InputLog> log_;
};

void TestGamepadInputManager::start() {
    manager_.reset();
    manager_ = std::make_unique<GamepadInputManager>(makeFakeSystem(pads_));
    log_ = std::make_unique<InputLog>(*manager_);
}

/// Records that are there for the next poll, which is waited for.
void TestGamepadInputManager::feed(std::initializer_list<ControllerRecord> records) {
    pad_->records.assign(records);
    nextPoll();
}

void TestGamepadInputManager::nextPoll() {
    QEventLoop loop;
    pad_->polled = [&] { loop.quit(); };
    QTimer::singleShot(30'000, &loop, [&] { loop.exit(1); });
    QCOMPARE(loop.exec(), 0);
    pad_->polled = [] {};
}

void TestGamepadInputManager::announceChange() {
    qintptr result = 0;
    QVERIFY(!manager_->nativeEventFilter(kFakeChangeMessage, nullptr, &result));
}

void TestGamepadInputManager::pressesAreToldOnceAndInOrder() {
    start();
    feed({{49, kDown}, {ControllerOffset::kHat, 0}, {ControllerOffset::kHat, 300}});
    QCOMPARE(log_->take(), QString("press 1, press 4"));
    nextPoll();
    QCOMPARE(log_->take(), QString());
    feed({{49, 0}, {49, kDown}, {49, 0}, {ControllerOffset::kHat, 4500}});
    QCOMPARE(log_->take(), QString("release 1, press 1, release 1, release 4"));
    feed({{ControllerOffset::kHat, 9000}, {ControllerOffset::kHat, 18000}});
    QCOMPARE(log_->take(), QString("press 5, release 5, press 6"));
}

void TestGamepadInputManager::hatDirections() {
    start();
    const std::pair<quint32, const char*> rows[] = {
        {4499, "4"},  {4500, nullptr},  {4501, "5"},  {13499, "5"},      {13500, nullptr},
        {13501, "6"}, {22499, "6"},     {22501, "7"}, {22500, nullptr},  {31499, "7"},
        {31501, "4"}, {31500, nullptr}, {35999, "4"}, {0xFFFF, nullptr}, {0x7FFFFFFF, nullptr}};
    for (const auto& [value, direction] : rows) {
        feed({{ControllerOffset::kHat, value}, {ControllerOffset::kHat, 0xFFFFFFFF}});
        const QString expected = direction ? QString("press %1, release %1").arg(direction) : "";
        QCOMPARE(QString::number(value) + log_->take(), QString::number(value) + expected);
    }
}

void TestGamepadInputManager::axes() {
    using namespace ControllerOffset;
    struct Row {
        const char* name;
        quint32 offset;
        AnalogRange range;
        qint32 position;
        QString expected;
    };
    const AnalogRange usual, balanced{-32768, 32767}, even{-1000, 1000}, point{5, 5};
    const Row rows[] = {
        {"low end", kX, usual, 0, "left -1 0"},
        {"high end", kX, usual, 65535, "left 1 0"},
        {"lower centre", kX, usual, 32767, ""},
        {"upper centre", kX, usual, 32768, ""},
        {"beside the centre", kX, usual, 32769, "left 4.6e-05 0"},
        {"right trigger", kRz, usual, 65535, "pressure -1"},
        {"centre of the right trigger", kRz, usual, 32767, ""},
        {"negative positions", kX, balanced, -32768, "left -1 0"},
        {"centre of negative positions", kY, balanced, -1, ""},
        {"even range", kY, even, 500, "left 0 0.5"},
        {"centre of an even range", kY, even, 0, ""},
        {"range of one position", kX, point, 5, ""},
    };
    for (const Row& row : rows) {
        pad_->axes[row.offset] = row.range;
        start();
        feed({{row.offset, static_cast<quint32>(row.position)}});
        QVERIFY2(log_->text() == row.expected, qPrintable(row.name + (": " + log_->text())));
    }
}

void TestGamepadInputManager::stickReportsEveryPollAndOneFinalZero() {
    start();
    feed({{ControllerOffset::kX, 0}, {ControllerOffset::kRy, 65535}});
    QCOMPARE(log_->take(), QString("left -1 0, right 0 1"));
    nextPoll();
    QCOMPARE(log_->take(), QString("left -1 0, right 0 1"));
    feed({{ControllerOffset::kRy, kCentre}, {ControllerOffset::kX, kCentre}});
    QCOMPARE(log_->take(), QString("left 0 0, right 0 0"));
    nextPoll();
    feed({{ControllerOffset::kX, kCentre - 1}});
    QCOMPARE(log_->take(), QString());
    // Out and back between two polls still ends with a zero.
    feed({{ControllerOffset::kX, 0}, {ControllerOffset::kX, kCentre}});
    QCOMPARE(log_->take(), QString("left 0 0"));
}

/// One that has not moved yet gives no record.
void TestGamepadInputManager::triggersOfTheirOwnCancelAtRest() {
    pad_->state.axes[2] = pad_->state.axes[5] = 0;
    start();
    nextPoll();
    QCOMPARE(log_->take(), QString());
    feed({{ControllerOffset::kZ, 65535}});
    QCOMPARE(log_->take(), QString("pressure 2"));
    feed({{ControllerOffset::kZ, 0}, {ControllerOffset::kRz, 65535}});
    QCOMPARE(log_->take(), QString("pressure -2"));
}

void TestGamepadInputManager::deviceIsConfigured() {
    using namespace ControllerOffset;
    pad_->state.buttons[4] = true; // held at launch
    pad_->axes.erase(kRz);
    pad_->axes.erase(kRy);
    messages_->expect(QtDebugMsg, "Found device 'Pad'");
    start();
    QVERIFY(manager_->isGamepadConnected());
    QVERIFY(pad_->acquired);
    QCOMPARE(pad_->bufferSize, 32U);
    const std::map<quint32, quint32> expected{{kX, 1750}, {kY, 1750}, {kRx, 1750}, {kZ, 25}};
    QCOMPARE(pad_->deadZones, expected);
    // An axis that is not there stands still, whatever the device says of it.
    pad_->state.axes[5] = 0;
    feed({{kZ, 65535}});
    QCOMPARE(log_->take(), QString("press 8, pressure 1"));
}

void TestGamepadInputManager::brokenControllersAreSkippedAndOthersIgnored() {
    pad_->canBeCreated = false;
    const auto mute = pads_.plugIn("Mute");
    mute->rangeResult = ControllerResult::Failed;
    const auto busy = pads_.plugIn("Busy");
    busy->acquireResult = ControllerResult::Failed;
    busy->unacquireResult = ControllerResult::NoEffect;
    const auto good = pads_.plugIn("Good");
    const auto second = pads_.plugIn("Second");
    messages_->expect(QtWarningMsg, "Cannot create device 'Pad', skipping");
    messages_->expect(QtDebugMsg, "Found device 'Mute'");
    messages_->expect(QtDebugMsg, "Released gamepad", 2);
    messages_->expect(QtWarningMsg, "Failed to configure device 'Mute', skipping");
    messages_->expect(QtDebugMsg, "Released gamepad (had no effect)");
    messages_->expect(QtWarningMsg, "Failed to configure device 'Busy', skipping");
    start();
    QVERIFY(good->open && good->acquired);
    QVERIFY(!mute->open && !busy->open);
    announceChange();
    QCOMPARE(good->created, 1);
    QCOMPARE(second->created, 0);
    manager_.reset();
    QVERIFY(!good->open);
}

void TestGamepadInputManager::interfaceFailures() {
    using enum ControllerSystem::OpenResult;
    for (const auto& [result, canBeEnumerated, line] :
         {std::tuple(NoModule, true, "Failed to get module handle"),
          {NoInterface, true, "Failed to create instance of direct input interface"},
          {Ok, false, "Failed to find gamepad devices"}}) {
        pads_.openResult = result;
        pads_.canBeEnumerated = canBeEnumerated;
        messages_->expect(QtWarningMsg, line);
        start();
        manager_->onFocusGained();
        QVERIFY(!manager_->isGamepadConnected());
    }
    pads_.canBeEnumerated = true;
    announceChange();
    QVERIFY(manager_->isGamepadConnected());
}

void TestGamepadInputManager::overflowLosesNothingThatLasts() {
    start();
    feed({{48, kDown}, {ControllerOffset::kX, 0}});
    log_->take();
    // What was lost: button 0 went up, button 1 down and the stick back; what came: the hat. An
    // axis that was never heard of and stands at its end is a trigger at rest.
    pad_->state.axes[3] = 0;
    pad_->state.buttons[1] = true;
    pad_->state.hat = 0;
    pad_->dataResult = ControllerResult::BufferOverflow;
    messages_->expect(QtWarningMsg, "Input buffer overflowed, some imputs may have been lost.");
    feed({{ControllerOffset::kHat, 0}});
    QCOMPARE(log_->take(), QString("press 4, release 0, press 1, left 0 0"));
}

void TestGamepadInputManager::inputLostAndRecovered() {
    start();
    feed({{48, kDown}, {49, kDown}, {ControllerOffset::kX, 0}, {ControllerOffset::kRx, 65535}});
    log_->take();
    // Meanwhile one button was let go of, another pressed, and the left stick came back.
    pad_->state.buttons = {true, false, true};
    pad_->state.axes[3] = 65535;
    pad_->pollResult = ControllerResult::InputLost;
    feed({{51, kDown}});
    QVERIFY(pad_->acquired);
    QCOMPARE(log_->take(), QString("release 1, press 2, press 3, left 0 0, right 1 0"));
}

void TestGamepadInputManager::inputLossToldByAnyCall() {
    messages_->expect(QtWarningMsg,
                      "Got error while getting gamepad data despite polling being ok");
    for (ControllerResult* result : {&pad_->dataResult, &pad_->stateResult}) {
        start();
        nextPoll();
        if (result == &pad_->stateResult)
            manager_->onFocusLost();
        *result = ControllerResult::InputLost;
        manager_->onFocusGained();
        QTRY_COMPARE(*result, ControllerResult::Ok);
        pad_->records = {{48, kDown}};
        QTRY_COMPARE(log_->text(), QString("press 0"));
    }
}

void TestGamepadInputManager::unpluggedAndPluggedInAgain() {
    start();
    feed({{48, kDown},
          {ControllerOffset::kHat, 0},
          {ControllerOffset::kRy, 65535},
          {ControllerOffset::kZ, 65535}});
    log_->take();
    loseForGood();
    messages_->expect(QtDebugMsg, "Failed to reconfigure device after loosing it.");
    messages_->expect(QtDebugMsg, "Released gamepad", 2); // now, and its successor at the end
    nextPoll();
    QVERIFY(!manager_->isGamepadConnected());
    QVERIFY(!pad_->open);
    QCOMPARE(log_->take(), QString("release 0, release 4, right 0 0"));

    pads_.pads.clear();
    announceChange();
    QVERIFY(!manager_->isGamepadConnected());
    pad_ = pads_.plugIn("Other");
    pad_->state.buttons[7] = true;
    pad_->state.hat = 9000;
    qintptr result = 0;
    manager_->nativeEventFilter("something else", nullptr, &result);
    QVERIFY(!manager_->isGamepadConnected());
    announceChange();
    QVERIFY(manager_->isGamepadConnected());
    nextPoll();
    QCOMPARE(log_->take(), QString("press 11, press 5"));
}

void TestGamepadInputManager::failedReadsAreLoggedAndSurvived() {
    start();
    pad_->pollResult = ControllerResult::NotAcquired;
    feed({{48, kDown}});
    pad_->pollResult = ControllerResult::Failed;
    messages_->allow(QRegularExpression("^Got error while polling gamepad data$"));
    nextPoll();
    QVERIFY(messages_->seen(QtDebugMsg).contains("Device is not acquired!"));
    QVERIFY(messages_->count(QtWarningMsg) > 0);
    QCOMPARE(log_->take(), QString());
    pad_->dataResult = ControllerResult::Failed;
    pad_->records.clear();
    pad_->pollResult = ControllerResult::Ok;
    messages_->expect(QtWarningMsg,
                      "Got error while getting gamepad data despite polling being ok");
    nextPoll();
    feed({{48, kDown}});
    QCOMPARE(log_->take(), QString("press 0"));
}

void TestGamepadInputManager::looksForControllersWhereNoMessageTells() {
    pads_.pads.clear();
    pads_.checkPeriod = std::chrono::milliseconds(20);
    start();
    QVERIFY(!manager_->isGamepadConnected());
    pad_ = pads_.plugIn();
    pads_.changed = true;
    QTRY_VERIFY(manager_->isGamepadConnected());
    // In use, nobody looks any more; gone, the looking begins anew.
    pads_.changed = true;
    nextPoll();
    nextPoll();
    nextPoll();
    QVERIFY(pads_.changed);
    loseForGood();
    pads_.pads.clear();
    QTRY_VERIFY(!pads_.changed);
    QVERIFY(!manager_->isGamepadConnected());
}

/// Whether it was there before, or arrives while another application is in front.
void TestGamepadInputManager::readsOnlyWithFocus() {
    start();
    loseForGood();
    QTRY_VERIFY(!manager_->isGamepadConnected());
    manager_->onFocusLost();
    manager_->onFocusGained();
    manager_->onFocusLost();
    pads_.pads.clear();
    pad_ = pads_.plugIn();
    pad_->state.buttons[1] = true;
    announceChange();
    QVERIFY(manager_->isGamepadConnected());
    for (const bool pressed : {true, false}) {
        log_->take();
        QTest::qWait(50); // three periods
        QCOMPARE(log_->take(), QString());
        manager_->onFocusGained();
        manager_->onFocusGained();
        QTRY_COMPARE(log_->text(), QString(pressed ? "press 1" : "release 1"));
        manager_->onFocusLost();
        pad_->state.buttons[1] = false;
    }
}

/// What moved stands still at once; what was done meanwhile is not caught up on, what is done at
/// the end of it is known.
void TestGamepadInputManager::restsWhileTheFocusIsAway() {
    start();
    feed({{48, kDown},
          {49, kDown},
          {ControllerOffset::kX, 0},
          {ControllerOffset::kRx, 65535},
          {ControllerOffset::kZ, 65535}});
    log_->take();
    manager_->onFocusLost();
    QCOMPARE(log_->take(), QString("left 0 0, right 0 0"));
    manager_->onFocusLost();
    QCOMPARE(log_->take(), QString());
    // Button 2 is pressed and let go of, more often than a buffer holds; button 1 is let go of and
    // the right stick returns; button 0 and the left stick are held all the time.
    for (int i = 0; i < 40; ++i)
        pad_->records.push_back({50, i % 2 == 0 ? kDown : 0});
    pad_->records.push_back({49, 0});
    pad_->state.buttons = {true, false};
    pad_->state.axes = {0, 32768, 65535, 32768, 32768, 32768};
    manager_->onFocusGained();
    nextPoll();
    QCOMPARE(log_->take(), QString("release 1, left -1 0, pressure 1"));
    QVERIFY(pad_->records.empty());
}

void TestGamepadInputManager::swappedWhileTheFocusIsAway() {
    start();
    manager_->onFocusLost();
    loseForGood();
    pads_.pads.clear();
    pad_ = pads_.plugIn("Other");
    pads_.changed = true;
    announceChange();
    messages_->expect(QtDebugMsg, "Found device 'Other'");
    manager_->onFocusGained();
    QTRY_VERIFY(pad_->open);
    feed({{48, kDown}});
    QCOMPARE(log_->take(), QString("press 0"));
}

QTEST_GUILESS_MAIN(TestGamepadInputManager)
#include "tst_gamepad_input_manager.moc"
