#include "app/shell/CheckConnection.h"
#include "app/shell/EventDispatcher.h"
#include "app/shell/UpdateProducer.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/GuardedTest.h"

#include <QDeadlineTimer>
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

    void tickEndsAtOnceWithOneMoreSignal() {
        UpdateProducer thread(nullptr, {.tickPeriod = 1h});
        int ticks = 0;
        connect(&thread, &UpdateProducer::updateProducer, this, [&] { ++ticks; });
        for (int drag = 1; drag <= 2; ++drag) {
            thread.start();
            thread.stop();
            QVERIFY(thread.isFinished());
            QCoreApplication::processEvents();
            QCOMPARE(ticks, drag);
        }
    }

    void watcherWaitsBeforeItsFirstCheck() {
        Watch watch({.firstCheckDelay = 300ms, .checkPeriod = 50ms});
        watch.thread.start();
        QTRY_VERIFY(watch.announcements.size() >= 3);
        QVERIFY(watch.clock.elapsed() >= 400);
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
        QVERIFY(!watch.announcements.wait(100));
        watch.thread.start(); // again
        QVERIFY(watch.announcements.wait());
    }

    void oldChecksCauseNoAnnouncement() {
        Watch watch({.firstCheckDelay = 1ms, .checkPeriod = 1ms});
        std::atomic<bool> seen = false;
        connect(
            &watch.thread, &CheckConnection::seen, this, [&] { seen = true; },
            Qt::DirectConnection);
        watch.thread.start();
        QDeadlineTimer deadline(5s);
        while (!seen && !deadline.hasExpired())
            QThread::msleep(1); // without events: the signal must stay queued
        QVERIFY(seen);
        QThread::msleep(1'200); // as long as a failing attempt to connect
        watch.thread.requestInterruption();
        watch.thread.wait();
        QCoreApplication::processEvents();
        QVERIFY(watch.announcements.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestWorkers)
#include "tst_workers.moc"
