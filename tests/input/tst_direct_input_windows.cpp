#include "input/gamepad_input_manager.h"
#include "tests/input/InputLog.h"
#include "tests/support/GuardedTest.h"

#include <QAbstractNativeEventFilter>
#include <QDeadlineTimer>
#include <QFile>
#include <QTest>
#include <QThread>
#include <QWindow>

#include <windows.h>

#include <dbt.h>

using namespace MeshpadTest;
using enum GamepadButton;

namespace {

/// The real source of controllers, which counts how often somebody looked for them.
class CountingSystem : public ControllerSystem {
public:
    explicit CountingSystem(int& looks) : looks_(looks), real_(ControllerSystem::create()) {}

    OpenResult open() override { return real_->open(); }
    std::optional<std::vector<AttachedController>> attachedControllers() override {
        ++looks_;
        return real_->attachedControllers();
    }
    bool announcesChange(const QByteArray& eventType, void* message) override {
        return real_->announcesChange(eventType, message);
    }
    std::chrono::milliseconds checkPeriod() const override { return real_->checkPeriod(); }
    bool attachedChanged() override { return real_->attachedChanged(); }

private:
    int& looks_;
    std::unique_ptr<ControllerSystem> real_;
};

/// Whether Windows has told since that controllers have come or gone.
class ChangeListener : public QAbstractNativeEventFilter {
public:
    explicit ChangeListener(ControllerSystem& system) : system_(system) {
        QCoreApplication::instance()->installNativeEventFilter(this);
    }

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* /*result*/) override {
        heard_ = heard_ || system_.announcesChange(type, message);
        return false;
    }
    bool heard() const { return heard_; }

private:
    ControllerSystem& system_;
    bool heard_ = false;
};

} // namespace

/// The real source of controllers on Windows. With MESHPAD_PAD_COMMANDS, a file whose lines
/// somebody obeys on a virtual controller, the controller is tried as well.
class TestDirectInput : public GuardedTest {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void deviceChangeMessageStartsALook();
    void everyInputOfAController();
    void deadZones();
    void overflowIsToldAndCaughtUp();
    void restsWhileTheFocusIsAway();
    void unpluggedAndPluggedInAgain();

private:
    void start();
    void plugIn();
    void command(const QByteArray& lines);
    void waitFor(const QString& events);
    std::unique_ptr<ControllerDevice> watch();
    static bool arrived(ControllerDevice& device, std::size_t button);

    std::unique_ptr<ControllerSystem> system_; ///< a second look at the controllers
    std::unique_ptr<QWindow> window_;
    std::unique_ptr<GamepadInputManager> manager_;
    QFile commands_{qEnvironmentVariable("MESHPAD_PAD_COMMANDS")};
    std::unique_ptr<InputLog> log_;
};

void TestDirectInput::initTestCase() {
    system_ = ControllerSystem::create();
    QCOMPARE(system_->open(), ControllerSystem::OpenResult::Ok);
    window_ = std::make_unique<QWindow>();
    window_->show();
    QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
    if (!commands_.fileName().isEmpty())
        QVERIFY(commands_.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered));
}

void TestDirectInput::cleanup() {
    manager_.reset();
    if (commands_.isOpen()) {
        command("unplug\n");
        QTRY_VERIFY(system_->attachedControllers()->empty());
    }
    GuardedTest::cleanup();
}

void TestDirectInput::start() {
    manager_ = std::make_unique<GamepadInputManager>();
    log_ = std::make_unique<InputLog>(*manager_, InputLog::Repeats::Once);
}

/// A manager with the controller found by it.
void TestDirectInput::plugIn() {
    if (!commands_.isOpen())
        QSKIP("No virtual controller");
    if (!manager_)
        start();
    command("plug\n");
    QTRY_VERIFY_WITH_TIMEOUT(manager_->isGamepadConnected(), 10000);
}

void TestDirectInput::command(const QByteArray& lines) {
    commands_.write(lines);
}

void TestDirectInput::waitFor(const QString& events) {
    QTRY_COMPARE(log_->text(), events);
    log_->take();
}

void TestDirectInput::deviceChangeMessageStartsALook() {
    int looks = 0;
    GamepadInputManager manager(std::make_unique<CountingSystem>(looks));
    QCOMPARE(looks, 1);
    const auto handle = reinterpret_cast<HWND>(window_->winId());
    looks = 0;
    for (const WPARAM what : {DBT_DEVICEARRIVAL, DBT_DEVICEREMOVECOMPLETE, DBT_DEVNODES_CHANGED})
        SendMessageW(handle, WM_DEVICECHANGE, what, 0);
    QCOMPARE(looks, 3);
    SendMessageW(handle, WM_DEVICECHANGE, DBT_QUERYCHANGECONFIG, 0);
    SendMessageW(handle, WM_NULL, DBT_DEVICEARRIVAL, 0);
    QCOMPARE(looks, 3);
}

