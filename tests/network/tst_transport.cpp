#include "network/TcpTransportSocket.h"
#include "network/events/EventTable.h"
#include "network/events/ProtocolLimits.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/ProtocolBytes.h"

#include <QPointer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

#include <algorithm>

using namespace NetworkCompanion;
using namespace MeshpadTest;

namespace {

/// Messages of quick keys with the ids from first to last.
QByteArray keys(int first, int last, const QByteArray& rest = "") {
    QByteArray bytes;
    for (int id = first; id <= last; ++id)
        bytes += withLength(frame(25, int32(id) + rest));
    return bytes;
}

} // namespace

/// A transport that is connected to a fake Producer.
class TransportTest : public GuardedTest {
    Q_OBJECT

    std::unique_ptr<FakeProducer> producer_;
    std::unique_ptr<TCPTransportSocket> transport_;
    QUrl url_;
    QList<int> ids_; // of the keys received
    int ends_ = 0;
    ItemDataEvent large_; // more than the system accepts at once

    QTcpSocket* socket() const { return transport_->findChild<QTcpSocket*>(); }
    bool connectTransport() {
        return transport_->tryToConnect(url_) && transport_->waitForConnected(5'000);
    }
    /// The slot is called after each event.
    template <typename Slot>
    void onEvent(Slot slot) {
        connect(transport_.get(), &TCPTransportSocket::receivedEvent, this, slot);
    }

private slots:
    void initTestCase() {
        for (unsigned int i = 0; i < 50'000; ++i)
            large_.addScreenMovePointEvent({1, 2, "Wall", i, 0, 0, 0, true, false});
    }
    void init() {
        GuardedTest::init();
        producer_ = std::make_unique<FakeProducer>();
        transport_ = std::make_unique<TCPTransportSocket>(nullptr);
        ids_.clear();
        ends_ = 0;
        onEvent([this](eventData data) {
            ids_.append(int(dynamic_cast<ExecuteQuickKeyEvent&>(*data.second).keyId()));
            delete data.second;
        });
        connect(transport_.get(), &TCPTransportSocket::disconnected, this, [this] { ++ends_; });
        transport_->startReading();
        QVERIFY(producer_->listen());
        url_.setHost("127.0.0.1");
        url_.setPort(producer_->port());
        QVERIFY(connectTransport());
        QTRY_COMPARE(producer_->connectionCount(), 1);
    }

    void writesInOrderWhileConnected() {
        ExecuteQuickKeyEvent first(1), last(2);
        QVERIFY(socket()->socketOption(QAbstractSocket::LowDelayOption).toInt() != 0);
        QVERIFY(transport_->state() == 2 && !transport_->tryToConnect({}));
        QVERIFY(transport_->write(first) && transport_->write(large_) && transport_->write(last));
        QCOMPARE(transport_->url(), url_);
        transport_->disconnect();
        QVERIFY(transport_->waitForDisconnected(5'000));
        QVERIFY(transport_->state() == 4 && !transport_->write(last));
        QVERIFY(transport_->url().isEmpty());
        const auto& events = producer_->events();
        QTRY_COMPARE(events.size(), 3U);
        QVERIFY(*events[0] == first && *events[1] == large_ && *events[2] == last);
        QTRY_COMPARE(ends_, 1);
        messages_->expect(QtCriticalMsg, "The keepAlive service failed to initialize");
        transport_->activeKeepAlive(200, 1000);
        QVERIFY(transport_->tryToConnect(url_) && transport_->state() == 1);
        QVERIFY(!transport_->write(last) && !transport_->tryToConnect({}));
    }

    void disconnectsSlowReader() {
        producer_->stall();
        messages_->expect(QtWarningMsg, "127.0.0.1 leaves too much unread, disconnected");
        const qint64 enough = Limits::kMaxUnsentBytes / large_.getSize();
        qint64 sent = 0;
        while (sent < 2 * enough && transport_->write(large_))
            ++sent;
        QVERIFY(sent >= enough && sent < 2 * enough && !transport_->write(large_));
        QCOMPARE(ends_, 0);
        QTRY_COMPARE(ends_, 1);
        QVERIFY(connectTransport() && transport_->write(large_));
    }

    void reconnectsWhileClosing() {
        producer_->stall();
        QVERIFY(transport_->write(large_));
        transport_->disconnect();
        producer_->sendRaw(keys(2, 2));
        QTest::qWait(50);
        QVERIFY(connectTransport());
        QTRY_COMPARE(producer_->acceptedCount(), 2);
        producer_->sendRaw(keys(1, 1));
        QTRY_COMPARE(ids_, QList<int>({1}));
    }

    void doesNotBlockEventLoopInFlood() {
        int iterations = 0;
        onEvent([&] {
            // The end arrives before the last event, but is reported after it.
            if (ids_.size() == 4900)
                QTRY_COMPARE(socket()->state(), QAbstractSocket::UnconnectedState);
            QCOMPARE(ends_, 0);
            if (ids_.size() % 10 == 0)
                QTest::qSleep(1);
        });
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [&] { iterations += !ids_.isEmpty(); });
        timer.start(1);
        producer_->sendRaw(keys(1, 5000, QByteArray(500, 'x'))); // more than is read ahead
        producer_->closeConnections();
        QTRY_COMPARE_WITH_TIMEOUT(ends_, 1, 60'000);
        QVERIFY2(iterations > 10, qPrintable(QString::number(iterations))); // in half a second
        QCOMPARE(ids_.size(), 5000);
        QVERIFY(std::ranges::is_sorted(ids_));
    }

    void dropsEventsAfterSlotDisconnects() {
        ExecuteQuickKeyEvent answer(9);
        onEvent([&] {
            QVERIFY(transport_->write(answer));
            transport_->disconnect();
            QVERIFY(!transport_->write(answer));
        });
        producer_->sendRaw(keys(1, 3));
        QTRY_COMPARE(producer_->connectionCount(), 0);
        QCOMPARE(producer_->bytes(), keys(9, 9));
        QCOMPARE(ids_, QList<int>({1}));
    }

    void endsWhenSlotDestroysIt_data() {
        QTest::addColumn<int>("count"); // of events before
        QTest::newRow("after the first event") << 1;
        QTest::newRow("after later events") << 10;
        QTest::newRow("at the end of the connection") << 12;
    }
    void endsWhenSlotDestroysIt() {
        QFETCH(int, count);
        const auto destroy = [&] { transport_.reset(); };
        onEvent([&] {
            QTest::qSleep(5);
            if (ids_.size() == count && count < 12)
                destroy();
        });
        connect(transport_.get(), &TCPTransportSocket::disconnected, this, destroy);
        producer_->sendRaw(keys(1, 12));
        if (count == 12)
            producer_->closeConnections();
        QTRY_VERIFY(!transport_);
        QCOMPARE(ids_.size(), count);
        QTRY_COMPARE(producer_->connectionCount(), 0);
    }

    void keepsOrderWhenSlotRunsEventLoop() {
        onEvent([&] {
            if (ids_.size() > 1)
                return;
            producer_->sendRaw(keys(4, 4));
            QTRY_VERIFY(socket()->bytesAvailable() > 0);
        });
        producer_->sendRaw(keys(1, 3));
        QTRY_COMPARE(ids_, QList<int>({1, 2, 3, 4}));
    }

    void deletesSocketsOfEarlierConnections() {
        connect(producer_.get(), &FakeProducer::connected, producer_.get(),
                &FakeProducer::closeConnections);
        QList<QPointer<QTcpSocket>> sockets{socket()};
        connect(transport_.get(), &TCPTransportSocket::disconnected, this, [&] {
            if (ends_ < 50 && transport_->tryToConnect(url_))
                sockets.append(socket());
        });
        producer_->closeConnections();
        QTRY_COMPARE(ends_, 50);
        QTRY_COMPARE(sockets.count(nullptr), 49);
    }
};

QTEST_GUILESS_MAIN(TransportTest)
#include "tst_transport.moc"
