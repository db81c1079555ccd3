#include "input/gamepad_input_manager.h"
#include "tests/input/InputLog.h"
#include "tests/support/GuardedTest.h"

#include <QTest>

#include <SDL.h>
#include <csignal>

using namespace MeshpadTest;
using enum GamepadButton;

namespace {

constexpr Sint16 kLow = SDL_JOYSTICK_AXIS_MIN;
constexpr Sint16 kHigh = SDL_JOYSTICK_AXIS_MAX;

using Triggers = std::pair<int, int>; // left and right

/// A controller that SDL takes for a real one.
class VirtualPad {
public:
    explicit VirtualPad(int axes = 6, int buttons = 11, const char* name = "Virtual Pad",
                        int hats = 1, Triggers triggers = {2, 5}) {
        SDL_VirtualJoystickDesc description{};
        description.version = SDL_VIRTUAL_JOYSTICK_DESC_VERSION;
        description.type = SDL_JOYSTICK_TYPE_UNKNOWN;
        description.naxes = static_cast<Uint16>(axes);
        description.nbuttons = static_cast<Uint16>(buttons);
        description.nhats = static_cast<Uint16>(hats);
        description.name = name;
        const int index = SDL_JoystickAttachVirtualEx(&description);
        joystick_ = index < 0 ? nullptr : SDL_JoystickOpen(index);
        // As real triggers do, those of a pad with six axes rest at the low end.
        if (axes == 6) {
            axis(triggers.first, kLow);
            axis(triggers.second, kLow);
        }
    }
    ~VirtualPad() { unplug(); }
    VirtualPad(const VirtualPad&) = delete;
    VirtualPad& operator=(const VirtualPad&) = delete;

    bool isValid() const { return joystick_ != nullptr; }
    void axis(int index, Sint16 value) { SDL_JoystickSetVirtualAxis(joystick_, index, value); }
    void hat(Uint8 value, int index = 0) { SDL_JoystickSetVirtualHat(joystick_, index, value); }
    void button(int index, bool down) {
        SDL_JoystickSetVirtualButton(joystick_, index, down ? SDL_PRESSED : SDL_RELEASED);
    }

    void unplug() {
        if (!joystick_)
            return;
        for (int i = 0; i < SDL_NumJoysticks(); ++i)
            if (SDL_JoystickGetDeviceInstanceID(i) == SDL_JoystickInstanceID(joystick_))
                SDL_JoystickDetachVirtual(i);
        SDL_JoystickClose(std::exchange(joystick_, nullptr));
    }

private:
    SDL_Joystick* joystick_ = nullptr;
};

} // namespace

/// The real source of controllers on Linux, with controllers that need no hardware.
class TestSdlController : public GuardedTest {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() {
        manager_.reset();
        GuardedTest::cleanup();
    }

    void buttonsAndHat();
    void axes();
    void deadZones();
    void fastStickDoesNotCrowdOutButtons();
    void overflowIsToldAndCaughtUp();
    void inputsBeyondTheRecordsAreLeftOut();
    void attachedControllersAreAnnouncedOnceAndTriedAgain();
    void unpluggedAndPluggedInAgain();
    void secondControllerIsIgnored();

private:
    void start();
    QString nextEvents();

    std::unique_ptr<ControllerSystem> system_; ///< keeps SDL's joysticks up between the tests
    std::unique_ptr<GamepadInputManager> manager_;
    std::unique_ptr<InputLog> log_;
};

void TestSdlController::initTestCase() {
    // Opening leaves it to the application how an interrupt ends it.
    const auto previous = std::signal(SIGINT, SIG_DFL);
    system_ = ControllerSystem::create();
    QCOMPARE(system_->open(), ControllerSystem::OpenResult::Ok);
    QVERIFY(std::signal(SIGINT, previous) == SIG_DFL);
    if (SDL_NumJoysticks() > 0)
        QSKIP("Unplug the controllers of this machine to test with virtual ones");
}

void TestSdlController::start() {
    manager_.reset();
    manager_ = std::make_unique<GamepadInputManager>();
    log_ = std::make_unique<InputLog>(*manager_);
}

