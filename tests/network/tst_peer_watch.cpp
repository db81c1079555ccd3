#include "network/PeerWatch.h"
#include "tests/support/GuardedTest.h"

#include <QTest>

using namespace NetworkCompanion;
using namespace std::chrono_literals;

/// When a connection that is sending counts as lost.
class TestPeerWatch : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void findsVanishedPeer_data() {
        // One look every 500 ms: a: acknowledged, s: a segment was sent, -: nothing has happened.
        QTest::addColumn<QByteArray>("looks");
        QTest::addColumn<int>("vanishedAt"); // index of the look
        QTest::newRow("repetitions") << QByteArray("asss------") << 6;
        QTest::newRow("one segment") << QByteArray("as---------") << -1;
        QTest::newRow("one rare probe lost") << QByteArray("as------sas------sa") << -1;
        QTest::newRow("two rare probes lost") << QByteArray("as------s--") << 9;
    }
    void findsVanishedPeer() {
        QFETCH(const QByteArray, looks);
        PeerWatch::Clock::time_point now{};
        PeerWatch watch(now);
        KeepAlive::Progress progress{true, 0, 0ms};
        int vanishedAt = -1;
        for (int look = 0; look < looks.size() && vanishedAt < 0; ++look) {
            now += 500ms;
            progress.segmentsSent += looks[look] == 's' ? 1 : 0;
            progress.sinceHeard = looks[look] == 'a' ? 0ms : progress.sinceHeard + 500ms;
            if (watch.hasVanished(progress, now))
                vanishedAt = look;
        }
        QTEST(vanishedAt, "vanishedAt");
    }
};

QTEST_GUILESS_MAIN(TestPeerWatch)
#include "tst_peer_watch.moc"
