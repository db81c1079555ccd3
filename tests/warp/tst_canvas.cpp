#include "input/key_event_manager.h"
#include "network/events/AddMediaEvent.h"
#include "network/events/AddScreenEvent.h"
#include "network/events/AddScreenPartEvent.h"
#include "network/events/AddTextureEvent.h"
#include "network/events/DeformationModeEvent.h"
#include "network/events/ItemDataEvent.h"
#include "network/events/MediaBlindEvent.h"
#include "network/events/MediaDeformationModeEvent.h"
#include "network/events/MediaMovePointEvent.h"
#include "network/events/RemoveMediaEvent.h"
#include "network/events/RemoveScreenEvent.h"
#include "network/events/RemoveScreenPartEvent.h"
#include "network/events/RemoveTextureEvent.h"
#include "network/events/ScreenModeEvent.h"
#include "network/events/ScreenMovePointEvent.h"
#include "network/events/ScreenPartDeformationModeEvent.h"
#include "network/events/ScreenPartMovePointEvent.h"
#include "network/events/TextureMovePointEvent.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/Rig.h"
#include "warp/Canvas.h"
#include "warp/MediaItem.h"
#include "warp/MediaList.h"
#include "warp/ScreenItem.h"
#include "warp/ScreenPartItem.h"
#include "warp/TextureItem.h"
#include "warp/WarpPage.h"

#include <QApplication>
#include <QDir>
#include <QMetaMethod>
#include <QQuickItem>
#include <QQuickWidget>
#include <QTemporaryFile>
#include <QTest>

#include <memory>
#include <optional>

using namespace NetworkCompanion;

using Kind = LV_NTC_ElementType;
using Type = LV_NTC_DeformationType;

