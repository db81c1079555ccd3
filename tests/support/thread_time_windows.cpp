#include "tests/support/ThreadTime.h"

#include <windows.h>

namespace MeshpadTest {

struct ThreadTime::Clock {
    HANDLE thread = nullptr;
};

ThreadTime::ThreadTime() {
    auto clock = std::make_unique<Clock>();
    DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &clock->thread,
                    THREAD_QUERY_INFORMATION, FALSE, 0);
    clock_ = std::move(clock);
    start_ = now();
}

ThreadTime::~ThreadTime() {
    CloseHandle(clock_->thread);
}

/// Goes in steps of some 16 ms.
std::chrono::nanoseconds ThreadTime::now() const {
    FILETIME created, exited, kernel, user;
    if (!GetThreadTimes(clock_->thread, &created, &exited, &kernel, &user))
        return {};
    const auto count = [](const FILETIME& time) { // of 100 ns each
        return std::int64_t(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    };
    return std::chrono::nanoseconds(100 * (count(kernel) + count(user)));
}

} // namespace MeshpadTest
