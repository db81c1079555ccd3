#include "input/controller_layout.h"
#include "tests/input/InputLog.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/VirtualPad.h"

#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <memory>
#include <optional>
#include <set>

using namespace MeshpadTest;
using Triggers = VirtualPad::Triggers;

static const QRegularExpression kPressOrMove("press|right (1|0 1)");
static constexpr int kLow = SDL_JOYSTICK_AXIS_MIN;
static constexpr int kHigh = SDL_JOYSTICK_AXIS_MAX;

/// The controllers of Linux, from SDL's joysticks to the manager's signals.
class TestSdlController : public GuardedTest {
    Q_OBJECT

private slots:
    void initTestCase() {
        const auto previous = std::signal(SIGINT, SIG_DFL);
        system_ = ControllerSystem::create();
        QCOMPARE(system_->open(), ControllerSystem::OpenResult::Ok);
        QVERIFY(std::signal(SIGINT, previous) == SIG_DFL); // SDL must not handle signals
        if (SDL_NumJoysticks() > 0)
            QSKIP("Unplug the controllers of this machine to test with virtual ones");
    }

    void reportsButtonsAndHatInOrder() {
        start();
        for (const bool down : {true, false})
            for (int i = 0; i < 8; ++i)
                pad_->button(i, down), SDL_JoystickUpdate();
        for (const int hat : {1, 3, 2, 4, 8, 0}) // up, up and right, right, down, left, centre
            pad_->hat(Uint8(hat)), SDL_JoystickUpdate();
        QCOMPARE(nextEvents(),
                 "press 0, press 1, press 2, press 3, press 8, press 9, press 10, press 11, "
                 "release 0, release 1, release 2, release 3, release 8, release 9, release 10, "
                 "release 11, press 4, release 4, press 5, release 5, press 6, release 6, press 7, "
                 "release 7");
    }

    void reportsEveryAxis_data() {
        QTest::addColumn<int>("axes");
        QTest::addColumn<Triggers>("triggers");
        QTest::addColumn<QString>("others"); // the signals of the axes after the left stick's
        const auto row = [](const char* name, int axes, Triggers triggers, const char* others) {
            QTest::newRow(name) << axes << triggers << QString(others);
        };
        row("six", 6, {2, 5}, ", pressure 1, right 1 0, right 0 1, pressure -1");
        row("one for both triggers", 5, {}, ", pressure 1, right 1 0, right 0 1");
        row("no triggers", 4, {}, ", right 1 0, right 0 1");
        row("third alone", 3, {}, ", pressure 1");
        row("triggers last", 6, {5, 4}, ", right 1 0, right 0 1, pressure -1, pressure 1");
        row("triggers inside", 6, {3, 4}, ", right 1 0, pressure 1, pressure -1, right 0 1");
    }

    void reportsEveryAxis() {
        QFETCH(int, axes);
        QFETCH(Triggers, triggers);
        QFETCH(QString, others);
        QStringList events;
        for (int axis = 0; axis < axes; ++axis) {
            start(axes, 11, "Virtual Pad", 1, triggers);
            pad_->axis(axis, kHigh);
            events << nextEvents();
            QCOMPARE(nextEvents(), events.last()); // every poll
        }
        QCOMPARE(events.join(", "), "left 1 0, left 0 1" + others);
    }

