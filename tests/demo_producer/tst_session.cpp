#include "network/CompanionClient.h"
#include "network/events/EventTable.h"
#include "tests/support/GuardedTest.h"
#include "tools/demo_producer/ProducerSession.h"
#include "tools/demo_producer/ShowCatalog.h"

#include <QLineF>
#include <QSignalSpy>
#include <QTest>

#include <limits>
#include <memory>

using namespace NetworkCompanion;
using Kind = Warp::Kind;
using Element = LV_NTC_ElementType;

namespace {

constexpr ItemKey kFront{Element::Screen, 0, 0};
constexpr ItemKey kWall{Element::Screen, 1, 0};
constexpr ItemKey kLeftSilo{Element::ScreenPart, 2, 0};
constexpr ItemKey kTide{Element::Media, 11, 1};
constexpr ItemKey kRadar{Element::Media, 14, 4};

/// A connected companion that keeps what it hears.
class Peer {
public:
    explicit Peer(const ProducerSession& session) {
        QObject::connect(&client_, &CompanionClient::newEvent, &client_, [this](eventData data) {
            QVERIFY(data.second);
            events_.emplace_back(data.second);
        });
        const std::size_t before = session.companions().size();
        QVERIFY(client_.connectToServer("127.0.0.1", session.port()));
        QTRY_COMPARE(session.companions().size(), before + 1);
    }

    void send(Event& event) { QVERIFY(client_.sendEvent(event)); }
    template <typename EventClass, typename... Arguments>
    void send(Arguments... arguments) {
        EventClass event(arguments...);
        send(event);
    }
    void ask(int dataIndex) { send<ItemDataEvent>(dataIndex); }
    void leave() { client_.disconnectFromServer(); }

    /// Waits for an event equal to this one. Events go one after the other, so that what came
    /// before it has been heard, too.
    bool hears(const Event& expected) {
        return QTest::qWaitFor([this, &expected] {
            return std::ranges::any_of(
                events_, [&](const auto& event) { return *event == expected; });
        });
    }
    template <typename EventClass, typename... Arguments>
    bool hears(Arguments... arguments) {
        return hears(EventClass(arguments...));
    }
    /// Waits until an event of the class has come, and returns the last one.
    template <typename EventClass>
    const EventClass* last() {
        const EventClass* found = nullptr;
        static_cast<void>(QTest::qWaitFor([this, &found] {
            for (const auto& event : events_)
                if (const auto* typed = dynamic_cast<const EventClass*>(event.get()))
                    found = typed;
            return found != nullptr;
        }));
        return found;
    }
    template <typename EventClass>
    [[nodiscard]] qsizetype count() const {
        return std::ranges::count_if(
            events_,
            [](const auto& event) {
                return dynamic_cast<const EventClass*>(event.get()) != nullptr;
            });
    }
    [[nodiscard]] const std::vector<std::unique_ptr<Event>>& events() const { return events_; }
    void forget() { events_.clear(); }

private:
    CompanionClient client_{nullptr};
    std::vector<std::unique_ptr<Event>> events_;
};

} // namespace

