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

/// Carries events over one TCP connection: a length of 4 bytes in front of each frame on the way
/// out, frames put together from whatever chunks arrive on the way in.
///
/// Lives on one thread. A slot of its signals may write, disconnect, reconnect or delete it.
class TCPTransportSocket : public QObject {
    Q_OBJECT

public:
    /// What state() tells; the numbers are fixed.
    enum State { Idle = 0, Connecting = 1, Connected = 2, Disconnected = 4 };

    /// The client's end, not connected.
    explicit TCPTransportSocket(QObject* parent);
    /// The server's end of an accepted connection; takes the socket over.
    TCPTransportSocket(int socketId, QTcpSocket* socket, QObject* parent);
    ~TCPTransportSocket() override;

    /// Begins to connect to the url's host and port and does not wait. False, and nothing is
    /// touched, while a connection stands or is being made.
    bool tryToConnect(const QUrl& url);
    /// Waits at most msecs milliseconds (-1: without limit); tells whether it is connected.
    bool waitForConnected(int msecs);
    /// As above; a connection that is closing counts as gone.
    bool waitForDisconnected(int msecs);
    /// Forgets what was received and closes once everything written is out. Nothing is received
    /// any more.
    void disconnect();
    /// Drops what is not out yet and lets nothing more in; the end of the connection is told from
    /// the event loop, not in the middle of the caller's work.
    void abandon();
    /// Events are received between these two only; what came meanwhile waits for the first.
    void startReading();
    void stopReading();
    /// Sends the event in one write that is neither awaited nor flushed; events that are written
    /// while others are on their way leave together. False, without a word, when not connected or
    /// abandoned.
    bool write(Event& event);

    int state() const;
    /// Switches keep-alive on: probes after time ms of silence, one every interval ms.
    void activeKeepAlive(unsigned long interval, unsigned long time) const;

    int socketId() const { return socketId_; }
    /// The peer of the client's end; empty after disconnect().
    QUrl url() const { return url_; }
    QHostAddress peerAddress() const { return socket_->peerAddress(); }
    /// Bytes written that the operating system has not taken yet.
    qint64 unsentBytes() const { return socket_->bytesToWrite() + waiting_.size(); }

signals:
    /// One frame arrived; its event is null when it was none. The receiver owns the event. Without
    /// a receiver it is freed.
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
    void handOver(eventData frame);

    QUrl url_;
    int socketId_ = -1;
    bool waitingForLength_ = true;
    QTcpSocket* socket_; // a child
    QByteArray waiting_; // frames for when the socket has sent what it has
    QByteArray buffer_;
    qsizetype consumed_ = 0; // bytes at the buffer's front that are done with
    qint32 expectedLength_ = 0;
    std::mutex mutex_; // guards the flag, the buffer and the lengths; never held while emitting

    qint64 bytesToSkip_ = 0; // what is left of a frame that is too long to be stored
    bool closing_ = false;   // by disconnect(): whatever still arrives is of no interest
    bool abandoned_ = false; // by abandon(), until the socket has heard of it
    bool reading_ = false;
    bool ended_ = false; // the connection is gone, which is told once its last event was
    int emitting_ = 0;
    QTimer resumeTimer_; // continues a long read after the event loop had its turn
};

} // namespace NetworkCompanion
