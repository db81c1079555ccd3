#pragma once

#include "network/TcpTransportSocket.h"

#include <QObject>
#include <QString>

namespace NetworkCompanion {

/// The companion's end of the TCP connection to one Producer. Can connect again after every
/// disconnection.
class CompanionClient : public QObject {
    Q_OBJECT

public:
    explicit CompanionClient(QObject* parent);

    /// Blocks until the connection is established or refused, at most 30 s. Call
    /// disconnectFromServer() first: while connected it returns false, and the existing connection
    /// no longer reports its events and its end.
    bool connectToServer(const QString& host, unsigned short port);
    /// Blocks until the connection is closed, at most 30 s. False after the 30 s.
    bool disconnectFromServer();
    bool isConnected() const;
    /// As TCPTransportSocket::write().
    bool sendEvent(Event& event);

signals:
    /// The receiver owns the event, which is null when the frame could not be decoded. An event
    /// without a receiver is freed.
    void newEvent(NetworkCompanion::eventData event);
    /// The connection has ended; clientId is -1.
    void disconnected(int clientId);

public slots:
    void onReceivedEvent(NetworkCompanion::eventData event);
    void onDisconnected(int clientId);

private:
    void stopForwarding();

    TCPTransportSocket transport_{nullptr};
};

} // namespace NetworkCompanion
