#pragma once

namespace NetworkCompanion {
class Event;
}

/// Takes the events of the types it registered for with the EventDispatcher.
class EventListener {
public:
    virtual ~EventListener() = default;

    /// Runs on the GUI thread. The event is the dispatcher's: it is neither kept nor deleted here.
    virtual void receive(NetworkCompanion::Event* event) = 0;
};
