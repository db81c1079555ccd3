#include "network/TcpTransportSocket.h"
#include "network/events/EventTable.h"
#include "network/events/ProtocolLimits.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/ProtocolBytes.h"
#include "tests/support/ThreadTime.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <memory>

using namespace NetworkCompanion;
using namespace MeshpadTest;
using namespace std::chrono_literals;

namespace {

QByteArray message(int type, const QByteArray& payload) {
    return withLength(frame(type, payload));
}

QByteArray keyPress(int id) {
    return message(25, int32(id));
}

QUrl loopback(quint16 port) {
    QUrl url;
    url.setHost("127.0.0.1");
    url.setPort(port);
    return url;
}

/// A transport and, in the test's hand, the bare socket at the other end.
class BareWire {
public:
    BareWire() {
        QVERIFY(server_.listen(QHostAddress::LocalHost));
        peer.connectToHost(QHostAddress::LocalHost, server_.serverPort());
        QVERIFY(QTest::qWaitFor([this] { return server_.hasPendingConnections(); }));
        socket = server_.nextPendingConnection();
        transport = std::make_unique<TCPTransportSocket>(17, socket, nullptr);
        QObject::connect(
            socket, &QTcpSocket::readyRead, socket, [this] { ++chunks; });
        QObject::connect(transport.get(), &TCPTransportSocket::receivedEvent, socket,
                         [this](eventData data) { events.emplace_back(data.second); });
        transport->startReading();
        QVERIFY(QTest::qWaitFor([this] { return peer.state() == QTcpSocket::ConnectedState; }));
    }

    /// As one chunk, which the transport has read when this returns.
    void deliver(const QByteArray& bytes) {
        const int before = chunks;
        peer.write(bytes);
        peer.flush();
        QVERIFY(QTest::qWaitFor([&] { return chunks > before; }));
    }
    /// The ids of the quick key presses received; 0 for a null event.
    QList<int> keys() const {
        QList<int> ids;
        for (const auto& event : events) {
            const auto* key = dynamic_cast<const ExecuteQuickKeyEvent*>(event.get());
            ids.append(key ? int(key->keyId()) : 0);
        }
        return ids;
    }

private:
    QTcpServer server_;

public:
    QTcpSocket peer;
    QTcpSocket* socket = nullptr;
    std::unique_ptr<TCPTransportSocket> transport;
    int chunks = 0;
    std::vector<std::unique_ptr<Event>> events;
};

/// The most that the processor did between two turns of the event loop.
class TurnWatch {
public:
    TurnWatch() {
        QObject::connect(&turns_, &QTimer::timeout, &turns_,
                         [this] { longest_ = std::max(longest_, sinceTurn_.restart()); });
        turns_.start(1);
    }
    std::chrono::milliseconds longest() const { return longest_; }

private:
    ThreadTime sinceTurn_;
    std::chrono::milliseconds longest_{};
    QTimer turns_;
};

QString tailLine(int bytes) {
    return QString("Invalid header size. Size must be at least 4 bytes, we read %1").arg(bytes);
}

} // namespace

class TransportTest : public GuardedTest {
    Q_OBJECT

private slots:
    void bytesOnTheWire();
    void statesOnTheWayToAConnection();
    void anyFragmentation();
    void lengthsThatAnnounceNoFrame();
    void tooLongFrames();
    void undecodableFramesAreReported();
    void manyFramesCostLittle_data();
    void manyFramesCostLittle();
    void eventLoopHasItsTurnInAFlood_data();
    void eventLoopHasItsTurnInAFlood();
    void eventLoopHasItsTurnInAFloodOfNothing();
    void receiverDisconnects();
    void receiverStopsReading();
    void receiverDestroysTheTransport();
    void receiverRunsAnEventLoop();
    void withoutReceiver();
    void deletesSocketsOfEarlierConnections();
};

void TransportTest::bytesOnTheWire() {
    BareWire wire;
    BlindEvent blind(1, 2, "a", true);
    MsgEvent hello("hello");
    ItemDataEvent request(7);
    QVERIFY(wire.socket->socketOption(QAbstractSocket::LowDelayOption).toInt() != 0);
    QVERIFY(wire.transport->write(blind));
    QVERIFY(wire.transport->write(hello));
    QVERIFY(wire.transport->write(request));
    const QByteArray expected = hex("00000112 00000009 00000109 03 00000002 00000001") + text("a") +
                                hex("01") + hex("00000109 00000009 00000100 01 68656c6c6f") +
                                QByteArray(251, '\0') +
                                hex("0000037c 00000009 00000353 1c 00000007");
    QTRY_COMPARE(wire.peer.bytesAvailable(), 278 + 269 + 896);
    QCOMPARE(wire.peer.read(expected.size()).toHex(), expected.toHex());
}

