#include "network/KeepAlive.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>

namespace NetworkCompanion {

namespace {

constexpr int kProbes = 2;
// Ends a connection with unacknowledged bytes, for which the system sends no probes.
constexpr unsigned int kUserTimeoutMs = 3000;

int wholeSeconds(std::chrono::milliseconds time) {
    return std::max(1, static_cast<int>(std::chrono::ceil<std::chrono::seconds>(time).count()));
}

template <typename Value>
bool setOption(qintptr socket, int option, Value value) {
    return setsockopt(static_cast<int>(socket), IPPROTO_TCP, option, &value, sizeof value) == 0;
}

} // namespace

bool KeepAlive::enable(qintptr socketDescriptor, std::chrono::milliseconds idle,
                       std::chrono::milliseconds interval) {
    return setOption(socketDescriptor, TCP_KEEPIDLE, wholeSeconds(idle)) &&
           setOption(socketDescriptor, TCP_KEEPINTVL, wholeSeconds(interval)) &&
           setOption(socketDescriptor, TCP_KEEPCNT, kProbes) &&
           setOption(socketDescriptor, TCP_USER_TIMEOUT, kUserTimeoutMs);
}

} // namespace NetworkCompanion
