#include "network/CompanionClient.h"
#include "network/events/EventTable.h"
#include "resources/CompanionResources.h"
#include "tests/support/GuardedTest.h"
#include "tools/demo_producer/Commands.h"
#include "tools/demo_producer/ProducerWindow.h"
#include "tools/demo_producer/ShowCatalog.h"
#include "tools/demo_producer/ShowFile.h"

#include <QJsonDocument>
#include <QLineF>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace NetworkCompanion;
using Kind = Warp::Kind;
using Element = LV_NTC_ElementType;
using EventPointer = std::shared_ptr<Event>;

namespace {

/// A connected companion that records the events it receives.
struct Peer {
    explicit Peer(const ProducerSession& session) {
        QObject::connect(&client, &CompanionClient::newEvent, &client,
                         [this](eventData data) { events.emplace_back(data.second); });
        QVERIFY(client.connectToServer("127.0.0.1", session.port()));
    }
    void send(Event&& event) { QVERIFY(client.sendEvent(event)); }
    /// Waits for an event equal to this one; returns its index, or -1 after a timeout.
    qsizetype indexOf(const Event& expected) {
        const auto isEqual = [&](const EventPointer& event) { return *event == expected; };
        static_cast<void>(QTest::qWaitFor([&] { return std::ranges::any_of(events, isEqual); }));
        const auto found = std::ranges::find_if(events, isEqual);
        return found == events.end() ? -1 : found - events.begin();
    }
    bool receives(const Event& expected) { return indexOf(expected) >= 0; }

    CompanionClient client{nullptr};
    std::vector<EventPointer> events;
};

/// A Producer and two companions.
struct World {
    ProducerSession session{{ShowCatalog::harbour(), ShowCatalog::winterGarden()}, nullptr};
    const bool isListening = session.listen(QHostAddress::LocalHost, 0);
    Peer a{session}, b{session};
    const bool isReady = QTest::qWaitFor([this] { return session.companions().size() == 2; });
};

} // namespace

