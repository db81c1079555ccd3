#include "network/CompanionServer.h"

#include "network/TcpTransportSocket.h"

#include <QMetaMethod>
#include <QPointer>
#include <QTcpSocket>

namespace NetworkCompanion {

CompanionServer::CompanionServer(QObject* parent) : QObject(parent) {
    connect(&server_, &QTcpServer::newConnection, this, &CompanionServer::onNewConnection);
}

CompanionServer::~CompanionServer() {
    // The transports are children and must not report their end to a destroyed server.
    for (const auto& [id, transport] : companions_)
        QObject::disconnect(transport, nullptr, this, nullptr);
}

bool CompanionServer::listen(const QHostAddress& address, quint16 port) {
    return server_.listen(address, port);
}

quint16 CompanionServer::port() const {
    return server_.serverPort();
}

void CompanionServer::close() {
    const QPointer<CompanionServer> alive(this);
    server_.close();
    for (const int id : companionIds())
        if (alive)
            disconnectCompanion(id);
}

QList<int> CompanionServer::companionIds() const {
    QList<int> ids;
    for (const auto& [id, transport] : companions_)
        ids.append(id);
    return ids;
}

QHostAddress CompanionServer::companionAddress(int companionId) const {
    const auto found = companions_.find(companionId);
    return found == companions_.end() ? QHostAddress() : found->second->peerAddress();
}

bool CompanionServer::send(int companionId, Event& event) {
    const auto found = companions_.find(companionId);
    return found != companions_.end() && found->second->write(event);
}

void CompanionServer::sendToAll(Event& event, int exceptCompanionId) {
    for (const auto& [id, transport] : companions_)
        if (id != exceptCompanionId)
            transport->write(event);
}

void CompanionServer::disconnectCompanion(int companionId) {
    const auto found = companions_.find(companionId);
    if (found == companions_.end())
        return;
    TCPTransportSocket* transport = found->second;
    companions_.erase(found);
    QObject::disconnect(transport, nullptr, this, nullptr);
    // The transport stays until it has sent everything.
    connect(transport, &TCPTransportSocket::disconnected, transport, &QObject::deleteLater);
    transport->disconnect();
    emit companionDisconnected(companionId);
}

void CompanionServer::onNewConnection() {
    const QPointer<CompanionServer> alive(this);
    while (alive && server_.hasPendingConnections()) {
        const int id = nextId_++;
        auto* transport = new TCPTransportSocket(id, server_.nextPendingConnection(), this);
        companions_.emplace(id, transport);
        connect(transport, &TCPTransportSocket::disconnected, this, &CompanionServer::forget);
        connect(transport, &TCPTransportSocket::receivedEvent, this,
                [this, id](eventData event) { onReceivedEvent(id, event); });
        emit companionConnected(id);
        // Reading starts after companionConnected(), so that no event precedes it. The first bytes
        // may be in the socket already, which then emits no further readyRead() for them.
        if (alive && companions_.contains(id)) {
            transport->startReading();
            transport->onReadyRead();
        }
    }
}

void CompanionServer::onReceivedEvent(int companionId, eventData event) {
    static const QMetaMethod signal = QMetaMethod::fromSignal(&CompanionServer::eventReceived);
    if (isSignalConnected(signal))
        emit eventReceived(companionId, event);
    else
        delete event.second;
}

void CompanionServer::forget(int companionId) {
    const auto found = companions_.find(companionId);
    if (found == companions_.end())
        return;
    TCPTransportSocket* transport = found->second;
    companions_.erase(found);
    QObject::disconnect(transport, nullptr, this, nullptr);
    transport->deleteLater();
    emit companionDisconnected(companionId);
}

} // namespace NetworkCompanion
