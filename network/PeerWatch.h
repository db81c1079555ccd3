#pragma once

#include "network/KeepAlive.h"

#include <chrono>
#include <utility>

namespace NetworkCompanion {

/// Decides, from repeated looks at a connection that is sending, whether its peer has vanished. A
/// peer that does not read acknowledges the probes of its full buffer, so it has not.
class PeerWatch {
public:
    using Clock = std::chrono::steady_clock;

    /// Starts when bytes are sent.
    explicit PeerWatch(Clock::time_point start) : lastCheck_(start) {}

    /// True when at least two segments have stayed without any acknowledgement for 3 s: one alone
    /// may have been lost, because the probes of a full buffer become rare.
    bool hasVanished(const KeepAlive::Progress& progress, Clock::time_point now) {
        const auto previousCheck = std::exchange(lastCheck_, now);
        if (progress.sinceHeard < now - previousCheck) {
            answered_ = progress.segmentsSent;
            isAnswered_ = true;
            return false;
        }
        if (isAnswered_ && progress.segmentsSent != answered_) {
            isAnswered_ = false;
            unansweredSince_ = previousCheck;
        }
        return !isAnswered_ && now - unansweredSince_ >= kLongestSilence &&
               progress.segmentsSent - answered_ > 1;
    }

private:
    static constexpr std::chrono::seconds kLongestSilence{3};

    Clock::time_point lastCheck_;
    bool isAnswered_ = true;
    quint32 answered_ = 0; // segments sent before the last acknowledgement
    Clock::time_point unansweredSince_;
};

} // namespace NetworkCompanion
