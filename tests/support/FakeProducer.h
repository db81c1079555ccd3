#pragma once

#include "network/events/Event.h"

#include <QByteArray>
#include <QHostAddress>
#include <QObject>
#include <QStringList>
#include <QTcpServer>

#include <map>
#include <memory>
#include <vector>

namespace NetworkCompanion {
class CompanionClient;
}
class QTcpSocket;
class QUdpSocket;

namespace MeshpadTest {

/// The other end of a connection: records what companions send, as bytes and as events, and sends
/// events. Its framing is its own, so that it cannot share a fault with the library's.
class FakeProducer : public QObject {
    Q_OBJECT

public:
    explicit FakeProducer(QObject* parent = nullptr);
    ~FakeProducer() override;

    /// Port 0 chooses a free one.
    bool listen(const QHostAddress& address = QHostAddress::LocalHost, quint16 port = 0);
    /// Refuses further connections; existing ones stay.
    void stopListening();
    QString host() const { return server_.serverAddress().toString(); }
    quint16 port() const { return server_.serverPort(); }

    int connectionCount() const { return int(connections_.size()); }
    /// Connections ever accepted.
    int acceptedCount() const { return accepted_; }

    /// Everything received since the last forget(), on all connections; as events, null for an
    /// undecodable frame.
    const QByteArray& bytes() const { return bytes_; }
    const std::vector<std::unique_ptr<NetworkCompanion::Event>>& events() const { return events_; }
    /// The events as log lines.
    QStringList lines() const;
    template <typename EventClass>
    std::vector<const EventClass*> eventsOf() const;
    void forget();
    /// Waits until everything that the client has sent so far is received, by a marker event, which
    /// is removed again.
    bool receivesAllOf(NetworkCompanion::CompanionClient& client);

    /// Sends to every companion and flushes.
    void send(const NetworkCompanion::Event& event);
    void sendRaw(const QByteArray& bytes);
    /// Closes every connection after the bytes already sent.
    void closeConnections();
    /// Closes every connection at once.
    void abortConnections();
    /// Stops reading, like a process that hangs.
    void stall();

    /// Answers discovery from the address until stopAnswering(). False when the port is taken.
    bool answerDiscovery(const QHostAddress& from);
    void stopAnswering();
    int pingsHeard() const { return pings_; }

signals:
    void connected();

private:
    void onNewConnection();
    void onReadyRead(QTcpSocket* socket);
    void onDisconnected(QTcpSocket* socket);
    void onDatagram();
    std::vector<QTcpSocket*> sockets() const;

    QTcpServer server_;
    std::map<QTcpSocket*, QByteArray>
        connections_; // children, with the bytes of no whole frame yet
    int accepted_ = 0;
    bool stalled_ = false;
    QByteArray bytes_;
    std::vector<std::unique_ptr<NetworkCompanion::Event>> events_;
    std::unique_ptr<QUdpSocket> receiver_;
    std::unique_ptr<QUdpSocket> sender_;
    int pings_ = 0;
};

template <typename EventClass>
std::vector<const EventClass*> FakeProducer::eventsOf() const {
    std::vector<const EventClass*> found;
    for (const auto& event : events_)
        if (const auto* typed = dynamic_cast<const EventClass*>(event.get()))
            found.push_back(typed);
    return found;
}

} // namespace MeshpadTest
