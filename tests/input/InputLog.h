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
    explicit InputLog(const GamepadInputManager& manager, bool skipsRepeats = false) {
        using M = GamepadInputManager;
        const auto record = [=, this](const char* format) {
            return [=, this](auto... values) {
                const QString event = QString::asprintf(format, double(values)...);
                if (std::exchange(last_, event) != event || !skipsRepeats)
                    events_ << event;
            };
        };
        connect(&manager, &M::buttonPressed, this, record("press %g"));
        connect(&manager, &M::buttonReleased, this, record("release %g"));
        connect(&manager, &M::leftAxisMoved, this, record("left %.2g %.2g"));
        connect(&manager, &M::rightAxisMoved, this, record("right %.2g %.2g"));
        connect(&manager, &M::pressure, this, record("pressure %.2g"));
    }

    /// The signals since the last call, separated by commas.
    QString take() { return std::exchange(events_, {}).join(", "); }
    QString text() const { return events_.join(", "); }

private:
    QString last_;
    QStringList events_;
};

} // namespace MeshpadTest
