#include "network/CompanionClient.h"
#include "network/CompanionServer.h"
#include "network/NetworkUtils.h"
#include "network/events/EventTable.h"
#include "network/events/ProtocolLimits.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/PeerNamespace.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QUdpSocket>

using namespace NetworkCompanion;
using namespace MeshpadTest;
using namespace std::chrono_literals;

namespace {

// The delays of a busy machine are short compared with this timeout.
constexpr DiscoveryTiming kFast{50ms, 1000ms};

/// A companion's discovery and what it reported.
struct Discovery : NetworkUtils {
    explicit Discovery(DiscoveryTiming timing = kFast)
        : NetworkUtils(62331, 62330, false, nullptr, timing) {}
    QSignalSpy discovered{this, &NetworkUtils::serverDiscovered};
    QSignalSpy timeouted{this, &NetworkUtils::serverTimeouted};
};

/// A Producer on another machine that answers discovery; null when it cannot.
std::shared_ptr<FakeProducer> answeringProducer(PeerNamespace& machine, const char* address) {
    return machine.make<FakeProducer>([=] {
        auto producer = std::make_unique<FakeProducer>();
        return producer->answerDiscovery(QHostAddress(address)) ? producer.release() : nullptr;
    });
}

constexpr auto ipHere = &PeerNamespace::ipHere;

} // namespace

/// Discovery and vanishing peers between network namespaces. Each test has its own machines.
class TwoMachinesTest : public GuardedTest {
    Q_OBJECT

    std::unique_ptr<PeerNamespace> machine_;

private slots:
    void init() {
        GuardedTest::init();
        machine_ = std::make_unique<PeerNamespace>();
        QVERIFY(machine_->isValid());
        QVERIFY(machine_->link("here0", "10.78.0.1", "there0", "10.78.0.2"));
    }
    void cleanup() {
        ipHere("link delete here0");
        machine_.reset();
        GuardedTest::cleanup();
    }