void TransportTest::statesOnTheWayToAConnection() {
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    TCPTransportSocket transport(nullptr);
    QSignalSpy disconnected(&transport, &TCPTransportSocket::disconnected);
    MsgEvent event("early");
    messages_->expect(QtCriticalMsg, "The keepAlive service failed to initialize");
    transport.activeKeepAlive(200, 1000); // of no connection
    QCOMPARE(transport.state(), 4);
    QVERIFY(!transport.write(event));

    QVERIFY(transport.tryToConnect(loopback(server.serverPort())));
    QCOMPARE(transport.state(), 1);
    QVERIFY(!transport.write(event));
    QVERIFY(!transport.tryToConnect(loopback(1)));
    QVERIFY(transport.waitForConnected(5000));
    QCOMPARE(transport.state(), 2);
    QVERIFY(transport.write(event));
    QVERIFY(!transport.tryToConnect(loopback(1)));
    QCOMPARE(transport.url(), loopback(server.serverPort()));
    auto* socket = transport.findChild<QTcpSocket*>();
    QVERIFY(socket->socketOption(QAbstractSocket::LowDelayOption).toInt() != 0);

    transport.disconnect();
    QVERIFY(transport.waitForDisconnected(5000));
    QCOMPARE(transport.state(), 4);
    QVERIFY(transport.url().isEmpty());
    QVERIFY(!transport.write(event));
    QTRY_COMPARE(disconnected.size(), 1);
    // What was written before is not lost.
    QTRY_VERIFY(server.hasPendingConnections());
    QTcpSocket* peer = server.nextPendingConnection();
    QTRY_COMPARE(peer->bytesAvailable(), 269);
}

/// In two chunks, split at any place, and byte by byte.
void TransportTest::anyFragmentation() {
    BareWire wire;
    const QByteArray stream =
        keyPress(1) + message(13, hex("00000001 00000002") + text("Sea")) + keyPress(2);
    for (int bytes = 1; bytes <= 3; ++bytes) // of a length, once at each of the frames
        messages_->expect(QtCriticalMsg, tailLine(bytes), 6);
    for (qsizetype split = 1; split <= stream.size(); ++split) {
        wire.events.clear();
        if (split < stream.size()) {
            wire.deliver(stream.first(split));
            wire.deliver(stream.sliced(split));
        } else {
            for (const char byte : stream)
                wire.deliver(QByteArray(1, byte));
        }
        QCOMPARE(wire.keys(), QList<int>({1, 0, 2}));
        QVERIFY(wire.events[1] && *wire.events[1] == RemoveMediaEvent(1, 2, "Sea"));
    }
}

void TransportTest::lengthsThatAnnounceNoFrame() {
    BareWire wire;
    wire.deliver(hex("00000000"));
    wire.deliver(keyPress(1));
    QCOMPARE(wire.keys(), QList<int>({1}));
    // Reading stops there; what stands behind it is read with the next bytes.
    wire.deliver(keyPress(2) + hex("00000000") + keyPress(3));
    QCOMPARE(wire.keys(), QList<int>({1, 2}));
    messages_->expect(QtCriticalMsg, "Invalid frame length -1");
    messages_->expect(QtCriticalMsg, "Invalid frame length -2147483648");
    wire.deliver(hex("ffffffff"));
    wire.deliver(hex("80000000"));
    wire.deliver(keyPress(4));
    QCOMPARE(wire.keys(), QList<int>({1, 2, 3, 4}));
}

void TransportTest::tooLongFrames() {
    BareWire wire;
    constexpr int kLongest = Limits::kMaxFrameLength;
    const QByteArray body = frame(99, int32(1)) + QByteArray(kLongest - 12, 'x');
    messages_->expect(QtCriticalMsg, "Try to deserialize unknown event");
    wire.peer.write(keyPress(1) + int32(kLongest) + body.first(kLongest) + keyPress(2));
    QTRY_COMPARE(wire.keys(), QList<int>({1, 0, 2}));

    messages_->expect(QtCriticalMsg, "Frame of 16777217 bytes is too large, skipped", 2);
    wire.peer.write(int32(kLongest + 1) + body + keyPress(3));
    QTRY_COMPARE(wire.keys(), QList<int>({1, 0, 2, 3}));
    // And again, its end in a chunk of its own.
    wire.deliver(int32(kLongest + 1));
    wire.peer.write(body.first(kLongest));
    QTRY_COMPARE(wire.peer.bytesToWrite(), 0);
    wire.deliver("x" + keyPress(4));
    QTRY_COMPARE(wire.keys(), QList<int>({1, 0, 2, 3, 4}));
}