    void knowsLayoutsOfPads_data() {
        QTest::addColumn<QByteArray>("identifier"); // of the real pad in SDL's table
        // Bottom, right, left, top; shoulders, back, start; pad up, right, down, left; triggers;
        // right stick right, down.
        QTest::addColumn<QString>("controls");
        QTest::addColumn<Triggers>("triggers");
        const auto row = [](const char* name, const char* identifier, const char* controls,
                            Triggers triggers) {
            QTest::newRow(name) << QByteArray(identifier) << QString(controls) << triggers;
        };
        row("Xbox by cable", "030000005e040000d102000001010000",
            "b0 b1 b2 b3 b4 b5 b6 b7 h1 h2 h4 h8 a2 a5 a3 a4", {2, 5});
        row("Xbox by Bluetooth", "050000005e040000130b000011050000",
            "b0 b1 b3 b4 b6 b7 b10 b11 h1 h2 h4 h8 a5 a4 a2 a3", {5, 4});
        row("PS4", "030000004c050000c405000011010000",
            "b1 b2 b0 b3 b4 b5 b8 b9 h1 h2 h4 h8 a3 a4 a2 a5", {3, 4});
        row("PS5", "050000004c050000e60c000000810000",
            "b0 b1 b3 b2 b4 b5 b8 b9 h1 h2 h4 h8 a2 a5 a3 a4", {2, 5});
        row("PS3, only buttons", "030000004c0500006802000010010000",
            "b14 b13 b15 b12 b10 b11 b0 b3 b4 b5 b6 b7 b8 b9 a2 a3", {});
        row("Switch Pro", "050000007e0500000920000001800000",
            "b0 b1 b3 b2 b5 b6 b9 b10 h1 h2 h4 h8 b7 b8 a2 a3", {});
        row("unknown", "", "b0 b1 b2 b3 b4 b5 b6 b7 h1 h2 h4 h8 a2 a5 a3 a4", {2, 5});
    }

    void knowsLayoutsOfPads() {
        QFETCH(QByteArray, identifier);
        QFETCH(QString, controls);
        QFETCH(Triggers, triggers);
        const bool hasTriggers = triggers != Triggers();
        static Uint16 product = 1; // SDL keeps the layouts by product
        pad_.emplace(hasTriggers ? 6 : 4, 20, QTest::currentDataTag(), 1, triggers, ++product);
        if (!identifier.isEmpty())
            addMapping(identifier);
        startReading();
        QStringList events;
        for (const QString& control : controls.split(' ')) {
            const int number = control.mid(1).toInt();
            const bool isTrigger = triggers.first == number || triggers.second == number;
            const auto move = [&](bool on) {
                if (control.startsWith('b'))
                    pad_->button(number, on);
                else if (control.startsWith('h'))
                    pad_->hat(Uint8(on ? number : 0));
                else
                    pad_->axis(number, on ? kHigh : hasTriggers && isTrigger ? kLow : 0);
                SDL_JoystickUpdate();
            };
            move(true);
            events << nextEvents().split(", ").filter(kPressOrMove);
            move(false);
        }
        QCOMPARE(events.join(", "),
                 "press 0, press 1, press 2, press 3, press 8, press 9, press 10, press 11, "
                 "press 4, press 5, press 6, press 7, pressure 1, pressure -1, right 1 0, "
                 "right 0 1");
    }

    /// On every pad of SDL's table each control has one use and each use one control.
    void findsOneUseOfEveryControl() {
        QVERIFY(SDL_GameControllerNumMappings() > 300);
        for (int i = 0; i < SDL_GameControllerNumMappings(); ++i) {
            const std::unique_ptr<char, decltype(&SDL_free)> line(
                SDL_GameControllerMappingForIndex(i), &SDL_free);
            // The names are those of positions, not of the letters printed on the buttons.
            QVERIFY2(!strstr(line.get(), "hint:SDL_GAMECONTROLLER_USE_BUTTON_LABELS"), line.get());
            const auto layout = ControllerLayout::ofMapping(line.get());
            QVERIFY2(layout, line.get());
            const auto offsets = layout->offsets();
            QVERIFY2(std::ranges::count(offsets, ControllerOffset::button(0)) == 1, line.get());

            ControllerLayout::Inputs released;
            released.fill(std::vector(256, 0));
            for (const auto& binding : layout->bindings())
                if (binding.index >= 0 && !isStick(binding.offset))
                    released[size_t(binding.kind)][size_t(binding.index)] = binding.rest;
            std::set<std::pair<std::uint32_t, int>> uses;
            for (const auto& binding : layout->bindings()) {
                QVERIFY2(uses.emplace(binding.offset, binding.offsetFull).second, line.get());
                auto moved = released;
                if (binding.index < 0)
                    continue;
                moved[size_t(binding.kind)][size_t(binding.index)] = binding.full;
                for (const auto offset : offsets)
                    QVERIFY2(offset == binding.offset
                                 ? layout->position(offset, moved) == binding.offsetFull
                                 : layout->position(offset, moved) ==
                                       layout->position(offset, released),
                             line.get());
            }
        }
    }

