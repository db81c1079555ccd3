#pragma once

#include <QThread>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

/// A thread whose loop pauses between rounds and can be ended at once, in the middle of a pause.
class StoppableThread : public QThread {
    Q_OBJECT

public:
    explicit StoppableThread(QObject* parent);
    ~StoppableThread() override;

public slots:
    /// Requests interruption, wakes the loop and waits until the thread is over. Takes no longer
    /// than the round that is under way; does nothing while the thread is not running. A bare
    /// requestInterruption() works too, but is noticed only at the end of a pause.
    /// To be called from another thread than this one.
    virtual void stop();

protected:
    /// What the thread does until pause() tells it to end.
    virtual void loop() = 0;
    /// Called by loop(): sleeps for `duration`. False as soon as interruption has been requested.
    bool pause(std::chrono::milliseconds duration);

    void run() final;

private:
    std::atomic<bool> over_{false};
    std::mutex mutex_;
    std::condition_variable wake_;
};
