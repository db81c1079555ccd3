#include "network/CompanionClient.h"
#include "network/EventTable.h"
#include "tests/support/MessageGuard.h"
#include "tools/demo_producer/ProducerSession.h"
#include "tools/demo_producer/ShowCatalog.h"

#include <QLineF>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <limits>
#include <memory>
#include <optional>

using namespace NetworkCompanion;
using Kind = Warp::Kind;
using Element = LV_NTC_ElementType;

namespace {

constexpr ItemKey kFront{Element::Screen, 0, 0};
constexpr ItemKey kWall{Element::Screen, 1, 0};
constexpr ItemKey kSilos{Element::Screen, 2, 0};
constexpr ItemKey kLeftSilo{Element::ScreenPart, 2, 0};
constexpr ItemKey kTide{Element::Media, 11, 1};
constexpr ItemKey kRadar{Element::Media, 14, 4};
constexpr ItemKey kAnchor{Element::Texture, 22, 2};

/// A connected companion that keeps what it hears.
class Peer {
public:
    explicit Peer(const ProducerSession& session) {
        QObject::connect(&client_, &CompanionClient::newEvent, &client_, [this](eventData data) {
            QVERIFY(data.second);
            events_.emplace_back(data.second);
        });
        const std::size_t before = session.companions().size();
        QVERIFY(client_.connectToServer(QStringLiteral("127.0.0.1"), session.port()));
        QTRY_COMPARE(session.companions().size(), before + 1);
    }

    template <typename EventClass, typename... Arguments>
    void send(Arguments... arguments) {
        EventClass event(arguments...);
        QVERIFY(client_.sendEvent(event));
    }
    void ask(int dataIndex) { send<ItemDataEvent>(dataIndex); }
    void leave() { client_.disconnectFromServer(); }

    /// Waits for an event equal to this one. Events go one after the other, so that what came
    /// before it has been heard, too.
    template <typename EventClass, typename... Arguments>
    bool hears(Arguments... arguments) {
        const EventClass expected(arguments...);
        return QTest::qWaitFor([this, &expected] {
            return std::ranges::any_of(events_,
                                       [&](const auto& event) { return *event == expected; });
        });
    }
    /// Waits until an event of the class has come, and returns the last one.
    template <typename EventClass>
    const EventClass* last() {
        const EventClass* found = nullptr;
        static_cast<void>(QTest::qWaitFor([this, &found] {
            for (const auto& event : events_) {
                if (const auto* typed = dynamic_cast<const EventClass*>(event.get()))
                    found = typed;
            }
            return found != nullptr;
        }));
        return found;
    }
    template <typename EventClass>
    [[nodiscard]] qsizetype count() const {
        return std::ranges::count_if(events_, [](const auto& event) {
            return dynamic_cast<const EventClass*>(event.get()) != nullptr;
        });
    }
    [[nodiscard]] const std::vector<std::unique_ptr<Event>>& events() const { return events_; }
    void forget() { events_.clear(); }

private:
    CompanionClient client_{nullptr};
    std::vector<std::unique_ptr<Event>> events_;
};

template <typename PointEvent>
void comparePoints(const std::vector<PointEvent>& sent, const Warp& warp) {
    QCOMPARE(sent.size(), warp.xy.size() + warp.uv.size());
    for (const PointEvent& point : sent) {
        const ControlPoint& expected = (point.xy() ? warp.xy : warp.uv)[point.pointId()];
        QCOMPARE(QPointF(point.x(), point.y()), expected.place);
        QCOMPARE(point.selected(), expected.selected);
    }
}

} // namespace

class SessionTest : public QObject {
    Q_OBJECT

private slots:
    void init() {
        messages_.emplace();
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
        messages_->verify();
        messages_.reset();
    }

