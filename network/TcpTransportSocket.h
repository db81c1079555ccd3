#pragma once

#include "network/events/Event.h"

#include <QByteArray>
#include <QHostAddress>
#include <QObject>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

#include <mutex>
#include <optional>

namespace NetworkCompanion {

/// Sends and receives events over one TCP connection. Each frame has a length prefix of 4 bytes.
///
/// Everything runs on the object's thread. A slot of its signals may write, disconnect, reconnect
/// or delete it.
class TCPTransportSocket : public QObject {
    Q_OBJECT

public:
    /// The results of state(); the numbers are fixed.
    enum State { Idle = 0, Connecting = 1, Connected = 2, Disconnected = 4 };

    /// The client's end, not connected.
    explicit TCPTransportSocket(QObject* parent);
    /// The server's end of an accepted connection. Becomes the socket's parent.
    TCPTransportSocket(int socketId, QTcpSocket* socket, QObject* parent);
    ~TCPTransportSocket() override;

    /// Starts connecting to the url's host and port without waiting. False, without effect, while
    /// connected or connecting.
    bool tryToConnect(const QUrl& url);
    /// Waits at most msecs milliseconds (-1: no limit). True when connected.
    bool waitForConnected(int msecs);
    /// Waits at most msecs milliseconds (-1: no limit). True when disconnected or closing.
    bool waitForDisconnected(int msecs);
    /// Drops received bytes, emits no further events and closes the connection after everything
    /// written has been sent.
    void disconnect();
    /// Drops unsent bytes, refuses further writes and aborts the connection from the event loop, so
    /// that disconnected() is not emitted within the call.
    void abandon();
    /// Events are emitted between these two only. Bytes that arrive earlier wait for
    /// startReading().
    void startReading();
    void stopReading();
    /// Sends the event in one write, without waiting or flushing. Events written while the socket
    /// is still sending follow together in one further write. False without a log line when not
    /// connected or abandoned.
    bool write(Event& event);

    int state() const;
    /// Enables keep-alive: the first probe after time ms of silence, then one every interval ms.
    void activeKeepAlive(unsigned long interval, unsigned long time) const;

    int socketId() const { return socketId_; }
    /// The peer of the client's end; empty after disconnect().
    QUrl url() const { return url_; }
    QHostAddress peerAddress() const { return socket_->peerAddress(); }
    /// Bytes written that the operating system has not accepted yet.
    qint64 unsentBytes() const { return socket_->bytesToWrite() + waiting_.size(); }

signals:
    /// A frame has arrived. The receiver owns the event, which is null when the frame could not be
    /// decoded. An event without a receiver is freed.
    void receivedEvent(NetworkCompanion::eventData event);
    void disconnected(int socketId);

public slots:
    void onDisconnected();
    void onBytesWritten(qint64 sizeWritten);
    void onReadyRead();

private:
    void initSocket();
    void replaceSocket();
    void onConnected();
    void sendWaiting();
    void resetReceiving();
    void receive();
    void reportEnd();
    void takeAvailable();
    qsizetype bytesWaiting() const { return buffer_.size() - consumed_; }
    bool hasMoreToRead() const { return bytesWaiting() > 0 || socket_->bytesAvailable() > 0; }
    std::optional<eventData> nextFrame();
    qint32 onReadHeader();
    void skipOversized();
    void emitEvent(eventData frame);

    QUrl url_;
    int socketId_ = -1;
    bool waitingForLength_ = true;
    QTcpSocket* socket_; // a child
    QByteArray waiting_; // frames to write after the socket has sent the previous ones
    QByteArray buffer_;
    qsizetype consumed_ = 0; // bytes at the buffer's front that were decoded
    qint32 expectedLength_ = 0;
    std::mutex mutex_; // guards the flag, the buffer and the lengths; never held while emitting

    qint64 bytesToSkip_ = 0; // the rest of a frame that is too long to be stored
    bool closing_ = false;   // disconnect() was called: arriving bytes are dropped
    bool abandoned_ = false; // abandon() was called, the socket not yet aborted
    bool reading_ = false;
    bool ended_ = false; // the connection has ended; disconnected() follows its last event
    int emitting_ = 0;
    QTimer resumeTimer_; // continues a long read in the next event-loop iteration
};

} // namespace NetworkCompanion
