#pragma once

#include "network/CompanionClient.h"
#include "network/NetworkUtils.h"
#include "network/events/ProtocolTypes.h"

#include <QObject>

#include <cstddef>
#include <deque>
#include <vector>

class EventListener;

/// Owns the connection to the Producer and the discovery service, and passes each received event to
/// the listeners of its type. GUI thread only, except for NetworkUtils::getAvailableServers().
class EventDispatcher final : public QObject {
    Q_OBJECT

public:
    /// The one instance, created by the first call, on the GUI thread; exists until the process
    /// ends.
    static EventDispatcher* getInstance();

    /// Appends the listener to those of `type` unless it is registered already. It is not owned and
    /// must be removed before it is destroyed; EventSubscription does both. Both may be called
    /// during a dispatch: an added listener receives the next event, a removed one not even the
    /// current event.
    void addListener(EventListener* listener, NetworkCompanion::LV_NTC_EventType type);
    void removeListener(EventListener* listener, NetworkCompanion::LV_NTC_EventType type);

    NetworkCompanion::CompanionClient& client() { return client_; }
    NetworkCompanion::NetworkUtils& networkUtils() { return networkUtils_; }

public slots:
    /// Takes ownership of the event and deletes it after the last listener. A null event, from an
    /// undecodable frame, is skipped.
    void onEventData(NetworkCompanion::eventData data);
    void onDisconnected(int clientId);

signals:
    /// The connection to the Producer has ended.
    void disconnected();

private:
    EventDispatcher();
    ~EventDispatcher() override;
    Q_DISABLE_COPY_MOVE(EventDispatcher)

    void onEvent(NetworkCompanion::Event* event);
    void eraseRemovedListeners();

    /// Indexed by event type; a listener that is removed during a dispatch becomes null.
    std::vector<std::deque<EventListener*>> listeners_;
    int dispatchDepth_ = 0;
    bool hasRemovedListeners_ = false;
    NetworkCompanion::CompanionClient client_;
    NetworkCompanion::NetworkUtils networkUtils_;
};
