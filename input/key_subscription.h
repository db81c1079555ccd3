#pragma once

#include "input/key_event_manager.h"

#include <QtGlobal>

/// Registers a listener with the KeyEventManager for as long as this object exists. The listener
/// declares it after the members that notified() uses, so that they outlive the registration.
class KeySubscription {
public:
    explicit KeySubscription(KeyEventListener* listener) : listener_(listener) {
        KeyEventManager::getInstance()->addListener(listener_);
    }
    ~KeySubscription() { KeyEventManager::getInstance()->removeListener(listener_); }
    Q_DISABLE_COPY_MOVE(KeySubscription)

private:
    KeyEventListener* listener_;
};
