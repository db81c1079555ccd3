#pragma once

#include <chrono>
#include <utility>

#include <pthread.h>
#include <time.h>

/// Stopwatch of the processor time of one thread, because the wall time also measures
/// what else a busy machine does. Windows counts in steps of about 16 ms.
class ThreadTime {
public:
    /// Of the calling thread by default. Another thread can only read a clock that
    /// pthread_getcpuclockid() returned.
    explicit ThreadTime(clockid_t clock = CLOCK_THREAD_CPUTIME_ID) : clock_(clock), start_(now()) {}

    /// Since the start, or the last restart.
    [[nodiscard]] std::chrono::milliseconds elapsed() const { return milliseconds(now() - start_); }
    std::chrono::milliseconds restart() {
        const auto time = now();
        return milliseconds(time - std::exchange(start_, time));
    }

private:
    static std::chrono::milliseconds milliseconds(std::chrono::nanoseconds time) {
        return std::chrono::duration_cast<std::chrono::milliseconds>(time);
    }
    [[nodiscard]] std::chrono::nanoseconds now() const {
        timespec time{};
        clock_gettime(clock_, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    }

    clockid_t clock_;
    std::chrono::nanoseconds start_;
};