class DemoProducerTest : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void startsNewShowWithoutOldQuickKeys() {
        World world;
        world.session.startNewShow();
        QCOMPARE(world.b.indexOf(MsgEvent("newShow")), 6); // after six deletions
    }

    void appliesAndEchoesEdit_data() {
        QTest::addColumn<EventPointer>("edit");
        const auto row = [](const char* name, const auto& event) {
            using Class = std::decay_t<decltype(event)>;
            QTest::newRow(name) << EventPointer(std::make_shared<Class>(event));
        };
        using Point = ScreenMovePointEvent;
        row("screen point", Point(0, 1, "Warehouse front", 48, 960.5, -0.1, 0, true, true));
        row("part point", ScreenPartMovePointEvent(2, 0, 4, "Left silo", 3, 1, 2, 0, true, false));
        row("media point", MediaMovePointEvent(14, 4, 10, "Radar", 15, .25, 1.5, 0, false, true));
        row("texture point", TextureMovePointEvent(22, 2, 12, "Anchor", 0, -5, 6, 0, true, false));
        row("screen blind", BlindEvent(0, 1, "Side wall", true));
        row("part blind", ScreenPartBlindEvent(2, 0, 0, "Left silo", true));
        row("texture blind", MediaBlindEvent(Element::Texture, 22, 2, 0, "Anchor", true));
        row("ignored: point", Point(0, 1, "", 4'000'000'000u, 0, 0, 0, true, false));
        row("ignored: NaN", Point(0, 1, "", 0, qQNaN(), 0, 0, true, false));
        row("ignored: media", MediaMovePointEvent(15, 4, 10, "", 0, 0, 0, 0, true, false));
        row("ignored: grid", DeformationModeEvent(Kind::Curve, 0, 1, "", 1u << 31, 3, false));
        row("ignored: pattern", MireEvent(0, LV_NTC_PictureType(12)));
        row("ignored: event of a Producer", RemoveScreenEvent(0));
    }
    void appliesAndEchoesEdit() {
        QFETCH(EventPointer, edit);
        const bool isValid = !QByteArray(QTest::currentDataTag()).startsWith("ignored");
        World world;
        const auto before = world.session.show().items();
        QVERIFY(world.a.client.sendEvent(*edit));
        world.a.send(MireEvent(0, LV_NTC_PictureType::White)); // not sent back to its sender
        QVERIFY(world.b.receives(MireEvent(0, LV_NTC_PictureType::White)));
        QVERIFY(isValid ? world.b.receives(*edit) && world.a.receives(*edit)
                        : world.b.events.size() == 1 && world.a.events.empty());
        QCOMPARE(world.session.show().items() != before, isValid);
    }

    void keepsShapeInOtherGrid() {
        World world;
        const ShowItem& wall = *world.session.show().find(ItemKey::screen(1));
        const Surface before = wall.warp.xySurface();
        world.a.send(DeformationModeEvent(Kind::Bezier, 1, 2, "", 7, 10, false));
        QTRY_COMPARE(world.b.events.size(), 2 + 2 * 70u); // deformation, mode and points
        const Surface after = wall.warp.xySurface();
        QVERIFY(QLineF(before.at(0.1, 0.7), after.at(0.1, 0.7)).length() < 1); // pixel
        world.a.send(DeformationModeEvent(Kind::None, 1, 2, "", 2, 2, false));
        QVERIFY(world.b.receives(ScreenModeEvent(LV_NTC_ModeType::Simple, 1, 2, "Side wall")));
    }

    void readsFileItWrote() {
        Show show = ShowCatalog::harbour();
        QVERIFY(show.movePoint(kFront, true, 3, {0.1 + 0.2, 1e-17}, true)); // to the last bit
        QVERIFY(show.movePoint(kFront, false, 4, {1.0 / 3, -123456.789}, true));
        QVERIFY(show.setBlinded(kPart, true) && show.setPattern(LV_NTC_PictureType::Osd));
        for (const Show& each : {show, ShowCatalog::winterGarden(), ShowCatalog::large(200, 3)}) {
            QVERIFY(ShowFile::write(path_, ShowFile::toJson(each)));
            QCOMPARE(read(), each);
        }
    }

    void reportsFileError_data() {
        QTest::addColumn<QByteArray>("items");
        QTest::newRow("key") << QByteArray(R"({"item": "screen:0/1"})");
        QTest::newRow("size") << QByteArray(R"({"item": "screen:0", "width": 0})");
        QTest::newRow("identifiers") << QByteArray(R"({"item": "screen:0"}, {"item": "screen:0"})");
        QTest::newRow("missing") << QByteArray(R"({"item": "part:0/1"})");
        QTest::newRow("grid") << QByteArray(R"({"item": "screen:0", "deformation": {"rows": 5}})");
        QTest::newRow("fit") << QByteArray(R"({"item": "screen:0", "deformation": {"xy": [1]}})");
    }
    void reportsFileError() {
        QFETCH(QByteArray, items);
        items.replace("\"item\"", R"("height": 9, "width": 9, "item")");
        QString error;
        const auto json = QJsonDocument::fromJson("{\"items\": [" + items + "]}");
        QVERIFY(!ShowFile::fromJson(json.object(), error));
        QVERIFY2(error.contains(QTest::currentDataTag()), qPrintable(error));
    }

    void executesCommands() {
        ProducerSession session({ShowCatalog::harbour()}, nullptr);
        Commands commands(session, nullptr);
        for (const char* refused : {"pattern tile now", "blind screen:0", "move screen:0 xy 99 1"})
            QVERIFY2(!commands.execute(refused), refused);
        QCOMPARE(session.show(), ShowCatalog::harbour());
        for (const char* command : {"move part:2/1 uv 2 0.25 -3", "remove screen:2", "restore"})
            QVERIFY2(commands.execute(command), command);
        QCOMPARE(session.show().find(kPart)->warp.uv[2].position, QPointF(0.25, -3));
    }

    void windowShowsEdits() {
        initCompanionResources();
        ProducerSession session({ShowCatalog::harbour()}, nullptr);
        ProducerWindow window(session, "Test", QString(), true, false);
        const auto picture = [&](const QRect& area) { return window.grab(area).toImage(); };
        const QRect front(20, 68, 404, 227), inFront(100, 120, 240, 120), others(439, 68, 822, 227);
        session.setPattern(LV_NTC_PictureType::White);
        session.setBlinded(kPart, true);
        const QImage before = picture(front), inside = picture(inFront), rest = picture(others);
        // One colour, without gaps between the cells of the mesh.
        QCOMPARE(inside, inside.copy(0, 0, 1, 1).scaled(inside.size()));
        QCOMPARE(rest.pixel(619, 114), qRgb(0, 0, 0));       // the blinded part
        QCOMPARE(rest.pixel(749, 114), qRgb(255, 255, 255)); // its neighbour
        QVERIFY(session.movePoint(kFront, true, 0, {-400, -300}));
        QVERIFY(picture(front) != before);
        QCOMPARE(picture(others), rest);
    }

    /// A signal right after the start line must not kill the program.
    void programExitsCleanlyWhenTerminated() {
        QProcess program;
        program.start(qEnvironmentVariable("MESHPAD_DEMO_PRODUCER"),
                      {"--headless", "--grid", "46x46"});
        QByteArray log;
        const auto plays = [&] { return (log += program.readAll()).contains(".1:62330"); };
        QVERIFY2(QTest::qWaitFor(plays, 60'000), log);
        program.terminate();
        QVERIFY(program.waitForFinished());
        QVERIFY(program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0);
    }

private:
    std::optional<Show> read() const {
        QString error;
        return ShowFile::read(path_, error);
    }

    static constexpr ItemKey kFront = ItemKey::screen(0);
    static constexpr ItemKey kPart = ItemKey::screenPart(2, 1);
    QTemporaryDir folder_;
    const QString path_ = folder_.filePath("show.json");
};

QTEST_MAIN(DemoProducerTest)
#include "tst_demo_producer.moc"
