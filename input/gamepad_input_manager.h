#pragma once

#include "input/controller_system.h"
#include "input/gamepad_button.h"

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <array>
#include <memory>
#include <optional>

/// Finds one controller, reads it every 16 ms while the application has the focus and tells what
/// its buttons, sticks and triggers do. GUI thread only.
class GamepadInputManager : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    /// Takes the first controller that works, if one is plugged in, and starts to read it.
    explicit GamepadInputManager(QObject* parent = nullptr);

    /// The same with another source of controllers.
    explicit GamepadInputManager(std::unique_ptr<ControllerSystem> system,
                                 QObject* parent = nullptr);
    ~GamepadInputManager() override;

    bool isGamepadConnected() const { return device_ != nullptr; }

    /// Never consumes a message.
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

public slots:
    void onFocusGained();
    void onFocusLost();

signals:
    /// Both sticks, -1..1 to the right and downwards. Emitted on every poll while the stick is off
    /// its centre, and once with zeros when it has returned.
    void leftAxisMoved(float x, float y);
    void rightAxisMoved(float x, float y);

    /// The two triggers taken together; the left one counts up from 0, the right one down. Emitted
    /// on every poll while the sum is not 0.
    void pressure(float value);

    void buttonPressed(GamepadButton button);
    void buttonReleased(GamepadButton button);

protected:
    void timerEvent(QTimerEvent* event) override;
};
