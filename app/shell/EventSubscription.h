#pragma once

#include "network/events/ProtocolTypes.h"

#include <QtGlobal>

#include <span>
#include <vector>

class EventListener;

/// Registers a listener with the EventDispatcher for as long as this object exists. To be the last
/// member of the listener, so that no event arrives before the others exist or after they are gone.
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
