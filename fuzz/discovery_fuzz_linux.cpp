// Discovery datagrams: only the exact words have an effect. The answering end reads them from a
// socket; the asking end handles them directly.

#include "fuzz/Harness.h"
#include "network/NetworkUtils.h"

#include <QCoreApplication>
#include <QUdpSocket>

#include <cstdio>
#include <cstdlib>

#include <sched.h>
#include <unistd.h>

using namespace NetworkCompanion;

namespace {

constexpr quint16 kPort = 62330;

/// Moves the process into a network namespace with nothing but loopback.
void enterNamespace() {
    if (unshare(geteuid() == 0 ? CLONE_NEWNET : CLONE_NEWUSER | CLONE_NEWNET) != 0 ||
        std::system("ip link set lo up") != 0) {
        std::fprintf(stderr, "needs a network namespace of its own\n");
        std::exit(1);
    }
}

struct Ends {
    NetworkUtils answering{kPort, 62331, true};
    NetworkUtils asking{62331, kPort, false};
    QUdpSocket sender;
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    enterNamespace();
    dropMessages();
    static QCoreApplication application(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Ends ends;
    const QByteArray word(reinterpret_cast<const char*>(data), qsizetype(size));

    if (ends.sender.writeDatagram(word, QHostAddress::LocalHost, kPort) == word.size()) {
        ends.answering.onReadyRead();
        if (ends.answering.clients().isEmpty() == (word == "GiveClient"))
            std::abort();
        if (!ends.answering.clients().isEmpty())
            ends.answering.getClientsOnNetwork(); // clears the list
    }
    const QHostAddress producer(size == 0 ? 0x0a000001U : 0x0a000000U + data[0]);
    ends.asking.processDatagram(word, producer);
    if (ends.asking.getAvailableServers().isEmpty() == (word == "PingReceived"))
        std::abort();
    if (word == "PingReceived")
        ends.asking.serverHasDisconnected(producer.toString());
    return 0;
}
