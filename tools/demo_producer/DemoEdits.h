#pragma once

#include "tools/demo_producer/Commands.h"

#include <QRandomGenerator>
#include <QTimer>

/// Edits a show at random, for long runs: moves points, rebuilds meshes, blinds, removes and
/// restores items, changes pattern, quick keys and the show. The same seed makes the same edits.
class DemoEdits : public QObject {
    Q_OBJECT

public:
    /// Starts making that many edits a second. Session and commands must outlive this object.
    DemoEdits(ProducerSession& session, Commands& commands, double editsPerSecond, quint32 seed,
              QObject* parent);

    /// Makes one edit.
    void edit();

private:
    void movePoint();
    /// The command for a random number from 0 to 999.
    [[nodiscard]] QString commandFor(int choice);
    void run(const QString& command) { commands_.execute(command); }
    [[nodiscard]] const ShowItem* anyItem();

    /// A move of a point in steps.
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
    double due_ = 0; ///< edits that are yet to be made
    double perTick_;
    QTimer timer_;
};
