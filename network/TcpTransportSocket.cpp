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

namespace NetworkCompanion {

namespace {

constexpr int kLengthSize = 4;
constexpr unsigned long kKeepAliveInterval = 200; // ms
constexpr unsigned long kKeepAliveTime = 1000;    // ms

// Events are handed over in slices of this many milliseconds, so that a flood of them leaves the
// event loop its turn; what is waiting meanwhile is bounded, and the sender is slowed down.
constexpr int kReceiveSlice = 8;
constexpr qint64 kReadAhead = 1024 * 1024;

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
    do {
        {
            const std::scoped_lock lock(mutex_);
            takeAvailable();
        }
        for (;;) {
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
            if (deadline.hasExpired()) {
                if (!buffer_.isEmpty() || socket_->bytesAvailable() > 0)
                    resumeTimer_.start(0);
                return;
            }
        }
        // More may have come while a receiver ran an event loop of its own.
    } while (!closing_ && socket_->bytesAvailable() > 0);
}

/// Unless enough is waiting already, takes over what the socket has.
void TCPTransportSocket::takeAvailable() {
    if (waitingForLength_ ? buffer_.size() >= kReadAhead : buffer_.size() >= expectedLength_)
        return;
    while (const qint64 available = socket_->bytesAvailable()) {
        if (closing_ || bytesToSkip_ > 0) {
            const qint64 wanted = closing_ ? available : qMin(available, bytesToSkip_);
            const qint64 skipped = socket_->skip(wanted);
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
    while (!buffer_.isEmpty()) {
        if (waitingForLength_) {
            expectedLength_ = onReadHeader(buffer_, kLengthSize);
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
        eventData frame;
        if (!onReadData(buffer_, expectedLength_, frame))
            return std::nullopt;
        waitingForLength_ = true;
        return frame;
    }
    return std::nullopt;
}

/// Takes the big-endian length off the buffer's front; 0 when there are fewer than size bytes.
qint32 TCPTransportSocket::onReadHeader(QByteArray& buffer, int size) {
    if (size > buffer.size()) {
        qCritical().nospace() << "Invalid header size. Size must be at least " << size
                              << " bytes, we read " << buffer.size();
        return 0;
    }
    const auto length = qFromBigEndian<qint32>(buffer.constData());
    buffer.remove(0, size);
    return length;
}

/// Decodes the frame at the buffer's front and takes its size bytes off; false when they are not
/// there yet.
bool TCPTransportSocket::onReadData(QByteArray& buffer, int size, eventData& frame) {
    if (size > buffer.size())
        return false;
    frame = LVNtc::deserialize(buffer);
    buffer.remove(0, size);
    return true;
}

void TCPTransportSocket::skipOversized() {
    qCritical().nospace() << "Frame of " << expectedLength_ << " bytes is too large, skipped";
    const qsizetype here = qMin<qsizetype>(expectedLength_, buffer_.size());
    bytesToSkip_ = expectedLength_ - here;
    expectedLength_ = 0;
    buffer_.remove(0, here);
}

void TCPTransportSocket::handOver(eventData frame) {
    static const QMetaMethod signal = QMetaMethod::fromSignal(&TCPTransportSocket::receivedEvent);
    if (!isSignalConnected(signal)) {
        delete frame.second;
        return;
    }
    const QPointer<TCPTransportSocket> alive(this);
    ++emitting_;
    emit receivedEvent(frame);
    if (alive)
        --emitting_;
}

} // namespace NetworkCompanion
