#pragma once

#include "app/shell/StoppableThread.h"

/// The tick of a drag: announces regularly that collected point moves are due to be sent.
/// Started with start(), ended with stop() (at once) or requestInterruption() and wait().
class UpdateProducer final : public StoppableThread {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kTickPeriod{125};

    explicit UpdateProducer(QObject* parent);
    ~UpdateProducer() override;

    /// Of every thread started from now on; a test shortens it.
    static inline std::chrono::milliseconds tickPeriod{kTickPeriod};

signals:
    /// From this thread: once a period, and exactly once more after the request to end.
    void updateProducer();

protected:
    void loop() override;
};
