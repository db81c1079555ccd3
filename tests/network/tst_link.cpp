#include "network/CompanionClient.h"
#include "network/CompanionServer.h"
#include "network/events/EventTable.h"
#include "network/events/ProtocolLimits.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/ProtocolBytes.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

using namespace NetworkCompanion;
using namespace MeshpadTest;

namespace {

constexpr const char* kHost = "127.0.0.1";

/// A client together with what it reported.
struct Companion {
    Companion() {
        QObject::connect(
            &client, &CompanionClient::newEvent, &client,
            [this](eventData data) { events.emplace_back(data.second); });
    }
    bool connectTo(quint16 port) { return client.connectToServer(kHost, port); }
    bool send(Event&& event) { return client.sendEvent(event); }

    CompanionClient client{nullptr};
    QSignalSpy lost{&client, &CompanionClient::disconnected};
    std::vector<std::unique_ptr<Event>> events;
};

/// More than the system takes at once.
ItemDataEvent largeItem() {
    ItemDataEvent large;
    for (unsigned int i = 0; i < 50'000; ++i)
        large.addScreenMovePointEvent({1, 2, "Wall", i, 0, 0, 0, true, false});
    return large;
}

} // namespace

/// Both ends of the link: CompanionClient against a fake Producer, CompanionServer against clients.
class LinkTest : public GuardedTest {
    Q_OBJECT

private slots:
    void init() {
        GuardedTest::init();
        producer_ = std::make_unique<FakeProducer>();
        server_ = std::make_unique<CompanionServer>(nullptr);
        QVERIFY(producer_->listen() && server_->listen(QHostAddress::LocalHost, 0));
    }

    void refusedThenEventsBothWays();
    void connectedTwice();
    void endsOfEveryKindAndConnectedAgain();
    void connectedAgainWithMuchUnderWay();
    void reconnectFromTheSignal();
    void receiverDestroysTheClient();
    void withoutReceiver();

    void serverKnowsItsCompanions();
    void serverCloses();
    void serverIsDestroyedByItsReceiver();
    void whoDoesNotReadIsLetGo();

private:
    bool connectToProducer(CompanionClient& client) {
        const int before = producer_->acceptedCount();
        return client.connectToServer(kHost, producer_->port()) &&
               QTest::qWaitFor([=, this] { return producer_->acceptedCount() > before; });
    }

