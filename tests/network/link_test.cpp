#include "network/CompanionClient.h"
#include "network/CompanionServer.h"
#include "network/EventTable.h"
#include "network/ProtocolLimits.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/MessageGuard.h"
#include "tests/support/ProtocolBytes.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

#include <optional>

using namespace NetworkCompanion;
using namespace MeshpadTest;

namespace {

constexpr const char* kHost = "127.0.0.1";

/// A client together with what it reported.
struct Companion {
    Companion() {
        QObject::connect(&client, &CompanionClient::newEvent, &client,
                         [this](eventData data) { events.emplace_back(data.second); });
    }
    CompanionClient client{nullptr};
    QSignalSpy lost{&client, &CompanionClient::disconnected};
    std::vector<std::unique_ptr<Event>> events;
};

} // namespace

/// Both ends of the link: CompanionClient against a fake Producer, CompanionServer against clients.
class LinkTest : public QObject {
    Q_OBJECT

private slots:
    void init() { messages_.emplace(); }
    void cleanup() {
        messages_->verify();
        messages_.reset();
    }

    void eventsBothWays();
    void refused();
    void connectedTwice();
    void lostAndConnectedAgain_data();
    void lostAndConnectedAgain();
    void disconnectAndConnectAgain();
    void reconnectFromTheSignal_data();
    void reconnectFromTheSignal();
    void receiverDestroysTheClient();
    void receiverOfTheEndDestroysTheClient();
    void withoutReceiver();

    void serverKnowsItsCompanions();
    void serverIsDestroyedByItsReceiver();
    void serverCloses();
    void serverIsDestroyedWhileItCloses();
    void serverLetsGoWhoDoesNotRead_data();
    void serverLetsGoWhoDoesNotRead();

private:
    std::optional<MessageGuard> messages_;
};

void LinkTest::eventsBothWays() {
    FakeProducer producer;
    QVERIFY(producer.listen());
    Companion companion;
    MsgEvent request("getResources");
    QVERIFY(!companion.client.isConnected());
    QVERIFY(!companion.client.sendEvent(request));

    QVERIFY(companion.client.connectToServer(kHost, producer.port()));
    QVERIFY(companion.client.isConnected());
    QVERIFY(companion.client.sendEvent(request));
    QTRY_COMPARE(producer.bytes(), withLength(frame(1, text("getResources"))));

    messages_->expect(QtCriticalMsg, "Try to deserialize unknown event");
    producer.send(AddScreenEvent(1, 2, 3, 4, 5, 0.5, "Wall", true, false));
    producer.sendRaw(withLength(frame(77, "x")));
    producer.send(MsgEvent("newShow"));
    QTRY_COMPARE(companion.events.size(), 3U);
    QVERIFY(*companion.events[0] == AddScreenEvent(1, 2, 3, 4, 5, 0.5, "Wall", true, false));
    QVERIFY(!companion.events[1]);
    QVERIFY(*companion.events[2] == MsgEvent("newShow"));
}

void LinkTest::refused() {
    FakeProducer producer;
    QVERIFY(producer.listen());
    const quint16 port = producer.port();
    producer.stopListening();
    Companion companion;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!companion.client.connectToServer(kHost, port));
    QVERIFY(timer.elapsed() < 15'000); // not as long as an answer is waited for
    QVERIFY(!companion.client.isConnected());
    QCOMPARE(companion.lost.size(), 0);

    QVERIFY(producer.listen(QHostAddress::LocalHost, port));
    QVERIFY(companion.client.connectToServer(kHost, port));
    QTRY_COMPARE(producer.connectionCount(), 1);
    producer.send(MsgEvent("hello"));
    QTRY_COMPARE(companion.events.size(), 1U);
}

void LinkTest::connectedTwice() {
    FakeProducer producer;
    QVERIFY(producer.listen());
    Companion companion;
    QVERIFY(companion.client.connectToServer(kHost, producer.port()));
    QTRY_COMPARE(producer.connectionCount(), 1);
    QVERIFY(!companion.client.connectToServer(kHost, producer.port()));
    QCOMPARE(producer.acceptedCount(), 1);

    // The link stands, but is no longer listened to.
    MsgEvent still("still here");
    QVERIFY(companion.client.sendEvent(still));
    QTRY_COMPARE(producer.events().size(), 1U);
    producer.send(MsgEvent("unheard"));
    producer.closeConnections();
    QTRY_VERIFY(!companion.client.isConnected());
    QCOMPARE(companion.events.size(), 0U);
    QCOMPARE(companion.lost.size(), 0);
}

