#pragma once

class QKeyEvent;

/// Takes the key presses that KeyEventManager hands out.
class KeyEventListener {
public:
    virtual ~KeyEventListener() = default;

    /// Called for every key press of the main window. Accepting the event marks the key as handled;
    /// the listeners that follow are notified all the same. The event belongs to the caller.
    virtual void notified(QKeyEvent* keyEvent) = 0;
};
