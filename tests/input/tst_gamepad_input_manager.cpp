#include "tests/input/FakeController.h"
#include "tests/input/InputLog.h"
#include "tests/support/GuardedTest.h"

#include <QTest>

using namespace MeshpadTest;
using namespace ControllerOffset;
using enum ControllerResult;
using Open = ControllerSystem::OpenResult;

namespace {

constexpr std::uint32_t kDown = ControllerDevice::kButtonDown;

} // namespace

/// Answers of a controller that a virtual controller of the platform cannot give.
class TestGamepadInputManager : public GuardedTest {
    Q_OBJECT

private slots:
    void init() {
        GuardedTest::init();
        created_ = std::make_unique<FakeSystem>();
        system_ = created_.get();
        pad_ = system_->plugIn();
    }
    void cleanup() {
        manager_.reset();
        GuardedTest::cleanup();
    }

    void mapsHatToDirections() {
        start();
        std::vector<ControllerRecord> records{{kHat, 300}};
        for (const std::uint32_t value : {4499, 4500, 4501, 13499, 13500, 13501, 22499, 22500,
                                          22501, 31499, 31500, 31501, 35999, 0xFFFF, 0x7FFFFFFF})
            records.push_back({kHat, value});
        QCOMPARE(feed(records),
                 "press 4, release 4, press 5, release 5, press 6, release 6, press 7, "
                 "release 7, press 4, release 4");
    }

    void mapsPositionsToValues_data() {
        QTest::addColumn<AnalogRange>("range");
        QTest::addColumn<std::vector<ControllerRecord>>("records");
        QTest::addColumn<QString>("expected");
        const AnalogRange usual;
        const auto row = [](const char* name, AnalogRange range, std::uint32_t axis, int position,
                            const char* expected) {
            const std::vector<ControllerRecord> records{{axis, std::uint32_t(position)}};
            QTest::newRow(name) << range << records << QString(expected);
        };
        row("low end", usual, kX, 0, "left -1 0");
        row("high end", usual, kX, 65535, "left 1 0");
        row("lower centre", usual, kX, 32767, "");
        row("upper centre", usual, kX, 32768, "");
        row("beside the centre", usual, kX, 32769, "left 4.6e-05 0");
        row("centre of the right trigger", usual, kRz, 32767, "");
        row("low end of a signed range", {-32768, 32767}, kX, -32768, "left -1 0");
        row("centre of a signed range", {-32768, 32767}, kY, -1, "");
        row("even range", {-1000, 1000}, kY, 500, "left 0 0.5");
        row("centre of an even range", {-1000, 1000}, kY, 0, "");
        row("range of one position", {5, 5}, kX, 5, "");
        QTest::newRow("out and back")
            << usual << std::vector<ControllerRecord>{{kX, 0}, {kX, 32768}} << "left 0 0";
    }

    void mapsPositionsToValues() {
        QFETCH(AnalogRange, range);
        QFETCH(std::vector<ControllerRecord>, records);
        pad_->range = range;
        start();
        QTEST(feed(records), "expected");
    }

    void skipsBrokenControllers() {
        pad_->canBeCreated = false;
        const auto mute = system_->plugIn("Mute");
        mute->results = {{"range", Failed}};
        const auto busy = system_->plugIn("Busy");
        busy->results = {{"acquire", Failed}, {"unacquire", NoEffect}};
        const auto good = system_->plugIn("Good");
        const auto second = system_->plugIn("Second");
        messages_->expect(QtWarningMsg, "Cannot create device 'Pad', skipping");
        messages_->expect(QtDebugMsg, "Found device 'Mute'");
        messages_->expect(QtDebugMsg, "Released gamepad", 2);
        messages_->expect(QtWarningMsg, "Failed to configure device 'Mute', skipping");
        messages_->expect(QtDebugMsg, "Released gamepad (had no effect)");
        messages_->expect(QtWarningMsg, "Failed to configure device 'Busy', skipping");
        start();
        QVERIFY(connectsAfter(FakeSystem::kChangeMessage));
        QVERIFY(good->open && good->acquired && !mute->open && !busy->open);
        QCOMPARE(good->created + second->created, 1);
        manager_.reset();
        QVERIFY(!good->open);
    }

    void survivesFailedInterface_data() {
        QTest::addColumn<Open>("result");
        QTest::addColumn<QString>("warning");
        QTest::newRow("no module") << Open::NoModule << "Failed to get module handle";
        QTest::newRow("no interface")
            << Open::NoInterface << "Failed to create instance of direct input interface";
        QTest::newRow("no list") << Open::Ok << "Failed to find gamepad devices";
    }

    void survivesFailedInterface() {
        QFETCH(Open, result);
        QFETCH(QString, warning);
        system_->openResult = result;
        system_->canBeEnumerated = false;
        messages_->expect(QtWarningMsg, warning);
        start();
        manager_->onFocusGained();
        QVERIFY(!manager_->isGamepadConnected());
    }

