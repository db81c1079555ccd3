#include "network/CompanionClient.h"
#include "network/MireEvent.h"
#include "network/NetworkUtils.h"
#include "tests/support/MessageGuard.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

using namespace NetworkCompanion;

/// The program itself, as the other tests and an operator start it.
class ProgramTest : public QObject {
    Q_OBJECT

private slots:
    void init() {
        messages_.emplace();
        program_.setProgram(qEnvironmentVariable("MESHPAD_DEMO_PRODUCER"));
        program_.setProcessChannelMode(QProcess::MergedChannels);
    }
    void cleanup() {
        messages_->verify();
        messages_.reset();
    }

    void isFoundServesAndEndsProperly() {
        QTemporaryDir folder;
        const QString state = folder.filePath(QStringLiteral("state.json"));
        program_.setArguments({QStringLiteral("--headless"), QStringLiteral("--state"), state,
                               QStringLiteral("--items"), QStringLiteral("50"),
                               QStringLiteral("--grid"), QStringLiteral("46x46")});
        program_.start();
        QVERIFY(program_.waitForStarted());

        NetworkUtils discovery(62331, 62330, false);
        QTRY_COMPARE_WITH_TIMEOUT(discovery.getAvailableServers(),
                                  QStringList(QStringLiteral("10.77.0.1")), 60'000);
        CompanionClient client(nullptr);
        QVERIFY(client.connectToServer(QStringLiteral("10.77.0.1"), 62330));
        MireEvent pattern(0, LV_NTC_PictureType::Logo);
        QVERIFY(client.sendEvent(pattern));
        const auto patternInFile = [&state] {
            QFile file(state);
            return file.open(QIODevice::ReadOnly)
                       ? QJsonDocument::fromJson(file.readAll())[QStringLiteral("pattern")]
                             .toString()
                       : QString();
        };
        QTRY_COMPARE_WITH_TIMEOUT(patternInFile(), QStringLiteral("logo"), 30'000);

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
        for (const QStringList& arguments :
             {QStringList{QStringLiteral("--show"), QStringLiteral("/nowhere.json")},
              {QStringLiteral("--items"), QStringLiteral("-1")},
              {QStringLiteral("--grid"), QStringLiteral("99x99")},
              {QStringLiteral("--address"), QStringLiteral("192.0.2.1")}}) {
            program_.setArguments(QStringList{QStringLiteral("--headless")} + arguments);
            program_.start();
            QVERIFY(program_.waitForFinished());
            QCOMPARE(program_.exitCode(), 2);
            QVERIFY(!program_.readAll().isEmpty());
        }
    }

private:
    std::optional<MeshpadTest::MessageGuard> messages_;
    QProcess program_;
};

QTEST_GUILESS_MAIN(ProgramTest)
#include "program_test.moc"
