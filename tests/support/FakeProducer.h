#pragma once

#include "network/events/Event.h"

#include <QByteArray>
#include <QHostAddress>
#include <QMap>
#include <QObject>
#include <QStringList>
#include <QTcpServer>
#include <QUdpSocket>

#include <atomic>
#include <memory>
#include <vector>

namespace NetworkCompanion {
class CompanionClient;
}
class QTcpSocket;

namespace MeshpadTest {

/// The other end of a connection: records what companions send, as bytes and as events, and sends
/// events. Its framing is its own, so that it cannot share a fault with the library's.
class FakeProducer : public QObject {
    Q_OBJECT

public:
    explicit FakeProducer(QObject* parent = nullptr);

    /// Port 0 chooses a free one.
    bool listen(const QHostAddress& address = QHostAddress::LocalHost, quint16 port = 0) {
        return server_.listen(address, port);
    }
    /// Refuses further connections; existing ones stay.
    void stopListening() { server_.close(); }
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
    std::vector<const EventClass*> eventsOf() const {
        std::vector<const EventClass*> found;
        for (const auto& event : events_)
            if (const auto* typed = dynamic_cast<const EventClass*>(event.get()))
                found.push_back(typed);
        return found;
    }
    void forget() {
        bytes_.clear();
        events_.clear();
    }
    /// Waits until everything that the client has sent so far is received, by a marker event, which
    /// is removed from the events again.
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
    /// Of any thread.
    int pingsHeard() const { return pings_; }

signals:
    void connected();
    /// Null for an undecodable frame; as events() holds it.
    void received(const NetworkCompanion::Event* event);

private:
    void onNewConnection();
    void onReadyRead(QTcpSocket* socket);
    void onDisconnected(QTcpSocket* socket);
    void onDatagram();

    QTcpServer server_;
    QMap<QTcpSocket*, QByteArray> connections_; // children, with the bytes of a partial frame
    int accepted_ = 0;
    bool stalled_ = false;
    QByteArray bytes_;
    std::vector<std::unique_ptr<NetworkCompanion::Event>> events_;
    std::unique_ptr<QUdpSocket> receiver_;
    std::unique_ptr<QUdpSocket> sender_;
    std::atomic<int> pings_ = 0;
};

} // namespace MeshpadTest
