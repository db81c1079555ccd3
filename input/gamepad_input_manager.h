#pragma once

#include "input/controller_system.h"
#include "input/gamepad_button.h"

#include <QAbstractNativeEventFilter>
#include <QBasicTimer>
#include <QObject>

#include <array>
#include <memory>
#include <optional>

/// Finds one controller, reads it every 16 ms while the application has the focus and emits signals
/// for its buttons, sticks and triggers. GUI thread only.
class GamepadInputManager : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    /// Opens the first working controller, if one is plugged in, and starts to read it. Assumes
    /// that the application has the focus until onFocusLost().
    explicit GamepadInputManager(QObject* parent = nullptr);

    /// The same with another source of controllers, for tests.
    explicit GamepadInputManager(std::unique_ptr<ControllerSystem> system,
                                 QObject* parent = nullptr);
    ~GamepadInputManager() override;

    bool isGamepadConnected() const { return device_ != nullptr; } // API

    /// Starts a discovery if the message announces a controller. Always returns false.
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

public slots:
    /// Resumes reading. Emits signals for what is held now, not for what happened without the
    /// focus.
    void onFocusGained();
    /// Stops reading and reports sticks that are off their centre with zeros.
    void onFocusLost();

signals:
    /// Stick positions, -1..1 to the right and downwards. Emitted on every poll while the stick is
    /// off its centre, and once with zeros when it has returned.
    void leftAxisMoved(float x, float y);
    void rightAxisMoved(float x, float y);

    /// The sum of both triggers; the left one counts up, the right one down. Emitted on every poll
    /// while the sum is not 0.
    void pressure(float value);

    void buttonPressed(GamepadButton button);
    void buttonReleased(GamepadButton button);

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    static constexpr int kNoTimer = -1;
    static constexpr std::size_t kMappedButtons = 8;

    enum AxisIndex : std::size_t { X, Y, Z, Rx, Ry, Rz, kAxisCount };
    using Records = std::array<ControllerRecord, ControllerDevice::kBufferSize>;

    /// Determines what the next poll does.
    enum class State {
        NoDevice,
        OutOfSync, ///< takes the device's whole state before it processes records
        InSync,    ///< processes the records
        InputLost  ///< acquires the device again
    };

    /// One axis of the device in use.
    struct Axis {
        bool present = false;
        bool reported = false; ///< the device has sent a record of it
        AnalogRange range;
        float value = 0; ///< after remapping
    };

    void discoverAvailableDevices();
    bool discoverVisitDevice(const AttachedController& controller);
    bool configureAndAcquireDevice();
    void initGamepadState();
    void deinitGamepad();

    void setState(State state);
    void startActiveTimer();
    void stopActiveTimer();

    void readDeviceDataAndUpdate();
    bool isInSync() const;
    ControllerResult recordInputLost(ControllerResult result);
    void discardRecords();
    bool processRecords();
    void processRecord(const ControllerRecord& record);
    static std::optional<AxisIndex> axisAt(std::uint32_t offset);
    void markReported(AxisIndex axis);
    void readTriggers();
    void updateAxis(AxisIndex axis, std::uint32_t data);
    void updateHat(std::uint32_t data);
    void updateButton(std::size_t index, bool down);
    void reportMovement();
    void releaseAll();
    void centreSticks();

    std::unique_ptr<ControllerSystem> system_; ///< null if the platform's interface did not open
    std::unique_ptr<ControllerDevice> device_; ///< the controller in use
    State state_ = State::NoDevice;
    bool focused_ = true;
    int timerId_ = kNoTimer; ///< polls the device
    QBasicTimer checkTimer_; ///< checks for a new controller

    std::array<Axis, kAxisCount> axes_;
    bool leftStickCentred_ = false;  ///< returned to 0 since the last reportMovement()
    bool rightStickCentred_ = false; ///< returned to 0 since the last reportMovement()
    std::array<bool, kMappedButtons> heldButtons_{};
    GamepadButton povButton_ = GamepadButton::LeftDPad_Top;
    bool povHeld_ = false;
};
