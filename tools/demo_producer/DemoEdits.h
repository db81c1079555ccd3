#pragma once

#include "tools/demo_producer/Commands.h"

#include <QRandomGenerator>
#include <QTimer>

/// Plays a show by itself, for long runs: meshes bend and are rebuilt, items are blinded, go and
/// come, patterns, quick keys and whole shows change. The same seed makes the same choices.
class DemoEdits : public QObject {
    Q_OBJECT

public:
    /// Makes that many edits a second, from now on. Both objects outlive this one.
    DemoEdits(ProducerSession& session, Commands& commands, double editsPerSecond, quint32 seed,
              QObject* parent);

    /// A single edit; what the timer does.
    void edit();

private:
    void bend();
    /// Picks one by a number from 0 to 999.
    [[nodiscard]] QString commandFor(int choice);
    void run(const QString& command) { commands_.execute(command); }
    [[nodiscard]] const ShowItem* anyItem();

    /// A point on its way from one place to another.
    struct Gesture {
        ItemKey item;
        bool xy = true;
        quint32 point = 0;
        QPointF from, to;
        int step = 0, steps = 0;
    };

    ProducerSession& session_;
    Commands& commands_;
    QRandomGenerator random_;
    Gesture gesture_;
    double due_ = 0; ///< edits that should have been made
    double perTick_;
    QTimer timer_;
};
