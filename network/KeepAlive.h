#pragma once

#include <QtGlobal>

#include <chrono>

/// Makes the operating system notice within seconds that the peer of a TCP connection is gone,
/// whether the link is silent or bytes are under way. One source file a platform.
namespace NetworkCompanion::KeepAlive {

/// Probes after that much silence, repeated at that interval while none is answered. A platform
/// that counts in seconds rounds up. False when the descriptor takes no such options.
bool enable(qintptr socketDescriptor, std::chrono::milliseconds idle,
            std::chrono::milliseconds interval);

} // namespace NetworkCompanion::KeepAlive
