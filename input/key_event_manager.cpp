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
    // A key may destroy a listener; indices must stay valid during notifyListeners().
    if (notifying_ > 0)
        *found = nullptr;
    else
        listeners_.erase(found);
}

void KeyEventManager::notifyListeners(QKeyEvent* keyEvent) {
    ++notifying_;
    const std::size_t count = listeners_.size();
    for (std::size_t i = 0; i < count; ++i)
        if (listeners_[i])
            listeners_[i]->notified(keyEvent);
    --notifying_;
    if (notifying_ == 0)
        std::erase(listeners_, nullptr);
}
