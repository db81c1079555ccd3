#pragma once

#include "network/events/ProtocolTypes.h"

#include <QtGlobal>

#include <span>
#include <vector>

class EventListener;

/// Registers a listener with the EventDispatcher for as long as this object exists. The listener
/// declares it after the members that receive() uses, so that they outlive the registration.
class EventSubscription {
public:
    EventSubscription(EventListener* listener,
                      std::span<const NetworkCompanion::LV_NTC_EventType> types);
    ~EventSubscription();
    Q_DISABLE_COPY_MOVE(EventSubscription)

private:
    EventListener* listener_;
    std::vector<NetworkCompanion::LV_NTC_EventType> types_;
};
