#pragma once

#include "tools/demo_producer/ProducerSession.h"

#include <QJsonObject>
#include <QTimer>

/// Writes the state of a session to a file, for tests and monitoring: the show in the format of
/// ShowFile, and
///
///     "sequence": 12,                         // incremented by every write
///     "showsStarted": 1,
///     "port": 62330,
///     "companions": [{"id": 1, "address": "10.77.0.1", "editing": "screen:0", // or null
///                     "editsUv": false, "pointColor": "#0000ff", "pointShape": 1}],
///     "executedQuickKeys": [3, 1],            // the newest last
///     "receivedEvents": {"Msg": 1, "ItemData": 4, "ScreenMovePoint": 120}
class StateFile : public QObject {
    Q_OBJECT

public:
    /// Writes once immediately, then 50 ms after the first unsaved change; waits longer after slow
    /// writes, which take a fifth of the time at most.
    StateFile(const ProducerSession& session, QString path, QObject* parent);
    ~StateFile() override;

    [[nodiscard]] static QJsonObject stateOf(const ProducerSession& session);

private:
    void onChanged();
    void write();

    const ProducerSession& session_;
    const QString path_;
    QTimer delay_;
    int sequence_ = 0;
};
