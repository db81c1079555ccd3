#include "app/shell/EventDispatcher.h"

#include "app/shell/EventListener.h"
#include "network/events/Event.h"

#include <algorithm>
#include <memory>

using namespace NetworkCompanion;

namespace {

constexpr unsigned int kDiscoveryLocalPort = 62331;
constexpr unsigned int kDiscoveryTargetPort = 62330;

std::size_t indexOf(LV_NTC_EventType type) {
    return static_cast<std::size_t>(type);
}

} // namespace

EventDispatcher* EventDispatcher::getInstance() {
    static EventDispatcher instance;
    return &instance;
}

EventDispatcher::EventDispatcher()
    : client_(this), networkUtils_(kDiscoveryLocalPort, kDiscoveryTargetPort, false) {
    connect(&client_, &CompanionClient::newEvent, this, &EventDispatcher::onEventData);
    connect(&client_, &CompanionClient::disconnected, this, &EventDispatcher::onDisconnected);
}

EventDispatcher::~EventDispatcher() {
    QObject::disconnect(&client_, &CompanionClient::disconnected, this, nullptr);
    listeners_.clear();
}

void EventDispatcher::addListener(EventListener* listener, LV_NTC_EventType type) {
    if (indexOf(type) >= listeners_.size())
        listeners_.resize(indexOf(type) + 1);
    auto& queue = listeners_[indexOf(type)];
    if (std::find(queue.begin(), queue.end(), listener) == queue.end())
        queue.push_back(listener);
}

void EventDispatcher::removeListener(EventListener* listener, LV_NTC_EventType type) {
    if (indexOf(type) >= listeners_.size())
        return;
    auto& queue = listeners_[indexOf(type)];
    const auto found = std::find(queue.begin(), queue.end(), listener);
    if (found == queue.end())
        return;
    if (dispatchDepth_ == 0) {
        queue.erase(found);
    } else {
        *found = nullptr; // erasing would move the positions that onEvent() iterates over
        hasRemovedListeners_ = true;
    }
}

void EventDispatcher::onEventData(eventData data) {
    if (data.second != nullptr)
        onEvent(data.second);
}

void EventDispatcher::onEvent(Event* event) {
    const std::unique_ptr<Event> owned(event);
    const std::size_t type = indexOf(event->type());
    if (type >= listeners_.size())
        return;
    ++dispatchDepth_;
    // Indexed anew each time, because a listener may register a type that makes the vector grow.
    const std::size_t count = listeners_[type].size();
    for (std::size_t i = 0; i < count; ++i)
        if (EventListener* listener = listeners_[type][i])
            listener->receive(event);
    --dispatchDepth_;
    if (dispatchDepth_ == 0 && hasRemovedListeners_)
        eraseRemovedListeners();
}

void EventDispatcher::eraseRemovedListeners() {
    for (auto& queue : listeners_)
        std::erase(queue, nullptr);
    hasRemovedListeners_ = false;
}

void EventDispatcher::onDisconnected(int clientId) {
    Q_UNUSED(clientId)
    emit disconnected();
}
