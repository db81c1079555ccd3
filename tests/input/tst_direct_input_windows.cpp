#include "tests/input/InputLog.h"
#include "tests/support/GuardedTest.h"

#include <QFile>
#include <QTest>
#include <QWindow>

#include <windows.h>

#include <dbt.h>

using namespace MeshpadTest;

/// The controllers of Windows. MESHPAD_PAD_COMMANDS names a file of commands that a virtual
/// controller executes; without it only the device-change message is tested.
class TestDirectInput : public GuardedTest {
    Q_OBJECT

private slots:
    void initTestCase() {
        QCOMPARE(system_->open(), ControllerSystem::OpenResult::Ok);
        window_ = std::make_unique<QWindow>();
        window_->show();
        QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
        if (!commands_.fileName().isEmpty())
            QVERIFY(commands_.open(QIODevice::Append | QIODevice::Unbuffered));
    }

    void announcesDeviceChangeMessages() {
        const auto announces = [this](UINT type, WPARAM what) {
            MSG message{};
            message.message = type;
            message.wParam = what;
            return system_->announcesChange("windows_generic_MSG", &message);
        };
        QVERIFY(!announces(WM_DEVICECHANGE, DBT_QUERYCHANGECONFIG));
        QVERIFY(!announces(WM_NULL, DBT_DEVICEARRIVAL) && !system_->attachedChanged());
        QVERIFY(announces(WM_DEVICECHANGE, DBT_DEVICEARRIVAL));
        QVERIFY(announces(WM_DEVICECHANGE, DBT_DEVICEREMOVECOMPLETE));
        QVERIFY(announces(WM_DEVICECHANGE, DBT_DEVNODES_CHANGED) && system_->attachedChanged());
    }

    void reportsEveryInput_data() {
        QTest::addColumn<QByteArray>("commands");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QByteArray& commands, const char* expected) {
            QTest::newRow(name) << commands << QString(expected);
        };
        row("cross", "button 0 1\nbutton 1 1\nbutton 2 1\nbutton 3 1\nbutton 3 0\n",
            "press 0, press 1, press 2, press 3, release 3");
        row("other buttons", "button 4 1\nbutton 5 1\nbutton 6 1\nbutton 7 1\n",
            "press 8, press 9, press 10, press 11");
        row("hat", "hat 1\nhat 2\nhat 4\nhat 8\n",
            "press 4, release 4, press 5, release 5, press 6, release 6, press 7");
        row("left stick right", "axis 0 32767\n", "left 1 0");
        row("left stick down", "axis 1 32767\n", "left 0 1");
        row("right stick right", "axis 3 32767\n", "right 1 0");
        row("right stick up", "axis 4 -32768\n", "right 0 -1");
        row("left trigger", "axis 2 32767\n", "pressure 1");
        row("right trigger", "axis 5 32767\n", "pressure -1");
        row("inside the dead zones", "axis 0 5600\naxis 4 -5600\nbutton 0 1\n", "press 0");
        row("outside the dead zone", "axis 0 19251\n", "left 0.5 0");
    }

    void reportsEveryInput() {
        plugIn();
        QFETCH(QByteArray, commands);
        QFETCH(QString, expected);
        command(commands);
        waitFor(expected);
    }

    void findsReplacedPadWithAndWithoutFocus() {
        plugIn();
        command("button 1 1\naxis 0 32767\n");
        waitFor("press 1, left 1 0");
        manager_->onFocusLost();
        waitFor("left 0 0");
        command("unplug\n");
        QTRY_VERIFY(system_->attachedControllers()->empty());
        command("plug\n");
        QTRY_VERIFY(!system_->attachedControllers()->empty());
        manager_->onFocusGained();
        waitFor("release 1");
        command("button 2 1\naxis 0 32767\n");
        waitFor("press 2, left 1 0");
        command("unplug\n");
        waitFor("release 2, left 0 0");
        plugIn();
    }

private:
    void tearDown() override {
        manager_.reset();
        command("unplug\n");
        QTRY_VERIFY(system_->attachedControllers()->empty());
    }

    /// Plugs a pad in and waits until the manager uses it.
    void plugIn() {
        if (!commands_.isOpen())
            QSKIP("No virtual controller");
        if (!manager_) {
            manager_ = std::make_unique<GamepadInputManager>(
                ControllerSystem::create(), nullptr, RightStickTimes{std::chrono::milliseconds(0)});
            log_ = std::make_unique<InputLog>(*manager_, true);
        }
        command("plug\n");
        QTRY_VERIFY_WITH_TIMEOUT(manager_->isGamepadConnected(), 10000);
        // The first poll takes the state, so later commands must not come before it.
        command("button 0 1\n");
        waitFor("press 0");
        command("button 0 0\n");
        waitFor("release 0");
    }

    void command(const QByteArray& lines) { commands_.write(lines); }
    void waitFor(const QString& events) {
        QTRY_COMPARE(log_->text(), events);
        log_->take();
    }

    std::unique_ptr<ControllerSystem> system_ = ControllerSystem::create();
    std::unique_ptr<QWindow> window_; ///< receives the native messages
    std::unique_ptr<GamepadInputManager> manager_;
    QFile commands_{qEnvironmentVariable("MESHPAD_PAD_COMMANDS")};
    std::unique_ptr<InputLog> log_;
};

QTEST_MAIN(TestDirectInput)
#include "tst_direct_input_windows.moc"