/// The bridge between an empty scene, rows as the list creates them, and the fake Producer.
class TestCanvas : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void initTestCase() {
        QVERIFY(sceneFile_.open());
        sceneFile_.write("import QtQuick\nItem { focus: true; property string keys; "
                         "Keys.onPressed: e => keys += [e.modifiers, e.key] + ' ' }");
        sceneFile_.close();
        configuration_.canvasPath = QUrl::fromLocalFile(sceneFile_.fileName()).toString();
    }

    void emitsCurrentItemBeforeStoringIt() {
        record(canvas_.get(), &Canvas::currentItemChanged);
        canvas_->onSelectedItem(screen_.get());
        // The scene unselects the points of the previous item: those moves are still sent.
        connect(canvas_.get(), &Canvas::currentItemChanged, this, [this] {
            move(Kind::Screen, 2);
            move(Kind::ScreenPart, 3);
        });
        drag(Kind::Screen, 1);
        canvas_->onSelectedItem(part_.get());
        QVERIFY(rig_->gets(screenMove(1), screenMove(2)));
        canvas_->onSelectedItem(nullptr);
        QVERIFY(rig_->gets(ScreenPartMovePointEvent(7, 2, 43, "Left", 3, 3, -1, 0, true, true)));
        QCOMPARE(log_.join("; ").remove("currentItemChanged "), "3 7 0; 4 7 2; 0 0 0");
    }

    void sendsMovesOfTheCurrentItemAtOnce() {
        move(Kind::Screen, 1);
        canvas_->onSelectedItem(media_.get());
        move(Kind::Media, 2);
        canvas_->onSelectedItem(texture_.get());
        move(Kind::Texture, 3);
        move(Kind::Media, 4);
        canvas_->onSelectedItem(part_.get());
        for (const double x : {5.0, qQNaN(), qInf()})
            move(Kind::ScreenPart, x);
        canvas_->moveScreenPartPoint(8, 2, "", 3, 1, 1, 0, true, true);
        QVERIFY(rig_->gets(MediaMovePointEvent(11, 12, 13, "Clip", 3, 2, -1, 0, true, true),
                           TextureMovePointEvent(21, 22, 23, "Sky", 3, 3, -1, 0, true, true),
                           ScreenPartMovePointEvent(7, 2, 43, "Left", 3, 5, -1, 0, true, true)));
    }

    void sendsNewestMoveOfEachPointWithTheTick() {
        canvas_ = std::make_unique<Canvas>(configuration_, nullptr,
                                           Timing{.tickPeriod = std::chrono::milliseconds(20)});
        canvas_->onSelectedItem(screen_.get());
        canvas_->startMovePointTimer();
        canvas_->moveScreenPoint(7, "Wall", 300, 2, -1, 0, true, true);
        move(Kind::Screen, 1);
        canvas_->moveScreenPoint(7, "", 3, 4, -0.0, 0, false, false); // of the other mesh
        move(Kind::Screen, 5);
        QTRY_COMPARE(rig_->producer.events().size(), 3U);
        QVERIFY(rig_->gets(ScreenMovePointEvent(7, 33, "", 3, 4, -0.0, 0, false, false),
                           screenMove(5),
                           ScreenMovePointEvent(7, 33, "Wall", 300, 2, -1, 0, true, true)));
        canvas_->stopMovePointTimer();
        rig_->settle();
        QVERIFY(rig_->getsNothing());
    }

    void sendsQueuedMovesBeforeANewDeformation() {
        canvas_->onSelectedItem(screen_.get());
        drag(Kind::Screen, 1);
        canvas_->newBezierDeformation(2, 5, true);
        QVERIFY(rig_->gets(screenMove(1),
                           DeformationModeEvent(Type::Bezier, 7, 33, "Wall", 4, 13, true)));
    }

    void sendsNothingForARemovedItem_data() {
        QTest::addColumn<Kind>("kind");
        for (int kind = 1; const char* name : {"media", "texture", "screen", "part"})
            QTest::newRow(name) << Kind(kind++);
    }
    void sendsNothingForARemovedItem() {
        QFETCH(const Kind, kind);
        Item* items[] = {nullptr, media_.get(), texture_.get(), screen_.get(), part_.get()};
        canvas_->onSelectedItem(items[int(kind)]);
        canvas_->startMovePointTimer();
        move(kind, 1);
        canvas_->onRemoveMediaItem(kind == Kind::Media ? 11 : 0);
        canvas_->onRemoveTextureItem(kind == Kind::Texture ? 21 : 0);
        canvas_->onRemoveScreenItem(kind == Kind::Screen ? 7 : 0);
        canvas_->onRemoveScreenPartItem(7, kind == Kind::ScreenPart ? 2 : 0);
        move(kind, 2); // the finger still rests on the screen
        canvas_->stopMovePointTimer();
        canvas_->newKeystoneDeformation(false);
        canvas_->onSelectedItem(nullptr);
        QVERIFY(rig_->getsNothing());
    }

    void dropsQueuedMovesOfAReplacedMesh() {
        canvas_->onSelectedItem(screen_.get());
        drag(Kind::Screen, 2);
        canvas_->onScreenDeformationMode(Type::Keystone, 7, "", 2, 2, false);
        rig_->settle();
        QVERIFY(rig_->getsNothing());
    }

    void sendsNothingAfterDeletionDuringDrag() {
        canvas_->onSelectedItem(screen_.get());
        canvas_->startMovePointTimer();
        move(Kind::Screen, 1);
        canvas_.reset(); // returns before the next tick
        rig_->producer.send(screenMove(1));
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Left, Qt::NoModifier);
        KeyEventManager::getInstance()->notifyListeners(&key);
        QVERIFY(rig_->getsNothing());
    }

    void emitsTheProducersPointsInOrder() {
        record(canvas_.get(), &Canvas::mediaMovePoint, &Canvas::textureMovePoint,
               &Canvas::screenMovePoint, &Canvas::screenPartMovePoint);
        ItemDataEvent mesh;
        mesh.addMediaMovePointEvent({1, 2, 0, "Ö", 0, 0.5, -1, 0, false, true});
        mesh.addTextureMovePointEvent({3, 4, 0, "", 1, 0, 2, 0, true, false});
        mesh.addScreenPartMovePointEvent({5, 6, 0, "", 2, 3, 0, 0, true, false});
        mesh.addScreenMovePointEvent({7, 0, "", 1, qQNaN(), 0, 0, true, false});
        mesh.addScreenMovePointEvent({7, 0, "", 1, 5, 0, 0, true, false});
        ItemDataEvent unbuildable = mesh;
        unbuildable.setDeformationModeEvent({LV_NTC_DeformationType::Curve, 7, 0, "", 65, 3, true});
        messages_->expect(QtWarningMsg, "Canvas: Point position that is not a number ignored", 2);
        rig_->deliver(ItemDataEvent(), unbuildable, mesh,
                      TextureMovePointEvent(8, 9, 0, "", 0, 0, -qInf(), 0, true, false),
                      MediaMovePointEvent(1, 2, 0, "", 0, 0, 6, 0, true, true),
                      ScreenMovePointEvent(7, 0, "", 0, 0, 7, 0, true, false),
                      ScreenPartMovePointEvent(5, 6, 0, "", 0, 0, 8, 0, false, true));
        QCOMPARE(log_.join("; ").remove("MovePoint"),
                 "screen 7 1 5 0 0 true false; screenPart 5 6 2 3 0 0 true false; texture 3 4 1 0 "
                 "2 0 true false; "
                 "media 1 2 Ö 0 0.5 -1 0 false true; media 1 2 0 0 6 0 true true; "
                 "screen 7 0 0 7 0 true false; screenPart 5 6 0 0 8 0 false true");
    }

    void emitsTheListsSignalsInOrder() {
        WarpPage page(configuration_, nullptr);
        record(page.findChild<Canvas*>(), &Canvas::currentItemChanged, &Canvas::mediaItemAdded,
               &Canvas::textureItemAdded, &Canvas::screenItemAdded, &Canvas::screenPartItemAdded,
               &Canvas::mediaDeformationMode, &Canvas::textureDeformationMode,
               &Canvas::screenDeformationMode, &Canvas::screenPartDeformationMode,
               &Canvas::screenMode, &Canvas::removeMediaItem, &Canvas::removeTextureItem,
               &Canvas::removeScreenItem, &Canvas::removeScreenPartItem);
        rig_->deliver(
            AddMediaEvent(MediaType::Video, 1, 2, 0, 8, 9, 0, 45.0, "Clip", false),
            AddTextureEvent(3, 4, 0, 8, 9, 0, 90.0, "Dust", false),
            AddScreenEvent(5, 0, 8, 9, 0, 30.0, "Wall", false, false),
            AddScreenPartEvent(5, 6, 0, 8, 9, 0, 60.0, "Left", false),
            MediaDeformationModeEvent(Kind::Media, Type::Curve, 1, 2, 0, "", 4, 7, true),
            MediaDeformationModeEvent(Kind::Texture, Type::None, 3, 4, 0, "", 5, 7, false),
            DeformationModeEvent(Type::Bezier, 5, 0, "", 6, 7, true),
            ScreenPartDeformationModeEvent(Type::Keystone, 5, 6, 0, "", 2, 2, false),
            ScreenModeEvent(LV_NTC_ModeType::Parts, 5, 0, ""));
        page.findChild<MediaList*>()->selectFirstVisibleItem();
        rig_->deliver(RemoveMediaEvent(1, 0, ""), RemoveTextureEvent(3, 0, ""),
                      RemoveScreenPartEvent(5, 6, ""), RemoveScreenEvent(5), RemoveScreenEvent(5));
        QCOMPARE(log_.join("; ").remove("Item").remove("ormationMode"),
                 "mediaAdded 2 1 2 8 9 45 Clip; textureAdded 3 4 8 9 90 Dust; "
                 "screenAdded 5 8 9 0 30 Wall; screenPartAdded 5 6 8 9 60 Left; "
                 "mediaDef 1 3 1 2 4 7 true; textureDef 2 0 3 4 5 7 false; "
                 "screenDef 2 5 6 7 true; screenPartDef 1 5 6 2 2 false; screenMode 5 3; "
                 "currentChanged 4 5 6; removeMedia 1; removeTexture 3; removeScreenPart 5 6; "
                 "currentChanged 0 0 0; removeScreen 5");
    }

    void keysPassBetweenListAndScene() {
        WarpPage page(configuration_, nullptr);
        auto* canvas = page.findChild<Canvas*>();
        page.show();
        page.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&page));
        rig_->deliver(AddMediaEvent(MediaType::Image, 1, 2, 100, 8, 8, 0, 0.0, "Clip", false));
        page.giveFocusToCanvas();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Left);
        for (const auto key : {Qt::Key_M, Qt::Key_Space})
            canvas->notifyKeyEventFromQml(QEvent::KeyPress, key, 0, "", false, 1);
        canvas->notifyKeyEventFromQml(QEvent::KeyPress, Qt::Key_Space, 0, " ", true, 2); // held
        QVERIFY(
            rig_->gets(ItemDataEvent(100), MediaBlindEvent(Kind::Media, 1, 2, 0, "Clip", true)));
        page.findChild<MediaList*>()->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down, Qt::AltModifier);
        const QObject* scene = canvas->findChild<QQuickWidget*>()->rootObject();
        QTRY_COMPARE(scene->property("keys").toString(),
                     QString("0,%1 %2,%3 ").arg(Qt::Key_Left).arg(Qt::ALT).arg(Qt::Key_Down));
    }

