#pragma once

#include "network/events/Event.h"

#include <QHostAddress>
#include <QList>
#include <QObject>
#include <QTcpServer>

#include <map>

namespace NetworkCompanion {

class TCPTransportSocket;

/// A Producer's end: listens for companions and holds one connection for each. A companion's id is
/// never reused.
class CompanionServer : public QObject {
    Q_OBJECT

public:
    explicit CompanionServer(QObject* parent);
    ~CompanionServer() override;

    /// Port 0 chooses a free port. False when the address or port is not available.
    bool listen(const QHostAddress& address, quint16 port);
    /// 0 when not listening.
    quint16 port() const;
    /// Stops listening and disconnects every companion; emits companionDisconnected() for each.
    void close();

    QList<int> companionIds() const;
    /// Null for an unknown id.
    QHostAddress companionAddress(int companionId) const;
    /// As TCPTransportSocket::write(); false for an unknown id.
    bool send(int companionId, Event& event);
    void sendToAll(Event& event, int exceptCompanionId = -1);
    /// Events sent before are still delivered. Ignores unknown ids.
    void disconnectCompanion(int companionId);

signals:
    void companionConnected(int companionId);
    void companionDisconnected(int companionId);
    /// The receiver owns the event, which is null when the frame could not be decoded. An event
    /// without a receiver is freed.
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
