#pragma once

#include "tools/demo_producer/ProducerSession.h"

#include <QTcpServer>

/// What can be told to a running session in words, one command a line. An item is written as in a
/// show file, for example "screen:0" or "part:2/1".
///
///     new-show                                      the next show, as it was at first
///     pattern NAME                                  none, small, ..., white
///     blind ITEM on|off
///     mode SCREEN simple|deformation|parts
///     deform ITEM none|keystone|bezier|curve [ROWS COLUMNS [reset]]
///     move ITEM xy|uv POINT X Y
///     remove ITEM
///     restore                                       whatever was removed since the show began
///     key ID COLOR NAME...                          adds or changes a quick key
///     delete-key ID
///     key-grid ROWS COLUMNS
///     disconnect                                    lets every companion go
class Commands : public QObject {
    Q_OBJECT

public:
    Commands(ProducerSession& session, QObject* parent);

    /// False when the line is no command or asks for what cannot be. An empty line, or one that
    /// begins with #, is a command that does nothing.
    bool execute(const QString& line);

    /// Plays commands from a text whose lines begin with the time, in seconds from now on, at which
    /// they are due: "2.5 pattern tile". False, and nothing is played, when a line has no time.
    bool play(const QString& script);

    /// Takes commands from programs on this machine: one a line, each answered with "ok" or
    /// "refused". Port 0 takes a free one. The port taken, or 0 when that failed.
    quint16 listen(quint16 port);

private:
    bool remove(const ItemKey& key);
    bool restore();
    void onConnection();

    ProducerSession& session_;
    std::vector<ShowItem> removed_;
    int showOfRemoved_ = 0;
    QTcpServer server_;
};