private:
    void setUp() override {
        rig_.emplace();
        rig_->connect();
        media_.reset(new MediaItem(MediaType::Image, 11, 12, 13, 0, 0, false, "Clip",
                                   configuration_, nullptr));
        texture_.reset(new TextureItem(21, 22, 23, 0, 0, false, "Sky", configuration_, nullptr));
        screen_.reset(new ScreenItem(7, 33, 0, 0, false, "Wall", configuration_, nullptr));
        part_.reset(new ScreenPartItem(2, 43, 0, 0, false, "Left", configuration_, nullptr));
        screen_->addPart(part_.get());
        // Without a tick unless a test shortens the period.
        canvas_ = std::make_unique<Canvas>(configuration_, nullptr,
                                           Timing{.tickPeriod = std::chrono::hours(1)});
        log_.clear();
    }
    void tearDown() override {
        canvas_.reset();
        rig_.reset();
    }

    /// Appends a line with the signal's name and arguments to log_ for each emission.
    template <class... Signals>
    void record(const Canvas* canvas, Signals... signalsOfCanvas) {
        (connect(
             canvas, signalsOfCanvas, this,
             [this, name = QMetaMethod::fromSignal(signalsOfCanvas).name()](auto... arguments) {
                 QString line;
                 ((QDebug(&line).noquote() << name.constData()) << ... << arguments);
                 log_ << line.simplified();
             }),
         ...);
    }
    /// Requests a move of point 3 of the item of that kind.
    void move(Kind kind, double x) {
        if (kind == Kind::Media)
            canvas_->moveMediaPoint(11, 12, "Clip", 3, x, -1, 0, true, true);
        else if (kind == Kind::Texture)
            canvas_->moveTexturePoint(21, 22, "Sky", 3, x, -1, 0, true, true);
        else if (kind == Kind::Screen)
            canvas_->moveScreenPoint(7, "Wall", 3, x, -1, 0, true, true);
        else
            canvas_->moveScreenPartPoint(7, 2, "Left", 3, x, -1, 0, true, true);
    }
    static ScreenMovePointEvent screenMove(double x) {
        return {7, 33, "Wall", 3, x, -1, 0, true, true};
    }
    /// Begins and ends a drag within one event-loop iteration.
    void drag(Kind kind, double x) {
        canvas_->startMovePointTimer();
        move(kind, x);
        canvas_->stopMovePointTimer();
    }

    QTemporaryFile sceneFile_{QDir::tempPath() + "/XXXXXX.qml"};
    std::optional<MeshpadTest::Rig> rig_;
    Configuration configuration_ = makeConfiguration();
    std::unique_ptr<MediaItem> media_;
    std::unique_ptr<TextureItem> texture_;
    std::unique_ptr<ScreenItem> screen_;
    std::unique_ptr<ScreenPartItem> part_;
    std::unique_ptr<Canvas> canvas_;
    QStringList log_;
};

QTEST_MAIN(TestCanvas)
#include "tst_canvas.moc"