    void takesStateAfterRecoveredLoss() {
        start();
        feed({{48, kDown}, {49, kDown}, {kX, 0}, {kRx, 65535}});
        pad_->state.buttons = {true, false, true};
        pad_->state.axes = {32768, 32768, 0, 65535, 0, 0}; // Z, Ry and Rz have not reported
        pad_->results = {{"poll", InputLost}};
        QCOMPARE(feed({{51, kDown}}), "release 1, press 2, press 3, left 0 0, right 1 0");
    }

    void recoversFromLossReportedByAnyCall_data() {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("warning");
        QTest::newRow("records") << "data"
                                 << "Got error while getting gamepad data despite polling being ok";
        QTest::newRow("state") << "state"
                               << "";
    }

    void recoversFromLossReportedByAnyCall() {
        QFETCH(QString, call);
        QFETCH(QString, warning);
        start();
        pad_->results = {{call.toStdString(), InputLost}};
        if (!warning.isEmpty())
            messages_->expect(QtWarningMsg, warning);
        QCOMPARE(feed({{48, kDown}}), "");
        QCOMPARE(feed({{48, kDown}}), "press 0");
    }

    void keepsRecoveredPadAfterDeviceMessage() {
        system_->plugIn("Second");
        start();
        system_->changed = true;
        QVERIFY(connectsAfter(FakeSystem::kChangeMessage));
        pad_->results = {{"poll", InputLost}};
        QCOMPARE(feed({{48, kDown}}), "press 0");
        QCOMPARE(pad_->created, 1);
    }

    void releasesLostPadAndFindsAnnouncedOne() {
        start();
        feed({{48, kDown}, {kHat, 0}, {kRy, 65535}});
        messages_->expect(QtDebugMsg, "Failed to reconfigure device after loosing it.");
        replacePad();
        QCOMPARE(feed({}), "release 0, release 4, right 0 0");
        QVERIFY(!pad_->open);
        QVERIFY(!connectsAfter("another message"));
        pad_ = system_->pads.front();
        pad_->state.hat = 9000;
        QVERIFY(connectsAfter(FakeSystem::kChangeMessage));
        QCOMPARE(feed({}), "press 5");
    }

    void findsPadAnnouncedBeforeLoss() {
        start();
        replacePad();
        system_->changed = true;
        QTRY_VERIFY(system_->pads.front()->open);
    }

    void logsFailedReads() {
        start();
        messages_->expect(QtDebugMsg, "Device is not acquired!");
        pad_->results = {{"poll", NotAcquired}};
        QCOMPARE(feed({{48, kDown}}), "");
        messages_->expect(QtWarningMsg, "Got error while polling gamepad data");
        pad_->results = {{"poll", Failed}};
        QCOMPARE(feed({{48, kDown}}), "");
        messages_->expect(QtWarningMsg,
                          "Got error while getting gamepad data despite polling being ok");
        pad_->results = {{"data", Failed}};
        QCOMPARE(feed({}), "");
        QCOMPARE(feed({{48, kDown}}), "press 0");
    }

    void readsNewPadOnlyWithFocus() {
        pad_->state.buttons[1] = true; // held before the manager finds the pad
        system_->canBeEnumerated = false;
        messages_->expect(QtWarningMsg, "Failed to find gamepad devices");
        start();
        manager_->onFocusLost();
        system_->canBeEnumerated = true;
        QVERIFY(connectsAfter(FakeSystem::kChangeMessage));
        QTest::qWait(50); // three periods
        QCOMPARE(log_->take(), "");
        manager_->onFocusGained();
        QCOMPARE(feed({}), "press 1");
    }

private:
    void start() {
        manager_ = std::make_unique<GamepadInputManager>(std::move(created_));
        log_ = std::make_unique<InputLog>(*manager_);
    }
    /// The signals of the next poll, which reads these records.
    QString feed(const std::vector<ControllerRecord>& records) {
        pad_->records = records;
        log_->take();
        for (const int polls = pad_->polls; pad_->polls == polls;)
            QCoreApplication::processEvents();
        return log_->take();
    }
    bool connectsAfter(const char* message) {
        qintptr result = 0;
        return !manager_->nativeEventFilter(message, nullptr, &result) &&
               manager_->isGamepadConnected();
    }
    /// Replaces the pad by another one and makes it fail.
    void replacePad() {
        pad_->results = {{"poll", InputLost}, {"acquire", Failed}};
        system_->pads.clear();
        system_->plugIn("Other");
    }

    std::unique_ptr<FakeSystem> created_;
    FakeSystem* system_ = nullptr; ///< the manager owns it
    std::shared_ptr<FakePad> pad_;
    std::unique_ptr<GamepadInputManager> manager_;
    std::unique_ptr<InputLog> log_;
};

QTEST_GUILESS_MAIN(TestGamepadInputManager)
#include "tst_gamepad_input_manager.moc"
