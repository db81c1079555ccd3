#include "tests/support/GuardedTest.h"

#include <QProcess>
#include <QTest>

/// The program itself, as the other tests and an operator start it.
class ProgramTest : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void init() {
        GuardedTest::init();
        program_.setProgram(qEnvironmentVariable("MESHPAD_DEMO_PRODUCER"));
        program_.setProcessChannelMode(QProcess::MergedChannels);
    }

    void playsAndEndsProperly() {
        program_.setArguments({"--headless", "--items", "50", "--grid", "46x46"});
        program_.start();
        QByteArray log;
        const auto plays = [&] {
            log += program_.readAll();
            return log.contains("plays \"50 items\", 50 items, at 10.77.0.1:62330");
        };
        QVERIFY2(QTest::qWaitFor(plays, 60'000), log);
        program_.terminate();
        QVERIFY(program_.waitForFinished());
        QCOMPARE(program_.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program_.exitCode(), 0);
        log += program_.readAll();
        QVERIFY2(log.trimmed().endsWith("ends"), log);
    }

    void saysWhatItCannotDo() {
        for (const QStringList& arguments : {QStringList{"--show", "/nowhere.json"},
                                             {"--items", "-1"},
                                             {"--grid", "99x99"},
                                             {"--address", "192.0.2.1"}}) {
            program_.setArguments(QStringList{"--headless"} + arguments);
            program_.start();
            QVERIFY(program_.waitForFinished());
            QCOMPARE(program_.exitCode(), 2);
            QVERIFY(!program_.readAll().isEmpty());
        }
    }

private:
    QProcess program_;
};

QTEST_GUILESS_MAIN(ProgramTest)
#include "tst_program.moc"