void LinkTest::lostAndConnectedAgain_data() {
    QTest::addColumn<bool>("inOrder");
    QTest::newRow("closed") << true;
    QTest::newRow("aborted") << false;
}

void LinkTest::lostAndConnectedAgain() {
    QFETCH(bool, inOrder);
    FakeProducer producer;
    QVERIFY(producer.listen());
    Companion companion;
    for (int round = 1; round <= 3; ++round) {
        QVERIFY(companion.client.connectToServer(kHost, producer.port()));
        QTRY_COMPARE(producer.connectionCount(), 1);
        producer.send(ExecuteQuickKeyEvent(7));
        // The beginning of a frame whose end never comes.
        producer.sendRaw(hex("00000109 00000009 00000100 01 41"));
        QTRY_COMPARE(companion.events.size(), std::size_t(round));
        if (inOrder)
            producer.closeConnections();
        else
            producer.abortConnections();
        QTRY_COMPARE(companion.lost.size(), round);
        QCOMPARE(companion.lost.back().front().toInt(), -1);
        QVERIFY(!companion.client.isConnected());
        QVERIFY(companion.events.back() && *companion.events.back() == ExecuteQuickKeyEvent(7));
    }
}

void LinkTest::disconnectAndConnectAgain() {
    FakeProducer producer;
    QVERIFY(producer.listen());
    Companion companion;
    for (int round = 1; round <= 3; ++round) {
        QVERIFY(companion.client.connectToServer(kHost, producer.port()));
        QTRY_COMPARE(producer.connectionCount(), 1);
        // The last word before the end is heard.
        ExecuteQuickKeyEvent last(static_cast<unsigned int>(round));
        QVERIFY(companion.client.sendEvent(last));
        QVERIFY(companion.client.disconnectFromServer());
        QVERIFY(!companion.client.isConnected());
        QTRY_COMPARE(producer.connectionCount(), 0);
        QCOMPARE(producer.events().size(), std::size_t(round));
        QVERIFY(*producer.events().back() == last);
    }
    // With more under way than the system takes, and at once back again.
    producer.stall();
    QVERIFY(companion.client.connectToServer(kHost, producer.port()));
    ItemDataEvent large;
    for (unsigned int i = 0; i < 50'000; ++i)
        large.addScreenMovePointEvent({1, 2, "Wall", i, 0, 0, 0, true, false});
    QVERIFY(companion.client.sendEvent(large));
    QVERIFY(companion.client.disconnectFromServer());
    FakeProducer other;
    QVERIFY(other.listen());
    QVERIFY(companion.client.connectToServer(kHost, other.port()));
    QTRY_COMPARE(other.connectionCount(), 1);
    other.send(MsgEvent("hello"));
    QTRY_COMPARE(companion.events.size(), 1U);
}

void LinkTest::reconnectFromTheSignal_data() {
    QTest::addColumn<Qt::ConnectionType>("connection");
    QTest::newRow("within") << Qt::DirectConnection;
    QTest::newRow("afterwards") << Qt::QueuedConnection;
}

void LinkTest::reconnectFromTheSignal() {
    QFETCH(Qt::ConnectionType, connection);
    FakeProducer producer;
    QVERIFY(producer.listen());
    Companion companion;
    connect(
        &companion.client, &CompanionClient::disconnected, this,
        [&] { QVERIFY(companion.client.connectToServer(kHost, producer.port())); }, connection);
    QVERIFY(companion.client.connectToServer(kHost, producer.port()));
    QTRY_COMPARE(producer.connectionCount(), 1);
    for (std::size_t round = 1; round <= 2; ++round) {
        producer.abortConnections();
        QTRY_COMPARE(producer.acceptedCount(), int(round) + 1);
        producer.send(MsgEvent("again"));
        QTRY_COMPARE(companion.events.size(), round);
    }
    disconnect(&companion.client, nullptr, this, nullptr);
}

void LinkTest::receiverDestroysTheClient() {
    FakeProducer producer;
    QVERIFY(producer.listen());
    auto client = std::make_unique<CompanionClient>(nullptr);
    connect(client.get(), &CompanionClient::newEvent, this, [&](eventData data) {
        delete data.second;
        client.reset();
    });
    QVERIFY(client->connectToServer(kHost, producer.port()));
    QTRY_COMPARE(producer.connectionCount(), 1);
    const QByteArray press = withLength(frame(25, int32(1)));
    producer.sendRaw(press + press + press);
    QTRY_VERIFY(!client);
    QTRY_COMPARE(producer.connectionCount(), 0);
}

void LinkTest::receiverOfTheEndDestroysTheClient() {
    FakeProducer producer;
    QVERIFY(producer.listen());
    auto client = std::make_unique<CompanionClient>(nullptr);
    connect(client.get(), &CompanionClient::disconnected, this, [&] { client.reset(); });
    QVERIFY(client->connectToServer(kHost, producer.port()));
    QVERIFY(client->disconnectFromServer());
    QVERIFY(!client);
}

void LinkTest::withoutReceiver() {
    // The leak checker is the judge; the second event shows that the first was dealt with.
    FakeProducer producer;
    CompanionServer server(nullptr);
    QVERIFY(producer.listen());
    QVERIFY(server.listen(QHostAddress::LocalHost, 0));
    CompanionClient client(nullptr);
    QVERIFY(client.connectToServer(kHost, producer.port()));
    QTRY_COMPARE(producer.connectionCount(), 1);
    producer.send(MsgEvent("nobody listens"));
    std::vector<std::unique_ptr<Event>> events;
    QTest::qWait(50);
    connect(&client, &CompanionClient::newEvent, this,
            [&](eventData data) { events.emplace_back(data.second); });
    producer.send(MsgEvent("somebody listens"));
    QTRY_COMPARE(events.size(), 1U);
    QVERIFY(*events[0] == MsgEvent("somebody listens"));

    CompanionClient other(nullptr);
    QSignalSpy connected(&server, &CompanionServer::companionConnected);
    QVERIFY(other.connectToServer(kHost, server.port()));
    QTRY_COMPARE(connected.size(), 1);
    MsgEvent unheard("nobody listens there either");
    QVERIFY(other.sendEvent(unheard));
    QVERIFY(other.disconnectFromServer());
    QTRY_COMPARE(server.companionIds(), QList<int>());
}

void LinkTest::serverKnowsItsCompanions() {
    CompanionServer server(nullptr);
    QSignalSpy connected(&server, &CompanionServer::companionConnected);
    QSignalSpy disconnected(&server, &CompanionServer::companionDisconnected);
    std::vector<std::pair<int, std::unique_ptr<Event>>> received;
    connect(&server, &CompanionServer::eventReceived, this,
            [&](int id, eventData data) { received.emplace_back(id, data.second); });
    QCOMPARE(server.port(), 0);
    QVERIFY(server.listen(QHostAddress::LocalHost, 0));

    Companion first, second, third;
    for (Companion* companion : {&first, &second, &third}) {
        QVERIFY(companion->client.connectToServer(kHost, server.port()));
        // Sent before the server has looked at the connection.
        ExecuteQuickKeyEvent hello(3);
        QVERIFY(companion->client.sendEvent(hello));
    }
    QTRY_COMPARE(received.size(), 3U);
    QCOMPARE(connected.size(), 3);
    const QList<int> ids = server.companionIds();
    QCOMPARE(ids.size(), 3);
    QCOMPARE(server.companionAddress(ids[0]), QHostAddress(QHostAddress::LocalHost));

    MsgEvent all("all"), one("one"), others("others");
    server.sendToAll(all);
    QVERIFY(server.send(ids[1], one));
    server.sendToAll(others, ids[1]);
    QVERIFY(!server.send(ids[2] + 1, one));
    QTRY_COMPARE(first.events.size() + second.events.size() + third.events.size(), 6U);
    QVERIFY(*first.events[0] == all && *first.events[1] == others);
    QVERIFY(*second.events[0] == all && *second.events[1] == one);
    QVERIFY(*third.events[0] == all && *third.events[1] == others);

    // One goes, one is sent away after a last word; the third does not notice.
    QVERIFY(first.client.disconnectFromServer());
    QTRY_COMPARE(disconnected.size(), 1);
    QCOMPARE(disconnected[0][0].toInt(), ids[0]);
    QVERIFY(server.send(ids[1], one));
    server.disconnectCompanion(ids[1]);
    server.disconnectCompanion(ids[1]);
    QCOMPARE(disconnected.size(), 2);
    QTRY_COMPARE(second.lost.size(), 1);
    QCOMPARE(second.events.size(), 3U);
    QCOMPARE(server.companionIds(), QList<int>({ids[2]}));
    QVERIFY(!server.send(ids[1], one));
    QVERIFY(server.send(ids[2], one));
    QTRY_COMPARE(third.events.size(), 3U);
    // A number is never used again.
    QVERIFY(first.client.connectToServer(kHost, server.port()));
    QTRY_COMPARE(connected.size(), 4);
    QVERIFY(!ids.contains(connected[3][0].toInt()));
}

void LinkTest::serverIsDestroyedByItsReceiver() {
    auto server = std::make_unique<CompanionServer>(nullptr);
    connect(server.get(), &CompanionServer::eventReceived, this, [&](int, eventData data) {
        delete data.second;
        server.reset();
    });
    QVERIFY(server->listen(QHostAddress::LocalHost, 0));
    Companion companion;
    QVERIFY(companion.client.connectToServer(kHost, server->port()));
    ExecuteQuickKeyEvent press(1);
    QVERIFY(companion.client.sendEvent(press) && companion.client.sendEvent(press));
    QTRY_VERIFY(!server);
    QTRY_COMPARE(companion.lost.size(), 1);
}

void LinkTest::serverCloses() {
    CompanionServer server(nullptr);
    QSignalSpy connected(&server, &CompanionServer::companionConnected);
    QSignalSpy disconnected(&server, &CompanionServer::companionDisconnected);
    QVERIFY(server.listen(QHostAddress::LocalHost, 0));
    const quint16 port = server.port();
    Companion first, second;
    QVERIFY(first.client.connectToServer(kHost, port));
    QVERIFY(second.client.connectToServer(kHost, port));
    QTRY_COMPARE(connected.size(), 2);
    MsgEvent bye("bye");
    server.sendToAll(bye);
    server.close();
    QCOMPARE(disconnected.size(), 2);
    QTRY_VERIFY(first.lost.size() == 1 && second.lost.size() == 1);
    QVERIFY(first.events.size() == 1 && second.events.size() == 1);
    QVERIFY(!first.client.connectToServer(kHost, port));
    QVERIFY(server.listen(QHostAddress::LocalHost, port));
    QVERIFY(first.client.connectToServer(kHost, port));
}

void LinkTest::serverIsDestroyedWhileItCloses() {
    auto server = std::make_unique<CompanionServer>(nullptr);
    connect(server.get(), &CompanionServer::companionDisconnected, this, [&] { server.reset(); });
    QVERIFY(server->listen(QHostAddress::LocalHost, 0));
    Companion first, second;
    QVERIFY(first.client.connectToServer(kHost, server->port()));
    QVERIFY(second.client.connectToServer(kHost, server->port()));
    QTRY_COMPARE(server->companionIds().size(), 2);
    server->close();
    QVERIFY(!server);
    QTRY_VERIFY(first.lost.size() == 1 && second.lost.size() == 1);
}

void LinkTest::serverLetsGoWhoDoesNotRead_data() {
    QTest::addColumn<bool>("destroyed");
    QTest::newRow("and goes on with the others") << false;
    QTest::newRow("and is destroyed when it says so") << true;
}

void LinkTest::serverLetsGoWhoDoesNotRead() {
    QFETCH(bool, destroyed);
    auto server = std::make_unique<CompanionServer>(nullptr);
    bool letGo = false;
    connect(server.get(), &CompanionServer::companionDisconnected, this, [&] {
        letGo = true;
        if (destroyed)
            server.reset();
    });
    QVERIFY(server->listen(QHostAddress::LocalHost, 0));
    QTcpSocket deaf;
    deaf.setReadBufferSize(1);
    deaf.connectToHost(QHostAddress::LocalHost, server->port());
    QTRY_COMPARE(server->companionIds().size(), 1);
    Companion reading;
    QVERIFY(reading.client.connectToServer(kHost, server->port()));
    QTRY_COMPARE(server->companionIds().size(), 2);

    ItemDataEvent large;
    for (unsigned int i = 0; i < 50'000; ++i)
        large.addScreenMovePointEvent({1, 2, "Wall", i, 0, 0, 0, true, false});
    // On a slow machine the system gives the connection up before that much has piled up.
    messages_->allow(
        QRegularExpression("^Companion 1 does not read what it is sent, disconnected$"));
    for (std::size_t sent = 1; !letGo; ++sent) {
        QVERIFY2(sent * std::size_t(large.getSize()) < 2 * Limits::kMaxUnsentBytes, "never");
        server->sendToAll(large);
        QTRY_VERIFY_WITH_TIMEOUT(!server || reading.events.size() == sent, 30'000);
        if (server)
            reading.events.back().reset();
    }
    if (server)
        QCOMPARE(server->companionIds(), QList<int>({2}));
    else
        QTRY_COMPARE(reading.lost.size(), 1);
}

QTEST_GUILESS_MAIN(LinkTest)
#include "link_test.moc"