    /// The zones are 17.5 % of the way for a stick and 0.25 % for a trigger; the rest of the way
    /// covers the whole range.
    void appliesDeadZones() {
        start(5);
        pad_->axis(0, 5733);
        pad_->axis(4, -5734);
        pad_->axis(2, 81);
        pad_->button(0, true);
        QCOMPARE(nextEvents(), "press 0");
        pad_->axis(0, 5760);
        pad_->axis(2, 110);
        QCOMPARE(nextEvents(), "left 0.00096 0, pressure 0.00087");
        pad_->axis(0, 0);
        pad_->axis(2, kLow);
        QCOMPARE(nextEvents(), "left 0 0, pressure -1");
    }

    void keepsButtonsWhileStickMovesFast() {
        start();
        for (int i = 0; i <= 100; ++i)
            pad_->axis(0, kHigh / 100 * (100 - i)), SDL_JoystickUpdate();
        pad_->button(3, true);
        QCOMPARE(nextEvents(), "press 3");
    }

    void takesStateAfterOverflow() {
        start(6, 32);
        pad_->button(0, true);
        pad_->axis(0, kLow);
        pad_->axis(3, kHigh);
        QCOMPARE(nextEvents(), "press 0, left -1 0, right 1 0");
        for (const bool down : {true, false}) {
            for (int i = 10; i < 26; ++i)
                pad_->button(i, down);
            SDL_JoystickUpdate();
        }
        pad_->button(0, false);
        pad_->axis(0, kHigh);
        pad_->axis(3, 19251);
        pad_->axis(4, kHigh); // has never reported, so it counts as centred
        pad_->hat(SDL_HAT_LEFT);
        messages_->expect(QtWarningMsg, "Input buffer overflowed, some imputs may have been lost.");
        QCOMPARE(nextEvents(), "release 0, press 7, left 1 0, right 0.5 0");
        QCOMPARE(messages_->seen(QtDebugMsg).filter("Ignoring unknown input").size(), 32);
    }

    void ignoresInputsBeyondTheRecords() {
        start(14, 40, "Flight Stick", 6);
        for (int axis = 6; axis < 14; ++axis)
            pad_->axis(axis, kHigh);
        for (int button = 8; button < 40; ++button)
            pad_->button(button, true);
        for (int hat = 1; hat < 6; ++hat)
            pad_->hat(SDL_HAT_RIGHT, hat);
        SDL_JoystickUpdate();
        pad_->button(3, true);
        messages_->expect(QtDebugMsg, "Ignoring unknown input: 28 -> 65535");
        messages_->expect(QtDebugMsg, "TODO-JOYSTICK DIJOFS_BUTTON(9) --> 128");
        QCOMPARE(nextEvents(), "press 3");
        // The axes 6 and 7, the hats 1 to 3 and the buttons 10 to 31.
        QCOMPARE(messages_->seen(QtDebugMsg).filter("Ignoring unknown input").size(), 2 + 3 + 22);
    }

    void reportsChangedControllersOnce() {
        pad_.emplace();
        const auto listed = system_->attachedControllers();
        QCOMPARE(listed->size(), std::size_t(1));
        pad_.reset();
        QVERIFY(system_->attachedChanged());
        QVERIFY(!system_->attachedChanged());
        int attempts = 0; // to open a controller that cannot be opened
        do
            QVERIFY(!listed->front().create());
        while (++attempts < 100 && system_->attachedChanged());
        QVERIFY2(attempts > 1 && attempts < 100, qPrintable(QString::number(attempts)));
    }

