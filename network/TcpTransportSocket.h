#pragma once

#include "network/FrameReader.h"
#include "network/PeerWatch.h"

#include <QByteArray>
#include <QHostAddress>
#include <QObject>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

namespace NetworkCompanion {

/// Sends and receives events over one TCP connection. Each frame has a length prefix of 4 bytes.
///
/// Needs no mutex, because the object's thread owns everything: all functions are called there and
/// all signals are emitted there. A slot of its signals may write, disconnect, reconnect or delete
/// it. A vanished peer is disconnected after about 3 s; one that acknowledges but does not read
/// keeps the connection.
///
/// "API" marks functions that nothing here calls; they are kept for callers outside this tree.
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
    /// written has been sent. Ends an attempt to connect at once.
    void disconnect();
    /// Events are emitted between these two only. Bytes that arrive earlier wait for
    /// startReading().
    void startReading();
    void stopReading();
    /// Sends the event in one write, without waiting or flushing. Events written while the socket
    /// is still sending follow together in one further write. False without a log line when not
    /// connected.
    ///
    /// A peer that leaves more than Limits::kMaxUnsentBytes unread is disconnected with one
    /// warning: unsent bytes are dropped, this and further writes return false, and disconnected()
    /// is emitted from the event loop.
    bool write(Event& event);

    int state() const;
    /// Enables keep-alive: the first probe after time ms of silence, then one every interval ms.
    void activeKeepAlive(unsigned long interval, unsigned long time) const;

    int socketId() const { return socketId_; } // API
    /// The peer of the client's end; empty after disconnect().
    QUrl url() const { return url_; } // API
    QHostAddress peerAddress() const { return socket_->peerAddress(); }
    /// Bytes written that the operating system has not accepted yet.
    qint64 unsentBytes() const { return socket_->bytesToWrite() + waiting_.size(); }

signals:
    /// The attempt that tryToConnect() started has succeeded or failed. An attempt that
    /// disconnect() ends is not reported.
    void connectingFinished(bool connected);
    /// A frame has arrived. The receiver owns the event, which is null when the frame could not be
    /// decoded. An event without a receiver is freed.
    void receivedEvent(NetworkCompanion::eventData event);
    void disconnected(int socketId);

public slots:
    void onDisconnected();
    void onBytesWritten(qint64 sizeWritten);
    void onReadyRead();

private:
    TCPTransportSocket(QObject* parent, int socketId, QTcpSocket* socket);

    void setSocket(QTcpSocket* socket);
    void releaseSocket();
    void onConnected();
    void onSocketError();
    void disconnectSlowReader();
    void checkPeer();
    void sendWaiting();
    void receive();
    void readSocket();
    bool hasMoreToRead() const;
    void emitEvent(eventData frame);
    void reportEnd();

    QUrl url_;
    int socketId_;
    QTcpSocket* socket_ = nullptr; // a child; each connection has its own
    FrameReader reader_;
    QByteArray waiting_; // frames to write after the socket has sent the previous ones
    QTimer resumeTimer_; // continues a long read in the next event-loop iteration
    QTimer peerTimer_;   // runs while bytes are not acknowledged
    PeerWatch peerWatch_{PeerWatch::Clock::time_point()};

    bool reading_ = false;     // between startReading() and stopReading()
    bool receiving_ = false;   // within receive()
    bool closing_ = false;     // disconnect() was called: arriving bytes are dropped
    bool connecting_ = false;  // connectingFinished() follows
    bool overflowing_ = false; // the peer has left too much unread
    bool ended_ = false;       // the connection has ended; disconnected() follows its last event
};

} // namespace NetworkCompanion
