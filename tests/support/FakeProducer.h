#pragma once

#include "network/events/Event.h"

#include <QByteArray>
#include <QHostAddress>
#include <QObject>
#include <QStringList>
#include <QTcpServer>

#include <memory>
#include <vector>

class QTcpSocket;
class QUdpSocket;

namespace MeshpadTest {

/// The other end of a connection, in a test's hand: it listens, records what companions send byte
/// for byte and event by event, and sends what it is told to. Its framing is its own.
class FakeProducer : public QObject {
    Q_OBJECT

public:
    explicit FakeProducer(QObject* parent = nullptr);
    ~FakeProducer() override;

    /// Port 0 takes a free one.
    bool listen(const QHostAddress& address = QHostAddress::LocalHost, quint16 port = 0);
    /// Refuses further connections; those that stand stay.
    void stopListening();
    QString host() const { return server_.serverAddress().toString(); }
    quint16 port() const { return server_.serverPort(); }

    int connectionCount() const { return int(connections_.size()); }
    /// Connections ever accepted.
    int acceptedCount() const { return accepted_; }

    /// Everything received since the last forget(), of all connections, and the same as events:
    /// null for a frame that was none.
    const QByteArray& bytes() const { return bytes_; }
    const std::vector<std::unique_ptr<NetworkCompanion::Event>>& events() const { return events_; }
    /// The events as log lines, which compare and print well.
    QStringList lines() const;
    template <typename EventClass>
    std::vector<const EventClass*> eventsOf() const;
    void forget();

    /// To every companion, and flushed.
    void send(const NetworkCompanion::Event& event);
    void sendRaw(const QByteArray& bytes);
    /// Closes every connection, in good order.
    void closeConnections();
    /// Closes every connection at once, whatever is under way.
    void abortConnections();
    /// Stops taking bytes from the connections, as a process does that hangs.
    void stall();

    /// Answers discovery from the address; off again with stopAnswering(). False when the port is
    /// taken.
    bool answerDiscovery(const QHostAddress& from);
    void stopAnswering();
    int pingsHeard() const { return pings_; }

signals:
    void connected();

private:
    struct Connection {
        QTcpSocket* socket; // a child
        QByteArray unparsed;
    };

    void onNewConnection();
    void onReadyRead(QTcpSocket* socket);
    void onDisconnected(QTcpSocket* socket);
    void onDatagram();
    std::vector<QTcpSocket*> sockets() const;

    QTcpServer server_;
    std::vector<Connection> connections_;
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
