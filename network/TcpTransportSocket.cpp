#include "network/TcpTransportSocket.h"

#include "network/KeepAlive.h"
#include "network/LVNtc.h"
#include "network/events/ProtocolLimits.h"

#include <QDeadlineTimer>
#include <QMetaMethod>
#include <QNetworkProxy>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace NetworkCompanion {

namespace {

constexpr unsigned long kKeepAliveInterval = 200; // ms
constexpr unsigned long kKeepAliveTime = 1000;    // ms

constexpr int kPeerCheckPeriod = 250; // ms

// Events are emitted in slices of this many milliseconds, so that a flood of them does not block
// the event loop. The socket's read buffer is bounded meanwhile, which slows the sender down.
constexpr int kReceiveSlice = 8;
// The clock is checked after every eighth small frame and after every large one.
constexpr qint64 kBytesPerClockCheck = 4096;
constexpr qint64 kFrameCost = kBytesPerClockCheck / 8; // in bytes

QUrl urlOf(const QString& host, int port) {
    QUrl url;
    url.setHost(host);
    url.setPort(port);
    return url;
}

QTcpSocket* newSocket() {
    auto* socket = new QTcpSocket;
    socket->setProxy(QNetworkProxy::applicationProxy());
    return socket;
}

} // namespace

TCPTransportSocket::TCPTransportSocket(QObject* parent)
    : TCPTransportSocket(parent, -1, newSocket()) {}

TCPTransportSocket::TCPTransportSocket(int socketId, QTcpSocket* socket, QObject* parent)
    : TCPTransportSocket(parent, socketId, socket) {
    onConnected();
}

TCPTransportSocket::TCPTransportSocket(QObject* parent, int socketId, QTcpSocket* socket)
    : QObject(parent), url_(urlOf("127.0.0.1", 0)), socketId_(socketId), resumeTimer_(this),
      peerTimer_(this) {
    resumeTimer_.setSingleShot(true);
    connect(&resumeTimer_, &QTimer::timeout, this, &TCPTransportSocket::onReadyRead);
    connect(&peerTimer_, &QTimer::timeout, this, &TCPTransportSocket::checkPeer);
    setSocket(socket);
}

TCPTransportSocket::~TCPTransportSocket() {
    QObject::disconnect(socket_, nullptr, this, nullptr);
    if (state() == Connected) {
        sendWaiting();
        socket_->flush();
    }
    releaseSocket();
}

void TCPTransportSocket::setSocket(QTcpSocket* socket) {
    socket_ = socket;
    socket_->setParent(this);
    socket_->setReadBufferSize(FrameReader::kReadAhead);
    connect(socket_, &QTcpSocket::connected, this, &TCPTransportSocket::onConnected);
    connect(socket_, &QTcpSocket::disconnected, this, &TCPTransportSocket::onDisconnected);
    connect(socket_, &QTcpSocket::bytesWritten, this, &TCPTransportSocket::onBytesWritten);
    connect(socket_, &QTcpSocket::errorOccurred, this, &TCPTransportSocket::onSocketError);
}

/// Closes the socket without a report and deletes it later, because this may run within its signal.
void TCPTransportSocket::releaseSocket() {
    QObject::disconnect(socket_, nullptr, this, nullptr);
    socket_->setParent(nullptr);
    socket_->abort();
    socket_->deleteLater();
    peerTimer_.stop();
}

void TCPTransportSocket::onConnected() {
    socket_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    activeKeepAlive(kKeepAliveInterval, kKeepAliveTime);
    if (std::exchange(connecting_, false))
        emit connectingFinished(true);
}

void TCPTransportSocket::onSocketError() {
    if (std::exchange(connecting_, false))
        emit connectingFinished(false);
}

bool TCPTransportSocket::tryToConnect(const QUrl& url) {
    if (state() == Connecting || state() == Connected)
        return false;
    url_ = url;
    reader_.clear();
    waiting_.clear();
    resumeTimer_.stop();
    closing_ = false;
    overflowing_ = false;
    ended_ = false;
    connecting_ = true;
    // QTcpSocket cannot reconnect from within its own signal.
    releaseSocket();
    setSocket(newSocket());
    if (reading_)
        startReading();
    socket_->connectToHost(url.host(), static_cast<quint16>(url.port(-1)), QIODevice::ReadWrite,
                           QAbstractSocket::AnyIPProtocol);
    return true;
}

bool TCPTransportSocket::waitForConnected(int msecs) {
    return state() == Connected || socket_->waitForConnected(msecs);
}

bool TCPTransportSocket::waitForDisconnected(int msecs) {
    return state() == Disconnected || socket_->waitForDisconnected(msecs);
}

void TCPTransportSocket::disconnect() {
    url_.clear();
    reader_.clear();
    resumeTimer_.stop();
    closing_ = true;
    if (std::exchange(connecting_, false)) {
        socket_->abort();
        return;
    }
    const QTcpSocket* const closing = socket_; // a slot may reconnect while it is flushed
    const QPointer<TCPTransportSocket> alive(this);
    sendWaiting();
    socket_->flush();
    if (alive && socket_ == closing)
        socket_->disconnectFromHost();
    if (alive && ended_)
        reportEnd();
}

void TCPTransportSocket::startReading() {
    reading_ = true;
    connect(socket_, &QTcpSocket::readyRead, this, &TCPTransportSocket::onReadyRead,
            Qt::UniqueConnection);
    if (state() == Connected && hasMoreToRead())
        resumeTimer_.start(0);
}

