#include "network/CompanionClient.h"

#include <QMetaMethod>
#include <QPointer>

namespace NetworkCompanion {

namespace {

constexpr int kConnectTimeout = 30'000;    // ms
constexpr int kDisconnectTimeout = 30'000; // ms

QUrl urlOf(const QString& host, unsigned short port) {
    QUrl url;
    url.setHost(host);
    url.setPort(port);
    return url;
}

} // namespace

CompanionClient::CompanionClient(QObject* parent) : QObject(parent), connectTimer_(this) {
    connectTimer_.setSingleShot(true);
    connect(&connectTimer_, &QTimer::timeout, this, &CompanionClient::finishConnecting);
    connect(&transport_, &TCPTransportSocket::connectingFinished, this, [this](bool connected) {
        if (!isConnecting())
            return; // within tryToConnect()
        connectTimer_.stop();
        if (connected)
            finishConnecting();
        else
            connectTimer_.start(0); // not within the socket's signal
    });
}

bool CompanionClient::connectToServer(const QString& host, unsigned short port) {
    cancelConnecting();
    startForwarding();
    if (transport_.tryToConnect(urlOf(host, port)) && transport_.waitForConnected(kConnectTimeout))
        return true;
    transport_.stopReading();
    stopForwarding();
    return false;
}

bool CompanionClient::startConnecting(const QString& host, unsigned short port) {
    if (isConnected() || isConnecting())
        return false;
    transport_.tryToConnect(urlOf(host, port));
    const int state = transport_.state();
    const bool decided =
        state == TCPTransportSocket::Connected || state == TCPTransportSocket::Disconnected;
    connectTimer_.start(decided ? 0 : kConnectTimeout);
    return true;
}

void CompanionClient::cancelConnecting() {
    if (!isConnecting())
        return;
    connectTimer_.stop();
    transport_.disconnect();
}

void CompanionClient::finishConnecting() {
    const bool connected = isConnected();
    if (connected)
        startForwarding();
    else
        transport_.disconnect();
    emit connectingFinished(connected);
}

bool CompanionClient::disconnectFromServer() {
    cancelConnecting();
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

void CompanionClient::startForwarding() {
    connect(&transport_, &TCPTransportSocket::receivedEvent, this,
            &CompanionClient::onReceivedEvent, Qt::UniqueConnection);
    connect(&transport_, &TCPTransportSocket::disconnected, this, &CompanionClient::onDisconnected,
            Qt::UniqueConnection);
    transport_.startReading();
}

void CompanionClient::stopForwarding() {
    QObject::disconnect(&transport_, &TCPTransportSocket::receivedEvent, this,
                        &CompanionClient::onReceivedEvent);
    QObject::disconnect(&transport_, &TCPTransportSocket::disconnected, this,
                        &CompanionClient::onDisconnected);
}

} // namespace NetworkCompanion
