#include "app/shell/StoppableThread.h"

StoppableThread::StoppableThread(QObject* parent) : QThread(parent) {}

StoppableThread::~StoppableThread() {
    StoppableThread::stop();
}

void StoppableThread::stop() {
    {
        // Under the lock, so that the request cannot fall between the loop's look and its sleep.
        const std::lock_guard lock(mutex_);
        requestInterruption();
    }
    wake_.notify_all();
    wait();
    // Whatever the thread did has happened before this, also for tools that cannot look into
    // wait().
    static_cast<void>(over_.load());
}

void StoppableThread::run() {
    loop();
    over_.exchange(true); // takes over what an earlier run left behind
}

bool StoppableThread::pause(std::chrono::milliseconds duration) {
    std::unique_lock lock(mutex_);
    wake_.wait_for(lock, duration, [this] { return isInterruptionRequested(); });
    return !isInterruptionRequested();
}
