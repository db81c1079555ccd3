#include "tests/support/ThreadTime.h"

#include <ctime>
#include <pthread.h>

namespace MeshpadTest {

struct ThreadTime::Clock {
    clockid_t id{};
};

ThreadTime::ThreadTime() {
    auto clock = std::make_unique<Clock>();
    pthread_getcpuclockid(pthread_self(), &clock->id);
    clock_ = std::move(clock);
    start_ = now();
}

ThreadTime::~ThreadTime() = default;

std::chrono::nanoseconds ThreadTime::now() const {
    timespec time{};
    clock_gettime(clock_->id, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace MeshpadTest
