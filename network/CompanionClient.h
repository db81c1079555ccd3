#pragma once

#include "network/TcpTransportSocket.h"

#include <QObject>
#include <QString>
#include <QTimer>

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
    /// As connectToServer(), without blocking: connectingFinished() follows, never before this has
    /// returned. False, without effect, while connected or connecting.
    bool startConnecting(const QString& host, unsigned short port);
    /// Ends the attempt of startConnecting() without a signal; does nothing without one.
    void cancelConnecting();
    /// Blocks until the connection is closed, at most 30 s. False after the 30 s. Also cancels an
    /// attempt.
    bool disconnectFromServer();
    bool isConnected() const;
    /// Between startConnecting() and connectingFinished().
    bool isConnecting() const { return connectTimer_.isActive(); }
    /// As TCPTransportSocket::write().
    bool sendEvent(Event& event);

signals:
    /// The receiver owns the event, which is null when the frame could not be decoded. An event
    /// without a receiver is freed.
    void newEvent(NetworkCompanion::eventData event);
    /// The result of startConnecting().
    void connectingFinished(bool connected);
    /// The connection has ended; clientId is -1.
    void disconnected(int clientId);

public slots:
    void onReceivedEvent(NetworkCompanion::eventData event);
    void onDisconnected(int clientId);

private:
    void startForwarding();
    void stopForwarding();
    void finishConnecting();

    TCPTransportSocket transport_{nullptr};
    QTimer connectTimer_; // single shot; active during an attempt of startConnecting()
};

} // namespace NetworkCompanion
