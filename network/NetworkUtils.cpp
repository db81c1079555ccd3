#include "network/NetworkUtils.h"

#include "network/events/ProtocolLimits.h"

#include <QCoreApplication>
#include <QEvent>
#include <QNetworkProxy>
#include <QPointer>
#include <QUdpSocket>

#include <algorithm>
#include <array>
#include <utility>

namespace NetworkCompanion {

namespace {

constexpr QByteArrayView kPingServers = "PingServers";
constexpr QByteArrayView kPingReceived = "PingReceived";
constexpr QByteArrayView kGetClients = "GetClients";
constexpr QByteArrayView kGiveClient = "GiveClient";
constexpr qint64 kLongestWord =
    std::max({kPingServers.size(), kPingReceived.size(), kGetClients.size(), kGiveClient.size()});

// Each datagram may add a button to the window, so the rest wait for the next event-loop iteration.
constexpr int kDatagramsPerRead = 16;

constexpr int kLongestWaitToBind = 8; // periods; each attempt costs a socket of the system

bool isBound(const QUdpSocket* socket) {
    return socket->state() == QAbstractSocket::BoundState;
}

bool isUsable(const QHostAddress& address) {
    static const QPair<QHostAddress, int> linkLocal = QHostAddress::parseSubnet("169.254.0.0/16");
    return address.protocol() == QAbstractSocket::IPv4Protocol && !address.isInSubnet(linkLocal);
}

QList<QHostAddress> usableAddresses(const QList<QNetworkInterface>& interfaces) {
    QList<QHostAddress> addresses;
    for (const QNetworkInterface& usable : interfaces) {
        for (const QNetworkAddressEntry& entry : usable.addressEntries())
            if (isUsable(entry.ip()) && !addresses.contains(entry.ip()))
                addresses.append(entry.ip());
    }
    return addresses;
}

} // namespace

NetworkUtils::NetworkUtils(unsigned int localPort, unsigned int targetPort, bool isServer,
                           QObject* parent, DiscoveryTiming timing)
    : QObject(parent), localPort_(static_cast<quint16>(localPort)),
      targetPort_(static_cast<quint16>(targetPort)), isServer_(isServer),
      timing_(timing), commands_{
                           {QString::fromLatin1(kPingServers), &NetworkUtils::pingReceived},
                           {QString::fromLatin1(kPingReceived), &NetworkUtils::serverAnswered},
                           {QString::fromLatin1(kGetClients), &NetworkUtils::getClients},
                           {QString::fromLatin1(kGiveClient), &NetworkUtils::giveClient}} {
    pruneTimer_.setSingleShot(true);
    connect(&pruneTimer_, &QTimer::timeout, this, &NetworkUtils::checkAnswers);
    if (isServer_) {
        sockets_.push_back({QHostAddress::AnyIPv4, newSocket()});
        if (!bindServerSocket())
            qCritical("NetworkCompanion: Socket not bound when constructing NetworkUtils!");
    } else {
        updateClientSockets();
        discoveryThread_ = std::thread(&NetworkUtils::serversDiscoveryThreadFunction, this);
    }
}

NetworkUtils::~NetworkUtils() {
    {
        const std::scoped_lock lock(mutex_);
        stop_ = true;
    }
    wakeUp_.notify_all();
    if (discoveryThread_.joinable())
        discoveryThread_.join();
}

QStringList NetworkUtils::getAvailableServers() const {
    const std::scoped_lock lock(mutex_);
    QStringList addresses;
    for (const auto& [address, lastAnswer] : servers_)
        addresses.append(address);
    return addresses;
}

void NetworkUtils::serverHasDisconnected(const QString& address) {
    {
        const std::scoped_lock lock(mutex_);
        servers_.erase(address);
    }
    emit serverDisconnected(address);
}

void NetworkUtils::pingServers() {
    if (!isServer_)
        broadcastDatagramOnAllSockets(kPingServers.data(), kPingServers.size(), targetPort_);
}

void NetworkUtils::getClientsOnNetwork() {
    clients_.clear();
    if (!sockets_.empty())
        send(sockets_.front(), kGetClients, QHostAddress::Broadcast);
}

void NetworkUtils::broadcastDatagramOnAllSockets(const char* data, qint64 size, quint16 port) {
    // A socket bound to an interface's address broadcasts on that interface.
    for (const BoundSocket& bound : sockets_)
        if (isBound(bound.socket))
            bound.socket->writeDatagram(data, size, QHostAddress::Broadcast, port);
}

QList<QNetworkInterface> NetworkUtils::getAvailableNetworkInterfaces() {
    constexpr QNetworkInterface::InterfaceFlags usable =
        QNetworkInterface::IsUp | QNetworkInterface::CanBroadcast;
    QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    interfaces.removeIf(
        [=](const QNetworkInterface& candidate) { return (candidate.flags() & usable) != usable; });
    return interfaces;
}

void NetworkUtils::updateClientSockets() {
    if (!isServer_)
        updateSockets(usableAddresses(getAvailableNetworkInterfaces()));
}

void NetworkUtils::updateSockets(const QList<QHostAddress>& addresses) {
    removeClientUnusedSockets(addresses);
    addClientNewSockets(addresses);
    updateBroadcastSocket();
}

void NetworkUtils::removeClientUnusedSockets(const QList<QHostAddress>& addresses) {
    std::erase_if(
        sockets_,
        [&](const BoundSocket& bound) {
            if (addresses.contains(bound.address))
                return false;
            bound.socket->close();
            bound.socket->deleteLater();
            return true;
        });
}

void NetworkUtils::addClientNewSockets(const QList<QHostAddress>& addresses) {
    for (const QHostAddress& address : addresses) {
        const auto known = std::find_if(sockets_.begin(), sockets_.end(), [&](const auto& bound) {
            return bound.address == address;
        });
        if (known != sockets_.end())
            bindSocket(*known); // the port may be free now; logged once only
        else if (!bindSocket(sockets_.emplace_back(BoundSocket{address, newSocket()})))
            qCritical("NetworkCompanion: Socket not bound when constructing NetworkUtils!");
    }
}

/// On Linux a socket bound to an interface's address does not receive broadcasts, so another one is
/// bound to the broadcast address. On Windows that bind fails and is not needed.
void NetworkUtils::updateBroadcastSocket() {
    if (!sockets_.empty()) {
        if (!broadcastSocket_)
            broadcastSocket_ = BoundSocket{QHostAddress::Broadcast, newSocket()};
        bindSocket(*broadcastSocket_);
    } else if (broadcastSocket_) {
        broadcastSocket_->socket->close();
        broadcastSocket_->socket->deleteLater();
        broadcastSocket_.reset();
    }
}

/// Tries each period until the port is free.
bool NetworkUtils::bindServerSocket() {
    const bool bound = bindSocket(sockets_.front());
    if (!bound)
        QTimer::singleShot(timing_.pingPeriod, this, &NetworkUtils::bindServerSocket);
    return bound;
}

QUdpSocket* NetworkUtils::newSocket() {
    auto* socket = new QUdpSocket(this);
    socket->setProxy(QNetworkProxy::applicationProxy());
    connect(socket, &QUdpSocket::readyRead, this, &NetworkUtils::onReadyRead);
    return socket;
}

bool NetworkUtils::bindSocket(BoundSocket& bound) const {
    if (isBound(bound.socket))
        return true;
    if (bound.periodsToWait-- > 0)
        return false;
    bound.periodsToWait = bound.nextWait - 1;
    bound.nextWait = std::min(2 * bound.nextWait, kLongestWaitToBind);
    return bound.socket->bind(bound.address, localPort_, QAbstractSocket::ReuseAddressHint);
}

/// Writing to a socket that is not bound would bind it to a random port.
void NetworkUtils::send(const BoundSocket& bound, QByteArrayView word,
                        const QHostAddress& receiver) const {
    if (isBound(bound.socket))
        bound.socket->writeDatagram(word.data(), word.size(), receiver, targetPort_);
}

void NetworkUtils::onReadyRead() {
    struct Datagram {
        std::array<char, kLongestWord + 1> data{};
        qint64 size = 0;
        QHostAddress sender;
    };
    // Reads first and handles afterwards, because a slot may change the sockets or delete this.
    std::vector<Datagram> datagrams;
    const auto read = [&](QUdpSocket* socket) {
        if (!isBound(socket))
            return;
        for (int i = 0; i < kDatagramsPerRead && socket->hasPendingDatagrams(); ++i) {
            Datagram datagram;
            // One byte more than the longest word distinguishes longer datagrams.
            datagram.size = socket->readDatagram(datagram.data.data(), qint64(datagram.data.size()),
                                                 &datagram.sender);
            if (datagram.size > 0 && datagram.size <= kLongestWord)
                datagrams.push_back(datagram);
        }
    };
    for (const BoundSocket& bound : sockets_)
        read(bound.socket);
    if (broadcastSocket_)
        read(broadcastSocket_->socket);

    const QPointer<NetworkUtils> alive(this);
    for (const Datagram& datagram : datagrams) {
        processDatagram({datagram.data.data(), datagram.size}, datagram.sender);
        if (!alive)
            return;
    }
}

void NetworkUtils::processDatagram(QByteArrayView data, const QHostAddress& sender) {
    const auto command = commands_.find(QString::fromLatin1(data));
    if (command != commands_.end())
        (this->*command->second)(sender.toString());
}

void NetworkUtils::pingReceived(const QString& sender) {
    if (isServer_)
        send(sockets_.front(), kPingReceived, QHostAddress(sender));
}

void NetworkUtils::serverAnswered(const QString& sender) {
    if (isServer_)
        return;
    {
        const std::scoped_lock lock(mutex_);
        const auto known = servers_.find(sender);
        if (known != servers_.end()) {
            known->second = Clock::now();
            return;
        }
        if (servers_.size() >= Limits::kMaxListedProducers)
            return;
        servers_.emplace(sender, Clock::now());
    }
    emit serverDiscovered(sender);
}

void NetworkUtils::getClients(const QString&) {
    if (isServer_)
        return;
    const auto bound = std::find_if(sockets_.begin(), sockets_.end(), [](const auto& candidate) {
        return isBound(candidate.socket);
    });
    if (bound != sockets_.end())
        send(*bound, kGiveClient, QHostAddress::Broadcast);
}

void NetworkUtils::giveClient(const QString& sender) {
    if (!isServer_ || clients_.contains(sender) || clients_.size() >= Limits::kMaxListedCompanions)
        return;
    clients_.append(sender);
    emit clientChanged();
}

void NetworkUtils::serversDiscoveryThreadFunction() {
    auto next = Clock::now();
    for (;;) {
        const auto addresses = usableAddresses(getAvailableNetworkInterfaces());
        std::unique_lock lock(mutex_);
        foundAddresses_ = addresses;
        // At most one tick is pending while this object's thread is busy.
        if (!std::exchange(tickPending_, true))
            QCoreApplication::postEvent(this, new QEvent(QEvent::User));
        next = std::max(next + timing_.pingPeriod, Clock::now());
        if (wakeUp_.wait_until(lock, next, [this] { return stop_; }))
            return;
    }
}

/// The discovery thread's tick, the only event of this kind.
void NetworkUtils::customEvent(QEvent*) {
    QList<QHostAddress> addresses;
    {
        const std::scoped_lock lock(mutex_);
        tickPending_ = false;
        addresses = foundAddresses_;
    }
    const QPointer<NetworkUtils> alive(this);
    onReadyRead(); // answers that arrived while this thread was busy
    if (!alive)
        return;
    updateSockets(addresses);
    excludeUnpingedTime(Clock::now());
    pingServers();
    // Between two pings, because at a ping the age of an answer is a whole number of periods, and
    // chance would decide whether it is old enough.
    if (!pruneTimer_.isActive())
        pruneTimer_.start(timing_.pingPeriod / 2);
}

void NetworkUtils::checkAnswers() {
    const QPointer<NetworkUtils> alive(this);
    onReadyRead();
    if (!alive)
        return;
    excludeUnpingedTime(Clock::now());
    pruneTimeoutedServers();
}

/// Time without a ping does not count as a Producer's silence, because it was not asked.
void NetworkUtils::excludeUnpingedTime(Clock::time_point now) {
    const auto late = lastCheck_ == Clock::time_point() ? Clock::duration::zero()
                                                        : now - lastCheck_ - timing_.pingPeriod;
    lastCheck_ = now;
    if (late <= timing_.pingPeriod / 2)
        return;
    const std::scoped_lock lock(mutex_);
    for (auto& [address, lastAnswer] : servers_)
        lastAnswer = std::min(lastAnswer + late, now);
}

void NetworkUtils::pruneTimeoutedServers() {
    QStringList silent;
    {
        const std::scoped_lock lock(mutex_);
        const auto now = Clock::now();
        std::erase_if(servers_, [&](const auto& server) {
            if (now - server.second < timing_.serverTimeout)
                return false;
            silent.append(server.first);
            return true;
        });
    }
    const QPointer<NetworkUtils> alive(this);
    for (const QString& address : silent)
        if (alive)
            emit serverTimeouted(address);
}

} // namespace NetworkCompanion
