#pragma once

#include "input/gamepad_input_manager.h"

#include <QStringList>

#include <utility>

namespace MeshpadTest {

/// Writes down what a manager signals, in the order in which it comes: "press 4", "release 4",
/// "left 0.5 -1", "right 0 1", "pressure 2", numbers with two digits.
class InputLog : public QObject {
    Q_OBJECT

public:
    /// With Once, what comes several times in a row is written down the first time.
    enum class Repeats { Every, Once };

    explicit InputLog(const GamepadInputManager& manager, Repeats repeats = Repeats::Every)
        : repeats_(repeats) {
        connect(
            &manager, &GamepadInputManager::buttonPressed, this,
            [this](GamepadButton button) { note(QString("press %1").arg(int(button))); });
        connect(
            &manager, &GamepadInputManager::buttonReleased, this,
            [this](GamepadButton button) { note(QString("release %1").arg(int(button))); });
        connect(
            &manager, &GamepadInputManager::leftAxisMoved, this,
            [this](float x, float y) { note("left " + number(x) + " " + number(y)); });
        connect(
            &manager, &GamepadInputManager::rightAxisMoved, this,
            [this](float x, float y) { note("right " + number(x) + " " + number(y)); });
        connect(&manager, &GamepadInputManager::pressure, this,
                [this](float value) { note("pressure " + number(value)); });
    }

    /// What came since the last time, separated by commas.
    QString take() { return std::exchange(events_, {}).join(", "); }
    QString text() const { return events_.join(", "); }
    bool isEmpty() const { return events_.isEmpty(); }

private:
    static QString number(float value) { return QString::number(value, 'g', 2); }

    void note(const QString& event) {
        if (std::exchange(last_, event) != event || repeats_ == Repeats::Every)
            events_ << event;
    }

    Repeats repeats_;
    QString last_;
    QStringList events_;
};

} // namespace MeshpadTest
