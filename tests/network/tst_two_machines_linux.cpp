#include "network/CompanionClient.h"
#include "network/CompanionServer.h"
#include "network/NetworkUtils.h"
#include "network/events/EventTable.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/PeerNamespace.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QUdpSocket>

using namespace NetworkCompanion;
using namespace MeshpadTest;
using namespace std::chrono_literals;

namespace {

// What a busy machine lets a thread wait for is short beside the time after which silence counts.
constexpr DiscoveryTiming kFast{50ms, 1000ms};

/// A companion's end of discovery, together with what it reported.
struct Discovery : NetworkUtils {
    explicit Discovery(DiscoveryTiming timing = kFast)
        : NetworkUtils(62331, 62330, false, nullptr, timing) {}
    QSignalSpy discovered{this, &NetworkUtils::serverDiscovered};
    QSignalSpy timeouted{this, &NetworkUtils::serverTimeouted};
};

QString lineOf(const QString& name, const QString& state) {
    return QString("link set %1 %2").arg(name, state);
}

} // namespace

/// Discovery, and the end of a link that nobody closes, between network namespaces. Each test has
/// machines and cables of its own.
class TwoMachinesTest : public GuardedTest {
    Q_OBJECT

private slots:
    void init() {
        GuardedTest::init();
        machine_ = std::make_unique<PeerNamespace>();
        QVERIFY(machine_->isValid());
        QVERIFY(machine_->link("here0", "10.78.0.1", "there0", "10.78.0.2"));
    }
    void cleanup() {
        PeerNamespace::ipHere("link delete here0");
        machine_.reset();
        GuardedTest::cleanup();
    }

    void producerIsFoundAndLost();
    void interfacesComeAndGo();
    void onlyTheExactWordsCount();
    void busyThreadLosesNobodyAndNoticesSilence();
    void serverModeAndAddressesTakenInPart();
    void endDoesNotWaitForThePeriod();
    void vanishedPeerIsNoticed();

private:
    static std::shared_ptr<FakeProducer> startProducer(PeerNamespace& machine,
                                                       const QString& address) {
        auto producer = machine.make<FakeProducer>([] { return new FakeProducer; });
        bool ok = false;
        machine.run([&] { ok = producer->answerDiscovery(QHostAddress(address)); });
        return ok ? producer : nullptr;
    }
    static int pings(PeerNamespace& machine, const std::shared_ptr<FakeProducer>& producer) {
        int count = 0;
        machine.run([&] { count = producer->pingsHeard(); });
        return count;
    }
    /// The other end of discovery, on the other machine.
    std::shared_ptr<NetworkUtils> startServer() {
        return machine_->make<NetworkUtils>([] { return new NetworkUtils(62330, 62331, true); });
    }
    QStringList clientsOf(const std::shared_ptr<NetworkUtils>& server) {
        QStringList found;
        machine_->run([&] { found = server->clients(); });
        return found;
    }

    std::unique_ptr<PeerNamespace> machine_;
};