    void resourcesAreTheWholeShow() {
        session_->setBlinded(kRadar, true);
        a_->forget();
        a_->send<MsgEvent>("getResources");
        QVERIFY(a_->last<MireEvent>());
        QCOMPARE(a_->count<AddScreenEvent>(), 3);
        QCOMPARE(a_->count<AddScreenPartEvent>(), 3);
        QCOMPARE(a_->count<AddMediaEvent>(), 4);
        QCOMPARE(a_->count<AddTextureEvent>(), 2);
        QCOMPARE(a_->count<AddQuickKeyEvent>(), 8);
        QVERIFY(a_->hears<AddMediaEvent>(MediaType::LiveInput, 13u, 3u, 9u, 1280u, 720u, 0u, 0.0,
                                         "Crane camera", false));
        QVERIFY(
            a_->hears<AddScreenPartEvent>(2u, 1u, 5u, 640u, 1080u, 0u, 0.0, "Middle silo", false));
        QVERIFY(a_->hears<MediaDeformationModeEvent>(Element::Texture, Kind::Keystone, 22u, 2u, 12u,
                                                     "Anchor", 2u, 2u, false));
        QVERIFY(a_->hears<MediaBlindEvent>(Element::Media, 14u, 4u, 0u, "Radar", true));
        QVERIFY(a_->hears<AddQuickKeyEvent>(7u, 0u, 0u, "Финал", "#b3364b"));

        // What comes first matters: a screen before its parts, the grid before the keys, and a mode
        // after the deformation from which a companion would conclude another.
        const auto placeOf = [this](const Event& wanted) {
            return std::ranges::find_if(a_->events(),
                                        [&](const auto& event) { return *event == wanted; }) -
                   a_->events().begin();
        };
        const auto screen =
            placeOf(AddScreenEvent(2, 3, 1920, 1080, 0, 0.0, "Silos", false, false));
        const auto part =
            placeOf(AddScreenPartEvent(2, 0, 4, 640, 1080, 0, 0.0, "Left silo", false));
        const auto deformation =
            placeOf(DeformationModeEvent(Kind::None, 2, 3, "Silos", 2, 2, false));
        const auto mode = placeOf(ScreenModeEvent(LV_NTC_ModeType::Parts, 2, 3, "Silos"));
        const auto grid = placeOf(ConfigQuickKeyEvent(2, 3, 0));
        const auto key = placeOf(AddQuickKeyEvent(1, 0, 0, "Go", "#2e7d32"));
        QVERIFY(screen < part && part < deformation && deformation < mode && mode < grid);
        QVERIFY(grid < key && key < qsizetype(a_->events().size()));
        QVERIFY(b_->events().empty() || b_->count<AddScreenEvent>() == 0);
    }

    void itemDataIsTheWholeMesh() {
        for (const ShowItem& item : session_->show().items()) {
            a_->forget();
            a_->ask(int(item.dataIndex));
            const auto* const data = a_->last<ItemDataEvent>();
            QVERIFY(data);
            QCOMPARE(data->callerId(), int(item.dataIndex));
            const bool screen = item.key.type == Element::Screen;
            const bool part = item.key.type == Element::ScreenPart;
            QCOMPARE(data->deformationMode().screenId(), screen ? item.key.id : 0xFFFFFFFF);
            QCOMPARE(data->screenPartDeformationMode().screenPartId(),
                     part ? item.key.subId : 0xFFFFFFFF);
            QCOMPARE(data->mediaDeformationMode().cueId(),
                     screen || part ? 0xFFFFFFFF : item.key.id);
            const Warp none{item.warp.kind, 0, 0, {}, {}};
            const Warp& warp = item.warp.kind == Kind::None ? none : item.warp;
            comparePoints(data->screenPoints(), screen ? warp : none);
            comparePoints(data->screenPartPoints(), part ? warp : none);
            comparePoints(data->mediaPoints(), item.key.type == Element::Media ? warp : none);
            comparePoints(data->texturePoints(), item.key.type == Element::Texture ? warp : none);
            QTRY_COMPARE(session_->companions().begin()->second.editing, item.key);
        }
        a_->forget();
        a_->ask(-1);
        QTRY_VERIFY(!session_->companions().begin()->second.editing);
        QCOMPARE(a_->events().size(), 0u);
    }

