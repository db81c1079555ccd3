#include "input/gamepad_input_manager.h"
#include "tests/support/MessageGuard.h"

#include <QTest>
#include <QWindow>

#include <windows.h>

#include <dbt.h>

using namespace MeshpadTest;

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
    bool announcesChange(const QByteArray& eventType, void* message) const override {
        return real_->announcesChange(eventType, message);
    }
    std::chrono::milliseconds lookPeriod() const override { return real_->lookPeriod(); }
    bool attachedChanged() override { return real_->attachedChanged(); }

private:
    int& looks_;
    std::unique_ptr<ControllerSystem> real_;
};

} // namespace

/// The real source of controllers on Windows.
class TestDirectInput : public QObject {
    Q_OBJECT

private slots:
    void init() { messages_.emplace(); }
    void cleanup() {
        messages_->verify();
        messages_.reset();
    }

    void deviceChangeMessageStartsALook();

private:
    std::optional<MessageGuard> messages_;
};

void TestDirectInput::deviceChangeMessageStartsALook() {
    int looks = 0;
    GamepadInputManager manager(std::make_unique<CountingSystem>(looks));
    QCOMPARE(looks, 1);
    if (manager.isGamepadConnected())
        QSKIP("Unplug the controllers of this machine");

    QWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const auto handle = reinterpret_cast<HWND>(window.winId());
    looks = 0;
    for (const WPARAM what : {DBT_DEVICEARRIVAL, DBT_DEVICEREMOVECOMPLETE, DBT_DEVNODES_CHANGED})
        SendMessageW(handle, WM_DEVICECHANGE, what, 0);
    QCOMPARE(looks, 3);
    SendMessageW(handle, WM_DEVICECHANGE, DBT_QUERYCHANGECONFIG, 0);
    SendMessageW(handle, WM_NULL, DBT_DEVICEARRIVAL, 0);
    QCOMPARE(looks, 3);
}

QTEST_MAIN(TestDirectInput)
#include "tst_direct_input_windows.moc"
