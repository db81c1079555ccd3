#include "tools/demo_producer/ShutdownSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

std::array<int, 2> ends{-1, -1};

/// Writes to a socket, because that is async-signal-safe.
void onSignal(int) {
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = write(ends[0], &byte, 1);
}

} // namespace

void onShutdownRequest(std::function<void()> quit) {
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return;
    auto* const notifier =
        new QSocketNotifier(ends[1], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier,
                     [notifier, function = std::move(quit)] {
                         notifier->setEnabled(false);
                         function();
                     });
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        std::signal(number, onSignal);
}