void TestDirectInput::everyInputOfAController() {
    plugIn();
    const GamepadButton buttons[] = {RightCross_Bottom,
                                     RightCross_Right,
                                     RightCross_Left,
                                     RightCross_Top,
                                     Trigger_Left,
                                     Trigger_Right,
                                     Back,
                                     Start};
    for (int i = 0; i < int(std::size(buttons)); ++i) {
        const QByteArray number = QByteArray::number(i);
        command("button " + number + " 1\nbutton " + number + " 0\n");
        waitFor(QString("press %1, release %1").arg(int(buttons[i])));
    }
    command("hat 1\nhat 2\nhat 4\nhat 8\nhat 0\n");
    waitFor("press 4, release 4, press 5, release 5, press 6, release 6, press 7, release 7");
    const std::pair<QByteArray, QString> sticks[] = {{"0 32767", "left 1 0"},
                                                     {"0 -32768", "left -1 0"},
                                                     {"1 32767", "left 0 1"},
                                                     {"3 32767", "right 1 0"},
                                                     {"4 -32768", "right 0 -1"}};
    for (const auto& [position, expected] : sticks) {
        command("axis " + position + "\n");
        waitFor(expected);
        command("axis " + position.left(2) + "0\n");
        waitFor(expected.section(' ', 0, 0) + " 0 0");
    }
    // The triggers have an axis each, which rests at its end; together they rest at 0.
    command("axis 2 32767\n");
    waitFor("pressure 2");
    command("axis 2 -32768\naxis 5 32767\n");
    waitFor("pressure -2");
    command("axis 5 -32768\nbutton 0 1\n");
    waitFor("press 0");
}

void TestDirectInput::deadZones() {
    plugIn();
    command("axis 0 5600\naxis 4 -5600\nbutton 0 1\n");
    waitFor("press 0");
    command("axis 0 19251\n");
    waitFor("left 0.5 0");
}

/// Another look at the same controller; it learns only of what is done from now on.
std::unique_ptr<ControllerDevice> TestDirectInput::watch() {
    auto device = system_->attachedControllers()->front().create();
    device->setDataFormat();
    device->acquire();
    return device;
}

/// Waits until the button is held, which should be one that comes after those that matter: the two
/// looks do not learn of it at the same moment. Runs no event loop, so that nobody polls meanwhile.
bool TestDirectInput::arrived(ControllerDevice& device, std::size_t button) {
    ControllerState state;
    for (QDeadlineTimer deadline(5000); !deadline.hasExpired(); QThread::msleep(1)) {
        device.poll();
        device.state(state);
        if (state.buttons[button])
            return true;
    }
    return false;
}

void TestDirectInput::overflowIsToldAndCaughtUp() {
    plugIn();
    command("button 0 1\naxis 3 32767\n");
    waitFor("press 0, right 1 0");
    const auto watcher = watch();
    for (int i = 0; i < 20; ++i)
        command("button 9 1\nbutton 9 0\n");
    command("button 0 0\naxis 3 0\nbutton 1 1\nbutton 10 1\n");
    QVERIFY(arrived(*watcher, 10));
    messages_->expect(QtWarningMsg, "Input buffer overflowed, some imputs may have been lost.");
    waitFor("release 0, press 1, right 0 0");
}

void TestDirectInput::restsWhileTheFocusIsAway() {
    plugIn();
    command("button 0 1\naxis 0 32767\n");
    waitFor("press 0, left 1 0");
    manager_->onFocusLost();
    waitFor("left 0 0");
    auto watcher = watch();
    command("button 3 1\nbutton 3 0\nbutton 0 0\nbutton 1 1\nbutton 10 1\n");
    QVERIFY(arrived(*watcher, 10));
    manager_->onFocusGained();
    waitFor("release 0, press 1, left 1 0");

    // Another one in its place is found as well.
    watcher.reset();
    manager_->onFocusLost();
    command("unplug\n");
    QTRY_VERIFY(system_->attachedControllers()->empty());
    ChangeListener arrival(*system_);
    command("plug\n");
    QTRY_VERIFY(arrival.heard() && !system_->attachedControllers()->empty());
    log_->take();
    manager_->onFocusGained();
    waitFor("release 1");
    command("button 2 1\n");
    waitFor("press 2");
}

void TestDirectInput::unpluggedAndPluggedInAgain() {
    messages_->expect(QtDebugMsg, "Failed to reconfigure device after loosing it.");
    plugIn();
    command("button 2 1\naxis 0 32767\n");
    waitFor("press 2, left 1 0");
    command("unplug\n");
    QTRY_VERIFY(!manager_->isGamepadConnected());
    waitFor("release 2, left 0 0");
    plugIn();
    command("button 3 1\n");
    waitFor("press 3");
}

QTEST_MAIN(TestDirectInput)
#include "tst_direct_input_windows.moc"
