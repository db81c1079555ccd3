#include "app/InputGate.h"

#include <QKeyEvent>
#include <QWidget>
#include <QWindow>

namespace {

// The delay is spread over some iterations of the event loop, because after a long one the timer
// may be handled before the input that has been queued meanwhile.
constexpr int kTicks = 3;

} // namespace

InputGate::InputGate(QWidget* window, std::chrono::milliseconds delay)
    : QObject(window), window_(window) {
    timer_.setSingleShot(true);
    timer_.setInterval(delay / kTicks);
    connect(&timer_, &QTimer::timeout, this, &InputGate::onTick);
}

void InputGate::close() {
    state_ = State::Closed;
    timer_.stop();
    // The window's handle receives all its input first.
    if (QWindow* handle = window_->windowHandle())
        handle->installEventFilter(this);
}

void InputGate::open() {
    if (state_ != State::Closed)
        return;
    state_ = State::Opening;
    ticks_ = 0;
    timer_.start();
}

void InputGate::onTick() {
    if (++ticks_ < kTicks)
        timer_.start();
    else
        state_ = State::Open;
}

bool InputGate::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress: {
        const auto* press = static_cast<const QKeyEvent*>(event);
        if (state_ != State::Open)
            oldKeys_.insert(press->key());
        else if (!press->isAutoRepeat())
            oldKeys_.remove(press->key());
        else if (oldKeys_.contains(press->key()))
            return true;
        break;
    }
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TabletPress:
    case QEvent::Wheel:
    case QEvent::NativeGesture:
        break;
    default:
        return QObject::eventFilter(watched, event);
    }
    if (state_ != State::Opening)
        return QObject::eventFilter(watched, event);
    event->accept(); // so that no mouse event is made of a touch
    return true;
}