void TwoMachinesTest::producerIsFoundAndLost() {
    PeerNamespace secondMachine, selfNamed;
    QVERIFY(secondMachine.link("here1", "10.79.0.1", "there1", "10.79.0.2"));
    QVERIFY(selfNamed.link("here2", "169.254.7.1", "there2", "169.254.7.2"));
    const auto first = startProducer(*machine_, "10.78.0.2");
    const auto second = startProducer(secondMachine, "10.79.0.2");
    const auto linkLocal = startProducer(selfNamed, "169.254.7.2");
    QVERIFY(first && second && linkLocal);

    // As in the program, with its own periods.
    Discovery discovery(DiscoveryTiming{});
    QSignalSpy disconnected(&discovery, &NetworkUtils::serverDisconnected);
    QTRY_COMPARE(discovery.discovered.size(), 2);
    QCOMPARE(discovery.getAvailableServers(), QStringList({"10.78.0.2", "10.79.0.2"}));

    // Silent: gone after more than three seconds and not much more; the other one stays.
    QElapsedTimer silence;
    machine_->run([&] { first->stopAnswering(); });
    silence.start();
    const int before = pings(secondMachine, second);
    QTRY_COMPARE_WITH_TIMEOUT(discovery.timeouted.size(), 1, 30'000);
    // Its last answer may be a period old. How often it was asked in vain, one a second, does not
    // depend on what else this machine has to do.
    QVERIFY2(silence.elapsed() > 2000, qPrintable(QString::number(silence.elapsed())));
    const int asked = pings(secondMachine, second) - before;
    QVERIFY2(asked >= 2 && asked <= 5, qPrintable(QString::number(asked)));
    QCOMPARE(discovery.timeouted[0][0].toString(), "10.78.0.2");
    QCOMPARE(discovery.getAvailableServers(), QStringList({"10.79.0.2"}));

    // Told to forget it: back with its next answer. Told of one that nobody knows: says so, too.
    discovery.serverHasDisconnected("10.79.0.2");
    discovery.serverHasDisconnected("10.80.0.2");
    QCOMPARE(disconnected.size(), 2);
    QCOMPARE(discovery.getAvailableServers(), QStringList());
    QTRY_COMPARE(discovery.discovered.size(), 3);
    QCOMPARE(discovery.discovered[2][0].toString(), "10.79.0.2");
    QCOMPARE(discovery.timeouted.size(), 1);
    // Addresses that an interface gives itself are left out.
    QCOMPARE(pings(selfNamed, linkLocal), 0);
    for (const char* link : {"here1", "here2"})
        PeerNamespace::ipHere(QString("link delete %1").arg(link));
}

void TwoMachinesTest::interfacesComeAndGo() {
    const auto first = startProducer(*machine_, "10.78.0.2");
    Discovery discovery;
    QTRY_COMPARE(discovery.discovered.size(), 1);

    PeerNamespace secondMachine;
    QVERIFY(secondMachine.link("here1", "10.79.0.1", "there1", "10.79.0.2"));
    const auto second = startProducer(secondMachine, "10.79.0.2");
    QTRY_COMPARE(discovery.discovered.size(), 2);
    QCOMPARE(discovery.discovered[1][0].toString(), "10.79.0.2");

    QVERIFY(PeerNamespace::ipHere(lineOf("here0", "down")));
    QTRY_COMPARE(discovery.timeouted.size(), 1);
    QCOMPARE(discovery.timeouted[0][0].toString(), "10.78.0.2");
    QVERIFY(PeerNamespace::ipHere(lineOf("here0", "up")));
    QTRY_COMPARE(discovery.discovered.size(), 3);
    // Another address on the same cable.
    QVERIFY(PeerNamespace::ipHere("address flush dev here0"));
    QTRY_COMPARE(discovery.timeouted.size(), 2);
    QVERIFY(PeerNamespace::ipHere("address add 10.78.0.9/24 broadcast + dev here0"));
    QTRY_COMPARE(discovery.discovered.size(), 4);
    QVERIFY(PeerNamespace::ipHere("link delete here1"));
    QTRY_COMPARE(discovery.timeouted.size(), 3);
    QCOMPARE(discovery.getAvailableServers(), QStringList({"10.78.0.2"}));
}

void TwoMachinesTest::onlyTheExactWordsCount() {
    // Any address of this range can be sent from there.
    QVERIFY(machine_->ip("route add local 10.78.1.0/24 dev lo"));
    Discovery discovery({50ms, 10'000ms});
    const QByteArrayList words{"pingReceived",
                               "PingReceived\n",
                               QByteArray("PingReceived\0", 13),
                               " PingReceived",
                               "PingReceive",
                               "",
                               "PingReceived" + QByteArray(1400, 'x'),
                               QByteArray(60'000, 'P'),
                               "PingServers",
                               "GiveClient",
                               QByteArray("PingReceived").prepend('\0'),
                               "\xff\xfe",
                               "PingReceived"};
    machine_->run([&] {
        for (int i = 0; i < words.size(); ++i) {
            QUdpSocket socket;
            QVERIFY(socket.bind(QHostAddress(QString("10.78.1.%1").arg(i + 1))));
            socket.writeDatagram(words[i], QHostAddress("10.78.0.1"), 62331);
        }
    });
    QTRY_COMPARE(discovery.discovered.size(), 1);
    QCOMPARE(discovery.getAvailableServers(), QStringList({"10.78.1.13"}));
    QCOMPARE(discovery.clients(), QStringList());
}

void TwoMachinesTest::busyThreadLosesNobodyAndNoticesSilence() {
    const auto producer = startProducer(*machine_, "10.78.0.2");
    Discovery discovery;
    QTRY_COMPARE(discovery.discovered.size(), 1);
    const auto sockets = discovery.findChildren<QUdpSocket*>();
    for (int round = 0; round < 3; ++round) {
        const int before = pings(*machine_, producer);
        QTest::qSleep(1500); // this thread is stuck, the Producer is not
        QCOMPARE(discovery.getAvailableServers().size(), 1);
        QElapsedTimer free;
        free.start();
        QTest::qWait(60);
        // Ticks, thirty of them, did not pile up meanwhile.
        const auto asked = pings(*machine_, producer) - before;
        QVERIFY2(asked <= 4 + free.elapsed() / 50, qPrintable(QString::number(asked)));
        QCOMPARE(discovery.timeouted.size(), 0);
        QCOMPARE(discovery.findChildren<QUdpSocket*>(), sockets); // none is made anew
    }
    // A thread that is late every time still pings, and silence after that is silence.
    machine_->run([&] { producer->stopAnswering(); });
    for (int round = 0; round < 100 && discovery.timeouted.isEmpty(); ++round) {
        QTest::qSleep(120);
        QCoreApplication::processEvents();
    }
    QCOMPARE(discovery.timeouted.size(), 1);
}

/// Of two addresses one is not free, and neither is what everybody's broadcasts come to: what can
/// be used is, and the rest as soon as it is free.
void TwoMachinesTest::serverModeAndAddressesTakenInPart() {
    QVERIFY(PeerNamespace::ipHere("address add 10.78.0.9/24 broadcast + dev here0"));
    QVERIFY(machine_->ip("route add default dev there0"));
    QUdpSocket ofAddress, ofBroadcasts;
    QVERIFY(ofAddress.bind(QHostAddress("10.78.0.1"), 62331, QUdpSocket::DontShareAddress));
    QVERIFY(ofBroadcasts.bind(QHostAddress::Broadcast, 62331, QUdpSocket::DontShareAddress));
    const auto server = startServer();
    // Once, although it is tried again and again.
    messages_->expect(QtCriticalMsg,
                      "NetworkCompanion: Socket not bound when constructing NetworkUtils!");
    Discovery discovery;
    QTRY_COMPARE(discovery.getAvailableServers(), QStringList({"10.78.0.2"}));

    // It answers from the address that it has, and does not take another port for the other one.
    discovery.processDatagram("GetClients", QHostAddress("10.78.0.2"));
    QTRY_COMPARE(clientsOf(server), QStringList({"10.78.0.9"}));

    // Asked by a broadcast it hears that only after somebody else has let go.
    const auto isHeard = [&](const QString& from, int patience) {
        machine_->run([&] { server->getClientsOnNetwork(); });
        return QTest::qWaitFor([&] { return clientsOf(server).contains(from); }, patience);
    };
    QVERIFY(!isHeard("10.78.0.9", 100));
    ofBroadcasts.close();
    ofAddress.close();
    QTRY_VERIFY(isHeard("10.78.0.1", 200));
    QTRY_COMPARE(discovery.getAvailableServers(), QStringList({"10.78.0.2"}));

    // Each round begins anew, and tells of a client once.
    int clientsChanged = 0;
    connect(
        server.get(), &NetworkUtils::clientChanged, this, [&] { ++clientsChanged; });
    machine_->run([&] { server->getClientsOnNetwork(); });
    QTRY_COMPARE(clientsOf(server), QStringList({"10.78.0.1"}));
    machine_->run([&] { server->processDatagram("GiveClient", QHostAddress("10.78.0.1")); });
    QCOMPARE(clientsOf(server), QStringList({"10.78.0.1"}));
    QTRY_COMPARE(clientsChanged, 1);
    // Neither end takes up what is meant for the other.
    QCOMPARE(discovery.clients(), QStringList());
    machine_->run([&] { server->processDatagram("PingReceived", QHostAddress("10.78.0.1")); });
    QCOMPARE(server->getAvailableServers(), QStringList());
}

void TwoMachinesTest::endDoesNotWaitForThePeriod() {
    const auto producer = startProducer(*machine_, "10.78.0.2");
    auto discovery = std::make_unique<Discovery>(DiscoveryTiming{60s, 60s});
    QTRY_VERIFY(pings(*machine_, producer) > 0);
    QElapsedTimer timer;
    timer.start();
    discovery.reset();
    QVERIFY2(timer.elapsed() < 30'000, qPrintable(QString::number(timer.elapsed())));
}

void TwoMachinesTest::vanishedPeerIsNoticed() {
    // Both ends at once, a silent link and one with bytes under way.
    auto server = machine_->make<CompanionServer>([] { return new CompanionServer(nullptr); });
    quint16 port = 0;
    machine_->run([&] {
        QVERIFY(server->listen(QHostAddress("10.78.0.2"), 0));
        port = server->port();
    });
    int connected = 0, gone = 0;
    connect(
        server.get(), &CompanionServer::companionConnected, this, [&] { ++connected; });
    connect(server.get(), &CompanionServer::companionDisconnected, this, [&] { ++gone; });
    CompanionClient silent(nullptr), busy(nullptr);
    QSignalSpy silentLost(&silent, &CompanionClient::disconnected);
    QSignalSpy busyLost(&busy, &CompanionClient::disconnected);
    QVERIFY(silent.connectToServer("10.78.0.2", port));
    QVERIFY(busy.connectToServer("10.78.0.2", port));
    QTRY_COMPARE(connected, 2);
    MsgEvent event("is anybody there?");
    QVERIFY(busy.sendEvent(event));
    QTest::qWait(1500); // probes that are answered end nothing
    QVERIFY(silent.isConnected() && busy.isConnected());

    QVERIFY(machine_->ip(lineOf("there0", "down")));
    QElapsedTimer timer;
    timer.start();
    qint64 passed = 0; // ms, as far as this machine did not stand still
    while (passed < 5000 && (silentLost.isEmpty() || busyLost.isEmpty() || gone < 2)) {
        QTest::qWait(20);
        passed += qMin<qint64>(timer.restart(), 100);
        busy.sendEvent(event);
    }
    qInfo("noticed by all ends after %lld ms", static_cast<long long>(passed));
    QCOMPARE(silentLost.size(), 1);
    QCOMPARE(busyLost.size(), 1);
    QCOMPARE(gone, 2);
}

QTEST_GUILESS_MAIN(TwoMachinesTest)
#include "tst_two_machines_linux.moc"
