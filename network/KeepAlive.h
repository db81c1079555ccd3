#pragma once

#include <QtGlobal>

#include <chrono>
#include <optional>

/// What the operating system does, and knows, about a vanished peer of a TCP connection. One source
/// file for each platform.
namespace NetworkCompanion::KeepAlive {

/// Sends the first probe of an idle connection after the idle time and repeats unanswered probes at
/// the interval. A platform that counts in seconds rounds up. False when the descriptor rejects the
/// options.
bool enable(qintptr socketDescriptor, std::chrono::milliseconds idle,
            std::chrono::milliseconds interval);

/// The state of a connection that is sending.
struct Progress {
    bool waiting;                         ///< sent or unsent bytes are not acknowledged
    quint32 segmentsSent;                 ///< since the beginning, with repetitions and probes
    std::chrono::milliseconds sinceHeard; ///< since the peer acknowledged anything
};

/// None where the system itself ends a connection whose bytes stay unacknowledged for seconds,
/// and for a descriptor that is not connected.
std::optional<Progress> progress(qintptr socketDescriptor);

} // namespace NetworkCompanion::KeepAlive
