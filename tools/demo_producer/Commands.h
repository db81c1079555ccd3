#pragma once

#include "tools/demo_producer/ProducerSession.h"

#include <QTcpServer>

/// Edits a running session by text commands, one a line. Items are written as in a show file, for
/// example "screen:0" or "part:2/1".
///
///     new-show                                      the next show in its initial state
///     pattern NAME                                  none, small, ..., white
///     blind ITEM on|off
///     mode SCREEN simple|deformation|parts
///     deform ITEM none|keystone|bezier|curve [ROWS COLUMNS [reset]]
///     move ITEM xy|uv POINT X Y
///     remove ITEM
///     restore                                       adds all removed items again
///     key ID COLOR NAME...                          adds or changes a quick key
///     delete-key ID
///     key-grid ROWS COLUMNS
///     disconnect                                    disconnects every companion
class Commands : public QObject {
    Q_OBJECT

public:
    Commands(ProducerSession& session, QObject* parent);

    /// Returns false, and changes nothing, when the line is not a valid command. An empty line, or
    /// one that begins with #, is valid and does nothing.
    bool execute(const QString& line);

    /// Schedules commands from a text whose lines begin with a delay in seconds: "2.5 pattern
    /// tile". Returns false, and schedules nothing, when a line has no delay.
    bool play(const QString& script);

    /// Accepts connections from this machine; answers each line with "ok" or "refused". Port 0
    /// takes a free one. Returns the port in use, or 0 when it cannot listen.
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
