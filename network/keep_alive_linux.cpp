#include "network/KeepAlive.h"

#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>

namespace NetworkCompanion {

namespace {

constexpr int kProbes = 2;

int wholeSeconds(std::chrono::milliseconds time) {
    return std::max(1, static_cast<int>(std::chrono::ceil<std::chrono::seconds>(time).count()));
}

bool setOption(qintptr socket, int option, int value) {
    return setsockopt(static_cast<int>(socket), IPPROTO_TCP, option, &value, sizeof value) == 0;
}

} // namespace

bool KeepAlive::enable(qintptr socketDescriptor, std::chrono::milliseconds idle,
                       std::chrono::milliseconds interval) {
    return setOption(socketDescriptor, TCP_KEEPIDLE, wholeSeconds(idle)) &&
           setOption(socketDescriptor, TCP_KEEPINTVL, wholeSeconds(interval)) &&
           setOption(socketDescriptor, TCP_KEEPCNT, kProbes);
}

/// TCP_USER_TIMEOUT would end the connection of a peer that acknowledges but does not read, too.
std::optional<KeepAlive::Progress> KeepAlive::progress(qintptr socketDescriptor) {
    tcp_info info{};
    socklen_t size = sizeof info;
    if (getsockopt(static_cast<int>(socketDescriptor), IPPROTO_TCP, TCP_INFO, &info, &size) != 0)
        return std::nullopt;
    return Progress{info.tcpi_unacked > 0 || info.tcpi_notsent_bytes > 0, info.tcpi_segs_out,
                    std::chrono::milliseconds(info.tcpi_last_ack_recv)};
}

} // namespace NetworkCompanion
