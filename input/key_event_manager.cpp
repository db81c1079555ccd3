#include "input/key_event_manager.h"

#include "input/key_event_listener.h"

#include <QDebug>

#include <algorithm>

KeyEventManager* KeyEventManager::getInstance() {
    static KeyEventManager instance;
    return &instance;
}

void KeyEventManager::addListener(KeyEventListener* listener) {
    listeners_.push_back(listener);
}

void KeyEventManager::removeListener(KeyEventListener* listener) {
    const auto found = std::find(listeners_.begin(), listeners_.end(), listener);
    if (found == listeners_.end()) {
        qWarning("No key event listener to remove!");
        return;
    }
    listeners_.erase(found);
}

void KeyEventManager::notifyListeners(QKeyEvent* keyEvent) {
    // A key may close what listens, so the list is walked as it was and each entry checked anew.
    const std::vector<KeyEventListener*> listeners = listeners_;
    for (KeyEventListener* listener : listeners) {
        if (std::find(listeners_.begin(), listeners_.end(), listener) != listeners_.end())
            listener->notified(keyEvent);
    }
}
