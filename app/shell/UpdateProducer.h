#pragma once

#include "app/shell/StoppableThread.h"

/// The timer of a drag: emits a signal each period so that the collected point moves are sent.
/// Ended with stop() (at once) or requestInterruption() and wait().
class UpdateProducer final : public StoppableThread {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kTickPeriod{125};

    explicit UpdateProducer(QObject* parent);
    ~UpdateProducer() override;

    /// Of every thread started from now on; a test shortens it.
    static inline std::chrono::milliseconds tickPeriod{kTickPeriod};

signals:
    /// Emitted on the running thread: once a period, and once more after the request to end.
    void updateProducer();

protected:
    void loop() override;
};
