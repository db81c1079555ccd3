#include "network/TcpTransportSocket.h"

#include "network/KeepAlive.h"
#include "network/LVNtc.h"
#include "network/ProtocolLimits.h"

#include <QDeadlineTimer>
#include <QMetaMethod>
#include <QNetworkProxy>
#include <QPointer>
#include <QSignalBlocker>
#include <QtEndian>

#include <cstring>

namespace NetworkCompanion {

namespace {

constexpr int kLengthSize = 4;
constexpr unsigned long kKeepAliveInterval = 200; // ms
constexpr unsigned long kKeepAliveTime = 1000;    // ms

// Events are handed over in slices of this many milliseconds, so that a flood of them leaves the
// event loop its turn; what is waiting meanwhile is bounded, and the sender is slowed down.
constexpr int kReceiveSlice = 8;
constexpr int kFramesPerLookAtTheClock = 8;
constexpr qint32 kReadAhead = 1024 * 1024;

QUrl urlOf(const QString& host, int port) {
    QUrl url;
    url.setHost(host);
    url.setPort(port);
    return url;
}

} // namespace

TCPTransportSocket::TCPTransportSocket(QObject* parent)
    : QObject(parent), url_(urlOf("127.0.0.1", 0)), socket_(new QTcpSocket(this)),
      resumeTimer_(this) {
    socket_->setProxy(QNetworkProxy::applicationProxy());
    initSocket();
}

TCPTransportSocket::TCPTransportSocket(int socketId, QTcpSocket* socket, QObject* parent)
    : QObject(parent), url_(urlOf("127.0.0.1", 0)), socketId_(socketId), socket_(socket),
      resumeTimer_(this) {
    socket_->setParent(this);
    initSocket();
    onConnected();
}

TCPTransportSocket::~TCPTransportSocket() {
    QObject::disconnect(socket_, nullptr, this, nullptr);
    if (state() == Connected)
        socket_->flush();
    if (emitting_ > 0) {
        // The socket may be in the middle of its own signal: it has to outlive this object.
        socket_->setParent(nullptr);
        socket_->abort();
        socket_->deleteLater();
    }
}

void TCPTransportSocket::initSocket() {
    socket_->setReadBufferSize(kReadAhead);
    connect(socket_, &QTcpSocket::connected, this, &TCPTransportSocket::onConnected);
    connect(socket_, &QTcpSocket::disconnected, this, &TCPTransportSocket::onDisconnected);
    connect(socket_, &QTcpSocket::bytesWritten, this, &TCPTransportSocket::onBytesWritten);
    resumeTimer_.setSingleShot(true);
    connect(&resumeTimer_, &QTimer::timeout, this, &TCPTransportSocket::onReadyRead);
}

void TCPTransportSocket::onConnected() {
    socket_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    activeKeepAlive(kKeepAliveInterval, kKeepAliveTime);
}

bool TCPTransportSocket::tryToConnect(const QUrl& url) {
    {
        const std::scoped_lock lock(mutex_);
        if (state() == Connecting || state() == Connected)
            return false;
        url_ = url;
        resetReceiving();
        closing_ = false;
    }
    if (socket_->state() != QAbstractSocket::UnconnectedState) {
        const QSignalBlocker blocker(socket_); // the end of an old connection is no news
        socket_->abort();
    }
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
    {
        const std::scoped_lock lock(mutex_);
        url_.clear();
        resetReceiving();
        closing_ = true;
    }
    // The signals that this causes must find the mutex free.
    socket_->flush();
    socket_->disconnectFromHost();
}

void TCPTransportSocket::resetReceiving() {
    waitingForLength_ = true;
    expectedLength_ = 0;
    bytesToSkip_ = 0;
    buffer_.clear();
    consumed_ = 0;
    resumeTimer_.stop();
}

void TCPTransportSocket::startReading() {
    connect(socket_, &QTcpSocket::readyRead, this, &TCPTransportSocket::onReadyRead,
            Qt::UniqueConnection);
}

void TCPTransportSocket::stopReading() {
    QObject::disconnect(socket_, &QTcpSocket::readyRead, this, &TCPTransportSocket::onReadyRead);
    resumeTimer_.stop();
}

bool TCPTransportSocket::write(Event& event) {
    if (socket_->state() != QAbstractSocket::ConnectedState)
        return false;
    const LV_NTC_Header header{static_cast<std::uint32_t>(event.getSize()), event.type()};
    const QByteArray message = LVNtc::serializeWithLength(header, event);
    return socket_->write(message) == message.size();
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
    const QPointer<TCPTransportSocket> alive(this);
    // What a peer said before it went still counts, and comes first.
    if (resumeTimer_.isActive() || emitting_ > 0)
        receive(QDeadlineTimer(QDeadlineTimer::Forever));
    if (!alive)
        return;
    // Before the signal: its receiver may connect and start reading again.
    stopReading();
    ++emitting_;
    emit disconnected(socketId_);
    if (alive)
        --emitting_;
}

void TCPTransportSocket::onBytesWritten(qint64 sizeWritten) {
    if (sizeWritten == 0)
        qWarning("Error when sent an event, no data was send");
}

void TCPTransportSocket::onReadyRead() {
    receive(QDeadlineTimer(kReceiveSlice));
}

void TCPTransportSocket::receive(const QDeadlineTimer& deadline) {
    const QPointer<TCPTransportSocket> alive(this);
    resumeTimer_.stop();
    ++emitting_;
    do {
        {
            const std::scoped_lock lock(mutex_);
            takeAvailable();
        }
        for (int count = 1;; ++count) {
            std::optional<eventData> frame;
            {
                const std::scoped_lock lock(mutex_);
                frame = nextFrame();
            }
            if (!frame)
                break;
            handOver(*frame);
            if (!alive)
                return;
            if (count % kFramesPerLookAtTheClock == 0 && deadline.hasExpired()) {
                if (bytesWaiting() > 0 || socket_->bytesAvailable() > 0)
                    resumeTimer_.start(0);
                --emitting_;
                return;
            }
        }
        // More may have come while a receiver ran an event loop of its own.
    } while (!closing_ && socket_->bytesAvailable() > 0);
    --emitting_;
}

/// Unless enough is waiting already, takes over what the socket has.
void TCPTransportSocket::takeAvailable() {
    if (bytesWaiting() >= (waitingForLength_ ? kReadAhead : expectedLength_))
        return;
    // Little is left at this point, and the same memory serves again, unless it was a giant's.
    if (consumed_ > 0) {
        const qsizetype left = bytesWaiting();
        std::memmove(buffer_.data(), buffer_.constData() + consumed_,
                     static_cast<std::size_t>(left));
        buffer_.truncate(left);
        consumed_ = 0;
        if (left == 0 && buffer_.capacity() > 4 * kReadAhead)
            buffer_.clear();
    }
    while (const qint64 available = socket_->bytesAvailable()) {
        if (closing_ || bytesToSkip_ > 0) {
            const qint64 skipped =
                socket_->skip(closing_ ? available : qMin(available, bytesToSkip_));
            if (skipped <= 0)
                return;
            bytesToSkip_ -= closing_ ? 0 : skipped;
            continue;
        }
        const qsizetype size = buffer_.size();
        buffer_.resize(size + available);
        const qint64 read = socket_->read(buffer_.data() + size, available);
        buffer_.truncate(size + qMax<qint64>(read, 0));
        if (read <= 0)
            return;
    }
}

/// The next frame of the buffer, or nothing when reading stops until there are more bytes.
std::optional<eventData> TCPTransportSocket::nextFrame() {
    while (bytesWaiting() > 0) {
        if (waitingForLength_) {
            expectedLength_ = onReadHeader();
            if (expectedLength_ < 0) {
                qCritical().nospace() << "Invalid frame length " << expectedLength_;
                expectedLength_ = 0;
            }
            if (expectedLength_ == 0)
                return std::nullopt;
            if (expectedLength_ > Limits::kMaxFrameLength) {
                skipOversized();
                continue;
            }
            waitingForLength_ = false;
        }
        if (bytesWaiting() < expectedLength_)
            return std::nullopt;
        const eventData frame = LVNtc::read(QByteArrayView(buffer_).sliced(consumed_));
        consumed_ += expectedLength_;
        waitingForLength_ = true;
        return frame;
    }
    return std::nullopt;
}

/// Takes a length off the bytes that are waiting; 0 when they are too few, which then stay.
qint32 TCPTransportSocket::onReadHeader() {
    if (bytesWaiting() < kLengthSize) {
        qCritical().nospace() << "Invalid header size. Size must be at least " << kLengthSize
                              << " bytes, we read " << bytesWaiting();
        return 0;
    }
    const auto length = qFromBigEndian<qint32>(buffer_.constData() + consumed_);
    consumed_ += kLengthSize;
    return length;
}

void TCPTransportSocket::skipOversized() {
    qCritical().nospace() << "Frame of " << expectedLength_ << " bytes is too large, skipped";
    const qsizetype here = qMin<qsizetype>(expectedLength_, bytesWaiting());
    bytesToSkip_ = expectedLength_ - here;
    consumed_ += here;
    expectedLength_ = 0;
}

void TCPTransportSocket::handOver(eventData frame) {
    static const QMetaMethod signal = QMetaMethod::fromSignal(&TCPTransportSocket::receivedEvent);
    if (isSignalConnected(signal))
        emit receivedEvent(frame);
    else
        delete frame.second;
}

} // namespace NetworkCompanion
