#include "tests/chaos/ChaosProxy.h"

#include <QTcpSocket>

#include <sys/socket.h>

namespace {

constexpr int kMaxSingleBytes = 1500; // about five events; later ones are sent in pieces
constexpr int kMaxPiece = 700;        // bytes
constexpr int kSlowPortion = 256;     // bytes a millisecond
constexpr int kMaxPause = 3;          // ms
constexpr int kMaxStall = 80;         // ms
constexpr int kPortionsPerStall = 12;
constexpr qint64 kBytesPerScale = 4096; // portions grow by their first size after that many bytes

} // namespace

ChaosProxy::ChaosProxy(quint16 producerPort, quint32 seed, QObject* parent)
    : QObject(parent), producerPort_(producerPort), random_(seed) {
    connect(&server_, &QTcpServer::newConnection, this, &ChaosProxy::onNewConnection);
    for (Pipe* pipe : {&companion_, &producer_}) {
        pipe->next.setSingleShot(true);
        pipe->next.setTimerType(Qt::PreciseTimer);
        connect(&pipe->next, &QTimer::timeout, this, [=, this] { deliver(*pipe); });
    }
}

bool ChaosProxy::listen(const QHostAddress& address, quint16 port) {
    return server_.isListening() || server_.listen(address, port);
}

void ChaosProxy::cutAfter(qsizetype bytes, End end) {
    untilCut_ = bytes;
    cutEnd_ = end;
}

void ChaosProxy::onNewConnection() {
    while (QTcpSocket* arrived = server_.nextPendingConnection()) {
        if (companion_.socket)
            cut(End::Closed); // a new companion replaces the old one
        sent_ = 0;
        companion_.socket = arrived;
        arrived->setParent(this);
        producer_.socket = new QTcpSocket(this);
        producer_.socket->connectToHost(QHostAddress::LocalHost, producerPort_);
        for (QTcpSocket* socket : {companion_.socket, producer_.socket}) {
            socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
            Pipe& other = socket == companion_.socket ? producer_ : companion_;
            connect(
                socket, &QTcpSocket::readyRead, this,
                [=, this, &other] { receive(socket, other); });
            connect(socket, &QTcpSocket::disconnected, this, [=, this] { end(socket); });
        }
        connect(producer_.socket, &QTcpSocket::connected, this, [this] { deliver(producer_); });
        receive(companion_.socket, producer_);
    }
}

void ChaosProxy::receive(QTcpSocket* from, Pipe& to) {
    to.waiting += from->readAll();
    if (!to.next.isActive())
        deliver(to);
}

void ChaosProxy::deliver(Pipe& to) {
    if (!to.socket || to.socket->state() != QAbstractSocket::ConnectedState)
        return;
    if (!to.waiting.isEmpty()) {
        auto [size, pause] = portion(to.waiting.size());
        const bool isCounted = &to == &companion_ && untilCut_ >= 0;
        if (isCounted)
            size = qMin(size, untilCut_);
        to.socket->write(to.waiting.constData(), size);
        to.socket->flush();
        sent_ += size;
        to.waiting.remove(0, size);
        if (isCounted && (untilCut_ -= size) == 0)
            return cut(cutEnd_);
        if (!to.waiting.isEmpty())
            return to.next.start(pause);
    }
    if (to.sourceEnded)
        to.socket->disconnectFromHost();
}

std::pair<qsizetype, int> ChaosProxy::portion(qsizetype waiting) {
    const auto piece = [&](int size) {
        return qMin<qsizetype>(waiting, size * (1 + sent_ / kBytesPerScale));
    };
    if (condition_ == NetworkCondition::Clear)
        return {waiting, 0};
    if (condition_ == NetworkCondition::Bytewise && sent_ < kMaxSingleBytes)
        return {1, 0};
    if (condition_ == NetworkCondition::Slow)
        return {piece(kSlowPortion), 1};
    if (condition_ == NetworkCondition::Stalling)
        return {piece(random_.bounded(1, 4 * kMaxPiece)),
                random_.bounded(kPortionsPerStall) == 0 ? random_.bounded(kMaxStall) : 0};
    return {piece(random_.bounded(1, kMaxPiece)), random_.bounded(kMaxPause)};
}

void ChaosProxy::cut(End end) {
    untilCut_ = -1;
    cuts_ += companion_.socket ? 1 : 0;
    for (Pipe* pipe : {&companion_, &producer_}) {
        pipe->next.stop();
        pipe->waiting.clear();
        pipe->sourceEnded = false;
        QTcpSocket* socket = std::exchange(pipe->socket, nullptr);
        if (!socket)
            continue;
        socket->disconnect(this);
        if (end == End::Reset) {
            const linger hard{1, 0};
            setsockopt(int(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
        }
        socket->abort();
        socket->deleteLater();
    }
}

/// Delivers the remaining bytes of a closed connection before it closes the other one.
void ChaosProxy::end(QTcpSocket* which) {
    Pipe& other = which == companion_.socket ? producer_ : companion_;
    other.sourceEnded = true;
    if (!other.socket || other.socket->state() != QAbstractSocket::ConnectedState)
        return cut(End::Closed);
    connect(other.socket, &QTcpSocket::disconnected, this, [this] { cut(End::Closed); });
    if (!other.next.isActive())
        deliver(other);
}