    std::unique_ptr<FakeProducer> producer_;
    std::unique_ptr<CompanionServer> server_;
};

void LinkTest::refusedThenEventsBothWays() {
    const quint16 port = producer_->port();
    producer_->stopListening();
    Companion companion;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!companion.connectTo(port));
    QVERIFY(timer.elapsed() < 15'000); // not as long as an answer is waited for
    QVERIFY(!companion.client.isConnected());
    QVERIFY(!companion.send(MsgEvent("getResources")));
    QCOMPARE(companion.lost.size(), 0);

    QVERIFY(producer_->listen(QHostAddress::LocalHost, port));
    QVERIFY(connectToProducer(companion.client));
    QVERIFY(companion.client.isConnected());
    QVERIFY(companion.send(MsgEvent("getResources")));
    QTRY_COMPARE(producer_->bytes(), withLength(frame(1, text("getResources"))));
    messages_->expect(QtCriticalMsg, "Try to deserialize unknown event");
    producer_->sendRaw(withLength(frame(77, "x")));
    producer_->send(AddScreenEvent(1, 2, 3, 4, 5, 0.5, "Wall", true, false));
    QTRY_COMPARE(companion.events.size(), 2U);
    QVERIFY(!companion.events[0]);
    QVERIFY(*companion.events[1] == AddScreenEvent(1, 2, 3, 4, 5, 0.5, "Wall", true, false));
}

void LinkTest::connectedTwice() {
    Companion companion;
    QVERIFY(connectToProducer(companion.client));
    QVERIFY(!companion.connectTo(producer_->port()));
    QCOMPARE(producer_->acceptedCount(), 1);

    // The link stands, but is no longer listened to.
    QVERIFY(companion.send(MsgEvent("still here")));
    QTRY_COMPARE(producer_->events().size(), 1U);
    producer_->send(MsgEvent("unheard"));
    producer_->closeConnections();
    QTRY_VERIFY(!companion.client.isConnected());
    QCOMPARE(companion.events.size(), 0U);
    QCOMPARE(companion.lost.size(), 0);
}

void LinkTest::endsOfEveryKindAndConnectedAgain() {
    enum class End { Closed, Aborted, Own };
    using enum End;
    Companion companion;
    unsigned int round = 0;
    for (const End end : {Closed, Closed, Aborted, Own, Own, Aborted, Closed}) {
        ++round;
        QVERIFY(connectToProducer(companion.client));
        producer_->send(ExecuteQuickKeyEvent(round));
        // The beginning of a frame whose end never comes.
        producer_->sendRaw(hex("00000109 00000009 00000100 01 41"));
        QTRY_COMPARE(companion.events.size(), std::size_t(round));
        QVERIFY(companion.events.back() && *companion.events.back() == ExecuteQuickKeyEvent(round));
        if (end == Own) { // the last word before it is heard
            producer_->forget();
            QVERIFY(companion.send(ExecuteQuickKeyEvent(99)));
            QVERIFY(companion.client.disconnectFromServer());
            QTRY_COMPARE(producer_->connectionCount(), 0);
            QCOMPARE(producer_->bytes(), withLength(frame(25, int32(99))));
        } else {
            end == Closed ? producer_->closeConnections() : producer_->abortConnections();
        }
        QTRY_COMPARE(companion.lost.size(), qsizetype(round));
        QCOMPARE(companion.lost.back().front().toInt(), -1);
        QVERIFY(!companion.client.isConnected());
    }
}

void LinkTest::connectedAgainWithMuchUnderWay() {
    producer_->stall();
    Companion companion;
    QVERIFY(companion.connectTo(producer_->port()));
    QVERIFY(companion.send(largeItem()));
    QVERIFY(companion.client.disconnectFromServer());
    FakeProducer other;
    QVERIFY(other.listen());
    QVERIFY(companion.connectTo(other.port()));
    QTRY_COMPARE(other.connectionCount(), 1);
    other.send(MsgEvent("hello"));
    QTRY_COMPARE(companion.events.size(), 1U);
}

void LinkTest::reconnectFromTheSignal() {
    for (const auto connection : {Qt::DirectConnection, Qt::QueuedConnection}) {
        Companion companion;
        connect(
            &companion.client, &CompanionClient::disconnected, this,
            [&] { QVERIFY(companion.connectTo(producer_->port())); }, connection);
        QVERIFY(connectToProducer(companion.client));
        for (std::size_t round = 1; round <= 2; ++round) {
            const int before = producer_->acceptedCount();
            producer_->abortConnections();
            QTRY_COMPARE(producer_->acceptedCount(), before + 1);
            producer_->send(MsgEvent("again"));
            QTRY_COMPARE(companion.events.size(), round);
        }
        companion.client.disconnect(this);
    }
}

/// In the middle of events, and when it is told of the end.
void LinkTest::receiverDestroysTheClient() {
    auto client = std::make_unique<CompanionClient>(nullptr);
    connect(client.get(), &CompanionClient::newEvent, this, [&](eventData data) {
        delete data.second;
        client.reset();
    });
    QVERIFY(connectToProducer(*client));
    producer_->sendRaw(withLength(frame(25, int32(1))).repeated(3));
    QTRY_VERIFY(!client);
    QTRY_COMPARE(producer_->connectionCount(), 0);

    client = std::make_unique<CompanionClient>(nullptr);
    connect(client.get(), &CompanionClient::disconnected, this, [&] { client.reset(); });
    QVERIFY(connectToProducer(*client));
    QVERIFY(client->disconnectFromServer());
    QVERIFY(!client);
}

/// The leak checker is the judge; events come before the end.
void LinkTest::withoutReceiver() {
    CompanionClient client(nullptr), other(nullptr);
    QVERIFY(connectToProducer(client));
    producer_->send(MsgEvent("nobody listens"));
    QVERIFY(!QSignalSpy(&client, &CompanionClient::disconnected).wait(50));
    QList<LV_NTC_EventType> heard;
    connect(
        &client, &CompanionClient::newEvent, this,
        [&](eventData data) {
            heard.append(data.first.type);
            delete data.second;
        },
        Qt::QueuedConnection);
    producer_->send(BlindEvent(1, 2, "somebody does", true));
    QTRY_COMPARE(heard, QList<LV_NTC_EventType>({LV_NTC_EventType::Blind}));
    producer_->closeConnections();
    QTRY_VERIFY(!client.isConnected());

    QSignalSpy connected(server_.get(), &CompanionServer::companionConnected);
    QVERIFY(other.connectToServer(kHost, server_->port()));
    QTRY_COMPARE(connected.size(), 1);
    MsgEvent unheard("nobody listens there either");
    QVERIFY(other.sendEvent(unheard));
    QVERIFY(other.disconnectFromServer());
    QTRY_COMPARE(server_->companionIds(), QList<int>());
}

void LinkTest::serverKnowsItsCompanions() {
    QSignalSpy connected(server_.get(), &CompanionServer::companionConnected);
    QSignalSpy disconnected(server_.get(), &CompanionServer::companionDisconnected);
    std::vector<std::unique_ptr<Event>> received;
    connect(server_.get(), &CompanionServer::eventReceived, this,
            [&](int, eventData data) { received.emplace_back(data.second); });

    Companion first, second, third;
    for (Companion* companion : {&first, &second, &third}) {
        QVERIFY(companion->connectTo(server_->port()));
        // Sent before the server has looked at the connection.
        QVERIFY(companion->send(ExecuteQuickKeyEvent(3)));
    }
    QTRY_COMPARE(received.size(), 3U);
    const QList<int> ids = server_->companionIds();
    QCOMPARE(ids.size(), 3);
    QCOMPARE(server_->companionAddress(ids[0]), QHostAddress(QHostAddress::LocalHost));

    // One goes, one is sent away after a last word; the third does not notice.
    QVERIFY(first.client.disconnectFromServer());
    QTRY_COMPARE(disconnected.size(), 1);
    QCOMPARE(disconnected[0][0].toInt(), ids[0]);
    MsgEvent last("last"), others("others");
    QVERIFY(server_->send(ids[1], last));
    server_->sendToAll(others, ids[1]);
    server_->disconnectCompanion(ids[1]);
    server_->disconnectCompanion(ids[1]);
    QCOMPARE(disconnected.size(), 2);
    QVERIFY(!server_->send(ids[1], last));
    QTRY_COMPARE(second.lost.size(), 1);
    QVERIFY(second.events.size() == 1 && *second.events[0] == last);
    QCOMPARE(server_->companionIds(), QList<int>({ids[2]}));
    QTRY_VERIFY(third.events.size() == 1 && *third.events[0] == others);
    // A number is never used again.
    QVERIFY(first.connectTo(server_->port()));
    QTRY_COMPARE(connected.size(), 4);
    QVERIFY(!ids.contains(connected[3][0].toInt()));
}

/// And may be destroyed by whoever it tells of it.
void LinkTest::serverCloses() {
    for (const bool destroyed : {false, true}) {
        int gone = 0;
        connect(server_.get(), &CompanionServer::companionDisconnected, this, [&] {
            ++gone;
            if (destroyed)
                server_.reset();
        });
        const quint16 port = server_->port();
        Companion first, second;
        QVERIFY(first.connectTo(port) && second.connectTo(port));
        QTRY_COMPARE(server_->companionIds().size(), 2);
        MsgEvent bye("bye");
        server_->sendToAll(bye);
        server_->close();
        QCOMPARE(gone, destroyed ? 1 : 2);
        QTRY_VERIFY(first.lost.size() == 1 && second.lost.size() == 1);
        QVERIFY(first.events.size() == 1 && second.events.size() == 1);
        QVERIFY(!first.connectTo(port));
        if (!destroyed) {
            QVERIFY(server_->listen(QHostAddress::LocalHost, port));
            server_->disconnect(this);
        }
    }
}

void LinkTest::serverIsDestroyedByItsReceiver() {
    connect(server_.get(), &CompanionServer::eventReceived, this, [&](int, eventData data) {
        delete data.second;
        server_.reset();
    });
    Companion companion;
    QVERIFY(companion.connectTo(server_->port()));
    QVERIFY(companion.send(ExecuteQuickKeyEvent(1)) && companion.send(ExecuteQuickKeyEvent(1)));
    QTRY_VERIFY(!server_);
    QTRY_COMPARE(companion.lost.size(), 1);
}

/// And goes on with the others, unless it is destroyed when it says so.
/// Everything is sent without a turn of the event loop, before the system could give the link up.
void LinkTest::whoDoesNotReadIsLetGo() {
    ItemDataEvent large = largeItem();
    const qint64 enough = Limits::kMaxUnsentBytes / large.getSize();
    messages_->expect(QtWarningMsg, "127.0.0.1 leaves too much unread, disconnected", 3);
    for (const bool destroyed : {false, true}) {
        server_ = std::make_unique<CompanionServer>(nullptr);
        QVERIFY(server_->listen(QHostAddress::LocalHost, 0));
        bool letGo = false;
        connect(server_.get(), &CompanionServer::companionDisconnected, this, [&] {
            letGo = true;
            if (destroyed)
                server_.reset();
        });
        QTcpSocket deaf;
        deaf.setReadBufferSize(1);
        deaf.connectToHost(QHostAddress::LocalHost, server_->port());
        QTRY_COMPARE(server_->companionIds().size(), 1);
        Companion reading;
        QVERIFY(reading.connectTo(server_->port()));
        QTRY_COMPARE(server_->companionIds().size(), 2);

        for (qint64 sent = 0; sent < enough; ++sent)
            QVERIFY(server_->send(1, large));
        std::size_t sentToAll = 0;
        while (server_->send(1, large))
            QVERIFY2(++sentToAll < std::size_t(enough), "never");
        sentToAll = 1;
        server_->sendToAll(large);
        QVERIFY(!letGo);
        QTRY_VERIFY(letGo);
        if (destroyed) {
            QTRY_COMPARE(reading.lost.size(), 1);
        } else {
            QCOMPARE(server_->companionIds(), QList<int>({2}));
            QTRY_COMPARE(reading.events.size(), sentToAll);
            server_->disconnect(this);
        }
    }

    QTcpServer deaf;
    QVERIFY(deaf.listen(QHostAddress::LocalHost));
    Companion companion;
    QVERIFY(companion.connectTo(deaf.serverPort()));
    QVERIFY(deaf.waitForNewConnection(5'000));
    deaf.nextPendingConnection()->setReadBufferSize(1);
    qint64 sent = 0;
    while (companion.client.sendEvent(large))
        QVERIFY2(++sent < 2 * enough, "never");
    QVERIFY(sent >= enough);
    QVERIFY(!companion.send(MsgEvent("one more")));
    QCOMPARE(companion.lost.size(), 0); // the caller is still at work
    QTRY_COMPARE(companion.lost.size(), 1);
    QVERIFY(connectToProducer(companion.client));
    QVERIFY(companion.send(MsgEvent("again")));
    QTRY_COMPARE(producer_->events().size(), 1U);
}

QTEST_GUILESS_MAIN(LinkTest)
#include "tst_link.moc"
