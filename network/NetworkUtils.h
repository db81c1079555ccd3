#pragma once

#include <QHostAddress>
#include <QList>
#include <QNetworkInterface>
#include <QObject>
#include <QString>
#include <QStringList>

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

class QUdpSocket;

namespace NetworkCompanion {

/// The periods of discovery, so that a test need not wait as long as an operator.
struct DiscoveryTiming {
    std::chrono::milliseconds pingPeriod{1000};
    std::chrono::milliseconds serverTimeout{3000}; ///< longer silence ends a Producer's listing
};

/// Finds Producers by UDP broadcast and lists those that still answer; in server mode it is the end
/// that answers.
///
/// Sockets and signals belong to the thread of this object, which needs an event loop. A thread of
/// its own only keeps the time, and looks the network interfaces up, which can be slow.
class NetworkUtils : public QObject {
    Q_OBJECT

public:
    /// Binds to localPort and sends to targetPort, in client mode once a period from now on.
    NetworkUtils(unsigned int localPort, unsigned int targetPort, bool isServer,
                 QObject* parent = nullptr, DiscoveryTiming timing = DiscoveryTiming());
    ~NetworkUtils() override;

    /// Addresses of the Producers that answer, in the order of their text. From any thread.
    QStringList getAvailableServers() const;
    /// Forgets the Producer until it answers again; the signal comes for an unknown one too.
    void serverHasDisconnected(const QString& address);
    /// Client mode only: asks once, on every interface, who is there.
    void pingServers();
    /// Server mode: forgets the companions seen and asks for them anew.
    void getClientsOnNetwork();
    /// Addresses of the companions that answered getClientsOnNetwork().
    QStringList clients() const { return clients_; }
    void broadcastDatagramOnAllSockets(const char* data, qint64 size, quint16 port);
    /// The interfaces that are up and can broadcast. From any thread.
    static QList<QNetworkInterface> getAvailableNetworkInterfaces();
    /// Client mode: one socket for each usable address there is now.
    void updateClientSockets();
    /// Acts on a datagram if it is one of the known words, and ignores it otherwise.
    void processDatagram(QByteArrayView data, const QHostAddress& sender);

signals:
    void clientChanged();
    void serverTimeouted(const QString& address);
    void serverDiscovered(const QString& address);
    void serverDisconnected(const QString& address);

public slots:
    void onReadyRead();

protected:
    void customEvent(QEvent* event) override;

private:
    using Clock = std::chrono::steady_clock;
    using Handler = void (NetworkUtils::*)(const QString& sender);
    struct BoundSocket {
        QHostAddress address;
        QUdpSocket* socket; // a child
    };

    void pingReceived(const QString& sender);
    void serverAnswered(const QString& sender);
    void getClients(const QString& sender);
    void giveClient(const QString& sender);

    void serversDiscoveryThreadFunction();
    void discountDeafness(Clock::time_point now);
    void pruneTimeoutedServers();
    void followAddresses(const QList<QHostAddress>& addresses);
    void removeClientUnusedSockets(const QList<QHostAddress>& addresses);
    void addClientNewSockets(const QList<QHostAddress>& addresses);
    void followBroadcasts();
    QUdpSocket* newSocket();
    bool bindSocket(QUdpSocket* socket, const QHostAddress& address) const;
    void send(QUdpSocket* socket, QByteArrayView word, const QHostAddress& receiver) const;

    const quint16 localPort_;
    const quint16 targetPort_;
    const bool isServer_;
    const DiscoveryTiming timing_;
    std::vector<BoundSocket> sockets_;
    QUdpSocket* broadcastSocket_ = nullptr; // a child; receives only
    const std::map<QString, Handler> commands_;
    QStringList clients_;
    Clock::time_point lastPing_;

    mutable std::mutex mutex_; // guards what follows
    std::map<QString, Clock::time_point> servers_;
    QList<QHostAddress> foundAddresses_;
    bool tickPending_ = false;
    bool stop_ = false;
    std::condition_variable wakeUp_;
    std::thread discoveryThread_;
};

} // namespace NetworkCompanion
