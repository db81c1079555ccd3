#include "app/shell/EchoTimes.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kMeasuredEchoes = 10;

} // namespace

std::optional<int> EchoTimes::medianMs() const {
    if (times_.empty())
        return std::nullopt;
    std::vector<int> sorted(times_.begin(), times_.end());
    std::sort(sorted.begin(), sorted.end());
    const std::size_t upper = sorted.size() / 2;
    return sorted.size() % 2 == 1 ? sorted[upper] : (sorted[upper - 1] + sorted[upper]) / 2;
}

void EchoTimes::writeSent() {
    if (unconfirmedSince_)
        return;
    unconfirmedSince_ = Clock::now();
    emit changed();
}

void EchoTimes::echoArrived(int milliseconds) {
    const int time = std::max(milliseconds, 0);
    times_.push_back(time);
    if (times_.size() > kMeasuredEchoes)
        times_.pop_front();
    if (unconfirmedSince_)
        unconfirmedSince_ =
            std::max(*unconfirmedSince_, Clock::now() - std::chrono::milliseconds(time));
    emit changed();
}

void EchoTimes::allConfirmed() {
    if (std::exchange(unconfirmedSince_, std::nullopt))
        emit changed();
}

void EchoTimes::reset() {
    times_.clear();
    unconfirmedSince_.reset();
    emit changed();
}
