#pragma once

#include <chrono>
#include <memory>

namespace MeshpadTest {

/// How long the processor has worked for one thread. A busy machine, which lets the thread wait,
/// does not make it longer, so that it says what a program costs, and not what runs beside it.
class ThreadTime {
public:
    /// Of the thread that makes it, which must outlive it; starts at once.
    ThreadTime();
    ~ThreadTime();
    ThreadTime(const ThreadTime&) = delete;
    ThreadTime& operator=(const ThreadTime&) = delete;

    /// Since the start, or the last restart. Any thread may ask.
    [[nodiscard]] std::chrono::milliseconds elapsed() const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(now() - start_);
    }
    /// The same, and starts anew.
    std::chrono::milliseconds restart() {
        const auto passed = elapsed();
        start_ = now();
        return passed;
    }

private:
    struct Clock; // of the platform

    [[nodiscard]] std::chrono::nanoseconds now() const;

    std::unique_ptr<const Clock> clock_;
    std::chrono::nanoseconds start_;
};

} // namespace MeshpadTest
