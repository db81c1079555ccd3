#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QObject>
#include <QRandomGenerator>
#include <QTcpServer>
#include <QTimer>

class QTcpSocket;

/// A TCP proxy that simulates a bad network between companions and a Producer: splits, delays and
/// stalls the bytes and breaks connections on request. Equal seeds split equal bytes equally.
class ChaosProxy : public QObject {
    Q_OBJECT

public:
    enum class NetworkCondition { Clear, Bytewise, Pieces, Slow, Stalling };
    enum class End { Closed, Reset };

    /// Forwards connections to `producerPort` on the loopback address.
    ChaosProxy(quint16 producerPort, quint32 seed, QObject* parent);

    bool listen(const QHostAddress& address, quint16 port);
    /// Applies to both directions, from now on.
    void setNetworkCondition(NetworkCondition condition) { condition_ = condition; }
    /// Breaks the current or else the next connection after that many more bytes to the companion;
    /// a negative number cancels this.
    void cutAfter(qsizetype bytes, End end);
    void cut(End end);
    /// Refuses connections until listen() is called again.
    void refuse() { server_.close(); }
    /// The number of broken connections so far.
    int cuts() const { return cuts_; }

private:
    /// One end: its socket and the bytes that are to be written to it.
    struct Pipe {
        QTcpSocket* socket = nullptr; // a child
        QByteArray waiting;
        QTimer next;
        bool sourceEnded = false;
    };

    void onNewConnection();
    void receive(QTcpSocket* from, Pipe& to);
    void deliver(Pipe& to);
    void end(QTcpSocket* which);
    /// The number of bytes to send now and the pause before the next ones in milliseconds.
    std::pair<qsizetype, int> portion(qsizetype waiting);

    QTcpServer server_;
    const quint16 producerPort_;
    QRandomGenerator random_;
    NetworkCondition condition_ = NetworkCondition::Clear;
    Pipe companion_, producer_;
    qint64 sent_ = 0; // on this connection
    qsizetype untilCut_ = -1;
    int cuts_ = 0;
    End cutEnd_ = End::Closed;
};
