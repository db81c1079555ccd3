#include "network/KeepAlive.h"

#include <winsock2.h>
// winsock2.h has to come first.
#include <mstcpip.h>
#include <ws2tcpip.h>

namespace NetworkCompanion {

namespace {

// Keep-alive probes stop while bytes are under way; this ends a connection that repeats them in
// vain.
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
    // Systems that do not know this one keep their own, longer time.
    setsockopt(socket, IPPROTO_TCP, TCP_MAXRT,
               reinterpret_cast<const char*>(&kRetransmissionSeconds),
               sizeof kRetransmissionSeconds);
#endif
    return ok;
}

} // namespace NetworkCompanion
