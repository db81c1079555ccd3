#include "app/KeyRepeatFilter.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QTimerEvent>

namespace {

bool isModifier(int key) {
    return (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock) || key == Qt::Key_AltGr;
}

} // namespace

KeyRepeatFilter::KeyRepeatFilter(QObject* parent) : QObject(parent) {}
KeyRepeatFilter::~KeyRepeatFilter() = default;

/// Handles the events of windows only, because each window passes its events on to its widgets.
bool KeyRepeatFilter::eventFilter(QObject* watched, QEvent* event) {
    const bool isPress = event->type() == QEvent::KeyPress;
    if ((!isPress && event->type() != QEvent::KeyRelease) || !event->spontaneous() ||
        !watched->isWindowType())
        return QObject::eventFilter(watched, event);

    auto* keyEvent = static_cast<QKeyEvent*>(event);
    if (isModifier(keyEvent->key()) || (!isPress && keyEvent->isAutoRepeat()))
        return false;
    if (!isPress) {
        deliverRelease();
        holdRelease(watched, *keyEvent);
        return true;
    }
    if (!isRepetition(watched, *keyEvent)) {
        deliverRelease();
        return false;
    }
    release_.reset();
    if (keyEvent->isAutoRepeat())
        return false;
    sendRepetition(watched, *keyEvent);
    return true;
}

void KeyRepeatFilter::timerEvent(QTimerEvent* event) {
    if (event->timerId() == timer_.timerId())
        deliverRelease();
    else
        QObject::timerEvent(event);
}

void KeyRepeatFilter::holdRelease(QObject* window, const QKeyEvent& release) {
    window_ = window;
    release_.reset(release.clone());
    releasedKey_ = release.key();
    releaseTime_ = release.timestamp();
    timer_.start(static_cast<int>(repeatGap.count()), Qt::PreciseTimer, this);
}

void KeyRepeatFilter::deliverRelease() {
    timer_.stop();
    if (const auto release = std::move(release_); release && window_)
        QCoreApplication::sendEvent(window_, release.get());
}

/// Compares the times of the window system, because the event loop may deliver events late.
bool KeyRepeatFilter::isRepetition(const QObject* window, const QKeyEvent& press) const {
    return window == window_ && press.key() == releasedKey_ &&
           press.timestamp() - releaseTime_ <= static_cast<quint64>(repeatGap.count());
}

void KeyRepeatFilter::sendRepetition(QObject* window, QKeyEvent& press) {
    QKeyEvent marked(QEvent::KeyPress, press.key(), press.modifiers(), press.nativeScanCode(),
                     press.nativeVirtualKey(), press.nativeModifiers(), press.text(), true,
                     static_cast<quint16>(press.count()), press.device());
    marked.setTimestamp(press.timestamp());
    const bool taken = QCoreApplication::sendEvent(window, &marked);
    press.setAccepted(taken && marked.isAccepted());
}
