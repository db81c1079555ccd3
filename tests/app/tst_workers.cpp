#include "app/shell/CheckConnection.h"
#include "app/shell/EventDispatcher.h"
#include "app/shell/UpdateProducer.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/GuardedTest.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

#include <atomic>

using namespace std::chrono_literals;

namespace {

const QString kProducer = QStringLiteral("10.77.0.1"); // the virtual interface of this test

NetworkCompanion::NetworkUtils& discovery() {
    return EventDispatcher::getInstance()->networkUtils();
}

/// Counts on this thread.
struct TickCounter : QObject {
    explicit TickCounter(const UpdateProducer& thread) {
        connect(
            &thread, &UpdateProducer::updateProducer, this, [this] { ++ticks; });
    }
    int ticks = 0;
};

/// A watcher, not started, of a Producer that discovery lists.
struct Watch {
    explicit Watch(const Timing& timing) : thread(nullptr, timing) {
        thread.setWatchedAddress(kProducer);
        QVERIFY(producer.answerDiscovery(QHostAddress(kProducer)));
        discovery().pingServers();
        QTRY_VERIFY(discovery().getAvailableServers().contains(kProducer));
        clock.start();
    }

    MeshpadTest::FakeProducer producer;
    CheckConnection thread;
    QSignalSpy announcements{&thread, &CheckConnection::serverAvailableAgain};
    QElapsedTimer clock;
};

} // namespace

class TestWorkers : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void initTestCase() { EventDispatcher::getInstance(); } // starts discovery

    void tickRepeatsWithItsPeriod() {
        UpdateProducer thread(nullptr, {.tickPeriod = 50ms});
        const TickCounter counter(thread);
        QElapsedTimer clock;
        clock.start();
        thread.start();
        QTRY_VERIFY(counter.ticks >= 3);
        QVERIFY2(clock.elapsed() >= 150, qPrintable(QString::number(clock.elapsed())));
    }

    void tickEndsAtOnceWithOneMoreSignal() {
        UpdateProducer thread(nullptr, {.tickPeriod = 1h});
        const TickCounter counter(thread);
        for (int drag = 1; drag <= 2; ++drag) {
            thread.start();
            thread.stop();
            QVERIFY(thread.isFinished());
            QCoreApplication::processEvents();
            QCOMPARE(counter.ticks, drag);
        }
    }

    void tickEndsWhenInterrupted() {
        UpdateProducer thread(nullptr, {.tickPeriod = 20ms});
        const TickCounter counter(thread);
        thread.start();
        thread.requestInterruption();
        QVERIFY(thread.wait(60'000));
        thread.stop(); // does nothing
        QTRY_COMPARE(counter.ticks, 1);
    }

    void watcherWaitsBeforeItsFirstCheck() {
        Watch watch({.firstCheckDelay = 300ms, .checkPeriod = 50ms});
        watch.thread.start();
        QTRY_VERIFY(watch.announcements.size() >= 3);
        QVERIFY2(watch.clock.elapsed() >= 400, qPrintable(QString::number(watch.clock.elapsed())));
    }

    void watcherAnnouncesOnlyTheWatchedProducer() {
        Watch watch({.firstCheckDelay = 1ms, .checkPeriod = 20ms});
        watch.thread.setWatchedAddress(kProducer + '0');
        watch.thread.start();
        QVERIFY(!watch.announcements.wait(100));
        watch.thread.setWatchedAddress(kProducer);
        QVERIFY(watch.announcements.wait());

        watch.producer.stopAnswering();
        QCoreApplication::processEvents(); // receives an answer that has been sent
        discovery().serverHasDisconnected(kProducer);
        QVERIFY(!watch.announcements.wait(100));
    }

    void watcherIsSilentAfterItsStop() {
        Watch watch({.firstCheckDelay = 1ms, .checkPeriod = 1ms});
        watch.thread.start();
        QVERIFY(watch.announcements.wait());
        QThread::msleep(50); // queues an announcement
        watch.thread.stop();
        watch.announcements.clear();
        QVERIFY(!watch.announcements.wait(100));
        watch.thread.start(); // again
        QVERIFY(watch.announcements.wait());
    }

    void watcherStopsAtOnce() {
        Watch watch({.firstCheckDelay = 60s});
        watch.thread.start();
        QVERIFY(!watch.announcements.wait(50));
        watch.thread.stop();
        QVERIFY(watch.clock.elapsed() < 30'000);
    }

    void checksDuringABusyTimeCauseAtMostOneAnnouncement_data() {
        QTest::addColumn<int>("busy"); // ms
        QTest::addColumn<int>("announced");
        QTest::newRow("shortly") << 100 << 1;
        QTest::newRow("as long as a failing attempt to connect") << 1'200 << 0;
    }
    void checksDuringABusyTimeCauseAtMostOneAnnouncement() {
        QFETCH(int, busy);
        QFETCH(int, announced);
        Watch watch({.firstCheckDelay = 1ms, .checkPeriod = 1ms});
        std::atomic<bool> seen = false;
        connect(
            &watch.thread, &CheckConnection::seen, this, [&] { seen = true; },
            Qt::DirectConnection);
        watch.thread.start();
        while (!seen)
            QThread::msleep(1);
        QThread::msleep(static_cast<unsigned long>(busy));
        watch.thread.requestInterruption();
        watch.thread.wait();
        QCoreApplication::processEvents();
        if (announced == 0 || watch.clock.elapsed() < 1'000) // not on a busy machine
            QCOMPARE(watch.announcements.size(), announced);
    }
};

QTEST_GUILESS_MAIN(TestWorkers)
#include "tst_workers.moc"
