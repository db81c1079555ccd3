#include "app/shell/CheckConnection.h"
#include "app/shell/EventDispatcher.h"
#include "app/shell/UpdateProducer.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/GuardedTest.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

#include <atomic>
#include <thread>

using namespace std::chrono_literals;

namespace {

const QString kProducer = QStringLiteral("10.77.0.1"); // the virtual interface of this test

/// Answers on this host from now on, for a first time at once.
struct SteadyProducer : MeshpadTest::FakeProducer {
    SteadyProducer() {
        QVERIFY(answerDiscovery(QHostAddress(kProducer)));
        EventDispatcher::getInstance()->networkUtils().pingServers();
    }
};

/// Counts as the Canvas hears them: on this thread.
class TickCounter : public QObject {
public:
    explicit TickCounter(const UpdateProducer& thread) {
        connect(
            &thread, &UpdateProducer::updateProducer, this, [this] { ++count; });
    }
    int count = 0;
};

auto availableServers() {
    return EventDispatcher::getInstance()->networkUtils().getAvailableServers();
}

} // namespace

class TestWorkers : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void initTestCase() { EventDispatcher::getInstance(); } // hears from now on
    void init() {
        GuardedTest::init();
        UpdateProducer::tickPeriod = 1h;
        CheckConnection::firstCheckDelay = 1h;
        CheckConnection::checkPeriod = 1h;
    }

    void tickRunsWithItsPeriodAndEndsAtOnceWithOneLastSignal() {
        UpdateProducer thread(nullptr);
        TickCounter ticks(thread);
        UpdateProducer::tickPeriod = 50ms;
        QElapsedTimer clock;
        clock.start();
        thread.start();
        QTRY_VERIFY(ticks.count >= 3);
        QVERIFY2(clock.elapsed() >= 150, qPrintable(QString::number(clock.elapsed())));
        thread.stop();
        QCoreApplication::processEvents();

        UpdateProducer::tickPeriod = 1h;
        for (int drag = 1; drag <= 2; ++drag) { // it can be started again
            ticks.count = 0;
            thread.start();
            thread.stop();
            QVERIFY(thread.isFinished());
            QCoreApplication::processEvents();
            QCOMPARE(ticks.count, 1);
        }
        UpdateProducer::tickPeriod = 20ms;
        connect(
            &thread, &UpdateProducer::updateProducer, &thread,
            [&thread] { thread.requestInterruption(); }, Qt::DirectConnection);
        thread.start();
        QVERIFY(thread.wait(60'000));
        thread.stop(); // while it is not running
        QCoreApplication::processEvents();
        QCOMPARE(ticks.count, 3);
    }

    void watcherWaitsAndThenChecksAgainAndAgain() {
        CheckConnection::firstCheckDelay = 300ms;
        CheckConnection::checkPeriod = 50ms;
        CheckConnection thread(nullptr);
        thread.setWatchedAddress(kProducer);
        QSignalSpy announcements(&thread, &CheckConnection::serverAvailableAgain);
        SteadyProducer producer;
        QTRY_VERIFY(availableServers().contains(kProducer));

        QElapsedTimer clock;
        clock.start();
        thread.start();
        QTRY_VERIFY(announcements.count() >= 3);
        QVERIFY2(clock.elapsed() >= 400, qPrintable(QString::number(clock.elapsed())));

        // An address that only begins like the Producer's is not the Producer's.
        thread.setWatchedAddress(QStringLiteral("10.77.0.10"));
        QVERIFY(!announcements.wait(100));
        thread.setWatchedAddress(kProducer);
        QVERIFY(announcements.wait());

        producer.stopAnswering();
        QCoreApplication::processEvents(); // takes an answer that is on its way
        EventDispatcher::getInstance()->networkUtils().serverHasDisconnected(kProducer);
        QVERIFY(!announcements.wait(100));
    }

    void watcherIsSilentAfterItsStop() {
        CheckConnection::firstCheckDelay = 1ms;
        CheckConnection::checkPeriod = 1ms;
        CheckConnection thread(nullptr);
        thread.setWatchedAddress(kProducer);
        QSignalSpy announcements(&thread, &CheckConnection::serverAvailableAgain);
        const SteadyProducer producer;
        QTRY_VERIFY(availableServers().contains(kProducer));
        thread.start();
        QVERIFY(announcements.wait());

        // The thread has announced more while nobody looked: it must not come out later.
        QThread::msleep(50);
        thread.stop();
        const auto heard = announcements.count();
        QVERIFY(!announcements.wait(100));
        QCOMPARE(announcements.count(), heard);

        // Nor must a stale one come out under the next watch.
        CheckConnection::firstCheckDelay = 60s;
        thread.start();
        QVERIFY(!announcements.wait(100));
        QElapsedTimer clock;
        clock.start();
        thread.stop();
        QVERIFY2(clock.elapsed() < 30'000, "the stop has waited for the period");
    }

    void checksOfABusyTimeDoNotPileUp_data() {
        QTest::addColumn<std::chrono::milliseconds>("busy");
        QTest::addColumn<int>("announced");
        QTest::newRow("shortly") << 100ms << 1;
        QTest::newRow("as long as a failing attempt to connect") << 1'200ms << 0;
    }
    void checksOfABusyTimeDoNotPileUp() {
        QFETCH(std::chrono::milliseconds, busy);
        QFETCH(int, announced);
        CheckConnection::firstCheckDelay = 1ms;
        CheckConnection::checkPeriod = 1ms;
        CheckConnection thread(nullptr);
        thread.setWatchedAddress(kProducer);
        QSignalSpy announcements(&thread, &CheckConnection::serverAvailableAgain);
        std::atomic<bool> seen = false;
        connect(
            &thread, &CheckConnection::seen, this, [&] { seen = true; }, Qt::DirectConnection);
        const SteadyProducer producer;
        QTRY_VERIFY(availableServers().contains(kProducer));
        QElapsedTimer clock;
        clock.start();
        thread.start();
        while (!seen)
            QThread::msleep(1);
        std::this_thread::sleep_for(busy);
        thread.requestInterruption();
        thread.wait();
        QCOMPARE(announcements.count(), 0);
        QCoreApplication::processEvents();
        if (clock.elapsed() < 1'000 || announced == 0) // shortly, for the machine as well
            QCOMPARE(announcements.count(), announced);
    }
};

QTEST_GUILESS_MAIN(TestWorkers)
#include "tst_workers.moc"
