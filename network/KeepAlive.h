#pragma once

#include <QtGlobal>

#include <chrono>

/// Makes the operating system report a vanished peer of a TCP connection within seconds, whether
/// the connection is idle or has unacknowledged bytes. One source file for each platform.
namespace NetworkCompanion::KeepAlive {

/// Sends the first probe after the idle time and repeats unanswered probes at the interval. A
/// platform that counts in seconds rounds up. False when the descriptor rejects the options.
bool enable(qintptr socketDescriptor, std::chrono::milliseconds idle,
            std::chrono::milliseconds interval);

} // namespace NetworkCompanion::KeepAlive
