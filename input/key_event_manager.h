#pragma once

#include <QObject>

#include <vector>

class KeyEventListener;
class QKeyEvent;

/// Hands every key press of the main window to everybody who asked for them. GUI thread only.
class KeyEventManager : public QObject {
    Q_OBJECT

public:
    /// The one instance of the process; it lives until the program exits.
    static KeyEventManager* getInstance();

    /// The listener is not owned and must be removed before it is destroyed. One that is added
    /// twice is notified twice.
    void addListener(KeyEventListener* listener);

    /// Removes one registration of the listener, the oldest; warns when there is none.
    void removeListener(KeyEventListener* listener);

    /// Notifies in the order of registration, whether or not an earlier listener accepted the
    /// event. Listeners may be added and removed meanwhile: a removed one is not called any more,
    /// an added one is called from the next key on.
    void notifyListeners(QKeyEvent* keyEvent);

private:
    KeyEventManager() = default;

    std::vector<KeyEventListener*> listeners_; ///< null where one was removed during a key
    int notifying_ = 0;                        ///< how many keys are being handed out right now
};
