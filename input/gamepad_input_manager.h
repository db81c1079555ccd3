#pragma once

#include "input/controller_system.h"
#include "input/gamepad_button.h"

#include <QAbstractNativeEventFilter>
#include <QBasicTimer>
#include <QObject>

#include <array>
#include <chrono>
#include <memory>
#include <optional>

/// How long the axis Rx or Ry of a new device must rest before its use is known.
struct RightStickTimes {
    std::chrono::milliseconds stick{100};    ///< in the middle third of its range
    std::chrono::milliseconds trigger{2000}; ///< exactly at its end
};

/// Finds one controller, reads it every 16 ms while the application has the focus and emits signals
/// for its buttons, sticks and triggers. GUI thread only.
class GamepadInputManager : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    /// Opens the first working controller, if one is plugged in, and starts to read it. Assumes
    /// that the application has the focus until onFocusLost().
    explicit GamepadInputManager(QObject* parent = nullptr);

    /// The same with another source of controllers and other times, for tests.
    explicit GamepadInputManager(std::unique_ptr<ControllerSystem> system,
                                 QObject* parent = nullptr, RightStickTimes times = {});
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
    /// off its centre, and once with zeros when it has returned. Some devices report triggers as Rx
    /// and Ry, so these axes count as centred until they have rested in the middle.
    void leftAxisMoved(float x, float y);
    void rightAxisMoved(float x, float y);

    /// Both triggers together, -1..1; the left one counts up, the right one down. Emitted on every
    /// poll while it is not 0.
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

    /// What Rx or Ry is used for. Unknown ones count as centred.
    enum class Use { Unknown, Stick, Trigger };

    /// One axis of the device in use.
    struct Axis {
        bool present = false;
        bool reported = false; ///< the device has sent a record of it
        AnalogRange range;
        float value = 0; ///< after remapping; of a trigger, its part of the pressure
        // Rx and Ry only:
        Use use = Use::Unknown;
        std::uint32_t position = 0;
        std::chrono::steady_clock::time_point restingSince = // never, while the position is unknown
            std::chrono::steady_clock::time_point::max();
        bool releasedAtMax = false; ///< where it rests if it is a trigger
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
    void readAxes(AxisIndex first, AxisIndex second);
    void recogniseRightAxes();
    static float pull(const Axis& trigger);
    float stickValue(AxisIndex axis) const;
    float triggerPressure() const;
    static void setPosition(Axis& axis, std::uint32_t position);
    void updateAxis(AxisIndex axis);
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

    RightStickTimes times_;
    std::array<Axis, kAxisCount> axes_;
    bool hasReported_ = false;       ///< the device has sent a record, so its positions are known
    bool leftStickCentred_ = false;  ///< returned to 0 since the last reportMovement()
    bool rightStickCentred_ = false; ///< returned to 0 since the last reportMovement()
    std::array<bool, kMappedButtons> heldButtons_{};
    GamepadButton povButton_ = GamepadButton::LeftDPad_Top;
    bool povHeld_ = false;
};