    void findsSuccessorOfUnpluggedPad() {
        messages_->expect(QtDebugMsg, "Failed to reconfigure device after loosing it.", 2);
        messages_->expect(QtDebugMsg, "Found device 'Third Pad'");
        start();
        auto second = std::make_unique<VirtualPad>();
        second->button(0, true); // not reported while the first pad is in use
        pad_->axis(0, kHigh);
        pad_->hat(SDL_HAT_UP);
        pad_->button(1, true);
        QCOMPARE(nextEvents(), "press 1, press 4, left 1 0");
        pad_.reset();
        QCOMPARE(nextEvents(), "release 1, release 4, left 0 0");
        QCOMPARE(nextEvents(), "press 0");
        second.reset();
        QCOMPARE(nextEvents(), "release 0");
        pad_.emplace(6, 11, "Third Pad");
        pad_->button(2, true);
        QCOMPARE(nextEvents(), "press 2");
    }

    void reportsOnlyCurrentStateAfterFocusReturns() {
        start();
        pad_->button(0, true);
        pad_->axis(0, kLow);
        pad_->axis(3, kHigh);
        QCOMPARE(nextEvents(), "press 0, left -1 0, right 1 0");
        manager_->onFocusLost();
        manager_->onFocusLost();
        QCOMPARE(log_->take(), "left 0 0, right 0 0");
        for (int i = 0; i < 40; ++i) // more than the buffer holds
            pad_->button(2, i % 2 == 0), SDL_JoystickUpdate();
        pad_->button(0, false);
        pad_->axis(3, 0);
        QTest::qWait(50); // three periods
        QCOMPARE(log_->take(), "");
        manager_->onFocusGained();
        QCOMPARE(nextEvents(), "release 0, left -1 0");
    }

private:
    void tearDown() override {
        manager_.reset();
        pad_.reset();
    }

    /// Replaces the pad by a new one and starts to read it.
    void start(auto... pad) {
        manager_.reset();
        pad_.emplace(pad...);
        startReading();
    }
    /// Waits until the positions of the resting pad have been read.
    void startReading() {
        manager_ = std::make_unique<GamepadInputManager>(
            ControllerSystem::create(), nullptr, RightStickTimes{std::chrono::milliseconds(0)});
        log_ = std::make_unique<InputLog>(*manager_);
        for (const bool down : {true, false}) {
            pad_->button(0, down);
            QVERIFY(!nextEvents().isEmpty());
        }
    }
    /// Gives the pad the layout that SDL's table has for another one.
    static void addMapping(const QByteArray& identifier) {
        const std::unique_ptr<char, decltype(&SDL_free)> line(
            SDL_GameControllerMappingForGUID(SDL_JoystickGetGUIDFromString(identifier)), &SDL_free);
        QByteArray mapping(line.get());
        SDL_JoystickGetGUIDString(SDL_JoystickGetDeviceGUID(0), mapping.data(), 33);
        mapping[32] = ',';
        QCOMPARE(SDL_GameControllerAddMapping(mapping), 1);
    }
    static bool isStick(std::uint32_t offset) {
        using namespace ControllerOffset;
        return offset == kX || offset == kY || offset == kRx || offset == kRy;
    }
    /// The signals of the next poll that emits any.
    QString nextEvents() {
        log_->take();
        static_cast<void>(QTest::qWaitFor([this] { return !log_->text().isEmpty(); }, 20'000));
        return log_->take();
    }

    std::unique_ptr<ControllerSystem> system_; ///< keeps SDL initialised between the tests
    std::optional<VirtualPad> pad_;
    std::unique_ptr<GamepadInputManager> manager_;
    std::unique_ptr<InputLog> log_;
};

QTEST_GUILESS_MAIN(TestSdlController)
#include "tst_sdl_controller_linux.moc"
