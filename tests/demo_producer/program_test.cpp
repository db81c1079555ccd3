#include "network/CompanionClient.h"
#include "network/MireEvent.h"
#include "network/NetworkUtils.h"
#include "tests/support/GuardedTest.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace NetworkCompanion;

/// The program itself, as the other tests and an operator start it.
class ProgramTest : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void init() {
        GuardedTest::init();
        program_.setProgram(qEnvironmentVariable("MESHPAD_DEMO_PRODUCER"));
        program_.setProcessChannelMode(QProcess::MergedChannels);
    }

    void isFoundServesAndEndsProperly() {
        QTemporaryDir folder;
        const QString state = folder.filePath("state.json");
        program_.setArguments({"--headless", "--state", state, "--items", "50", "--grid", "46x46"});
        program_.start();
        QVERIFY(program_.waitForStarted());

        NetworkUtils discovery(62331, 62330, false);
        QTRY_COMPARE_WITH_TIMEOUT(discovery.getAvailableServers(), QStringList("10.77.0.1"),
                                  60'000);
        CompanionClient client(nullptr);
        QVERIFY(client.connectToServer("10.77.0.1", 62330));
        MireEvent pattern(0, LV_NTC_PictureType::Logo);
        QVERIFY(client.sendEvent(pattern));
        const auto patternInFile = [&state] {
            QFile file(state);
            return file.open(QIODevice::ReadOnly)
                       ? QJsonDocument::fromJson(file.readAll())["pattern"].toString()
                       : QString();
        };
        QTRY_COMPARE_WITH_TIMEOUT(patternInFile(), "logo", 30'000);

        program_.terminate();
        QVERIFY(program_.waitForFinished());
        QCOMPARE(program_.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program_.exitCode(), 0);
        const QByteArray log = program_.readAll();
        QVERIFY2(log.contains("plays \"50 items\", 50 items, at 10.77.0.1:62330"), log);
        QVERIFY2(log.contains("companion 1: Mire: logo"), log);
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
#include "program_test.moc"
