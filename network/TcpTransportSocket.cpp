#include "network/TcpTransportSocket.h"

#include "network/KeepAlive.h"
#include "network/LVNtc.h"
#include "network/events/ItemDataEvent.h"
#include "network/events/ProtocolLimits.h"

#include <QDeadlineTimer>
#include <QMetaMethod>
#include <QNetworkProxy>
#include <QPointer>
#include <QSignalBlocker>
#include <QtEndian>

#include <cstring>
#include <utility>

namespace NetworkCompanion {

namespace {

constexpr int kLengthSize = 4;
constexpr unsigned long kKeepAliveInterval = 200; // ms
constexpr unsigned long kKeepAliveTime = 1000;    // ms

// Events are emitted in slices of this many milliseconds, so that a flood of them does not block
// the event loop. The socket's read buffer is bounded meanwhile, which slows the sender down.
constexpr int kReceiveSlice = 8;
// The clock is checked after every eighth small frame and after every large one.
constexpr qint64 kBytesPerClockCheck = 4096;
constexpr qint64 kFrameCost = kBytesPerClockCheck / 8; // in bytes
constexpr qint32 kReadAhead = 1024 * 1024;

// A frame with a too small length takes its fields from the bytes behind it, but from no more than
// this many: otherwise each of many small frames could make the decoder read all that follow.
constexpr qsizetype kDecoderSight = LVNtc::kHeaderSize + ItemDataEvent::wireSize();

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
    if (state() == Connected) {
        sendWaiting();
        socket_->flush();
    }
    if (emitting_ > 0) {
        // A socket must not be deleted within its own signal.
        for (QTcpSocket* socket : findChildren<QTcpSocket*>()) {
            socket->setParent(nullptr);
            socket->abort();
            socket->deleteLater();
        }
    }
}

void TCPTransportSocket::initSocket() {
    socket_->setReadBufferSize(kReadAhead);
    connect(socket_, &QTcpSocket::connected, this, &TCPTransportSocket::onConnected);
    connect(socket_, &QTcpSocket::disconnected, this, &TCPTransportSocket::onDisconnected);
    connect(socket_, &QTcpSocket::bytesWritten, this, &TCPTransportSocket::onBytesWritten);
    resumeTimer_.setSingleShot(true);
    connect(&resumeTimer_, &QTimer::timeout, this, &TCPTransportSocket::onReadyRead,
            Qt::UniqueConnection);
}

/// QTcpSocket cannot reconnect from within its own signal, so a new socket replaces it.
void TCPTransportSocket::replaceSocket() {
    QObject::disconnect(socket_, nullptr, this, nullptr);
    socket_ = new QTcpSocket(this);
    socket_->setProxy(QNetworkProxy::applicationProxy());
    initSocket();
    if (reading_)
        connect(socket_, &QTcpSocket::readyRead, this, &TCPTransportSocket::onReadyRead);
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
        waiting_.clear();
        closing_ = false;
        abandoned_ = false;
        ended_ = false;
    }
    if (socket_->state() != QAbstractSocket::UnconnectedState) {
        const QSignalBlocker blocker(socket_); // the old connection's end is not reported
        socket_->abort();
    }
    if (emitting_ > 0) {
        replaceSocket();
    } else {
        for (QTcpSocket* socket : findChildren<QTcpSocket*>())
            if (socket != socket_)
                delete socket;
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
    // Emits signals, so it runs without the mutex.
    const QPointer<TCPTransportSocket> alive(this);
    sendWaiting();
    socket_->flush();
    if (alive)
        socket_->disconnectFromHost();
    if (alive && ended_)
        reportEnd();
}

void TCPTransportSocket::abandon() {
    waiting_.clear();
    abandoned_ = true;
    const auto end = [this] {
        if (std::exchange(abandoned_, false)) // false after a reconnect
            socket_->abort();
    };
    QMetaObject::invokeMethod(this, end, Qt::QueuedConnection);
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
    if (socket_->state() != QAbstractSocket::ConnectedState || abandoned_)
        return false;
    const LV_NTC_Header header{static_cast<std::uint32_t>(event.getSize()), event.type()};
    const QByteArray message = LVNtc::serializeWithLength(header, event);
    // QTcpSocket passes its writes to the system one by one, one in each event-loop iteration, so
    // they are joined first.
    if (socket_->bytesToWrite() > 0) {
        waiting_.append(message);
        return true;
    }
    return socket_->write(message) == message.size();
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
    if (resumeTimer_.isActive() || emitting_ > 0)
        onReadyRead();
    else
        reportEnd();
}

void TCPTransportSocket::reportEnd() {
    ended_ = false;
    // Before the signal, because its receiver may reconnect and start reading again.
    stopReading();
    const QPointer<TCPTransportSocket> alive(this);
    ++emitting_;
    emit disconnected(socketId_);
    if (alive)
        --emitting_;
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
    const auto isTimeUp = [&] {
        if (sinceClockCheck < kBytesPerClockCheck)
            return false;
        sinceClockCheck = 0;
        return deadline.hasExpired();
    };
    bool hasTime = true;
    resumeTimer_.stop();
    ++emitting_;
    while (reading_ && hasTime) {
        {
            const std::scoped_lock lock(mutex_);
            takeAvailable();
        }
        while (reading_ && hasTime) {
            std::optional<eventData> frame;
            {
                const std::scoped_lock lock(mutex_);
                frame = nextFrame();
                sinceClockCheck += kFrameCost + expectedLength_;
            }
            if (!frame)
                break;
            emitEvent(*frame);
            if (!alive)
                return;
            hasTime = !isTimeUp();
        }
        // A receiver that ran an event loop may have let more bytes arrive.
        if (hasTime && (closing_ || socket_->bytesAvailable() == 0))
            break;
        // Lengths without a frame take time, too.
        hasTime = hasTime && !isTimeUp();
    }
    if (!hasTime && reading_ && hasMoreToRead())
        resumeTimer_.start(0);
    --emitting_;
}

/// Reads the socket's bytes unless enough are waiting already.
void TCPTransportSocket::takeAvailable() {
    if (bytesWaiting() >= (waitingForLength_ ? kReadAhead : expectedLength_))
        return;
    // Few bytes are left here. The memory is reused unless it held a giant frame.
    if (consumed_ > 0) {
        const qsizetype left = bytesWaiting();
        std::memmove(buffer_.data(), buffer_.constData() + consumed_,
                     static_cast<std::size_t>(left));
        buffer_.truncate(left);
        consumed_ = 0;
        if (left == 0 && buffer_.capacity() > qsizetype{4} * kReadAhead)
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

/// The next frame of the buffer, or nothing when reading stops until more bytes arrive.
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
        const qsizetype inSight =
            qMin(bytesWaiting(), qMax<qsizetype>(expectedLength_, kDecoderSight));
        const eventData frame = LVNtc::read(QByteArrayView(buffer_).sliced(consumed_, inSight));
        consumed_ += expectedLength_;
        waitingForLength_ = true;
        return frame;
    }
    return std::nullopt;
}

/// Consumes a length prefix; 0, and consumes nothing, when fewer than 4 bytes are waiting.
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

void TCPTransportSocket::emitEvent(eventData frame) {
    static const QMetaMethod signal = QMetaMethod::fromSignal(&TCPTransportSocket::receivedEvent);
    if (isSignalConnected(signal))
        emit receivedEvent(frame);
    else
        delete frame.second;
}

} // namespace NetworkCompanion
