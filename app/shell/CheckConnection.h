#pragma once

#include "app/shell/StoppableThread.h"

#include <QString>

#include <atomic>

/// Watches discovery for one Producer and announces, again and again, that it is on the network.
/// Whether a reconnection is needed is the receiver's decision.
class CheckConnection final : public StoppableThread {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kFirstCheckDelay{10'000};
    static constexpr std::chrono::milliseconds kCheckPeriod{1'000};

    explicit CheckConnection(QObject* parent);
    ~CheckConnection() override;

    /// The address looked for, compared exactly; may be changed while the thread runs.
    void setWatchedAddress(const QString& address);

    /// Of every thread started from now on; a test shortens them.
    static inline std::chrono::milliseconds firstCheckDelay{kFirstCheckDelay};
    static inline std::chrono::milliseconds checkPeriod{kCheckPeriod};

public slots:
    /// Also drops an announcement that is still on its way: there is none after the return.
    /// To be called from the thread of this object.
    void stop() override;

signals:
    /// The watched Producer is listed by discovery at this very moment. Comes on the thread of this
    /// object, for checks made while that thread is busy only once, or not at all when it was busy
    /// for longer than a second.
    void serverAvailableAgain();

    /// From the thread that runs: the watched Producer was listed at seenAt_.
    void seen(QPrivateSignal);

protected:
    void loop() override;

private:
    using Clock = std::chrono::steady_clock;

    void announce();
    [[nodiscard]] bool isWatchedServerAvailable();

    std::mutex addressMutex_;
    QString watchedAddress_;
    std::atomic<bool> announcementPending_{false};
    std::atomic<Clock::time_point> seenAt_;
};
