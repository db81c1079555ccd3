#pragma once

#include "input/gamepad_input_manager.h"

#include <QStringList>

#include <utility>

namespace MeshpadTest {

/// Records a manager's signals in their order: "press 4", "release 4", "left 0.5 -1", "right 0 1",
/// "pressure 2", numbers with two digits.
class InputLog : public QObject {
    Q_OBJECT

public:
    /// Once records only the first of several equal signals in a row.
    enum class Repeats { Every, Once };

    explicit InputLog(const GamepadInputManager& manager, Repeats repeats = Repeats::Every)
        : repeats_(repeats) {
        using M = GamepadInputManager;
        const auto number = [](auto value) { return ' ' + QString::number(value, 'g', 2); };
        const auto recordButton = [=, this](const char* name) {
            return [=, this](GamepadButton button) { record(name + number(double(button))); };
        };
        const auto recordStick = [=, this](const char* name) {
            return [=, this](float x, float y) { record(name + number(x) + number(y)); };
        };
        connect(&manager, &M::buttonPressed, this, recordButton("press"));
        connect(&manager, &M::buttonReleased, this, recordButton("release"));
        connect(&manager, &M::leftAxisMoved, this, recordStick("left"));
        connect(&manager, &M::rightAxisMoved, this, recordStick("right"));
        connect(&manager, &M::pressure, this,
                [=, this](float value) { record("pressure" + number(value)); });
    }

    /// The signals since the last call, separated by commas.
    QString take() { return std::exchange(events_, {}).join(", "); }
    QString text() const { return events_.join(", "); }

private:
    void record(const QString& event) {
        if (std::exchange(last_, event) != event || repeats_ == Repeats::Every)
            events_ << event;
    }

    Repeats repeats_;
    QString last_;
    QStringList events_;
};

} // namespace MeshpadTest