void TCPTransportSocket::stopReading() {
    reading_ = false;
    QObject::disconnect(socket_, &QTcpSocket::readyRead, this, &TCPTransportSocket::onReadyRead);
    if (ended_)
        resumeTimer_.start(0);
    else
        resumeTimer_.stop();
}

bool TCPTransportSocket::write(Event& event) {
    if (socket_->state() != QAbstractSocket::ConnectedState || overflowing_)
        return false;
    if (unsentBytes() > Limits::kMaxUnsentBytes) {
        disconnectSlowReader();
        return false;
    }
    const LV_NTC_Header header{static_cast<std::uint32_t>(event.getSize()), event.type()};
    const QByteArray message = LVNtc::serializeWithLength(header, event);
    if (!peerTimer_.isActive()) {
        peerWatch_ = PeerWatch(PeerWatch::Clock::now());
        peerTimer_.start(kPeerCheckPeriod);
    }
    // QTcpSocket passes its writes to the system one by one, one in each event-loop iteration, so
    // they are joined first.
    if (socket_->bytesToWrite() > 0) {
        waiting_.append(message);
        return true;
    }
    return socket_->write(message) == message.size();
}

/// Aborts from the event loop, so that the caller of write() is not interrupted by disconnected().
void TCPTransportSocket::disconnectSlowReader() {
    qWarning("%s leaves too much unread, disconnected", qPrintable(peerAddress().toString()));
    overflowing_ = true;
    waiting_.clear();
    QMetaObject::invokeMethod(socket_, &QTcpSocket::abort, Qt::QueuedConnection);
}

void TCPTransportSocket::checkPeer() {
    const auto progress = KeepAlive::progress(socket_->socketDescriptor());
    if (!progress || (!progress->waiting && unsentBytes() == 0)) {
        peerTimer_.stop();
    } else if (peerWatch_.hasVanished(*progress, PeerWatch::Clock::now())) {
        peerTimer_.stop();
        socket_->abort();
    }
}

void TCPTransportSocket::sendWaiting() {
    if (!waiting_.isEmpty())
        socket_->write(std::exchange(waiting_, {}));
}

int TCPTransportSocket::state() const {
    switch (socket_->state()) {
    case QAbstractSocket::UnconnectedState:
    case QAbstractSocket::ClosingState:
        return Disconnected;
    case QAbstractSocket::ConnectingState:
        return Connecting;
    case QAbstractSocket::ConnectedState:
        return Connected;
    default:
        return Idle;
    }
}

void TCPTransportSocket::activeKeepAlive(unsigned long interval, unsigned long time) const {
    socket_->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    if (!KeepAlive::enable(socket_->socketDescriptor(), std::chrono::milliseconds(time),
                           std::chrono::milliseconds(interval)))
        qCritical("The keepAlive service failed to initialize");
}

void TCPTransportSocket::onDisconnected() {
    ended_ = true;
    // Events received before the end are emitted first.
    if (resumeTimer_.isActive() || receiving_)
        onReadyRead();
    else
        reportEnd();
}

void TCPTransportSocket::reportEnd() {
    ended_ = false;
    // Before the signal, because its receiver may reconnect and start reading again.
    stopReading();
    emit disconnected(socketId_);
}

void TCPTransportSocket::onBytesWritten(qint64 sizeWritten) {
    if (sizeWritten == 0)
        qWarning("Error when sent an event, no data was send");
    if (socket_->bytesToWrite() == 0 && !waiting_.isEmpty()) {
        sendWaiting();
        socket_->flush(); // the next event-loop iteration may come late
    }
}

void TCPTransportSocket::onReadyRead() {
    const QPointer<TCPTransportSocket> alive(this);
    receive();
    if (alive && ended_ && !resumeTimer_.isActive())
        reportEnd();
}

/// Emits waiting events for one slice of time; the timer is active when more are waiting.
void TCPTransportSocket::receive() {
    const QPointer<TCPTransportSocket> alive(this);
    const QDeadlineTimer deadline(kReceiveSlice);
    qint64 sinceClockCheck = 0;
    resumeTimer_.stop();
    const bool isNested = std::exchange(receiving_, true);
    while (reading_) {
        readSocket();
        const qsizetype before = reader_.bytesWaiting();
        const std::optional<eventData> frame = reader_.next();
        sinceClockCheck += kFrameCost + before - reader_.bytesWaiting();
        if (frame)
            emitEvent(*frame);
        if (!alive)
            return;
        if (!frame && (closing_ || socket_->bytesAvailable() == 0))
            break;
        if (sinceClockCheck < kBytesPerClockCheck)
            continue;
        sinceClockCheck = 0;
        if (deadline.hasExpired()) {
            if (reading_ && hasMoreToRead())
                resumeTimer_.start(0);
            break;
        }
    }
    receiving_ = isNested;
}

void TCPTransportSocket::readSocket() {
    const qint64 available = socket_->bytesAvailable();
    if (available == 0)
        return;
    if (closing_)
        socket_->skip(available);
    else if (reader_.wantsBytes())
        reader_.append(available, [this](char* out, qsizetype size) {
            return std::max<qint64>(socket_->read(out, size), 0);
        });
}

bool TCPTransportSocket::hasMoreToRead() const {
    return reader_.bytesWaiting() > 0 || socket_->bytesAvailable() > 0;
}

void TCPTransportSocket::emitEvent(eventData frame) {
    static const QMetaMethod signal = QMetaMethod::fromSignal(&TCPTransportSocket::receivedEvent);
    if (isSignalConnected(signal))
        emit receivedEvent(frame);
    else
        delete frame.second;
}

} // namespace NetworkCompanion
