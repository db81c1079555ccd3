#include "app/shell/EventSubscription.h"

#include "app/shell/EventDispatcher.h"

using namespace NetworkCompanion;

EventSubscription::EventSubscription(EventListener* listener,
                                     std::span<const LV_NTC_EventType> types)
    : listener_(listener), types_(types.begin(), types.end()) {
    for (const LV_NTC_EventType type : types_)
        EventDispatcher::getInstance()->addListener(listener_, type);
}

EventSubscription::~EventSubscription() {
    for (const LV_NTC_EventType type : types_)
        EventDispatcher::getInstance()->removeListener(listener_, type);
}
