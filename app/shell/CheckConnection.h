#pragma once

#include "app/shell/StoppableThread.h"
#include "app/shell/Timing.h"

#include <QString>

#include <atomic>

/// Polls discovery for one Producer and emits a signal each time it is listed. The receiver decides
/// whether to reconnect.
class CheckConnection final : public StoppableThread {
    Q_OBJECT

public:
    explicit CheckConnection(QObject* parent, const Timing& timing = Timing());
    ~CheckConnection() override;

    /// The Producer's address, compared exactly; may be changed while the thread runs.
    void setWatchedAddress(const QString& address);

public slots:
    /// Also drops a queued announcement, so that no signal follows. To be called on this object's
    /// thread.
    void stop() override;

signals:
    /// Discovery lists the watched Producer. Emitted on this object's thread; the checks made while
    /// that thread is busy cause one signal, or none when it was busy for longer than a second.
    void serverAvailableAgain();

    /// Emitted on the running thread: the watched Producer was listed at seenAt_.
    void seen(QPrivateSignal);

protected:
    void loop() override;

private:
    using Clock = std::chrono::steady_clock;

    void announce();
    [[nodiscard]] bool isWatchedServerAvailable();

    const Timing timing_;
    std::mutex addressMutex_;
    QString watchedAddress_;
    std::atomic<bool> announcementPending_{false};
    std::atomic<Clock::time_point> seenAt_;
};
