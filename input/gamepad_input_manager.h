#pragma once

#include "input/controller_system.h"
#include "input/gamepad_button.h"

#include <QAbstractNativeEventFilter>
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

    bool isGamepadConnected() const { return device_ != nullptr; }

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

    /// One axis as the device in use has it, and where it stands after remapping.
    struct Axis {
        bool present = false;
        bool known = false;        ///< the device has told where it is
        bool mayHaveMoved = false; ///< it may have told, but the record was lost
        AnalogRange range;
        float value = 0;
    };

    void discoverAvailableDevices();
    bool discoverVisitDevice(const AttachedController& controller);
    bool configureAndAcquireDevice();
    void initGamepadState();
    void deinitGamepad();

    void startActiveTimer();
    void stopActiveTimer();
    void updateCheckTimer();

    void readDeviceDataAndUpdate();
    bool isReading() const;
    ControllerResult recordInputLost(ControllerResult result);
    void dropRecords();
    void catchUpWithState();
    void processRecord(const ControllerRecord& record);
    void updateAxis(AxisIndex axis, std::uint32_t data);
    void alignTriggers();
    void updateHat(std::uint32_t data);
    void updateButton(std::size_t index, bool down);
    void reportMovement();
    void releaseAll();
    void centreSticks();

    std::unique_ptr<ControllerSystem> system_; ///< null when the platform's interface did not open
    std::unique_ptr<ControllerDevice> device_; ///< the controller in use
    int timerId_ = kNoTimer;
    int checkTimerId_ = kNoTimer;
    bool focused_ = true;
    bool inputLost_ = false;    ///< told by another call than a poll
    bool stateWanted_ = false;  ///< the next poll tells what is held and where the sticks are
    bool changeMissed_ = false; ///< controllers came or went while one was in use

    std::array<Axis, kAxisCount> axes_;
    bool triggersAligned_ = false;
    bool leftStickCentred_ = false;  ///< came back to 0 since movement was last reported
    bool rightStickCentred_ = false; ///< likewise
    std::array<bool, kMappedButtons> heldButtons_{};
    GamepadButton povButton_ = GamepadButton::LeftDPad_Top;
    bool povHeld_ = false;
};