void TransportTest::undecodableFramesAreReported() {
    BareWire wire;
    messages_->expect(QtCriticalMsg, "Try to deserialize unknown event");
    messages_->expect(QtWarningMsg, "Bad data size: 8/4");
    messages_->expect(QtWarningMsg, "Bad header size: 9/5");
    wire.deliver(message(30, int32(1)));
    wire.deliver(message(24, int32(1)));
    wire.deliver(withLength(hex("00000009 00000000 19"))); // nothing announced, nothing to say
    wire.deliver(withLength(hex("00000009 00")));
    wire.deliver(withLength(hex("00")));
    wire.deliver(keyPress(1));
    QCOMPARE(wire.keys(), QList<int>({0, 0, 0, 0, 0, 1}));
}

void TransportTest::manyFramesCostLittle_data() {
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<int>("count");
    // Some 20 GB would be moved if each cost the rest of its chunk.
    QTest::newRow("in one chunk") << keyPress(1) << 50'000;
    // Each takes its fields from those behind it, and finds a number of points, for which there
    // would be room if all that waits were its own, where its fields end.
    const QByteArray forged = message(28, QByteArray(11, 'x') + int64(1000) + "xxx");
    QCOMPARE((4 + 9 + 851) % forged.size(), 4 + 9 + 11);
    QTest::newRow("with large counts") << forged << 100'000;
}

