#pragma once

#include "input/action.h"

#include <QWidget>

namespace Companion {

/// The pages of the main window.
enum class Page : int {
    None = 0,
    Connect = 1,
    Warp = 2,
    QuickKeys = 3,
    TestPatterns = 4,
    Settings = 5
};

} // namespace Companion

/// A page of the main window: can be locked and may handle controller input.
class IPage : public QWidget {
    Q_OBJECT

public:
    explicit IPage(QWidget* parent) : QWidget(parent) {}

    /// Called when the connection is lost: the page ends what the operator is doing.
    virtual void lockPage() = 0;

public slots:
    /// Position of the left stick, each axis in -1..1.
    virtual void onLeftAxisMoved(float x, float y) {
        Q_UNUSED(x)
        Q_UNUSED(y)
    }
    /// Position of the right stick, each axis in -1..1.
    virtual void onRightAxisMoved(float x, float y) {
        Q_UNUSED(x)
        Q_UNUSED(y)
    }
    /// Combined pressure of both triggers, in -2..2.
    virtual void onPressure(float value) { Q_UNUSED(value) }
    virtual void onAction(Action action) { Q_UNUSED(action) }
};
