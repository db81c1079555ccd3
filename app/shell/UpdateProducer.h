#pragma once

#include "app/shell/StoppableThread.h"
#include "app/shell/Timing.h"

/// The timer of a drag: emits a signal each period so that the collected point moves are sent.
/// Ended with stop() (at once) or requestInterruption() and wait().
class UpdateProducer final : public StoppableThread {
    Q_OBJECT

public:
    explicit UpdateProducer(QObject* parent, const Timing& timing = Timing());
    ~UpdateProducer() override;

signals:
    /// Emitted on the running thread: once a period, and once more after the request to end.
    void updateProducer();

protected:
    void loop() override;

private:
    const std::chrono::milliseconds tickPeriod_;
};
