#include "tests/support/GuardedTest.h"
#include "tools/demo_producer/Commands.h"
#include "tools/demo_producer/DemoEdits.h"
#include "tools/demo_producer/ShowCatalog.h"
#include "tools/demo_producer/ShowFile.h"
#include "tools/demo_producer/StateFile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

using namespace NetworkCompanion;

namespace {

std::optional<Show> throughJson(const Show& show, QString& error) {
    const QByteArray text = QJsonDocument(ShowFile::toJson(show)).toJson();
    return ShowFile::fromJson(QJsonDocument::fromJson(text).object(), error);
}

QJsonObject object(const char* json) {
    return QJsonDocument::fromJson(json).object();
}

} // namespace

class ShowTest : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void aShowSurvivesItsFile() {
        Show show = ShowCatalog::harbour();
        const ItemKey front{LV_NTC_ElementType::Screen, 0, 0};
        QVERIFY(show.movePoint(front, true, 3, {0.1 + 0.2, 1.0 / 3}, true)); // to the last bit
        QVERIFY(show.movePoint(front, false, 4, {1e-17, -123456.789}, false));
        QVERIFY(show.setBlinded({LV_NTC_ElementType::ScreenPart, 2, 1}, true));
        QVERIFY(show.setPattern(LV_NTC_PictureType::SmpteVertical));
        for (const Show& each : {show, ShowCatalog::winterGarden(), ShowCatalog::large(2000, 3)}) {
            QString error;
            const std::optional<Show> read = throughJson(each, error);
            QVERIFY2(read, qPrintable(error));
            QCOMPARE(*read, each);
        }
    }

    void aFileNeedsLittle() {
        QString error;
        const auto show = ShowFile::fromJson(object(R"({"items": [
            {"item": "screen:4", "width": 800, "height": 600,
             "deformation": {"type": "curve", "rows": 3, "columns": 4}},
            {"item": "part:4/9", "width": 100, "height": 100}]})"),
                                             error);
        QVERIFY2(show, qPrintable(error));
        QCOMPARE(show->items()[0].warp,
                 Warp::straight(LV_NTC_DeformationType::Curve, 3, 4, {800, 600}));
        QCOMPARE(show->items()[0].mode, LV_NTC_ModeType::Deformation);
        QCOMPARE(show->items()[1].warp.kind, LV_NTC_DeformationType::Keystone);
        QCOMPARE(show->items()[1].dataIndex, 2u);
    }

    void aFileThatCannotBeIsRefused() {
        const std::pair<QByteArray, const char*> rows[] = {
            {R"({"item": "screen:0/1", "width": 9, "height": 9})", "no key"},
            {R"({"item": "screen:65536", "width": 9, "height": 9})", "screen id"},
            {R"({"item": "screen:0", "width": 0, "height": 9})", "size"},
            {R"({"item": "media:1/1", "width": 9, "height": 9},
                {"item": "media:1/1", "width": 9, "height": 9})",
             "identifiers"},
            {R"({"item": "part:0/1", "width": 9, "height": 9})", "screen is missing"},
            {R"({"item": "media:1/1", "width": 9, "height": 9,
                 "deformation": {"type": "bezier", "rows": 5, "columns": 4}})",
             "grid"},
            {R"({"item": "media:1/1", "width": 9, "height": 9,
                 "deformation": {"type": "keystone", "xy": [[0, 0]]}})",
             "points"}};
        for (const auto& [items, error] : rows) {
            QString reason;
            QVERIFY(!ShowFile::fromJson(object("{\"items\": [" + items + "]}"), reason));
            QVERIFY2(reason.contains(error), qPrintable(reason));
        }
    }

    void commandsDoWhatTheySay() {
        ProducerSession session({ShowCatalog::harbour(), ShowCatalog::winterGarden()}, nullptr);
        Commands commands(session, nullptr);
        const Show before = session.show();
        for (const char* refused : {"pattern",
                                    "pattern 12",
                                    "pattern tile now",
                                    "blind screen:0",
                                    "blind screen:9 on",
                                    "mode screen:0 9",
                                    "deform screen:0 bezier 5 5",
                                    "deform screen:0 bezier 67 4",
                                    "deform screen:0 curve 65 3",
                                    "deform screen:0 curve 1 3",
                                    "deform screen:0 curve 4",
                                    "move screen:0 xy 99 1 2",
                                    "move screen:0 xy 1 nan 2",
                                    "move screen:0 uv 1 2 -inf",
                                    "move screen:0 xy 1 1e300 2",
                                    "move screen:0 x 1 1 2",
                                    "move media:11/1 xy 0 0 0",
                                    "remove media:9/9",
                                    "restore",
                                    "key 0 #ffffff no",
                                    "delete-key 9",
                                    "key-grid 0 3",
                                    "new-show please",
                                    "dance"})
            QVERIFY2(!commands.execute(QString::fromLatin1(refused)), refused);
        QCOMPARE(session.show(), before);

        const auto run = [&](const QString& command) { return commands.execute(command); };
        QVERIFY(run("pattern smpte-horizontal"));
        QCOMPARE(session.show().pattern, LV_NTC_PictureType::SmpteHorizontal);
        QVERIFY(run("move part:2/0 uv 2 0.25 -3"));
        const ItemKey part{LV_NTC_ElementType::ScreenPart, 2, 0};
        QCOMPARE(session.show().find(part)->warp.uv[2].position, QPointF(0.25, -3));
        QVERIFY(run("deform screen:1 curve 4 6 reset"));
        QCOMPARE(session.show().items()[1].warp,
                 Warp::straight(LV_NTC_DeformationType::Curve, 4, 6, {1920, 1080}));
        QVERIFY(run("key 12 #123456 Two words"));
        QCOMPARE(session.show().quickKeys.at(12).name, "Two words");
        QVERIFY(run("remove part:2/0") && run("remove screen:2"));
        QCOMPARE(session.show().items().size(), before.items().size() - 4);
        QVERIFY(run("restore"));
        QCOMPARE(session.show().items().size(), before.items().size());
        QCOMPARE(session.show().find(part)->warp.uv[2].position, QPointF(0.25, -3));
        QVERIFY(run("remove screen:2") && run("new-show"));
        QVERIFY(!run("restore")); // of another show
        QCOMPARE(session.show().title, "Winter Garden");
    }

    void commandsComeFromScriptAndSocket() {
        ProducerSession session({ShowCatalog::harbour()}, nullptr);
        Commands commands(session, nullptr);
        QVERIFY(!commands.play("0.01 pattern tile\npattern white"));
        messages_->expect(QtWarningMsg, "Script: \"dance\" refused");
        QVERIFY(commands.play("# first\n0.02 dance\n 0.01 pattern tile\n"));
        QTRY_COMPARE(session.show().pattern, LV_NTC_PictureType::Tile);
        QTRY_VERIFY(messages_->isSatisfied());

        const quint16 port = commands.listen(0);
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, port);
        socket.write("pattern white\npattern grey\nblind screen:0 on\n");
        QTRY_COMPARE(socket.peek(100), QByteArray("ok\nrefused\nok\n"));
        QVERIFY(session.show().items()[0].blinded);
        socket.write(QByteArray(100'000, 'x'));
        QTRY_COMPARE(socket.state(), QTcpSocket::UnconnectedState);
    }

    void theStateFileFollows() {
        QTemporaryDir folder;
        const QString path = folder.filePath("state.json");
        ProducerSession session({ShowCatalog::harbour()}, nullptr);
        const auto state = [&path] {
            QFile file(path);
            return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                                  : QJsonObject();
        };
        std::optional<StateFile> writer(std::in_place, session, path, nullptr);
        QCOMPARE(state()["sequence"].toInt(), 1);
        const ItemKey front{LV_NTC_ElementType::Screen, 0, 0};
        for (int i = 0; i < 100; ++i)
            QVERIFY(session.movePoint(front, true, 1, {i + 0.1, 1.0 / 3}));
        QTRY_COMPARE(state()["sequence"].toInt(), 2); // a hundred at once
        const QJsonValue point = state()["items"][0]["deformation"]["xy"][1];
        QCOMPARE(point[0].toDouble(), 99.1);
        QCOMPARE(point[1].toDouble(), 1.0 / 3);
        QVERIFY(session.setPattern(LV_NTC_PictureType::Osd));
        writer.reset(); // nothing is lost at the end
        QCOMPARE(state()["pattern"].toString(), "osd");
    }

    void aShowThatPlaysItselfStaysAShow() {
        ProducerSession session({ShowCatalog::harbour(), ShowCatalog::large(60, 1)}, nullptr);
        Commands commands(session, nullptr);
        DemoEdits edits(session, commands, 0.01, 7, nullptr);
        for (int round = 0; round < 60; ++round) {
            for (int i = 0; i < 200; ++i)
                edits.edit();
            QString error;
            const auto read = throughJson(session.show(), error);
            QVERIFY2(read, qPrintable(error));
            QCOMPARE(*read, session.show());
        }
        QVERIFY(session.showsStarted() > 10);
    }
};

QTEST_GUILESS_MAIN(ShowTest)
#include "tst_show.moc"
