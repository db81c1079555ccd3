#include "tests/support/FakeProducer.h"

#include "network/CompanionClient.h"
#include "network/LVNtc.h"
#include "network/events/MsgEvent.h"
#include "tests/support/ProtocolBytes.h"

#include <QNetworkDatagram>
#include <QTcpSocket>
#include <QTest>
#include <QtEndian>

#include <algorithm>

namespace MeshpadTest {

using NetworkCompanion::Event;
using NetworkCompanion::LVNtc;

FakeProducer::FakeProducer(QObject* parent) : QObject(parent) {
    connect(&server_, &QTcpServer::newConnection, this, &FakeProducer::onNewConnection);
}

QStringList FakeProducer::lines() const {
    QStringList lines;
    for (const auto& event : events_)
        lines.append(event ? QDebug::toString(*event) : "null");
    return lines;
}

bool FakeProducer::receivesAllOf(NetworkCompanion::CompanionClient& client) {
    NetworkCompanion::MsgEvent marker("marker");
    client.sendEvent(marker);
    const auto find = [&] {
        return std::ranges::find_if(
            events_, [&](const auto& event) { return event && *event == marker; });
    };
    if (!QTest::qWaitFor([&] { return find() != events_.end(); }))
        return false;
    events_.erase(find());
    return true;
}

void FakeProducer::send(const Event& event) {
    sendRaw(withLength(int32(9) + int32(event.getSize()) + static_cast<char>(event.type()) +
                       event.serialize()));
}

void FakeProducer::sendRaw(const QByteArray& bytes) {
    for (QTcpSocket* socket : connections_.keys()) {
        socket->write(bytes);
        socket->flush();
    }
}

void FakeProducer::closeConnections() {
    for (QTcpSocket* socket : connections_.keys())
        socket->disconnectFromHost();
}

void FakeProducer::abortConnections() {
    for (QTcpSocket* socket : connections_.keys())
        socket->abort();
}

void FakeProducer::stall() {
    stalled_ = true;
    for (QTcpSocket* socket : connections_.keys())
        socket->setReadBufferSize(1);
}

bool FakeProducer::answerDiscovery(const QHostAddress& from) {
    receiver_ = std::make_unique<QUdpSocket>();
    sender_ = std::make_unique<QUdpSocket>();
    connect(receiver_.get(), &QUdpSocket::readyRead, this, &FakeProducer::onDatagram);
    return sender_->bind(from, 0) &&
           receiver_->bind(QHostAddress::AnyIPv4, 62330, QUdpSocket::ReuseAddressHint);
}

void FakeProducer::stopAnswering() {
    receiver_.reset();
    sender_.reset();
}

void FakeProducer::onDatagram() {
    while (receiver_->hasPendingDatagrams()) {
        const QNetworkDatagram ping = receiver_->receiveDatagram();
        if (ping.data() != "PingServers")
            continue;
        ++pings_;
        sender_->writeDatagram("PingReceived", ping.senderAddress(), 62331);
    }
}

void FakeProducer::onNewConnection() {
    while (QTcpSocket* socket = server_.nextPendingConnection()) {
        socket->setParent(this);
        if (stalled_)
            socket->setReadBufferSize(1);
        connections_.insert(socket, {});
        ++accepted_;
        connect(
            socket, &QTcpSocket::readyRead, this, [=, this] { onReadyRead(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [=, this] { onDisconnected(socket); });
        emit connected();
        onReadyRead(socket);
    }
}

void FakeProducer::onReadyRead(QTcpSocket* socket) {
    const auto connection = connections_.find(socket);
    // Reading from an aborted socket only logs a warning.
    if (stalled_ || !socket->isOpen() || connection == connections_.end())
        return;
    const QByteArray chunk = socket->readAll();
    bytes_ += chunk;
    QByteArray& unparsed = *connection;
    unparsed += chunk;
    while (unparsed.size() >= 4) {
        const auto length = qFromBigEndian<qint32>(unparsed.constData());
        if (length < 0 || unparsed.size() < 4 + length)
            break;
        QByteArray frame = unparsed.mid(4, length);
        unparsed.remove(0, 4 + length);
        events_.emplace_back(LVNtc::deserialize(frame).second);
        emit received(events_.back().get());
    }
}

void FakeProducer::onDisconnected(QTcpSocket* socket) {
    onReadyRead(socket);
    connections_.remove(socket);
    socket->deleteLater();
}

} // namespace MeshpadTest
