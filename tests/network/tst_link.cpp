#include "network/CompanionClient.h"
#include "network/CompanionServer.h"
#include "network/events/EventTable.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/ProtocolBytes.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

using namespace NetworkCompanion;
using namespace MeshpadTest;

namespace {

/// A client and what it reported.
struct Companion {
    Companion() {
        QObject::connect(
            &client, &CompanionClient::newEvent, &client,
            [this](eventData data) { events.emplace_back(data.second); });
    }
    bool connectTo(quint16 port) { return client.connectToServer("127.0.0.1", port); }
    bool send(Event&& event) { return client.sendEvent(event); }

    CompanionClient client{nullptr};
    QSignalSpy lost{&client, &CompanionClient::disconnected};
    std::vector<std::unique_ptr<Event>> events;
};

} // namespace

/// CompanionClient with a fake Producer, CompanionServer with clients.
class LinkTest : public GuardedTest {
    Q_OBJECT

    std::unique_ptr<FakeProducer> producer_;
    std::unique_ptr<CompanionServer> server_;

private slots:
    void init() {
        GuardedTest::init();
        producer_ = std::make_unique<FakeProducer>();
        server_ = std::make_unique<CompanionServer>(nullptr);
        QVERIFY(producer_->listen() && server_->listen(QHostAddress::LocalHost, 0));
    }

    void clientConnectsAfterRefusal() {
        const quint16 port = producer_->port();
        producer_->stopListening();
        Companion companion;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!companion.connectTo(port) && !companion.client.isConnected());
        QVERIFY(timer.elapsed() < 15'000); // half the time limit
        QVERIFY(!companion.send(MsgEvent("hello")) && companion.lost.isEmpty());
        QVERIFY(producer_->listen(QHostAddress::LocalHost, port) && companion.connectTo(port));
        messages_->expect(QtCriticalMsg, "Try to deserialize unknown event");
        QTRY_COMPARE(producer_->acceptedCount(), 1);
        producer_->sendRaw(withLength(frame(77, "x")));
        QTRY_VERIFY(companion.events.size() == 1 && !companion.events[0]);
    }

    void stopsForwardingAfterSecondConnect() {
        Companion companion;
        QVERIFY(companion.connectTo(producer_->port()) && !companion.connectTo(producer_->port()));
        QVERIFY(companion.send(MsgEvent("still connected")));
        QTRY_COMPARE(producer_->bytes(), withLength(frame(1, text("still connected"))));
        producer_->send(MsgEvent("not reported"));
        producer_->closeConnections();
        QTRY_VERIFY(!companion.client.isConnected());
        QVERIFY(companion.events.empty() && companion.lost.isEmpty());
    }

    void clientReconnectsFromSlot() {
        Companion companion;
        connect(&companion.client, &CompanionClient::disconnected, this,
                [&] { QVERIFY(companion.connectTo(producer_->port())); });
        QVERIFY(companion.connectTo(producer_->port()));
        for (unsigned int round = 1; round <= 4; ++round) {
            QTRY_COMPARE(producer_->acceptedCount(), int(round));
            producer_->send(ExecuteQuickKeyEvent(round));
            producer_->sendRaw(hex("00000109 00000009")); // part of a frame
            QTRY_COMPARE(companion.events.size(), std::size_t(round));
            QVERIFY(*companion.events.back() == ExecuteQuickKeyEvent(round));
            round % 2 ? producer_->abortConnections() : producer_->closeConnections();
        }
        QTRY_COMPARE(companion.lost, QList<QVariantList>({{-1}, {-1}, {-1}, {-1}}));
    }

    void serverReportsEachCompanion() {
        QSignalSpy connected(server_.get(), &CompanionServer::companionConnected);
        QSignalSpy disconnected(server_.get(), &CompanionServer::companionDisconnected);
        QList<int> senders;
        connect(server_.get(), &CompanionServer::eventReceived, this, [&](int id, eventData data) {
            senders.append(id);
            delete data.second;
        });
        Companion first, second, third;
        for (Companion* companion : {&first, &second, &third}) {
            QVERIFY(companion->connectTo(server_->port()));
            // Arrives before the server accepts the connection.
            QVERIFY(companion->send(ExecuteQuickKeyEvent(3)));
        }
        QTRY_COMPARE(senders.size(), 3);
        const QList<int> ids = server_->companionIds();
        QCOMPARE(QSet(senders.begin(), senders.end()), QSet(ids.begin(), ids.end()));
        QCOMPARE(server_->companionAddress(ids[0]), QHostAddress(QHostAddress::LocalHost));

        QVERIFY(first.client.disconnectFromServer());
        QTRY_COMPARE(disconnected, QList<QVariantList>({{ids[0]}}));
        MsgEvent last("last"), others("others");
        QVERIFY(server_->send(ids[1], last));
        server_->sendToAll(others, ids[1]);
        server_->disconnectCompanion(ids[1]);
        QCOMPARE(disconnected.size(), 2);
        QVERIFY(!server_->send(ids[1], last));
        QTRY_COMPARE(second.lost.size(), 1);
        QVERIFY(second.events.size() == 1 && *second.events[0] == last);
        QTRY_VERIFY(third.events.size() == 1 && *third.events[0] == others);
        QVERIFY(first.connectTo(server_->port()));
        QTRY_COMPARE(connected.size(), 4);
        QVERIFY(!ids.contains(connected[3][0].toInt()));
    }

    void serverDisconnectsCompanions_data() {
        QTest::addColumn<bool>("destroyed"); // by a slot
        QTest::newRow("when closed") << false;
        QTest::newRow("when destroyed") << true;
    }
    void serverDisconnectsCompanions() {
        QFETCH(bool, destroyed);
        int gone = 0;
        connect(server_.get(), &CompanionServer::companionDisconnected, this, [&] {
            ++gone;
            if (destroyed)
                server_.reset();
        });
        const quint16 port = server_->port();
        Companion companion;
        // Its events have no receiver: the leak checker reports any that is not freed.
        CompanionClient unobserved(nullptr);
        MsgEvent bye("bye");
        QVERIFY(companion.connectTo(port) && unobserved.connectToServer("127.0.0.1", port));
        QTRY_COMPARE(server_->companionIds().size(), 2);
        QVERIFY(unobserved.sendEvent(bye));
        QTest::qWait(50);
        server_->sendToAll(bye);
        server_->close();
        QCOMPARE(gone, destroyed ? 1 : 2);
        QTRY_VERIFY(companion.lost.size() == 1 && companion.events.size() == 1);
        QTRY_VERIFY(!unobserved.isConnected());
        QVERIFY(!companion.connectTo(port));
        QVERIFY(destroyed || server_->listen(QHostAddress::LocalHost, port));
    }
};

QTEST_GUILESS_MAIN(LinkTest)
#include "tst_link.moc"
