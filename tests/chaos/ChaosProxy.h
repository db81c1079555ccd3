#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QObject>
#include <QRandomGenerator>
#include <QTcpServer>
#include <QTimer>

class QTcpSocket;

/// A bad network between companions and a Producer: takes bytes apart, delays, holds them back,
/// and breaks connections where it is told to. The same seed cuts the same bytes into the same
/// pieces.
class ChaosProxy : public QObject {
    Q_OBJECT

public:
    enum class Weather { Clear, Bytewise, Pieces, Slow, Stalling };
    enum class End { Closed, Reset };

    /// Connections are passed on to that port of this machine.
    ChaosProxy(quint16 producerPort, quint32 seed, QObject* parent);

    bool listen(const QHostAddress& address, quint16 port);
    /// Of both directions, from now on.
    void setWeather(Weather weather) { weather_ = weather; }
    /// Breaks the connection, this one or the next, behind that many more bytes to the companion;
    /// never when negative.
    void cutAfter(qint64 bytes, End end);
    void cut(End end);
    /// Nobody gets through until listen() is called again.
    void refuse() { server_.close(); }
    /// Connections broken so far.
    int cuts() const { return cuts_; }

private:
    /// One end: its socket, and what waits to be written to it.
    struct Pipe {
        QTcpSocket* socket = nullptr; // a child
        QByteArray waiting;
        QTimer next;
        bool sourceEnded = false;
    };

    void onNewConnection();
    void take(QTcpSocket* from, Pipe& to);
    void deliver(Pipe& to);
    void end(QTcpSocket* which);
    /// How many bytes go out now, and after how many milliseconds the next ones may.
    std::pair<qsizetype, int> portion(qsizetype waiting);

    QTcpServer server_;
    const quint16 producerPort_;
    QRandomGenerator random_;
    Weather weather_ = Weather::Clear;
    Pipe companion_, producer_;
    qint64 sent_ = 0; // on this connection
    qint64 untilCut_ = -1;
    int cuts_ = 0;
    End cutEnd_ = End::Closed;
};