    void aScreenInSimpleModeIsSeenWithoutItsMesh() {
        QVERIFY(session_->setMode(kFront, LV_NTC_ModeType::Simple));
        a_->ask(1);
        const auto* const data = a_->last<ItemDataEvent>();
        QCOMPARE(data->deformationMode().deformationType(), Kind::None);
        QVERIFY(data->screenPoints().empty());
        QVERIFY(session_->setMode(kFront, LV_NTC_ModeType::Deformation));
        QVERIFY(b_->hears<DeformationModeEvent>(Kind::Bezier, 0u, 1u, "Warehouse front", 7u, 7u,
                                                false));
    }

    void movesOfEveryKindOfItemReachEverybody() {
        a_->send<ScreenMovePointEvent>(0u, 1u, "", 48u, 960.5, -0.1, 0.0, true, true);
        a_->send<ScreenPartMovePointEvent>(2u, 0u, 4u, "undefined", 3u, 1e-300, 2.0, 0.0, true,
                                           false);
        a_->send<MediaMovePointEvent>(14u, 4u, 10u, "Radar", 15u, 0.25, 1.5, 0.0, false, true);
        a_->send<TextureMovePointEvent>(22u, 2u, 12u, "", 0u, -5.0, 6.0, 0.0, true, false);
        for (Peer* const peer : {a_.get(), b_.get()}) {
            QVERIFY(peer->hears<ScreenMovePointEvent>(0u, 1u, "Warehouse front", 48u, 960.5, -0.1,
                                                      0.0, true, true));
            QVERIFY(peer->hears<ScreenPartMovePointEvent>(2u, 0u, 4u, "Left silo", 3u, 1e-300, 2.0,
                                                          0.0, true, false));
            QVERIFY(peer->hears<MediaMovePointEvent>(14u, 4u, 10u, "Radar", 15u, 0.25, 1.5, 0.0,
                                                     false, true));
            QVERIFY(peer->hears<TextureMovePointEvent>(22u, 2u, 12u, "Anchor", 0u, -5.0, 6.0, 0.0,
                                                       true, false));
        }
        const Show& show = session_->show();
        QCOMPARE(show.find(kFront)->warp.xy[48], (ControlPoint{{960.5, -0.1}, true}));
        QCOMPARE(show.find(kLeftSilo)->warp.xy[3], (ControlPoint{{1e-300, 2.0}, false}));
        QCOMPARE(show.find(kRadar)->warp.uv[15], (ControlPoint{{0.25, 1.5}, true}));
        QCOMPARE(show.find(kAnchor)->warp.xy[0], (ControlPoint{{-5, 6}, false}));
    }

    void blindsReachEverybody() {
        a_->send<BlindEvent>(0u, 1u, "", true);
        a_->send<ScreenPartBlindEvent>(2u, 0u, 0u, "", true);
        a_->send<MediaBlindEvent>(Element::Texture, 22u, 2u, 0u, "renamed", true);
        for (Peer* const peer : {a_.get(), b_.get()}) {
            QVERIFY(peer->hears<BlindEvent>(0u, 1u, "Side wall", true));
            QVERIFY(peer->hears<ScreenPartBlindEvent>(2u, 0u, 0u, "Left silo", true));
            QVERIFY(peer->hears<MediaBlindEvent>(Element::Texture, 22u, 2u, 0u, "Anchor", true));
        }
        a_->send<BlindEvent>(0u, 1u, "", false);
        QVERIFY(b_->hears<BlindEvent>(0u, 1u, "Side wall", false));
        QVERIFY(!session_->show().find(kWall)->blinded);
        QVERIFY(session_->show().find(kLeftSilo)->blinded);
    }

