#pragma once

#include "input/key_event_manager.h"

#include <QtGlobal>

/// Registers a listener with the KeyEventManager for as long as this object exists. To be the last
/// member of the listener, so that no key arrives before the others exist or after they are gone.
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