class SessionTest : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void init() {
        GuardedTest::init();
        session_ = std::make_unique<ProducerSession>(
            std::vector{ShowCatalog::harbour(), ShowCatalog::winterGarden()}, nullptr);
        QVERIFY(session_->listen(QHostAddress::LocalHost, 0));
        connect(session_.get(), &ProducerSession::logged, this,
                [this](const QString& line) { log_.append(line); });
        log_.clear();
        a_ = std::make_unique<Peer>(*session_);
        b_ = std::make_unique<Peer>(*session_);
    }
    void cleanup() {
        a_.reset();
        b_.reset();
        session_.reset();
        GuardedTest::cleanup();
    }

    /// What the window makes of a show is compared with it elsewhere; this is what else there is.
    void resourcesGoToWhoAsks() {
        a_->send<MsgEvent>("getResources");
        QVERIFY(a_->last<MireEvent>());
        QVERIFY(a_->hears<ConfigQuickKeyEvent>(2u, 3u, 0u));
        QVERIFY(a_->hears<AddQuickKeyEvent>(7u, 0u, 0u, "Финал", "#b3364b"));
        QTRY_COMPARE(a_->count<AddQuickKeyEvent>(), 8);
        QVERIFY(b_->events().empty());
        // A screen comes before its parts, the grid before the keys. A companion may take a
        // screen's mode from its deformation; the mode therefore comes last.
        const auto placeOf = [this](const Event& wanted) {
            const auto isIt = [&](const auto& event) { return *event == wanted; };
            return std::ranges::find_if(a_->events(), isIt) - a_->events().begin();
        };
        const auto mode = placeOf(ScreenModeEvent(LV_NTC_ModeType::Parts, 2, 3, "Silos"));
        QVERIFY(placeOf(DeformationModeEvent(Kind::None, 2, 3, "Silos", 2, 2, false)) < mode);
        QVERIFY(mode < qsizetype(a_->events().size()));
        const auto part =
            placeOf(AddScreenPartEvent(2, 0, 4, 640, 1080, 0, 0.0, "Left silo", false));
        QVERIFY(placeOf(AddScreenEvent(2, 3, 1920, 1080, 0, 0.0, "Silos", false, false)) < part);
        QVERIFY(part < qsizetype(a_->events().size()));
        QVERIFY(placeOf(ConfigQuickKeyEvent(2, 3, 0)) <
                placeOf(AddQuickKeyEvent(7, 0, 0, "Финал", "#b3364b")));
    }

    void movesAndBlindsReachEverybody() {
        const std::shared_ptr<Event> edits[] = {
            std::make_shared<ScreenMovePointEvent>(0, 1, "Warehouse front", 48, 960.5, -0.1, 0.0,
                                                   true, true),
            std::make_shared<ScreenPartMovePointEvent>(2, 0, 4, "Left silo", 3, 1e-300, 2.0, 0.0,
                                                       true, false),
            std::make_shared<MediaMovePointEvent>(14, 4, 10, "Radar", 15, 0.25, 1.5, 0.0, false,
                                                  true),
            std::make_shared<TextureMovePointEvent>(22, 2, 12, "Anchor", 0, -5.0, 6.0, 0.0, true,
                                                    false),
            std::make_shared<ScreenPartBlindEvent>(2, 0, 0, "Left silo", true),
            std::make_shared<MediaBlindEvent>(Element::Texture, 22, 2, 0, "Anchor", true)};
        for (const auto& edit : edits)
            a_->send(*edit);
        for (const bool blinded : {true, false}) {
            a_->send<BlindEvent>(0u, 1u, "renamed", blinded);
            QVERIFY(b_->hears<BlindEvent>(0u, 1u, "Side wall", blinded));
        }
        for (Peer* const peer : {a_.get(), b_.get()})
            for (const auto& edit : edits)
                QVERIFY(peer->hears(*edit));
        const Show& show = session_->show();
        QCOMPARE(show.find(kFront)->warp.xy[48], (ControlPoint{{960.5, -0.1}, true}));
        QCOMPARE(show.find(kLeftSilo)->warp.xy[3], (ControlPoint{{1e-300, 2.0}, false}));
        QCOMPARE(show.find(kRadar)->warp.uv[15], (ControlPoint{{0.25, 1.5}, true}));
        QVERIFY(!show.find(kWall)->blinded && show.find(kLeftSilo)->blinded);
    }

    void deformationsReachEverybody() {
        const Surface before = session_->show().find(kWall)->warp.xySurface();
        a_->send<DeformationModeEvent>(Kind::Bezier, 1u, 2u, "", 7u, 10u, false);
        QVERIFY(b_->hears<ScreenModeEvent>(LV_NTC_ModeType::Deformation, 1u, 2u, "Side wall"));
        QVERIFY(b_->hears<DeformationModeEvent>(Kind::Bezier, 1u, 2u, "Side wall", 7u, 10u, false));
        for (const Peer* peer : {a_.get(), b_.get()})
            QTRY_COMPARE(peer->count<ScreenMovePointEvent>(), 2 * 70);
        const Surface after = session_->show().find(kWall)->warp.xySurface();
        for (const double s : {0.1, 0.5, 0.8})
            QVERIFY(QLineF(before.at(s, 1 - s), after.at(s, 1 - s)).length() < 1.0);
        a_->send<DeformationModeEvent>(Kind::Keystone, 1u, 2u, "", 2u, 2u, true);
        QVERIFY(b_->hears<ScreenMovePointEvent>(1u, 2u, "Side wall", 0u, -960., -540., 0., true,
                                                false));

        // None means simple mode for a screen, and a keystone for a part.
        a_->send<DeformationModeEvent>(Kind::None, 0u, 1u, "", 2u, 2u, false);
        a_->send<ScreenPartDeformationModeEvent>(Kind::None, 2u, 0u, 4u, "", 2u, 2u, false);
        QVERIFY(b_->hears<ScreenModeEvent>(LV_NTC_ModeType::Simple, 0u, 1u, "Warehouse front"));
        QVERIFY(b_->hears<ScreenPartDeformationModeEvent>(Kind::Keystone, 2u, 0u, 4u, "Left silo",
                                                          2u, 2u, false));
        // A screen that is handled through its parts stays so.
        a_->send<DeformationModeEvent>(Kind::Keystone, 2u, 3u, "", 2u, 2u, false);
        QVERIFY(b_->hears<ScreenModeEvent>(LV_NTC_ModeType::Parts, 2u, 3u, "Silos"));
        a_->send<MediaDeformationModeEvent>(Element::Media, Kind::Curve, 11u, 1u, 7u, "", 3u, 16u,
                                            false);
        QVERIFY(b_->hears<MediaDeformationModeEvent>(Element::Media, Kind::Curve, 11u, 1u, 7u,
                                                     "Tide", 3u, 16u, false));
        QCOMPARE(session_->show().find(kTide)->warp,
                 Warp::straight(Kind::Curve, 3, 16, {1920, 1080}));
    }

    void companionsStayInStep() {
        a_->send<MireEvent>(0u, LV_NTC_PictureType::Tile);
        a_->send<ExecuteQuickKeyEvent>(7u);
        a_->send<UpdateSettingsEvent>("#00ff00", 2);
        QSignalSpy executed(session_.get(), &ProducerSession::quickKeyExecuted);
        QVERIFY(executed.wait());
        QCOMPARE(executed[0][0].toUInt(), 7U);
        QCOMPARE(executed[0][1].toString(), "Финал");
        QVERIFY(b_->hears<MireEvent>(0u, LV_NTC_PictureType::Tile));
        QTRY_COMPARE(session_->companions().begin()->second.pointShape, 2);
        QCOMPARE(session_->companions().begin()->second.pointColor, "#00ff00");
        QCOMPARE(a_->count<MireEvent>(), 0); // it chose the pattern itself
        a_->send<UpdateSettingsEvent>("", 0);
        QTRY_COMPARE(session_->companions().begin()->second.pointShape, 0);
    }

    void selectionEndsWithWhoeverSelected() {
        const auto selected = [this] { return session_->show().find(kFront)->warp.xy[5].selected; };
        a_->ask(1);
        b_->ask(1);
        a_->send<ScreenMovePointEvent>(0u, 1u, "", 5u, 1.0, 2.0, 0.0, true, true);
        QTRY_VERIFY(selected());
        b_->ask(-1); // somebody else is still at it
        QVERIFY(
            b_->hears<ScreenMovePointEvent>(0u, 1u, "Warehouse front", 5u, 1., 2., 0., true, true));
        QTRY_COMPARE(session_->receivedEvents().at("ItemData"), 3);
        QVERIFY(selected());
        a_->leave();
        QTRY_VERIFY(!selected());
    }

    void aNewShowIsAskedForAgain() {
        a_->ask(1);
        QVERIFY(a_->last<ItemDataEvent>());
        session_->startNewShow();
        QVERIFY(a_->hears<MsgEvent>("newShow"));
        QVERIFY(b_->hears<MsgEvent>("newShow"));
        // Keys that the new show lacks go one by one, the highest first.
        std::vector<quint32> deleted;
        for (const auto& event : b_->events())
            if (const auto* key = dynamic_cast<const DeleteQuickKeyEvent*>(event.get()))
                deleted.push_back(key->keyId());
        QCOMPARE(deleted, (std::vector<quint32>{8, 7, 6, 5, 4, 3}));
        QVERIFY(!session_->companions().begin()->second.editing);
        a_->send<MsgEvent>("getResources");
        QVERIFY(a_->hears<AddScreenPartEvent>(5u, 7u, 5u, 960u, 1080u, 0u, 0.0, "", false));
        session_->startNewShow();
        QCOMPARE(session_->show(), ShowCatalog::harbour());
    }

    void whatMakesNoSenseIsIgnored() {
        const Show before = session_->show();
        const double nan = std::numeric_limits<double>::quiet_NaN();
        a_->send<ScreenMovePointEvent>(0u, 1u, "", 4'000'000'000u, 0.0, 0.0, 0.0, true, false);
        a_->send<ScreenMovePointEvent>(0u, 1u, "", 0u, nan, 0.0, 0.0, true, false);
        a_->send<ScreenMovePointEvent>(99u, 1u, "", 0u, 0.0, 0.0, 0.0, true, false);
        a_->send<ScreenPartMovePointEvent>(2u, 3u, 4u, "", 0u, 0.0, 0.0, 0.0, true, false);
        a_->send<MediaMovePointEvent>(14u, 5u, 10u, "", 0u, 0.0, 0.0, 0.0, true, false);
        a_->send<DeformationModeEvent>(Kind::Curve, 0u, 1u, "", 0xFFFFFFFFu, 3u, false);
        a_->send<DeformationModeEvent>(Kind(3), 0u, 1u, "", 3u, 3u, false);
        a_->send<MediaDeformationModeEvent>(Element::Screen, Kind::Curve, 0u, 0u, 1u, "", 3u, 3u,
                                            false);
        a_->send<MediaBlindEvent>(Element(7), 11u, 1u, 0u, "", true);
        a_->send<BlindEvent>(1u, 77u, "", true);
        a_->send<ScreenModeEvent>(LV_NTC_ModeType(9), 0u, 1u, "");
        a_->send<MireEvent>(0u, LV_NTC_PictureType(12));
        a_->send<MireEvent>(0u, LV_NTC_PictureType(-1));
        a_->send<ExecuteQuickKeyEvent>(9u);
        a_->send<UpdateSettingsEvent>("red", 1);
        a_->send<UpdateSettingsEvent>("#ff0000", 5);
        a_->send<RemoveScreenEvent>(0u);
        a_->send<MsgEvent>("newShow");
        a_->send<GetResourcesIdEvent>(1u);
        a_->send<ItemDataEvent>(1000);
        const qsizetype sent = 20;
        QTRY_COMPARE(log_.filter("companion 1: ").size(), sent);
        QCOMPARE(log_.filter(": ignored: ").size(), sent);
        QCOMPARE(session_->show(), before);
        QVERIFY(session_->executedQuickKeys().empty());
        a_->send<MireEvent>(0u, LV_NTC_PictureType::White); // the link stands
        QVERIFY(b_->hears<MireEvent>(0u, LV_NTC_PictureType::White));
        QCOMPARE(b_->events().size(), 1u);
        QCOMPARE(a_->events().size(), 0u);
    }

private:
    std::unique_ptr<ProducerSession> session_;
    QStringList log_;
    std::unique_ptr<Peer> a_;
    std::unique_ptr<Peer> b_;
};

QTEST_GUILESS_MAIN(SessionTest)
#include "tst_session.moc"
