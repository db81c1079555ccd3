#pragma once

#include <QObject>

#include <vector>

class KeyEventListener;
class QKeyEvent;

/// Distributes every key press of the main window to all registered listeners. GUI thread only.
class KeyEventManager : public QObject {
    Q_OBJECT

public:
    /// The instance of the process; it exists until the program exits.
    static KeyEventManager* getInstance();

    /// Does not take ownership; remove the listener before it is destroyed. A listener that is
    /// added twice is notified twice.
    void addListener(KeyEventListener* listener);

    /// Removes the oldest registration of the listener; warns if there is none.
    void removeListener(KeyEventListener* listener);

    /// Notifies all listeners in the order of registration, even after one has accepted the event.
    /// Listeners may add and remove listeners: a removed one is not notified any more, an added
    /// one is notified from the next key on.
    void notifyListeners(QKeyEvent* keyEvent);

private:
    KeyEventManager() = default;

    std::vector<KeyEventListener*>
        listeners_;     ///< null for a listener removed during notifyListeners()
    int notifying_ = 0; ///< depth of nested notifyListeners() calls
};