/// The signals of one poll, the next one that gives any.
QString TestSdlController::nextEvents() {
    log_->take();
    if (!QTest::qWaitFor([this] { return !log_->isEmpty(); }, 20'000))
        return "nothing";
    return log_->take();
}

void TestSdlController::buttonsAndHat() {
    VirtualPad pad;
    QVERIFY(pad.isValid());
    start();
    const GamepadButton buttons[] = {RightCross_Bottom,
                                     RightCross_Right,
                                     RightCross_Left,
                                     RightCross_Top,
                                     Trigger_Left,
                                     Trigger_Right,
                                     Back,
                                     Start};
    for (int i = 0; i < int(std::size(buttons)); ++i) {
        pad.button(i, true);
        QCOMPARE(nextEvents(), QString("press %1").arg(int(buttons[i])));
        pad.button(i, false);
        QCOMPARE(nextEvents(), QString("release %1").arg(int(buttons[i])));
    }
    const std::pair<Uint8, GamepadButton> directions[] = {{SDL_HAT_UP, LeftDPad_Top},
                                                          {SDL_HAT_RIGHT, LeftDPad_Right},
                                                          {SDL_HAT_DOWN, LeftDPad_Bottom},
                                                          {SDL_HAT_LEFT, LeftDPad_Left}};
    for (const auto& [direction, button] : directions) {
        pad.hat(direction);
        QCOMPARE(nextEvents(), QString("press %1").arg(int(button)));
        pad.hat(SDL_HAT_RIGHTUP); // on a diagonal nothing is held
        QCOMPARE(nextEvents(), QString("release %1").arg(int(button)));
    }
}

void TestSdlController::axes() {
    struct Row {
        const char* name;
        int axes;
        int axis;
        QString expected;
        Triggers triggers{2, 5};
    };
    const Row rows[] = {
        {"left stick x", 6, 0, "left 1 0"},
        {"left stick y", 6, 1, "left 0 1"},
        {"left trigger", 6, 2, "pressure 2"},
        {"right stick x", 6, 3, "right 1 0"},
        {"right stick y", 6, 4, "right 0 1"},
        {"right trigger", 6, 5, "pressure -2"},
        {"one axis for both triggers", 5, 2, "pressure 1"},
        {"right stick beside it", 5, 3, "right 1 0"},
        {"right stick without triggers", 4, 2, "right 1 0"},
        {"third axis alone", 3, 2, "pressure 1"},
        // Orders of other drivers, told apart by what rests at its low end.
        {"left trigger at the end", 6, 5, "pressure 2", {5, 4}},
        {"right trigger before it", 6, 4, "pressure -2", {5, 4}},
        {"right stick before triggers", 6, 2, "right 1 0", {5, 4}},
        {"right stick around triggers", 6, 5, "right 0 1", {3, 4}},
        {"left trigger inside", 6, 3, "pressure 2", {3, 4}},
    };
    for (const auto& [name, axes, axis, expected, triggers] : rows) {
        VirtualPad pad(axes, 11, "Virtual Pad", 1, triggers);
        start();
        pad.axis(axis, kHigh);
        for (int poll = 0; poll < 2; ++poll) {
            const QString events = nextEvents();
            QVERIFY2(events == expected, qPrintable(name + (": " + events)));
        }
        const bool isTrigger = axes == 6 && (axis == triggers.first || axis == triggers.second);
        pad.axis(axis, isTrigger ? kLow : Sint16(0));
        if (!expected.startsWith("pressure"))
            QCOMPARE(nextEvents(), expected.section(' ', 0, 0) + " 0 0");
        pad.button(0, true);
        QCOMPARE(nextEvents(), QString("press 0"));
    }
}

void TestSdlController::deadZones() {
    VirtualPad pad(5);
    start();
    // 17.5 % of the way for a stick, 0.25 % for a trigger; the button shows that a poll has passed.
    pad.axis(0, 5733);
    pad.axis(4, -5734);
    pad.axis(2, 81);
    pad.button(0, true);
    QCOMPARE(nextEvents(), QString("press 0"));
    pad.axis(0, 5760);
    pad.axis(2, 110);
    QCOMPARE(nextEvents(), QString("left 0.00096 0, pressure 0.00087"));
    // Outside the zone, what is left of the way covers the whole range.
    pad.axis(0, 19251);
    pad.axis(2, kLow);
    QCOMPARE(nextEvents(), QString("left 0.5 0, pressure -1"));
}

/// All of it happens between two polls.
void TestSdlController::fastStickDoesNotCrowdOutButtons() {
    VirtualPad pad;
    start();
    for (int i = 0; i < 100; ++i) {
        pad.axis(0, static_cast<Sint16>(kHigh - 100 * i));
        SDL_JoystickUpdate();
    }
    pad.axis(0, 0);
    pad.button(3, true);
    SDL_JoystickUpdate();
    QCOMPARE(nextEvents(), QString("press %1").arg(int(RightCross_Top)));
}

void TestSdlController::overflowIsToldAndCaughtUp() {
    VirtualPad pad(6, 32);
    start();
    pad.button(0, true);
    pad.axis(0, kLow);
    pad.axis(3, kHigh);
    QCOMPARE(nextEvents(), QString("press 0, left -1 0, right 1 0"));
    for (const bool down : {true, false}) {
        for (int i = 10; i < 26; ++i)
            pad.button(i, down);
        SDL_JoystickUpdate();
    }
    pad.button(0, false);
    pad.axis(0, kHigh);
    pad.axis(3, 19251);
    pad.hat(SDL_HAT_LEFT);
    messages_->expect(QtWarningMsg, "Input buffer overflowed, some imputs may have been lost.");
    QCOMPARE(nextEvents(), QString("release 0, press 7, left 1 0, right 0.5 0"));
    QCOMPARE(messages_->seen(QtDebugMsg).filter("Ignoring unknown input").size(), 32);
}

/// What there is no room for in the layout of a record must not be taken for another input.
void TestSdlController::inputsBeyondTheRecordsAreLeftOut() {
    VirtualPad pad(14, 40, "Flight Stick", 6);
    start();
    for (int axis = 6; axis < 14; ++axis)
        pad.axis(axis, kHigh);
    for (int button = 8; button < 40; ++button)
        pad.button(button, true);
    for (int hat = 1; hat < 6; ++hat)
        pad.hat(SDL_HAT_RIGHT, hat);
    SDL_JoystickUpdate();
    pad.button(3, true);
    messages_->expect(QtDebugMsg, "Ignoring unknown input: 24 -> 65535");
    messages_->expect(QtDebugMsg, "Ignoring unknown input: 28 -> 65535");
    messages_->expect(QtDebugMsg, "TODO-JOYSTICK DIJOFS_BUTTON(8) --> 128");
    messages_->expect(QtDebugMsg, "TODO-JOYSTICK DIJOFS_BUTTON(9) --> 128");
    QCOMPARE(nextEvents(), QString("press 3"));
    // Of the axes 6 and 7, of the hats 1 to 3, and the buttons up to 31 beside the mapped ones.
    QCOMPARE(messages_->seen(QtDebugMsg).filter("Ignoring unknown input").size(), 2 + 3 + 22);
}

void TestSdlController::attachedControllersAreAnnouncedOnceAndTriedAgain() {
    auto pad = std::make_unique<VirtualPad>();
    const auto listed = system_->attachedControllers();
    QCOMPARE(listed->size(), std::size_t(1));
    QVERIFY(!system_->attachedChanged());
    pad.reset();
    QVERIFY(system_->attachedChanged());
    QVERIFY(!system_->attachedChanged());
    // One that cannot be opened is looked at again, but not for ever.
    int looks = 0;
    do {
        QVERIFY(!listed->front().create());
        ++looks;
    } while (system_->attachedChanged() && looks < 100);
    QVERIFY2(looks > 1 && looks < 100, qPrintable(QString::number(looks)));
}

void TestSdlController::unpluggedAndPluggedInAgain() {
    messages_->expect(QtDebugMsg, "Found device 'Virtual Pad'");
    messages_->expect(QtDebugMsg, "Failed to reconfigure device after loosing it.", 2);
    messages_->expect(QtDebugMsg, "Released gamepad (had no effect)", 2);
    auto pad = std::make_unique<VirtualPad>();
    start();
    pad->axis(0, kHigh);
    pad->button(1, true);
    QCOMPARE(nextEvents(), QString("press 1, left 1 0"));
    pad.reset();
    QTRY_VERIFY(!manager_->isGamepadConnected());
    QCOMPARE(log_->take(), QString("release 1, left 0 0"));

    messages_->expect(QtDebugMsg, "Found device 'Another Pad'");
    pad = std::make_unique<VirtualPad>(6, 11, "Another Pad");
    QTRY_VERIFY(manager_->isGamepadConnected());
    pad->button(2, true);
    QCOMPARE(nextEvents(), QString("press 2"));

    // While the focus is away, without waiting for the next look: the first poll notices.
    manager_->onFocusLost();
    messages_->expect(QtDebugMsg, "Found device 'Third Pad'");
    pad = std::make_unique<VirtualPad>(6, 11, "Third Pad");
    pad->button(3, true);
    manager_->onFocusGained();
    QCOMPARE(nextEvents(), QString("release 2"));
    QVERIFY(manager_->isGamepadConnected());
    QCOMPARE(nextEvents(), QString("press 3"));
}

void TestSdlController::secondControllerIsIgnored() {
    VirtualPad first, second;
    start();
    second.button(0, true);
    first.button(1, true);
    QCOMPARE(nextEvents(), QString("press 1"));
    // When the first one goes, the second takes its place, and what it holds is known.
    first.unplug();
    QTRY_VERIFY(log_->text().contains("press 0"));
}

QTEST_GUILESS_MAIN(TestSdlController)
#include "tst_sdl_controller_linux.moc"
