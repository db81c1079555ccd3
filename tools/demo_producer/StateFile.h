#pragma once

#include "tools/demo_producer/ProducerSession.h"

#include <QJsonObject>
#include <QTimer>

/// Keeps a file that tells the whole state of a session, for programs that watch or test it: the
/// show in the form of ShowFile, and
///
///     "sequence": 12,                         // one more with every writing
///     "showsStarted": 1,
///     "port": 62330,
///     "companions": [{"id": 1, "address": "10.77.0.1", "editing": "screen:0", // null: nothing
///                     "editsUv": false, "pointColor": "#0000ff", "pointShape": 1}],
///     "executedQuickKeys": [3, 1],            // the newest last
///     "receivedEvents": {"Msg": 1, "ItemData": 4, "ScreenMovePoint": 120}
class StateFile : public QObject {
    Q_OBJECT

public:
    /// Writes at once, then after every change, but no more often than every 50 ms, and less often
    /// when the show is so large that writing it takes its time.
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
