#include "network/CompanionClient.h"

#include <QMetaMethod>
#include <QPointer>

namespace NetworkCompanion {

namespace {

constexpr int kConnectTimeout = 30'000;    // ms
constexpr int kDisconnectTimeout = 30'000; // ms

} // namespace

CompanionClient::CompanionClient(QObject* parent) : QObject(parent) {}

bool CompanionClient::connectToServer(const QString& host, unsigned short port) {
    QUrl url;
    url.setHost(host);
    url.setPort(port);
    connect(&transport_, &TCPTransportSocket::receivedEvent, this,
            &CompanionClient::onReceivedEvent, Qt::UniqueConnection);
    connect(&transport_, &TCPTransportSocket::disconnected, this, &CompanionClient::onDisconnected,
            Qt::UniqueConnection);
    transport_.startReading();
    if (transport_.tryToConnect(url) && transport_.waitForConnected(kConnectTimeout))
        return true;
    transport_.stopReading();
    stopForwarding();
    return false;
}

bool CompanionClient::disconnectFromServer() {
    // A slot of the signal may delete this object.
    const QPointer<CompanionClient> alive(this);
    transport_.disconnect();
    if (!alive)
        return true;
    const bool ok = transport_.waitForDisconnected(kDisconnectTimeout);
    if (!alive)
        return true;
    transport_.stopReading();
    stopForwarding();
    return ok;
}

bool CompanionClient::isConnected() const {
    return transport_.state() == TCPTransportSocket::Connected;
}

bool CompanionClient::sendEvent(Event& event) {
    return transport_.write(event);
}

void CompanionClient::onReceivedEvent(eventData event) {
    static const QMetaMethod signal = QMetaMethod::fromSignal(&CompanionClient::newEvent);
    if (isSignalConnected(signal))
        emit newEvent(event);
    else
        delete event.second;
}

void CompanionClient::onDisconnected(int clientId) {
    stopForwarding();
    emit disconnected(clientId);
}

void CompanionClient::stopForwarding() {
    QObject::disconnect(&transport_, &TCPTransportSocket::receivedEvent, this,
                        &CompanionClient::onReceivedEvent);
    QObject::disconnect(&transport_, &TCPTransportSocket::disconnected, this,
                        &CompanionClient::onDisconnected);
}

} // namespace NetworkCompanion
