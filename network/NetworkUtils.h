#pragma once

#include <QHostAddress>
#include <QList>
#include <QNetworkInterface>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

class QUdpSocket;

namespace NetworkCompanion {

/// The periods of discovery, which tests shorten.
struct DiscoveryTiming {
    std::chrono::milliseconds pingPeriod{1000};
    /// Silence of this length removes a Producer: its age in whole seconds is more than 3.
    std::chrono::milliseconds serverTimeout{4000};
};

/// Finds Producers by UDP broadcast and lists those that answer; in server mode it is the end that
/// answers.
///
/// Sockets, pruning and signals run on the object's thread, which needs an event loop. A second
/// thread only sends it a tick each period and enumerates the network interfaces, which can be
/// slow.
class NetworkUtils : public QObject {
    Q_OBJECT

public:
    /// Binds to localPort and sends to targetPort. Client mode pings at once and then every period.
    /// A port or address that is taken is tried again, ever more rarely, and meanwhile not used.
    NetworkUtils(unsigned int localPort, unsigned int targetPort, bool isServer,
                 QObject* parent = nullptr, DiscoveryTiming timing = DiscoveryTiming());
    ~NetworkUtils() override;

    /// Addresses of the listed Producers, sorted as text. Thread-safe.
    QStringList getAvailableServers() const;
    /// Removes the Producer until it answers again. Emits serverDisconnected() for unknown ones
    /// too.
    void serverHasDisconnected(const QString& address);
    /// Client mode only: broadcasts one ping on every interface.
    void pingServers();
    /// Server mode: clears the list of companions and asks them to answer.
    void getClientsOnNetwork();
    /// Addresses of the companions that have answered getClientsOnNetwork().
    QStringList clients() const { return clients_; }
    void broadcastDatagramOnAllSockets(const char* data, qint64 size, quint16 port);
    /// The interfaces that are up and can broadcast. Thread-safe.
    static QList<QNetworkInterface> getAvailableNetworkInterfaces();
    /// Client mode: binds one socket to each usable address and closes the others.
    void updateClientSockets();
    /// Handles a datagram that is one of the known words and ignores all others.
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
    /// A socket and its next attempts to bind it, which become rarer.
    struct BoundSocket {
        QHostAddress address;
        QUdpSocket* socket; // a child
        int periodsToWait = 0;
        int nextWait = 1; // periods
    };

    void pingReceived(const QString& sender);
    void serverAnswered(const QString& sender);
    void getClients(const QString& sender);
    void giveClient(const QString& sender);

    void serversDiscoveryThreadFunction();
    void excludeUnpingedTime(Clock::time_point now);
    void checkAnswers();
    void pruneTimeoutedServers();
    void updateSockets(const QList<QHostAddress>& addresses);
    void removeClientUnusedSockets(const QList<QHostAddress>& addresses);
    void addClientNewSockets(const QList<QHostAddress>& addresses);
    void updateBroadcastSocket();
    bool bindServerSocket();
    QUdpSocket* newSocket();
    /// False when the address is taken, or when it is too early to try again.
    bool bindSocket(BoundSocket& bound) const;
    void send(const BoundSocket& bound, QByteArrayView word, const QHostAddress& receiver) const;

    const quint16 localPort_;
    const quint16 targetPort_;
    const bool isServer_;
    const DiscoveryTiming timing_;
    std::vector<BoundSocket> sockets_;
    std::optional<BoundSocket> broadcastSocket_; // receives only
    const std::map<QString, Handler> commands_;
    QStringList clients_;
    Clock::time_point lastCheck_;
    QTimer pruneTimer_;

    mutable std::mutex mutex_; // guards the members below
    std::map<QString, Clock::time_point> servers_;
    QList<QHostAddress> foundAddresses_;
    bool tickPending_ = false;
    bool stop_ = false;
    std::condition_variable wakeUp_;
    std::thread discoveryThread_;
};

} // namespace NetworkCompanion
