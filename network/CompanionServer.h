#pragma once

#include "network/events/Event.h"

#include <QHostAddress>
#include <QList>
#include <QObject>
#include <QTcpServer>

#include <map>

namespace NetworkCompanion {

class TCPTransportSocket;

/// A Producer's end of the link: listens, and keeps one connection for each companion, known by a
/// number that is never used again.
class CompanionServer : public QObject {
    Q_OBJECT

public:
    explicit CompanionServer(QObject* parent);
    ~CompanionServer() override;

    /// Port 0 takes a free one. False when the address cannot be listened on.
    bool listen(const QHostAddress& address, quint16 port);
    /// The port listened on; 0 when not listening.
    quint16 port() const;
    /// Stops listening and lets every companion go, each with its signal.
    void close();

    QList<int> companionIds() const;
    /// Null for an id that is not connected.
    QHostAddress companionAddress(int companionId) const;
    /// False when there is no such companion, or when it has left so much unread that it is now let
    /// go.
    bool send(int companionId, Event& event);
    void sendToAll(Event& event, int exceptCompanionId = -1);
    /// What was sent before still goes out. Unknown ids are ignored.
    void disconnectCompanion(int companionId);

signals:
    void companionConnected(int companionId);
    void companionDisconnected(int companionId);
    /// The receiver owns the event, which is null when a frame could not be decoded. Without a
    /// receiver it is freed.
    void eventReceived(int companionId, NetworkCompanion::eventData event);

private:
    void onNewConnection();
    void onReceivedEvent(int companionId, eventData event);
    void forget(int companionId);

    QTcpServer server_;
    std::map<int, TCPTransportSocket*> companions_; // children
    int nextId_ = 1;
};

} // namespace NetworkCompanion
