#include "app/shell/Configuration.h"
#include "app/shell/UpdateProducer.h"
#include "input/key_event_manager.h"
#include "network/events/AddMediaEvent.h"
#include "network/events/AddScreenEvent.h"
#include "network/events/AddScreenPartEvent.h"
#include "network/events/AddTextureEvent.h"
#include "network/events/DeformationModeEvent.h"
#include "network/events/ItemDataEvent.h"
#include "network/events/MediaDeformationModeEvent.h"
#include "network/events/MediaMovePointEvent.h"
#include "network/events/MsgEvent.h"
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
#include <QKeyEvent>
#include <QQuickItem>
#include <QQuickWidget>
#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <memory>
#include <optional>

using namespace NetworkCompanion;

/// The bridge between a stand-in scene, rows as the list has them, and a Producer on the loopback.
class TestCanvas : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void initTestCase() {
        configuration_.canvasPath = QUrl::fromLocalFile(QFINDTESTDATA("StandIn.qml")).toString();
    }
    void init() {
        GuardedTest::init();
        rig_.emplace();
        rig_->connect();
        UpdateProducer::tickPeriod = std::chrono::hours(1); // a drag ends when a test ends it
        media_.reset(new MediaItem(MediaType::Image, 11, 12, 13, 0, 0, false, "Clip",
                                   configuration_, nullptr));
        texture_.reset(new TextureItem(21, 22, 23, 0, 0, false, "Sky", configuration_, nullptr));
        screen_.reset(new ScreenItem(7, 33, 0, 0, false, "Wall", configuration_, nullptr));
        otherScreen_.reset(new ScreenItem(8, 34, 0, 0, false, "Roof", configuration_, nullptr));
        part_.reset(new ScreenPartItem(2, 43, 0, 0, false, "Left", configuration_, nullptr));
        screen_->addPart(part_.get());
        canvas_ = std::make_unique<Canvas>(configuration_, nullptr);
        canvas_->resize(800, 600);
        canvas_->show();
        scene_ = canvas_->findChild<QQuickWidget*>()->rootObject();
        QVERIFY(scene_);
    }
    void cleanup() {
        canvas_.reset();
        part_.reset();
        screen_.reset();
        rig_.reset();
        GuardedTest::cleanup();
    }

    void emitsCurrentItemBeforeStoringIt() {
        QSignalSpy changes(canvas_.get(), &Canvas::currentItemChanged);
        canvas_->onSelectedItem(screen_.get());
        // The scene unselects the points of the item that it leaves: those moves still count.
        connect(canvas_.get(), &Canvas::currentItemChanged, this, [this] {
            canvas_->moveScreenPoint(7, "Wall", 0, 1, 2, 0, true, false);
            canvas_->moveScreenPartPoint(7, 2, "", 0, 1, 2, 0, true, false);
        });
        canvas_->onSelectedItem(part_.get());
        QVERIFY(rig_->gets(ScreenMovePointEvent(7, 33, "Wall", 0, 1, 2, 0, true, false)));
        canvas_->onSelectedItem(nullptr);
        QVERIFY(rig_->gets(ScreenPartMovePointEvent(7, 2, 43, "", 0, 1, 2, 0, true, false)));
        canvas_->onSelectedItem(media_.get());
        const QList<QList<QVariant>> expected{{3, 7, 0}, {4, 7, 2}, {0, 0, 0}, {1, 11, 0}};
        QCOMPARE(QList<QList<QVariant>>(changes), expected);
    }

    void sendsMovesAtOnceOutsideADrag() {
        canvas_->moveScreenPoint(7, "Wall", 0, 1, 2, 0, true, true);
        QVERIFY(rig_->getsNothing());

        canvas_->onSelectedItem(media_.get());
        canvas_->moveMediaPoint(11, 12, "Clip", 3, 0.25, -0.0, 0, false, true);
        QVERIFY(rig_->gets(MediaMovePointEvent(11, 12, 13, "Clip", 3, 0.25, -0.0, 0, false, true)));
        canvas_->onSelectedItem(texture_.get());
        canvas_->moveTexturePoint(21, 22, "Sky", 4, 5, 6, 0, true, false);
        QVERIFY(rig_->gets(TextureMovePointEvent(21, 22, 23, "Sky", 4, 5, 6, 0, true, false)));
        canvas_->onSelectedItem(part_.get());
        QMetaObject::invokeMethod(scene_, "moveUnnamed", Q_ARG(int, 9));
        QVERIFY(rig_->gets(ScreenPartMovePointEvent(7, 2, 43, "", 9, 1.5, -2.5, 0, true, false)));

        // What would tell the Producer something wrong stays here.
        canvas_->moveMediaPoint(11, 12, "Clip", 3, 1, 1, 0, true, true);
        canvas_->moveScreenPartPoint(8, 2, "", 3, 1, 1, 0, true, true);
        canvas_->moveScreenPartPoint(7, 2, "", 3, qQNaN(), 1, 0, true, true);
        canvas_->moveScreenPartPoint(7, 2, "", 3, 1, qInf(), 0, true, true);
        QVERIFY(rig_->getsNothing());
    }

    void sendsNewestMoveOfEachPointWithTheTick() {
        UpdateProducer::tickPeriod = std::chrono::milliseconds(20);
        canvas_->onSelectedItem(screen_.get());
        canvas_->startMovePointTimer();
        for (const int point : {5, 300, 2, 5})
            canvas_->moveScreenPoint(7, "Wall", point, ++x_, 0, 0, true, true);
        const ScreenMovePointEvent second(7, 33, "Wall", 2, 3, 0, 0, true, true);
        const ScreenMovePointEvent fifth(7, 33, "Wall", 5, 4, 0, 0, true, true);
        const ScreenMovePointEvent last(7, 33, "Wall", 300, 2, 0, 0, true, true);
        QTRY_COMPARE(rig_->producer.events().size(), 3U);
        QVERIFY(rig_->gets(second, fifth, last));

        canvas_->stopMovePointTimer();
        QCoreApplication::processEvents();
        QVERIFY(rig_->getsNothing());
    }

    void sendsQueuedMovesAtTheEndOfADrag() {
        canvas_->onSelectedItem(screen_.get());
        drag(7, 1);
        QCoreApplication::processEvents();
        QVERIFY(rig_->gets(ScreenMovePointEvent(7, 33, "", 0, 1, 0, 0, true, true)));

        // Another move of the same point right behind the drag must not be overtaken.
        drag(7, 2);
        canvas_->moveScreenPoint(7, "", 0, 3, 0, 0, true, true);
        QCoreApplication::processEvents();
        QVERIFY(rig_->gets(ScreenMovePointEvent(7, 33, "", 0, 2, 0, 0, true, true),
                           ScreenMovePointEvent(7, 33, "", 0, 3, 0, 0, true, true)));

        // Neither must a new deformation, which gives the points' numbers another meaning.
        drag(7, 4);
        canvas_->newCurveDeformation(5, 3, true);
        QCoreApplication::processEvents();
        QVERIFY(rig_->gets(
            ScreenMovePointEvent(7, 33, "", 0, 4, 0, 0, true, true),
            DeformationModeEvent(LV_NTC_DeformationType::Curve, 7, 33, "Wall", 5, 3, true)));

        drag(7, 1);
        canvas_->onSelectedItem(otherScreen_.get());
        drag(8, 2);
        canvas_->onSelectedItem(nullptr);
        QCoreApplication::processEvents();
        QVERIFY(rig_->gets(ScreenMovePointEvent(7, 33, "", 0, 1, 0, 0, true, true),
                           ScreenMovePointEvent(8, 34, "", 0, 2, 0, 0, true, true)));
    }

    void sendsNothingForARemovedItem() {
        struct Kind {
            Item* item;
            std::function<void()> move, remove;
        };
        const Kind kinds[] = {
            {screen_.get(), [&] { canvas_->moveScreenPoint(7, "", 0, 1, 0, 0, true, true); },
             [&] { canvas_->onRemoveScreenItem(7); }},
            {part_.get(), [&] { canvas_->moveScreenPartPoint(7, 2, "", 0, 1, 0, 0, true, true); },
             [&] { canvas_->onRemoveScreenPartItem(7, 2); }},
            {media_.get(), [&] { canvas_->moveMediaPoint(11, 12, "", 0, 1, 0, 0, true, true); },
             [&] { canvas_->onRemoveMediaItem(11); }},
            {texture_.get(), [&] { canvas_->moveTexturePoint(21, 22, "", 0, 1, 0, 0, true, true); },
             [&] { canvas_->onRemoveTextureItem(21); }}};
        for (const Kind& kind : kinds) {
            canvas_->onSelectedItem(kind.item);
            canvas_->startMovePointTimer();
            kind.move();
            kind.remove();
            kind.move(); // the finger is still down
            canvas_->stopMovePointTimer();
            canvas_->newKeystoneDeformation(false);
            canvas_->onSelectedItem(nullptr);
            QCoreApplication::processEvents();
            QVERIFY(rig_->getsNothing());
        }

        // A row that vanishes without a word.
        canvas_->onSelectedItem(otherScreen_.get());
        drag(8, 3);
        otherScreen_.reset();
        QCoreApplication::processEvents();
        canvas_->onSelectedItem(screen_.get());
        canvas_->updateProducer();
        QVERIFY(rig_->getsNothing());

        // Points of a mesh that the Producer has just replaced.
        drag(7, 4);
        canvas_->onScreenDeformationMode(LV_NTC_DeformationType::Keystone, 7, "", 2, 2, false);
        QCoreApplication::processEvents();
        QVERIFY(rig_->getsNothing());
    }

    void canvasIsDeletedDuringADrag() {
        canvas_->onSelectedItem(screen_.get());
        canvas_->startMovePointTimer();
        canvas_->moveScreenPoint(7, "", 0, 1, 0, 0, true, true);
        canvas_.reset(); // at once, not at the next tick
        MsgEvent msg("x");
        rig_->producer.send(msg);
        rig_->producer.send(ScreenMovePointEvent(7, 33, "", 0, 1, 0, 0, true, true));
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Left, Qt::NoModifier);
        KeyEventManager::getInstance()->notifyListeners(&key);
        QVERIFY(rig_->getsNothing());
    }

    void requestsDeformationsByKindOfItem() {
        using Type = LV_NTC_DeformationType;
        canvas_->newKeystoneDeformation(true);
        QVERIFY(rig_->getsNothing());
        canvas_->onSelectedItem(media_.get());
        canvas_->newBezierDeformation(2, 5, true);
        canvas_->newNoneDeformation();
        QVERIFY(rig_->gets(MediaDeformationModeEvent(LV_NTC_ElementType::Media, Type::Bezier, 11,
                                                     12, 13, "Clip", 4, 13, true),
                           MediaDeformationModeEvent(LV_NTC_ElementType::Media, Type::None, 11, 12,
                                                     13, "Clip", 2, 2, false)));
        canvas_->onSelectedItem(texture_.get());
        canvas_->newKeystoneDeformation(true);
        QVERIFY(rig_->gets(MediaDeformationModeEvent(LV_NTC_ElementType::Texture, Type::Keystone,
                                                     21, 22, 23, "Sky", 2, 2, true)));
        canvas_->onSelectedItem(part_.get());
        canvas_->newNoneDeformation();
        QVERIFY(rig_->gets(
            ScreenPartDeformationModeEvent(Type::Keystone, 7, 2, 43, "Left", 2, 2, false)));
    }

    void emitsTheProducersPointsInOrder() {
        QStringList order;
        connect(
            canvas_.get(), &Canvas::screenMovePoint, this,
            [&](int id, const QString&, int point) {
                order << QStringLiteral("screen %1 %2").arg(id).arg(point);
            });
        connect(
            canvas_.get(), &Canvas::screenPartMovePoint, this,
            [&](int id, int part) { order << QStringLiteral("part %1 %2").arg(id).arg(part); });
        connect(
            canvas_.get(), &Canvas::textureMovePoint, this,
            [&](unsigned cue, int id) {
                order << QStringLiteral("texture %1 %2").arg(cue).arg(id);
            });
        connect(canvas_.get(), &Canvas::mediaMovePoint, this, [&](unsigned cue, int id) {
            order << QStringLiteral("media %1 %2").arg(cue).arg(id);
        });

        rig_->producer.send(ItemDataEvent());
        ItemDataEvent mesh;
        mesh.addMediaMovePointEvent({1, 2, 0, "Ö", 0, 0.5, -1, 0, false, true});
        mesh.addTextureMovePointEvent({3, 4, 0, "", 0, 0, 0, 0, true, false});
        mesh.addScreenPartMovePointEvent({5, 6, 0, "", 0, 0, 0, 0, true, false});
        mesh.addScreenMovePointEvent({7, 0, "", 1, 0, 0, 0, true, false});
        mesh.addScreenMovePointEvent({7, 0, "", 2, qQNaN(), 0, 0, true, false});
        mesh.addScreenMovePointEvent({7, 0, "", 3, 0, 0, 0, true, false});
        rig_->producer.send(mesh);
        rig_->producer.send(TextureMovePointEvent(8, 9, 0, "", 0, 0, -qInf(), 0, true, false));
        messages_->expect(QtWarningMsg, "Canvas: Point position that is not a number ignored", 2);
        QTRY_VERIFY(messages_->isSatisfied());
        QCOMPARE(order,
                 QStringList({"screen 7 1", "screen 7 3", "part 5 6", "texture 3 4", "media 1 2"}));
        const QVariantList heard{"point", 1U, 2, "Ö", 0, 0.5, -1.0, 0.0, false, true};
        QCOMPARE(scene_->property("heard").toList().value(0).toList(), heard);
    }

    /// What the list tells the editor, of each kind of item.
    void editorReceivesTheListsSignals() {
        canvas_.reset();
        WarpPage page(configuration_, nullptr);
        auto* canvas = page.findChild<Canvas*>();
        QStringList heard;
        std::vector<std::unique_ptr<QSignalSpy>> deformations;
        const auto listen = [&](const char* kind, auto added, auto deformed, auto removed) {
            const QString name(kind);
            connect(canvas, added, this, [&heard, name] { heard << name + " added"; });
            connect(canvas, deformed, this, [&heard, name] { heard << name + " deformed"; });
            deformations.push_back(std::make_unique<QSignalSpy>(canvas, deformed));
            connect(canvas, removed, this, [&heard, name] { heard << name + " removed"; });
        };
        listen("media", &Canvas::mediaItemAdded, &Canvas::mediaDeformationMode,
               &Canvas::removeMediaItem);
        listen("texture", &Canvas::textureItemAdded, &Canvas::textureDeformationMode,
               &Canvas::removeTextureItem);
        listen("screen", &Canvas::screenItemAdded, &Canvas::screenDeformationMode,
               &Canvas::removeScreenItem);
        listen("part", &Canvas::screenPartItemAdded, &Canvas::screenPartDeformationMode,
               &Canvas::removeScreenPartItem);
        QSignalSpy modes(canvas, &Canvas::screenMode);
        using Type = LV_NTC_DeformationType;
        rig_->producer.send(
            AddMediaEvent(MediaType::Image, 1, 2, 100, 8, 8, 0, 0.0, "Clip", false));
        rig_->producer.send(AddTextureEvent(3, 4, 300, 8, 8, 0, 0.0, "Dust", false));
        rig_->producer.send(AddScreenEvent(5, 500, 8, 8, 0, 0.0, "Wall", false, false));
        rig_->producer.send(AddScreenPartEvent(5, 0, 600, 8, 8, 0, 0.0, "Left", false));
        rig_->producer.send(MediaDeformationModeEvent(LV_NTC_ElementType::Media, Type::Curve, 1, 2,
                                                      100, "Clip", 4, 7, true));
        rig_->producer.send(MediaDeformationModeEvent(LV_NTC_ElementType::Texture, Type::Curve, 3,
                                                      4, 300, "Dust", 4, 7, true));
        rig_->producer.send(DeformationModeEvent(Type::Curve, 5, 500, "Wall", 4, 7, true));
        rig_->producer.send(
            ScreenPartDeformationModeEvent(Type::Curve, 5, 0, 600, "Left", 4, 7, true));
        QTRY_COMPARE(heard, QStringList({"media added", "texture added", "screen added",
                                         "part added", "media deformed", "texture deformed",
                                         "screen deformed", "part deformed"}));
        const QVariantList told[] = {{1, 3, 1, 2, "Clip", 4, 7, true},
                                     {2, 3, 3, 4, "Dust", 4, 7, true},
                                     {3, 5, "Wall", 4, 7, true},
                                     {3, 5, 0, "Left", 4, 7, true}};
        for (std::size_t i = 0; i < std::size(told); ++i)
            QCOMPARE(deformations[i]->value(0), told[i]);
        rig_->producer.send(ScreenModeEvent(LV_NTC_ModeType::Parts, 5, 500, ""));
        QVERIFY(modes.wait());
        QCOMPARE(modes.value(0), QVariantList({5, 3}));
        heard.clear();
        page.purgeMedia();
        QCOMPARE(heard, QStringList({"media removed", "texture removed", "part removed",
                                     "screen removed"}));
    }

    void keysPassBetweenListAndEditor() {
        canvas_.reset();
        WarpPage page(configuration_, nullptr);
        auto* canvas = page.findChild<Canvas*>();
        auto* list = page.findChild<MediaList*>();
        page.show();
        page.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&page));
        list->addMedia(MediaType::Image, 1, 2, 100, 8, 8, 0.0, false, "Clip");
        list->addMedia(MediaType::Image, 2, 2, 200, 8, 8, 0.0, false, "Dust");
        page.giveFocusToCanvas();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Left);
        canvas->notifyKeyEventFromQml(QEvent::KeyPress, Qt::Key_M, 0, "m", false, 1);
        canvas->notifyKeyEventFromQml(QEvent::KeyPress, Qt::Key_M, 0, "m", false, 1);
        QVERIFY(list->selection() && list->selection()->name() == "Dust");
        list->setFocus(); // where the arrows, and only they, are for the mesh, too
        QList<int> passedOn;
        connect(list, &MediaList::emitKeyEvent, this,
                [&](const QKeyEvent* event) { passedOn << event->key(); });
        for (const int key : {Qt::Key_Up, Qt::Key_Right, Qt::Key_End, Qt::Key_Down})
            QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), Qt::AltModifier);
        QCOMPARE(passedOn, QList<int>({Qt::Key_Up, Qt::Key_Right, Qt::Key_Down}));
        QKeyEvent held(QEvent::KeyPress, Qt::Key_A, Qt::ControlModifier, "a", true, 3);
        QKeyEvent other(QEvent::KeyPress, Qt::Key_B, Qt::NoModifier, "b"); // not for the scene
        for (QKeyEvent* event : {&held, &other}) {
            event->ignore();
            canvas->onKeyEvent(event);
            QVERIFY(event->isAccepted());
        }
        const auto* scene = canvas->findChild<QQuickWidget*>()->rootObject();
        const auto keys = [scene] { return scene->property("keys").toList(); };
        QTRY_COMPARE(keys().size(), 5);
        const QVariantList last{Qt::Key_A, int(Qt::ControlModifier), "a", false};
        QCOMPARE(keys().last().toList(), last);

        // What comes back from the scene tells whether it is held: the output depends on it.
        QList<bool> areHeld;
        connect(canvas, &Canvas::keyEvent, this,
                [&](const QKeyEvent* event) { areHeld << event->isAutoRepeat(); });
        canvas->notifyKeyEventFromQml(QEvent::KeyPress, Qt::Key_Space, 0, " ", true, 2);
        QCOMPARE(areHeld, QList<bool>{true});
    }

    void brokenSceneIsLoggedOnce() {
        Configuration broken = configuration_;
        broken.canvasPath = QStringLiteral("qrc:/no/such/Scene.qml");
        messages_->allow(QRegularExpression("Scene.qml"));
        Canvas canvas(broken, nullptr);
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Left, Qt::NoModifier);
        canvas.onKeyEvent(&key);
        QCOMPARE(messages_->seen(QtWarningMsg).size(), 1);
    }

private:
    /// Begins and ends a drag of point 0 within one turn of the event loop.
    void drag(int screenId, double x) {
        canvas_->startMovePointTimer();
        canvas_->moveScreenPoint(screenId, "", 0, x, 0, 0, true, true);
        canvas_->stopMovePointTimer();
    }

    std::optional<MeshpadTest::Rig> rig_;
    Configuration configuration_ = makeConfiguration();
    std::unique_ptr<MediaItem> media_;
    std::unique_ptr<TextureItem> texture_;
    std::unique_ptr<ScreenItem> screen_, otherScreen_;
    std::unique_ptr<ScreenPartItem> part_;
    std::unique_ptr<Canvas> canvas_;
    QQuickItem* scene_ = nullptr;
    double x_ = 0;
};

QTEST_MAIN(TestCanvas)
#include "tst_canvas.moc"
