#pragma once

#include "network/TcpTransportSocket.h"

#include <QObject>
#include <QString>

namespace NetworkCompanion {

/// The companion's end of the link to one Producer. May be connected again after any end.
class CompanionClient : public QObject {
    Q_OBJECT

public:
    explicit CompanionClient(QObject* parent);

    /// Blocks until connected, refused, or 30 s are over. While a connection stands it returns
    /// false, and events and the loss of that connection are no longer reported: disconnect first.
    bool connectToServer(const QString& host, unsigned short port);
    /// Blocks until closed, at most 30 s; tells whether it is.
    bool disconnectFromServer();
    bool isConnected() const;
    /// False, without a word, when not connected. A Producer that leaves more than
    /// Limits::kMaxUnsentBytes unread is given up, with a warning: the link is lost.
    bool sendEvent(Event& event);

signals:
    /// The receiver owns the event, which is null when a frame could not be decoded. Without a
    /// receiver it is freed.
    void newEvent(NetworkCompanion::eventData event);
    /// The connection is gone; clientId is -1.
    void disconnected(int clientId);

public slots:
    void onReceivedEvent(NetworkCompanion::eventData event);
    void onDisconnected(int clientId);

private:
    void stopForwarding();

    TCPTransportSocket transport_{nullptr};
};

} // namespace NetworkCompanion