void TransportTest::manyFramesCostLittle() {
    QFETCH(QByteArray, frame);
    QFETCH(int, count);
    BareWire wire;
    messages_->allow(QRegularExpression("^Bad data size: 851/")); // the last ones of a chunk
    const ThreadTime work;
    wire.peer.write(frame.repeated(count));
    QTRY_COMPARE_WITH_TIMEOUT(wire.events.size(), std::size_t(count), 100'000);
    const auto costs = work.elapsed();
    QVERIFY2(costs < 100us * count, qPrintable(QString::number(costs.count())));
}

void TransportTest::eventLoopHasItsTurnInAFlood_data() {
    QTest::addColumn<bool>("peerGoes");
    QTest::newRow("peer stays") << false;
    QTest::newRow("peer goes") << true;
}

void TransportTest::eventLoopHasItsTurnInAFlood() {
    QFETCH(bool, peerGoes);
    BareWire wire;
    std::size_t atTheEnd = 0;
    QSignalSpy disconnected(wire.transport.get(), &TCPTransportSocket::disconnected);
    QObject::connect(wire.transport.get(), &TCPTransportSocket::disconnected, this,
                     [&] { atTheEnd = wire.events.size(); });
    QObject::connect(wire.transport.get(), &TCPTransportSocket::receivedEvent, this, [&] {
        // The end may come in meanwhile, but is told behind all that was said before it.
        if (peerGoes && wire.events.size() == 4900)
            QTRY_COMPARE(wire.socket->state(), QAbstractSocket::UnconnectedState);
        QElapsedTimer work;
        work.start();
        while (work.nsecsElapsed() < 100'000) {
        }
    });
    QByteArray many;
    for (int i = 0; i < 5000; ++i)
        many += message(25, int32(i + 1) + QByteArray(500, 'x')); // more than is read ahead
    TurnWatch turns;
    wire.peer.write(many);
    if (peerGoes)
        wire.peer.disconnectFromHost();
    QTRY_COMPARE_WITH_TIMEOUT(wire.events.size(), 5000U, 60'000);
    const QList<int> keys = wire.keys();
    QVERIFY(keys.front() == 1 && keys.back() == 5000 && std::ranges::is_sorted(keys));
    if (peerGoes) {
        QTRY_COMPARE(disconnected.size(), 1);
        QCOMPARE(disconnected.front().front().toInt(), 17);
        QCOMPARE(atTheEnd, 5000U);
        QCOMPARE(wire.transport->state(), 4);
    }
    // In one go it would be half a second and more.
    QVERIFY2(turns.longest() < 250ms, qPrintable(QString::number(turns.longest().count())));
}

void TransportTest::eventLoopHasItsTurnInAFloodOfNothing() {
    messages_->allow(QRegularExpression("^Invalid frame length -1$"));
    BareWire wire;
    TurnWatch turns;
    wire.peer.write(QByteArray(4 << 20, '\xff')); // it all lies there before much of it is read
    QTRY_VERIFY_WITH_TIMEOUT(messages_->count(QtCriticalMsg) > 200'000, 60'000);
    QVERIFY2(turns.longest() < 100ms, qPrintable(QString::number(turns.longest().count())));
}

void TransportTest::receiverDisconnects() {
    BareWire wire;
    ExecuteQuickKeyEvent answer(9);
    QObject::connect(wire.transport.get(), &TCPTransportSocket::receivedEvent, this, [&] {
        QVERIFY(wire.transport->write(answer));
        wire.transport->disconnect();
        QVERIFY(!wire.transport->write(answer));
    });
    wire.deliver(keyPress(1) + keyPress(2) + keyPress(3));
    QTRY_COMPARE(wire.peer.state(), QTcpSocket::UnconnectedState);
    QCOMPARE(wire.keys(), QList<int>({1}));
    QCOMPARE(wire.peer.readAll(), keyPress(9));
}

void TransportTest::receiverStopsReading() {
    BareWire wire;
    QObject::connect(wire.transport.get(), &TCPTransportSocket::receivedEvent, this,
                     [&] { wire.transport->stopReading(); });
    wire.deliver(keyPress(1) + keyPress(2) + keyPress(3));
    ExecuteQuickKeyEvent answer(9);
    QVERIFY(wire.transport->write(answer));
    QTRY_COMPARE(wire.peer.bytesAvailable(), 17); // some turns of the event loop later
    QCOMPARE(wire.keys(), QList<int>({1}));
    wire.transport->startReading();
    QTRY_COMPARE(wire.keys(), QList<int>({1, 2}));
    // The end is told even so, and what nobody read is gone with it.
    wire.peer.disconnectFromHost();
    QSignalSpy disconnected(wire.transport.get(), &TCPTransportSocket::disconnected);
    wire.transport->startReading();
    QTRY_COMPARE(disconnected.size(), 1);
}

/// At the first of some frames, at one after the event loop had its turn, or told of the end.
void TransportTest::receiverDestroysTheTransport() {
    QByteArray frames;
    for (int id = 1; id <= 12; ++id)
        frames += keyPress(id);
    for (const std::size_t after : {1U, 10U, 12U}) {
        const bool atTheEnd = after == 12;
        BareWire wire;
        QTimer turn; // runs until the event loop has had its turn behind the first
        turn.setSingleShot(true);
        bool isFirstTurn = false;
        const auto destroy = [&] {
            if (wire.events.size() == 1)
                turn.start(1);
            if (wire.events.size() < after) {
                QTest::qSleep(5);
                return;
            }
            isFirstTurn = turn.isActive();
            wire.transport.reset();
        };
        if (atTheEnd)
            connect(wire.transport.get(), &TCPTransportSocket::disconnected, this, destroy);
        else
            connect(wire.transport.get(), &TCPTransportSocket::receivedEvent, this, destroy);
        wire.peer.write(frames);
        if (atTheEnd)
            wire.peer.disconnectFromHost();
        QTRY_VERIFY(!wire.transport);
        QCOMPARE(wire.events.size(), after);
        QCOMPARE(isFirstTurn, after == 1);
        QTRY_COMPARE(wire.peer.state(), QTcpSocket::UnconnectedState);
    }
}

void TransportTest::receiverRunsAnEventLoop() {
    BareWire wire;
    QObject::connect(wire.transport.get(), &TCPTransportSocket::receivedEvent, this, [&] {
        if (wire.events.size() != 1)
            return;
        // A dialog, say; the peer goes on talking meanwhile.
        wire.peer.write(keyPress(4));
        QTRY_VERIFY(wire.socket->bytesAvailable() > 0);
    });
    wire.deliver(keyPress(1) + keyPress(2) + keyPress(3));
    QTRY_COMPARE(wire.keys(), QList<int>({1, 2, 3, 4}));
}

void TransportTest::withoutReceiver() {
    // The leak checker is the judge of this one; the link must stay usable.
    BareWire wire;
    QObject::disconnect(wire.transport.get(), &TCPTransportSocket::receivedEvent, nullptr, nullptr);
    wire.deliver(keyPress(1) + keyPress(2));
    ExecuteQuickKeyEvent answer(9);
    QVERIFY(wire.transport->write(answer));
    QTRY_COMPARE(wire.peer.bytesAvailable(), 17);
}

void TransportTest::deletesSocketsOfEarlierConnections() {
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    connect(&server, &QTcpServer::newConnection, this,
            [&] { server.nextPendingConnection()->disconnectFromHost(); });
    TCPTransportSocket transport(nullptr);
    QList<QPointer<QTcpSocket>> sockets;
    const auto reconnect = [&] {
        if (sockets.size() < 50 && transport.tryToConnect(loopback(server.serverPort())))
            sockets.append(transport.findChild<QTcpSocket*>());
    };
    connect(&transport, &TCPTransportSocket::disconnected, this, reconnect);
    reconnect();
    QTRY_COMPARE(sockets.size(), 50);
    QTRY_COMPARE(std::ranges::count(sockets, nullptr), 49);
}

QTEST_GUILESS_MAIN(TransportTest)
#include "tst_transport.moc"