    void aNewDeformationKeepsTheShapeAndIsToldPointByPoint() {
        const Surface before = session_->show().find(kWall)->warp.xySurface();
        a_->send<DeformationModeEvent>(Kind::Bezier, 1u, 2u, "", 7u, 10u, false);
        QVERIFY(b_->hears<ScreenModeEvent>(LV_NTC_ModeType::Deformation, 1u, 2u, "Side wall"));
        QVERIFY(b_->hears<DeformationModeEvent>(Kind::Bezier, 1u, 2u, "Side wall", 7u, 10u, false));
        QTRY_COMPARE(b_->count<ScreenMovePointEvent>(), 2 * 70);
        QTRY_COMPARE(a_->count<ScreenMovePointEvent>(), 2 * 70);
        const Warp& warp = session_->show().find(kWall)->warp;
        std::vector<ScreenMovePointEvent> points;
        for (const auto& event : b_->events()) {
            if (const auto* point = dynamic_cast<const ScreenMovePointEvent*>(event.get()))
                points.push_back(*point);
        }
        comparePoints(points, warp);
        const Surface after = warp.xySurface();
        for (const double s : {0.1, 0.5, 0.8})
            QVERIFY(QLineF(before.at(s, 1 - s), after.at(s, 1 - s)).length() < 1.0);

        a_->send<DeformationModeEvent>(Kind::Keystone, 1u, 2u, "", 2u, 2u, true);
        QVERIFY(b_->hears<ScreenMovePointEvent>(1u, 2u, "Side wall", 0u, -960., -540., 0., true,
                                                false));
    }

    void noDeformationMeansSimpleModeForAScreenAndAKeystoneForAPart() {
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
        QCOMPARE(session_->show().find(kSilos)->mode, LV_NTC_ModeType::Parts);
    }

    void companionsStayInStep() {
        a_->send<MireEvent>(0u, LV_NTC_PictureType::Tile);
        a_->send<ExecuteQuickKeyEvent>(7u);
        a_->send<UpdateSettingsEvent>("#00ff00", 2);
        QSignalSpy executed(session_.get(), &ProducerSession::quickKeyExecuted);
        QVERIFY(executed.wait());
        QCOMPARE(executed[0][0].toUInt(), 7U);
        QCOMPARE(executed[0][1].toString(), QStringLiteral("Финал"));
        QVERIFY(b_->hears<MireEvent>(0u, LV_NTC_PictureType::Tile));
        QTRY_COMPARE(session_->companions().begin()->second.pointShape, 2);
        QCOMPARE(session_->companions().begin()->second.pointColor, QStringLiteral("#00ff00"));
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
        QTRY_COMPARE(session_->receivedEvents().at(QStringLiteral("ItemData")), 3);
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
        for (const auto& event : b_->events()) {
            if (const auto* key = dynamic_cast<const DeleteQuickKeyEvent*>(event.get()))
                deleted.push_back(key->keyId());
        }
        QCOMPARE(deleted, (std::vector<quint32>{8, 7, 6, 5, 4, 3}));
        QVERIFY(!session_->companions().begin()->second.editing);
        a_->forget();
        a_->send<MsgEvent>("getResources");
        QVERIFY(a_->last<MireEvent>());
        QCOMPARE(a_->count<AddScreenEvent>(), 3);
        QVERIFY(a_->hears<AddScreenPartEvent>(5u, 7u, 5u, 960u, 1080u, 0u, 0.0, "", false));
        session_->startNewShow();
        QCOMPARE(session_->show(), ShowCatalog::harbour());
    }

