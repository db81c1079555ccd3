#include "network/KeepAlive.h"

#include <winsock2.h>
// These require winsock2.h before them.
#include <mstcpip.h>
#include <ws2tcpip.h>

namespace NetworkCompanion {

namespace {

// Ends a connection whose bytes stay unacknowledged. A peer that acknowledges but does not read
// keeps it, because its answers to the probes of its full buffer are acknowledgements.
constexpr DWORD kRetransmissionSeconds = 3;

} // namespace

bool KeepAlive::enable(qintptr socketDescriptor, std::chrono::milliseconds idle,
                       std::chrono::milliseconds interval) {
    const auto socket = static_cast<SOCKET>(socketDescriptor);
    tcp_keepalive settings{};
    settings.onoff = 1;
    settings.keepalivetime = static_cast<ULONG>(idle.count());
    settings.keepaliveinterval = static_cast<ULONG>(interval.count());
    DWORD returned = 0;
    const bool ok = WSAIoctl(socket, SIO_KEEPALIVE_VALS, &settings, sizeof settings, nullptr, 0,
                             &returned, nullptr, nullptr) == 0;
#ifdef TCP_MAXRT
    // Older systems reject this option and keep their own, longer time.
    setsockopt(socket, IPPROTO_TCP, TCP_MAXRT,
               reinterpret_cast<const char*>(&kRetransmissionSeconds),
               sizeof kRetransmissionSeconds);
#endif
    return ok;
}

std::optional<KeepAlive::Progress> KeepAlive::progress(qintptr socketDescriptor) {
    Q_UNUSED(socketDescriptor)
    return std::nullopt;
}

} // namespace NetworkCompanion
