#pragma once

class QKeyEvent;

/// Receives the key presses that KeyEventManager distributes.
class KeyEventListener {
public:
    virtual ~KeyEventListener() = default;

    /// Called for every key press of the main window. Accepting the event marks the key as handled;
    /// the manager still notifies the remaining listeners. The caller owns the event.
    virtual void notified(QKeyEvent* keyEvent) = 0;
};
