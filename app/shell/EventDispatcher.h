#pragma once

#include "network/CompanionClient.h"
#include "network/NetworkUtils.h"
#include "network/events/ProtocolTypes.h"

#include <QObject>

#include <cstddef>
#include <deque>
#include <vector>

class EventListener;

/// The process's one connection to a Producer and its discovery service; hands every received event
/// to the listeners of its type. Used on the GUI thread only, except for networkUtils().
class EventDispatcher final : public QObject {
    Q_OBJECT

public:
    /// Created by the first call, which has to come from the GUI thread; lives until the process
    /// ends.
    static EventDispatcher* getInstance();

    /// Appends the listener to those of `type`; once only, however often it is called. The listener
    /// is not owned and has to remove itself before it dies. Both operations may be used while an
    /// event is being handed out: a listener that is added gets the next event, one that is removed
    /// does not even get the current one any more.
    void addListener(EventListener* listener, NetworkCompanion::LV_NTC_EventType type);
    void removeListener(EventListener* listener, NetworkCompanion::LV_NTC_EventType type);

    NetworkCompanion::CompanionClient& client() { return client_; }
    NetworkCompanion::NetworkUtils& networkUtils() { return networkUtils_; }

public slots:
    /// Takes the event over and deletes it after the last listener. A null event, the sign of an
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
    void removeLeavers();

    /// By type. While an event is being handed out, a listener that left is a null entry.
    std::vector<std::deque<EventListener*>> listeners_;
    int dispatchDepth_ = 0;
    bool hasLeavers_ = false;
    NetworkCompanion::CompanionClient client_;
    NetworkCompanion::NetworkUtils networkUtils_;
};