    void itemsComeAndGo() {
        const ShowItem radar = *session_->show().find(kRadar);
        const ShowItem silos = *session_->show().find(kSilos);
        b_->ask(4);
        QVERIFY(b_->last<ItemDataEvent>());
        QVERIFY(session_->removeItem(kRadar));
        QVERIFY(session_->removeItem(kSilos)); // and with it its parts
        QVERIFY(b_->hears<RemoveMediaEvent>(14u, 4u, "Radar"));
        QVERIFY(b_->hears<RemoveScreenEvent>(2u));
        QVERIFY(!session_->show().find(kLeftSilo));
        QVERIFY(!std::prev(session_->companions().end())->second.editing);
        QVERIFY(!session_->removeItem(kLeftSilo));
        QVERIFY(session_->addItem(silos));
        QVERIFY(!session_->addItem(silos));
        QVERIFY(session_->addItem(radar));
        QVERIFY(b_->hears<MediaDeformationModeEvent>(Element::Media, Kind::Bezier, 14u, 4u, 10u,
                                                     "Radar", 4u, 4u, false));
        QVERIFY(b_->hears<ScreenModeEvent>(LV_NTC_ModeType::Parts, 2u, 3u, "Silos"));
    }

    void whatMakesNoSenseIsIgnored() {
        const Show before = session_->show();
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double infinity = std::numeric_limits<double>::infinity();
        a_->send<ScreenMovePointEvent>(0u, 1u, "", 49u, 0.0, 0.0, 0.0, true, false);
        a_->send<ScreenMovePointEvent>(0u, 1u, "", 4'000'000'000u, 0.0, 0.0, 0.0, true, false);
        a_->send<ScreenMovePointEvent>(0u, 1u, "", 0u, nan, 0.0, 0.0, true, false);
        a_->send<ScreenMovePointEvent>(0u, 1u, "", 0u, 0.0, -infinity, 0.0, false, false);
        a_->send<ScreenMovePointEvent>(0u, 1u, "", 0u, 1e300, 0.0, 0.0, true, false);
        a_->send<ScreenMovePointEvent>(99u, 1u, "", 0u, 0.0, 0.0, 0.0, true, false);
        a_->send<ScreenPartMovePointEvent>(2u, 3u, 4u, "", 0u, 0.0, 0.0, 0.0, true, false);
        a_->send<MediaMovePointEvent>(14u, 5u, 10u, "", 0u, 0.0, 0.0, 0.0, true, false);
        a_->send<MediaMovePointEvent>(11u, 1u, 7u, "", 0u, 0.0, 0.0, 0.0, true, false); // not bent
        for (const auto& [kind, rows, columns] : {std::tuple(Kind::Bezier, 5u, 4u),
                                                  {Kind::Bezier, 67u, 4u},
                                                  {Kind::Curve, 65u, 3u},
                                                  {Kind::Curve, 1u, 3u},
                                                  {Kind::Curve, 0xFFFFFFFFu, 3u},
                                                  {Kind(3), 3u, 3u}})
            a_->send<DeformationModeEvent>(kind, 0u, 1u, "", rows, columns, false);
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
        const qsizetype sent = 28;
        QTRY_COMPARE(log_.filter(QStringLiteral("companion 1: ")).size(), sent);
        QCOMPARE(log_.filter(QStringLiteral(": ignored: ")).size(), sent);
        QCOMPARE(session_->show(), before);
        QVERIFY(session_->executedQuickKeys().empty());
        a_->send<MireEvent>(0u, LV_NTC_PictureType::White); // the link stands
        QVERIFY(b_->hears<MireEvent>(0u, LV_NTC_PictureType::White));
        QCOMPARE(b_->events().size(), 1u);
        QCOMPARE(a_->events().size(), 0u);
    }

private:
    std::optional<MeshpadTest::MessageGuard> messages_;
    std::unique_ptr<ProducerSession> session_;
    QStringList log_;
    std::unique_ptr<Peer> a_;
    std::unique_ptr<Peer> b_;
};

QTEST_GUILESS_MAIN(SessionTest)
#include "session_test.moc"
