#include "app/shell/StoppableThread.h"

StoppableThread::StoppableThread(QObject* parent) : QThread(parent) {}

StoppableThread::~StoppableThread() {
    StoppableThread::stop();
}

void StoppableThread::stop() {
    {
        // Locked, so that pause() cannot miss a request made between its check and its sleep.
        const std::lock_guard lock(mutex_);
        requestInterruption();
    }
    wake_.notify_all();
    wait();
    // Synchronises with run() for thread sanitizers, which do not see into wait().
    static_cast<void>(over_.load());
}

void StoppableThread::run() {
    loop();
    over_.exchange(true); // read and write, so that it also synchronises with earlier runs
}

bool StoppableThread::pause(std::chrono::milliseconds duration) {
    std::unique_lock lock(mutex_);
    wake_.wait_for(lock, duration, [this] { return isInterruptionRequested(); });
    return !isInterruptionRequested();
}
