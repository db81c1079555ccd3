#include "app/KeyRepeatFilter.h"

#include <QCoreApplication>
#include <QKeyEvent>

bool KeyRepeatFilter::isRepetition(const QKeyEvent& press) const {
    return !press.isAutoRepeat() && press.timestamp() != 0 && press.timestamp() == releaseTime_ &&
           press.key() == releasedKey_;
}

bool KeyRepeatFilter::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyRelease) {
        const auto* release = static_cast<QKeyEvent*>(event);
        releasedKey_ = release->key();
        releaseTime_ = release->timestamp();
    } else if (event->type() == QEvent::KeyPress &&
               isRepetition(*static_cast<const QKeyEvent*>(event))) {
        auto* press = static_cast<QKeyEvent*>(event);
        QKeyEvent marked(QEvent::KeyPress, press->key(), press->modifiers(),
                         press->nativeScanCode(), press->nativeVirtualKey(),
                         press->nativeModifiers(), press->text(), true,
                         static_cast<quint16>(press->count()), press->device());
        marked.setTimestamp(press->timestamp());
        const bool taken = QCoreApplication::sendEvent(watched, &marked);
        press->setAccepted(taken && marked.isAccepted());
        return true;
    }
    return QObject::eventFilter(watched, event);
}
