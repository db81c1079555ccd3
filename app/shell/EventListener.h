#pragma once

namespace NetworkCompanion {
class Event;
}

/// Receives the events of the types for which it is registered with the EventDispatcher.
class EventListener {
public:
    virtual ~EventListener() = default;

    /// Called on the GUI thread. The dispatcher owns the event and deletes it afterwards.
    virtual void receive(NetworkCompanion::Event* event) = 0;
};