    void findsAndLosesProducers() {
        PeerNamespace secondMachine, linkLocalMachine;
        QVERIFY(secondMachine.link("here1", "10.79.0.1", "there1", "10.79.0.2"));
        QVERIFY(linkLocalMachine.link("here2", "169.254.7.1", "there2", "169.254.7.2"));
        auto first = answeringProducer(*machine_, "10.78.0.2");
        const auto second = answeringProducer(secondMachine, "10.79.0.2");
        const auto linkLocal = answeringProducer(linkLocalMachine, "169.254.7.2");

        Discovery discovery(DiscoveryTiming{});
        QSignalSpy disconnected(&discovery, &NetworkUtils::serverDisconnected);
        QTRY_COMPARE(discovery.discovered.size(), 2);
        QCOMPARE(discovery.getAvailableServers(), QStringList({"10.78.0.2", "10.79.0.2"}));

        first.reset();
        const int before = second->pingsHeard();
        QTRY_COMPARE_WITH_TIMEOUT(discovery.timeouted.size(), 1, 30'000);
        // Always between the fourth unanswered ping and the fifth.
        QCOMPARE(second->pingsHeard() - before, 4);
        QCOMPARE(discovery.timeouted[0][0].toString(), "10.78.0.2");
        const QByteArray answer("PingReceived");
        for (const QByteArray& word : {answer.chopped(1), answer + '\0', answer.toLower()})
            discovery.processDatagram(word, QHostAddress("10.78.0.9"));
        QCOMPARE(discovery.getAvailableServers(), QStringList({"10.79.0.2"}));

        discovery.serverHasDisconnected("10.79.0.2");
        discovery.serverHasDisconnected("10.80.0.2");
        QCOMPARE(disconnected, QList<QVariantList>({{"10.79.0.2"}, {"10.80.0.2"}}));
        QCOMPARE(discovery.getAvailableServers(), QStringList());
        QTRY_COMPARE(discovery.discovered.size(), 3);
        QCOMPARE(discovery.discovered[2][0].toString(), "10.79.0.2");
        QCOMPARE(discovery.timeouted.size(), 1);
        QCOMPARE(linkLocal->pingsHeard(), 0);
        QVERIFY(ipHere("link delete here1") && ipHere("link delete here2"));
    }

    void followsInterfaces() {
        const auto first = answeringProducer(*machine_, "10.78.0.2");
        Discovery discovery;
        QTRY_COMPARE(discovery.discovered.size(), 1);
        PeerNamespace secondMachine;
        QVERIFY(secondMachine.link("here1", "10.79.0.1", "there1", "10.79.0.2"));
        const auto second = answeringProducer(secondMachine, "10.79.0.2");
        QTRY_COMPARE(discovery.discovered.size(), 2);
        QCOMPARE(discovery.discovered[1][0].toString(), "10.79.0.2");

        QVERIFY(ipHere("link set here0 down"));
        QTRY_COMPARE(discovery.timeouted.size(), 1);
        QCOMPARE(discovery.timeouted[0][0].toString(), "10.78.0.2");
        QVERIFY(ipHere("link set here0 up"));
        QTRY_COMPARE(discovery.discovered.size(), 3);
        QVERIFY(ipHere("address flush dev here0"));
        QTRY_COMPARE(discovery.timeouted.size(), 2);
        QVERIFY(ipHere("address add 10.78.0.9/24 broadcast + dev here0"));
        QTRY_COMPARE(discovery.discovered.size(), 4);
        QVERIFY(ipHere("link delete here1"));
        QTRY_COMPARE(discovery.timeouted.size(), 3);
        QCOMPARE(discovery.getAvailableServers(), QStringList({"10.78.0.2"}));
    }

    void limitsListAndReadsInFlood() {
        QVERIFY(machine_->ip("route add local 10.79.0.0/16 dev lo"));
        Discovery discovery;
        const auto answer = [&](quint32 producers) {
            machine_->run([=] {
                for (quint32 i = 0; i < producers; ++i) {
                    QUdpSocket socket;
                    QVERIFY(socket.bind(QHostAddress(0x0A4F0001 + i))); // 10.79.0.1 and so on
                    socket.writeDatagram("PingReceived", QHostAddress("10.78.0.1"), 62331);
                }
            });
        };
        answer(Limits::kMaxListedProducers + 10);
        qsizetype mostAtOnce = 0;
        for (QDeadlineTimer timer(10'000); !timer.hasExpired() && discovery.timeouted.isEmpty();) {
            const qsizetype before = discovery.discovered.size();
            QCoreApplication::processEvents();
            mostAtOnce = std::max(mostAtOnce, discovery.discovered.size() - before);
        }
        QCOMPARE(discovery.discovered.size(), Limits::kMaxListedProducers);
        QVERIFY2(mostAtOnce <= 32, qPrintable(QString::number(mostAtOnce))); // by two sockets
        QTRY_COMPARE(discovery.timeouted.size(), Limits::kMaxListedProducers);
        answer(1);
        QTRY_COMPARE(discovery.getAvailableServers(), QStringList("10.79.0.1"));
    }

    void keepsProducersWhileThreadIsBusy() {
        auto producer = answeringProducer(*machine_, "10.78.0.2");
        Discovery discovery;
        QTRY_COMPARE(discovery.discovered.size(), 1);
        const auto sockets = discovery.findChildren<QUdpSocket*>();
        for (int round = 0; round < 3; ++round) {
            const int before = producer->pingsHeard();
            QTest::qSleep(1500);
            QCOMPARE(discovery.getAvailableServers().size(), 1);
            QElapsedTimer free;
            free.start();
            QTest::qWait(60);
            // The thirty missed ticks have not accumulated.
            const auto asked = producer->pingsHeard() - before;
            QVERIFY2(asked <= 4 + free.elapsed() / 50, qPrintable(QString::number(asked)));
            QCOMPARE(discovery.timeouted.size(), 0);
            QCOMPARE(discovery.findChildren<QUdpSocket*>(), sockets);
        }
        // A thread that is always late still detects silence.
        producer.reset();
        for (int round = 0; round < 100 && discovery.timeouted.isEmpty(); ++round) {
            QTest::qSleep(120);
            QCoreApplication::processEvents();
        }
        QCOMPARE(discovery.timeouted.size(), 1);
    }

    /// One of two addresses and the broadcast address are in use at first. Discovery uses the rest,
    /// and these as soon as they are free.
    void findsCompanionsWithAddressesInUse() {
        QVERIFY(ipHere("address add 10.78.0.9/24 broadcast + dev here0"));
        QVERIFY(machine_->ip("route add default dev there0"));
        QUdpSocket ofAddress, ofBroadcasts;
        QVERIFY(ofAddress.bind(QHostAddress("10.78.0.1"), 62331, QUdpSocket::DontShareAddress));
        QVERIFY(ofBroadcasts.bind(QHostAddress::Broadcast, 62331, QUdpSocket::DontShareAddress));
        const auto portHolder = machine_->make<QUdpSocket>([] {
            auto holder = std::make_unique<QUdpSocket>();
            const bool bound = holder->bind(62330, QUdpSocket::DontShareAddress);
            return bound ? holder.release() : nullptr;
        });
        QVERIFY(portHolder);
        messages_->expect(QtCriticalMsg,
                          "NetworkCompanion: Socket not bound when constructing NetworkUtils!");
        const auto server = machine_->make<NetworkUtils>(
            [] { return new NetworkUtils(62330, 62331, true, nullptr, kFast); });
        QVERIFY(machine_->get([&] {
            server->getClientsOnNetwork(); // sends nothing from another port
            portHolder->close();
            return server->findChild<QUdpSocket*>()->localPort() == 0;
        }));
        const auto clients = [&] { return machine_->get([&] { return server->clients(); }); };
        // Once, although every tick tries again.
        messages_->expect(QtCriticalMsg,
                          "NetworkCompanion: Socket not bound when constructing NetworkUtils!");
        Discovery discovery;
        QTRY_COMPARE(discovery.getAvailableServers(), QStringList({"10.78.0.2"}));

        // Answers from the bound address only.
        discovery.processDatagram("GetClients", QHostAddress("10.78.0.2"));
        QTRY_COMPARE(clients(), QStringList({"10.78.0.9"}));

        // Receives broadcasts only after the other sockets are closed.
        const auto answers = [&](const QString& address, int timeout) {
            machine_->run([&] { server->getClientsOnNetwork(); });
            return QTest::qWaitFor([&] { return clients().contains(address); }, timeout);
        };
        QVERIFY(!answers("10.78.0.9", 100));
        ofBroadcasts.close();
        ofAddress.close();
        QTRY_VERIFY(answers("10.78.0.1", 200));
        QTRY_COMPARE(discovery.getAvailableServers(), QStringList({"10.78.0.2"}));

        // Each request starts a new list, in which a client appears once.
        int changes = 0;
        connect(server.get(), &NetworkUtils::clientChanged, this, [&] { ++changes; });
        QVERIFY(answers("10.78.0.1", 5'000));
        machine_->run([&] { server->processDatagram("GiveClient", QHostAddress("10.78.0.1")); });
        QCOMPARE(clients(), QStringList({"10.78.0.1"}));
        QTRY_COMPARE(changes, 1);
        // A server ignores the answers meant for a client.
        machine_->run([&] { server->processDatagram("PingReceived", QHostAddress("10.78.0.1")); });
        QCOMPARE(server->getAvailableServers(), QStringList());
    }

    void endsWithinPeriod() {
        const auto producer = answeringProducer(*machine_, "10.78.0.2");
        auto discovery = std::make_unique<Discovery>(DiscoveryTiming{60s, 60s});
        QTRY_VERIFY(producer->pingsHeard() > 0);
        QElapsedTimer timer;
        timer.start();
        discovery.reset();
        QVERIFY2(timer.elapsed() < 30'000, qPrintable(QString::number(timer.elapsed())));
    }

    /// At both ends, of an idle connection and of one with unacknowledged bytes. A peer that only
    /// does not read keeps its connection.
    void noticesVanishedPeer() {
        auto server = machine_->make<CompanionServer>([] { return new CompanionServer(nullptr); });
        const auto listen = [&] { return server->listen(QHostAddress("10.78.0.2"), 0); };
        QVERIFY(machine_->get(listen));
        const quint16 port = server->port();
        int connected = 0, gone = 0;
        connect(
            server.get(), &CompanionServer::companionConnected, this, [&] { ++connected; });
        connect(
            server.get(), &CompanionServer::companionDisconnected, this, [&] { ++gone; });
        const auto hung = machine_->make<FakeProducer>([] { return new FakeProducer; });
        machine_->run([&] {
            QVERIFY(hung->listen(QHostAddress("10.78.0.2")));
            hung->stall();
        });
        CompanionClient idle(nullptr), busy(nullptr), unread(nullptr);
        QSignalSpy idleLost(&idle, &CompanionClient::disconnected);
        QSignalSpy busyLost(&busy, &CompanionClient::disconnected);
        QVERIFY(idle.connectToServer("10.78.0.2", port) && busy.connectToServer("10.78.0.2", port));
        QVERIFY(unread.connectToServer("10.78.0.2", hung->port()));
        QTRY_COMPARE(connected, 2);
        MsgEvent event("hello");
        QVERIFY(busy.sendEvent(event));
        for (int i = 0; i < 100'000; ++i) // more than the buffers of both systems hold
            unread.sendEvent(event);
        QTest::qWait(7000); // answered probes end nothing
        QVERIFY(idle.isConnected() && busy.isConnected() && unread.isConnected());

        QVERIFY(machine_->ip("link set there0 down"));
        QElapsedTimer timer;
        timer.start();
        qint64 passed = 0; // ms, without the pauses of this machine
        while (passed < 5000 && (idleLost.isEmpty() || busyLost.isEmpty() || gone < 2)) {
            QTest::qWait(20);
            passed += qMin<qint64>(timer.restart(), 100);
            busy.sendEvent(event);
        }
        QVERIFY2(idleLost.size() == 1 && busyLost.size() == 1 && gone == 2,
                 qPrintable(QString("%1 ms").arg(passed)));
    }
};

QTEST_GUILESS_MAIN(TwoMachinesTest)
#include "tst_two_machines_linux.moc"
