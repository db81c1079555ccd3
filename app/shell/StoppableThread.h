#pragma once

#include <QThread>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

/// A thread whose loop pauses between its iterations; stop() also ends a pause.
class StoppableThread : public QThread {
    Q_OBJECT

public:
    explicit StoppableThread(QObject* parent);
    ~StoppableThread() override;

public slots:
    /// Requests interruption, ends the pause and waits until the thread has finished its current
    /// iteration; does nothing while it is not running. requestInterruption() alone takes effect at
    /// the end of the pause. Not to be called on the running thread.
    virtual void stop();

protected:
    /// The thread's work; returns when pause() returns false.
    virtual void loop() = 0;
    /// Sleeps for `duration`. Returns false, at once, when interruption is requested.
    bool pause(std::chrono::milliseconds duration);

    void run() final;

private:
    std::atomic<bool> over_{false};
    std::mutex mutex_;
    std::condition_variable wake_;
};
