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
    explicit PeerWatch(Clock::time_point start)
        : lastCheck_(start), unansweredSince_(start), repeatedSince_(start) {}

    /// True when nothing sent in the last 3 s was acknowledged, nor a repetition within 1 s: one
    /// segment alone may have been lost, because the probes of a full buffer become rare.
    bool hasVanished(const KeepAlive::Progress& progress, Clock::time_point now) {
        const auto previousCheck = std::exchange(lastCheck_, now);
        if (progress.sinceHeard < now - previousCheck) {
            answered_ = progress.segmentsSent;
            isAnswered_ = true;
        } else if (isAnswered_ && progress.segmentsSent != answered_) {
            isAnswered_ = false;
            unansweredSince_ = previousCheck;
        }
        const bool isRepeated = !isAnswered_ && progress.segmentsSent - answered_ > 1;
        if (!isRepeated)
            repeatedSince_ = now;
        return isRepeated && now - unansweredSince_ >= kLongestSilence &&
               now - repeatedSince_ >= kLongestAnswer;
    }

private:
    static constexpr std::chrono::seconds kLongestSilence{3};
    static constexpr std::chrono::seconds kLongestAnswer{1};

    Clock::time_point lastCheck_;
    bool isAnswered_ = true;
    quint32 answered_ = 0; // segments sent before the last acknowledgement
    Clock::time_point unansweredSince_;
    Clock::time_point repeatedSince_; // the last check without a repetition
};

} // namespace NetworkCompanion
