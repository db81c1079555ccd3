#include "tests/input/FakeController.h"
#include "tests/input/InputLog.h"
#include "tests/support/GuardedTest.h"

#include <QTest>

using namespace MeshpadTest;
using namespace ControllerOffset;
using enum ControllerResult;

static constexpr std::uint32_t kDown = ControllerDevice::kButtonDown;

/// Answers of a controller that a virtual controller of the platform cannot give.
class TestGamepadInputManager : public GuardedTest {
    Q_OBJECT

private slots:
    void mapsRecords_data() {
        QTest::addColumn<AnalogRange>("range");
        QTest::addColumn<int>("input");
        QTest::addColumn<QList<int>>("positions");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, AnalogRange range, int input,
                            const QList<int>& positions, const char* expected) {
            QTest::newRow(name) << range << input << positions << QString(expected);
        };
        row("both centres", {}, kX, {32767, 32768}, "");
        row("beside the centre", {}, kX, {32769}, "left 4.6e-05 0");
        row("centre, signed", {-32768, 32767}, kX, {-1}, "");
        row("even range", {-1000, 1000}, kX, {500}, "left 0.5 0");
        row("one of two triggers", {}, kZ, {49151}, "pressure 0.25");
        row("range of one position", {5, 5}, kX, {5}, "");
        row("hat", {}, kHat, {300, 4500, 4501, 13500, 13501, 22500, 22501, 31500, 31501, 0xFFFF},
            "press 4, release 4, press 5, release 5, press 6, release 6, press 7, release 7, "
            "press 4, release 4");
    }

    void mapsRecords() {
        QFETCH(int, input);
        QFETCH(QList<int>, positions);
        QFETCH(const AnalogRange, range);
        pad_->range = range;
        start();
        std::vector<ControllerRecord> records;
        for (const int position : positions)
            records.push_back({std::uint32_t(input), std::uint32_t(position)});
        QTEST(feed(records), "expected");
    }

    void takesRightAxisThatRestsAtItsEndForTrigger_data() {
        QTest::addColumn<int>("restTime"); // ms
        QTest::addColumn<QString>("expected");
        QTest::newRow("at rest") << 0 << "; ; ; right 1 0, pressure -1; right 0 0";
        QTest::newRow("not yet") << 3'600'000 << "; ; ; ; ";
    }

    void takesRightAxisThatRestsAtItsEndForTrigger() {
        QFETCH(const int, restTime);
        pad_->state.axes[4] = 0;
        start(restTime);
        QStringList events{feed({{kRy, 65535}})}; // a trigger that is held
        events << feed({}) << feed({{kRy, 0}}) << feed({{kRy, 65535}, {kRx, 65535}})
               << feed({{kRy, 0}, {kRx, 32768}});
        QTEST(events.join("; "), "expected");
    }

    void skipsBrokenControllers() {
        pad_->results = {{"create", Failed}};
        const auto busy = system_->plugIn("Busy");
        busy->results = {{"acquire", Failed}, {"unacquire", NoEffect}};
        const auto good = system_->plugIn("Good");
        messages_->expect(QtWarningMsg, "Cannot create device 'Pad', skipping");
        messages_->expect(QtDebugMsg, "Found device 'Busy'");
        messages_->expect(QtDebugMsg, "Released gamepad (had no effect)");
        messages_->expect(QtWarningMsg, "Failed to configure device 'Busy', skipping");
        start();
        QVERIFY(good->open && !busy->open);
        QVERIFY(connectsAfter("change"));
        QCOMPARE(good->calls["create"], 1);
        manager_.reset();
        QVERIFY(!good->open);
    }

    void survivesFailedInterface() {
        system_->openResult = ControllerSystem::OpenResult::NoInterface;
        messages_->expect(QtWarningMsg, "Failed to create instance of direct input interface");
        start();
        manager_->onFocusGained();
        QVERIFY(!manager_->isGamepadConnected());
    }

    void takesStateAfterRecoveredLoss() {
        start();
        pad_->results = {{"state", InputLost}};
        QCOMPARE(feed({{48, kDown}}), "");
        feed({{48, kDown}, {49, kDown}, {kX, 0}, {kRx, 65535}});
        pad_->state.buttons = {true, false, true};
        pad_->state.axes = {32768, 32768, 0, 65535, 0, 0}; // Z, Ry and Rz have not reported
        pad_->results = {{"poll", InputLost}};
        QCOMPARE(feed({{51, kDown}}), "release 1, press 2, press 3, left 0 0, right 1 0");
    }

    void readsPadAnnouncedAfterLossOnlyWithFocus() {
        start();
        messages_->expect(QtDebugMsg, "Failed to reconfigure device after loosing it.");
        pad_->results = {{"poll", InputLost}, {"acquire", Failed}};
        feed({});
        QVERIFY(!pad_->open && !connectsAfter("another message"));
        system_->canBeEnumerated = false;
        messages_->expect(QtWarningMsg, "Failed to find gamepad devices");
        QVERIFY(!connectsAfter("change"));
        system_->canBeEnumerated = true;
        pad_->state.hat = 9000;
        manager_->onFocusLost();
        QVERIFY(connectsAfter("change"));
        QTest::qWait(50); // three periods
        QCOMPARE(log_->take(), "");
        manager_->onFocusGained();
        QCOMPARE(feed({}), "press 5");
    }

    void reportsNothingWhenReadFails() {
        start();
        QCOMPARE(feed({{kX, 0}}), "left -1 0");
        const auto reportsNothing = [this](const char* call, ControllerResult result) {
            pad_->results = {{call, result}};
            return feed({{48, kDown}}).isEmpty();
        };
        messages_->expect(QtDebugMsg, "Device is not acquired!");
        QVERIFY(reportsNothing("poll", NotAcquired));
        messages_->expect(QtWarningMsg, "Got error while polling gamepad data");
        QVERIFY(reportsNothing("poll", Failed));
        messages_->expect(QtWarningMsg,
                          "Got error while getting gamepad data despite polling being ok", 2);
        QVERIFY(reportsNothing("data", Failed));
        QVERIFY(reportsNothing("data", InputLost));
        QCOMPARE(feed({{49, kDown}}), "press 1, left 0 0");
    }

private:
    void setUp() override {
        created_ = std::make_unique<FakeSystem>();
        system_ = created_.get();
        pad_ = system_->plugIn();
    }
    void tearDown() override { manager_.reset(); }

    void start(int restTime = 0) {
        const std::chrono::milliseconds time(restTime);
        manager_ = std::make_unique<GamepadInputManager>(std::move(created_), nullptr,
                                                         RightStickTimes{time, time});
        log_ = std::make_unique<InputLog>(*manager_);
    }
    /// The signals of the next poll, which reads these records.
    QString feed(const std::vector<ControllerRecord>& records) {
        pad_->records = records;
        log_->take();
        for (pad_->calls.clear(); pad_->calls["poll"] == 0;)
            QCoreApplication::processEvents();
        return log_->take();
    }
    bool connectsAfter(const char* message) {
        return !manager_->nativeEventFilter(message, nullptr, nullptr) &&
               manager_->isGamepadConnected();
    }
    std::unique_ptr<FakeSystem> created_;
    FakeSystem* system_ = nullptr; ///< the manager owns it
    std::shared_ptr<FakePad> pad_;
    std::unique_ptr<GamepadInputManager> manager_;
    std::unique_ptr<InputLog> log_;
};

QTEST_GUILESS_MAIN(TestGamepadInputManager)
#include "tst_gamepad_input_manager.moc"
