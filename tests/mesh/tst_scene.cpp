#include "tests/support/GuardedTest.h"
#include "tests/support/SceneRig.h"
#include "tests/support/ThreadTime.h"

#include "network/events/DeformationModeEvent.h"
#include "network/events/MediaDeformationModeEvent.h"
#include "network/events/MediaMovePointEvent.h"
#include "network/events/ScreenMovePointEvent.h"
#include "network/events/ScreenPartDeformationModeEvent.h"
#include "network/events/ScreenPartMovePointEvent.h"

#include <QPointingDevice>
#include <QRandomGenerator>
#include <QStyleHints>
#include <QTest>

#include <limits>
#include <optional>

using namespace std::chrono_literals;
using namespace NetworkCompanion;
using MeshpadTest::SceneRig;

namespace {
constexpr auto kAlt = Qt::AltModifier;
constexpr auto kShift = Qt::ShiftModifier;
constexpr auto kCtrl = Qt::ControlModifier;
} // namespace

/// The editor on the real bridge, used with real events; what it tells the Producer is read on the
/// wire.
class SceneTest : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void initTestCase() { finger_.reset(QTest::createTouchDevice()); }
    void cleanupTestCase() { finger_.reset(); }
    void init() {
        GuardedTest::init();
        scene_.emplace();
    }
    void cleanup() {
        scene_.reset();
        GuardedTest::cleanup();
    }

    void meshesOfEachDeformation();
    void pictureWithoutGraphicsInterface();
    void pressesSelect();
    void dragMovesSelection();
    void dragIsCoalesced();
    void keysMove();
    void keysSelect();
    void turnedView();
    void zoneLocker();
    void moveLocker();
    void editingUv();
    void toolsThatSelect();
    void toolsThatDeform();
    void toolsWithNothingToWorkOn();
    void sticks();
    void clampingKeepsShapeAndBounds();
    void positionsSurviveTheWayToTheProducerAndBack();
    void incomingMoves();
    void meshesThatNobodyLooksAt();
    void configurationDialog();
    void choiceLists();
    void rotationDialog();
    void keyboardIsSeen();
    void toolTipWaitsForPointer();
    void view();
    void fingers();
    void simpleMode();
    void updatesWhileEdited();
    void turnedItemsOfAnySize();
    void nothingIsLostInAnyGesture();

private:
    /// The button of the type; where there are several, the one with the id.
    QQuickItem* button(const QString& type, int id = 0) const;
    QQuickItem* choiceBox(const QString& name) const;
    static QPoint centreOf(const QQuickItem* item);
    /// Whether the ring of focus is drawn just inside the item's edge.
    bool hasRing(const QQuickItem* item) const;
    void pressButton(const QString& type, int id) const;
    void pressItem(QQuickItem* item) const;
    void openDialog() const { pressButton("warpToolBarButton", 2); }
    /// What the configuration dialog shows.
    QString dialog() const {
        return scene_->string(
            "deformationDialog.visible ? deformationDialog.curve + ' ' + "
            "deformationDialog.columns + 'x' + deformationDialog.rows : 'closed'");
    }
    void compareWithProducer(bool xy);

    std::optional<SceneRig> scene_;
    std::unique_ptr<QPointingDevice> finger_;
};

template <typename Predicate>
static QQuickItem* itemUnder(QQuickItem* root, Predicate isIt) {
    QList<QQuickItem*> items{root};
    while (!items.isEmpty()) {
        QQuickItem* item = items.takeLast();
        if (isIt(item))
            return item;
        items += item->childItems();
    }
    return nullptr;
}

QQuickItem* SceneTest::button(const QString& type, int id) const {
    return itemUnder(
        scene_->root(),
        [&](const QQuickItem* item) {
            return item->property("type") == type && item->property("buttonId").toInt() == id;
        });
}

QQuickItem* SceneTest::choiceBox(const QString& name) const {
    return itemUnder(
        scene_->root(),
        [&](const QQuickItem* item) { return item->property("accessibleName") == name; });
}

QPoint SceneTest::centreOf(const QQuickItem* item) {
    return item->mapToScene(QRectF(QPointF(), item->size()).center()).toPoint();
}

bool SceneTest::hasRing(const QQuickItem* item) const {
    const QImage image = scene_->view->grabFramebuffer(); // first, as it also lays out
    return image.pixelColor(item->mapToScene({item->width() / 2, 2}).toPoint()) == Qt::white;
}

void SceneTest::pressItem(QQuickItem* item) const {
    QVERIFY(item && item->isVisible());
    scene_->click(centreOf(item));
}

void SceneTest::pressButton(const QString& type, int id) const {
    if (type == "selectWarpToolButton" || type == "deformWarpToolButton")
        scene_->evaluate(
            QString("toolTabs.currentTab = %1").arg(type.startsWith("select") ? 0 : 1));
    pressItem(button(type, id));
}

void SceneTest::compareWithProducer(bool xy) {
    scene_->settle();
    MeshGridItem* held = xy ? scene_->xyGrid() : scene_->uvGrid();
    const auto told = scene_->sentPoints(xy);
    for (auto point = told.cbegin(); point != told.cend(); ++point) {
        const auto line = [&point](double x, double y, bool selected) {
            return QString("point %1: (%2, %3) %4")
                .arg(point.key())
                .arg(x + 0.0, 0, 'g', 17) // without a sign of zero
                .arg(y + 0.0, 0, 'g', 17)
                .arg(selected);
        };
        const MeshPoint* mine = held->point(point.key());
        QCOMPARE(line(mine->x(), mine->y(), mine->isSelected()),
                 line(point->x, point->y, point->selected));
    }
}

void SceneTest::meshesOfEachDeformation() {
    SceneRig& s = *scene_;
    const auto size = [&s] {
        return std::pair(s.grid()->pointCount(),
                         s.integer("getCurrentItem().deformerGrids[1].linesArray.length"));
    };
    s.select(s.screen, 1, 2, 2);
    QCOMPARE(size(), std::pair(4, 4));
    QCOMPARE(s.position(3), QPointF(1920, 1080));
    s.deform(s.screen, 3, 3, 4);
    QCOMPARE(size(), std::pair(12, 17));
    QCOMPARE(s.position(6), QPointF(1280, 540));
    s.deform(s.screen, 2, 4, 7); // two patches side by side
    QCOMPARE(size(), std::pair(28, 21));
    s.key(Qt::Key_A, kCtrl);
    QCOMPARE(s.currentPoint(), 27);

    messages_->expect(QtWarningMsg,
                      "updateDeformationMode: Unusable grid of 65 rows and 3 columns");
    s.deform(s.screen, 3, 65, 3);
    messages_->expect(QtDebugMsg, "updateDeformationMode: Undefined mode");
    s.deform(s.screen, 4, 3, 3);
    QCOMPARE(size(), std::pair(28, 21)); // neither was taken
    QCOMPARE(s.currentPoint(), 27);
    s.deform(s.screen, 0, 2, 2);
    QCOMPARE(size(), std::pair(0, 0));
    QCOMPARE(s.string("currentPointText.text"), "Current point: --     X: -- px     Y: -- px");
}

void SceneTest::pictureWithoutGraphicsInterface() {
    SceneRig& s = *scene_;
    s.select(s.media, 3, 4, 4);
    s.click(s.onScreen(5));
    s.click(s.onScreen(9), kCtrl);
    for (const double zoom : {0.37, 0.9}) {
        s.evaluate(QString("zoomSlider.value = %1").arg(zoom));
        for (const int point : {5, 9, 6})
            QCOMPARE(s.faultInPicture(point), QString());
    }
    s.deform(s.media, 0, 2, 2);
    QCOMPARE(s.view->grabFramebuffer().pixelColor(s.view->rect().center()), QColor("#303030"));
}

void SceneTest::pressesSelect() {
    SceneRig& s = *scene_;
    s.select(s.screen, 3, 4, 4);
    s.click(s.onScreen(5));
    QCOMPARE(s.state(5), "CURRENT");
    QCOMPARE(s.string("currentPointText.text"),
             "Current point: 5     X: 640.00 px     Y: 360.00 px");
    s.click(s.onScreen(6), kCtrl);
    s.click(s.onScreen(10), kCtrl);
    s.click(s.onScreen(6), kCtrl); // adds once more, never takes away
    QCOMPARE(s.selectedPoints(), (QList{5, 6, 10}));
    QCOMPARE(s.currentPoint(), 6);
    s.click(s.onScreen(5)); // one of the selected becomes current, the others stay
    QCOMPARE(s.selectedPoints(), (QList{5, 6, 10}));
    QCOMPARE(s.state(6), "SELECTED");
    QCOMPARE(s.integer("getCurrentItem().deformerGrids[0].lastSelectedPointId"), 6);
    s.click(s.onScreen(0));
    QCOMPARE(s.selectedPoints(), QList{0});
    compareWithProducer(true);
    QVERIFY(!s.sentPoints(true)[10].selected);

    // The current point lies on top of a later one in the same place.
    s.evaluate("updatePoint(0, 1, getCurrentItem().deformerGrids[0].pointsArray[0].x, 0)");
    s.click(s.onScreen(0));
    QCOMPARE(s.currentPoint(), 0);
}

void SceneTest::dragMovesSelection() {
    SceneRig& s = *scene_;
    s.select(s.screen);
    s.click(s.onScreen(0));
    s.click(s.onScreen(4), kCtrl);
    const double zoom = s.number("mediaScaleFactor");
    const QPoint start = s.onScreen(4);
    s.press(start);
    QVERIFY(s.isTrue("isMovingPoint"));
    s.move(start + QPoint(20, 10));
    QCOMPARE(s.position(4), QPointF(960 + 20 / zoom, 540 + 10 / zoom));
    QCOMPARE(s.position(0), QPointF(20 / zoom, 10 / zoom));

    // Turning the view under the pointer moves no point.
    s.key(Qt::Key_R);
    s.move(start + QPoint(20, 10));
    QCOMPARE(s.position(4), QPointF(960 + 20 / zoom, 540 + 10 / zoom));
    s.key(Qt::Key_R, kCtrl);
    s.move(start + QPoint(20, 10));

    // A selection that changes under the pointer does not run away with it.
    s.key(Qt::Key_Escape);
    s.move(start + QPoint(60, 60));
    QCOMPARE(s.position(4), QPointF(960 + 20 / zoom, 540 + 10 / zoom));
    s.release(start + QPoint(60, 60));
    QVERIFY(!s.isTrue("isMovingPoint"));
    compareWithProducer(true);
}

void SceneTest::dragIsCoalesced() {
    SceneRig& s = *scene_;
    s.select(s.part);
    s.settle();
    s.producer.forget();
    const QPoint start = s.onScreen(4);
    s.press(start);
    for (int step = 1; step <= 30; ++step)
        s.move(start + QPoint(step, 0));
    s.release(start + QPoint(30, 0));
    s.key(Qt::Key_Down); // at once, and after what the drag still had to tell
    s.settle();
    const auto moves = s.producer.eventsOf<ScreenPartMovePointEvent>();
    QVERIFY2(moves.size() >= 3 && moves.size() < 8, qPrintable(QString::number(moves.size())));
    QCOMPARE(moves.back()->y(), 1.0);
    QCOMPARE(moves.back()->x(), s.position(4).x() - 960);
    QCOMPARE(moves.back()->name(), QString());
    QCOMPARE(int(moves.back()->screenPartId()), SceneRig::kPart);
}

void SceneTest::keysMove() {
    struct Press {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        QPointF step;
    };
    SceneRig& s = *scene_;
    for (const Press& press :
         {Press{Qt::Key_Left, {}, {-1, 0}}, Press{Qt::Key_Up, kShift, {0, -0.2}},
          Press{Qt::Key_Right, kCtrl, {10, 0}}, Press{Qt::Key_Down, kCtrl | kShift, {0, 1}}}) {
        s.select(s.media);
        s.click(s.onScreen(4));
        s.click(s.onScreen(8), kCtrl);
        s.key(press.key, press.modifiers);
        QCOMPARE(s.position(4), QPointF(500, 300) + press.step);
        QCOMPARE(s.position(8), QPointF(1000, 600) + press.step);
        QCOMPARE(s.position(0), QPointF());

        // A key that is held moves on in ticks until it is released.
        s.repeatKey(press.key, press.modifiers);
        QVERIFY(s.isTrue("isMovingPoint"));
        QTest::keyRelease(s.view, press.key, press.modifiers);
        QVERIFY(!s.isTrue("isMovingPoint"));
        QCOMPARE(s.position(4), QPointF(500, 300) + 2 * press.step);
        compareWithProducer(true);
        QCOMPARE(s.sentPoints(true)[4].x, 500 + 2 * press.step.x());
    }
}

void SceneTest::keysSelect() {
    SceneRig& s = *scene_;
    s.select(s.screen, 3, 4, 5);
    s.key(Qt::Key_Right); // nothing is current: nothing moves, nothing is selected
    QCOMPARE(s.selectedPoints(), QList<int>());
    s.key(Qt::Key_Down, kAlt);
    QCOMPARE(s.selectedPoints(), QList{0});
    // Beyond the edges of the mesh there is nothing.
    for (const auto& [corner, vertical, horizontal] :
         {std::tuple{0, Qt::Key_Up, Qt::Key_Left}, std::tuple{4, Qt::Key_Up, Qt::Key_Right},
          std::tuple{15, Qt::Key_Down, Qt::Key_Left},
          std::tuple{19, Qt::Key_Down, Qt::Key_Right}}) {
        s.click(s.onScreen(corner));
        for (const Qt::Key key : {vertical, horizontal}) {
            s.key(key, kAlt);
            s.key(key, kAlt | kShift);
            s.key(key, kCtrl | kShift | kAlt);
            QCOMPARE(s.selectedPoints(), QList{corner});
        }
    }
    // Other keys are for the rest of the program.
    QList<int> keys;
    connect(s.canvas.get(), &Canvas::keyEvent, this, [&keys](QKeyEvent* event) {
        QCOMPARE(event->type(), QEvent::KeyPress);
        keys.append(event->key());
    });
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_P, Qt::Key_M, Qt::Key_T})
        s.key(key);
    QCOMPARE(keys, (QList<int>{Qt::Key_Space, Qt::Key_P, Qt::Key_M}));
}

void SceneTest::turnedView() {
    SceneRig& s = *scene_;
    s.select(s.screen, 3, 3, 4);
    s.key(Qt::Key_R);
    QCOMPARE(s.integer("rotationDialog.selectedView"), 1);
    QCOMPARE(s.grid()->point(5)->viewingRotation(), -90.0);
    s.click(s.onScreen(5));
    const QPoint before = s.onScreen(5);
    s.key(Qt::Key_Up, kCtrl);
    QCOMPARE(s.position(5), QPointF(640 - 10, 540)); // along the item's own x axis
    QVERIFY(s.onScreen(5).y() < before.y() && s.onScreen(5).x() == before.x());
    s.key(Qt::Key_Up, kAlt);
    QCOMPARE(s.currentPoint(), 4);
    // Lines as they are on the screen: the row, then what is above, right, below and left.
    const std::pair<Qt::Key, QList<int>> lines[] = {{Qt::Key_Up, {0, 4, 5, 8}},
                                                    {Qt::Key_Right, {0, 1, 2, 3, 5}},
                                                    {Qt::Key_Down, {2, 5, 6, 10}},
                                                    {Qt::Key_Left, {5, 8, 9, 10, 11}}};
    s.key(Qt::Key_Left, kCtrl | kAlt);
    QCOMPARE(s.selectedPoints(), (QList{0, 4, 8}));
    for (const auto& [key, points] : lines) {
        s.key(Qt::Key_Escape);
        s.click(s.onScreen(5));
        s.key(key, kCtrl | kShift | kAlt);
        QCOMPARE(s.selectedPoints(), points);
    }
    s.key(Qt::Key_Escape);
    s.click(s.onScreen(5));
    const QPoint start = s.onScreen(5);
    s.press(start);
    s.move(start + QPoint(0, 30));
    s.release(start + QPoint(0, 30));
    QCOMPARE(s.onScreen(5), start + QPoint(0, 30));

    s.key(Qt::Key_R); // upside down
    s.key(Qt::Key_Escape);
    s.click(s.onScreen(5));
    s.key(Qt::Key_Down, kCtrl | kShift | kAlt);
    QCOMPARE(s.selectedPoints(), (QList{0, 1, 2, 3, 5}));

    for (int turn = 0; turn < 3; ++turn)
        s.key(Qt::Key_R, kCtrl);
    QCOMPARE(s.integer("getCurrentItem().viewingRotation"), -90);
    QCOMPARE(s.integer("rotationDialog.selectedView"), 3);
    s.select(s.media); // the workspace stays turned
    QCOMPARE(s.integer("getCurrentItem().viewingRotation"), 270);
    QCOMPARE(s.grid()->point(0)->viewingRotation(), -270.0);
}

void SceneTest::zoneLocker() {
    SceneRig& s = *scene_;
    s.select(s.screen, 3, 4, 4);
    pressButton("warpToolBarButton", 0);
    QVERIFY(s.isTrue("warpToolBar.zoneLockerButtonPushed"));
    s.click(s.onScreen(5));
    s.click(s.onScreen(6), kCtrl);
    const QPoint start = s.onScreen(6);
    s.press(start);
    s.move(start - QPoint(900, 500));
    QCOMPARE(s.position(5), QPointF(0, 0));
    QCOMPARE(s.position(6), QPointF(640, 0));
    s.move(start + QPoint(900, 0));
    QCOMPARE(s.position(6).x(), 1920.0);
    QCOMPARE(s.position(5).x(), 1280.0);
    s.release(start + QPoint(900, 0));
    for (int i = 0; i < 3; ++i)
        s.key(Qt::Key_Right, kCtrl);
    QCOMPARE(s.position(6).x(), 1920.0);
    s.canvas->onLeftAxisMoved(1, 0);
    s.canvas->onLeftAxisMoved(0, 0);
    QCOMPARE(s.position(6).x(), 1920.0);
    const auto touch = [this] { return QTest::touchEvent(scene_->view, finger_.get()); };
    const QPoint held = s.onScreen(6);
    touch().press(0, held);
    touch().move(0, held - QPoint(950, 0));
    QTRY_COMPARE(s.position(5).x(), 0.0);
    touch().release(0, held - QPoint(950, 0));
    QCOMPARE(s.position(6).x(), 640.0);
    compareWithProducer(true);

    s.select(s.media); // another item: released
    QVERIFY(!s.isTrue("warpToolBar.zoneLockerButtonPushed"));
    s.select(s.screen, 3, 4, 4);
    s.press(s.onScreen(0));
    s.move(s.onScreen(0) - QPoint(30, 30));
    QVERIFY(s.position(0).x() < 0);
    s.release({});
}

void SceneTest::moveLocker() {
    SceneRig& s = *scene_;
    s.select(s.screen);
    const QPoint start = s.onScreen(4);
    const double x = s.number("canvasMedia.x");
    pressButton("warpToolBarButton", 1);
    s.press(start);
    s.move(start + QPoint(40, 0));
    s.release(start + QPoint(40, 0));
    QCOMPARE(s.position(4), QPointF(960, 540));
    QCOMPARE(s.selectedPoints(), QList<int>());
    QVERIFY(s.number("canvasMedia.x") > x); // the canvas was dragged instead
    pressButton("warpToolBarButton", 1);
    s.click(s.onScreen(4));
    QCOMPARE(s.selectedPoints(), QList{4});
}

void SceneTest::editingUv() {
    SceneRig& s = *scene_;
    s.select(s.screen);
    QVERIFY(!s.isTrue("warpToolBar.mapButtonEnabled"));
    s.canvas->onAction(Action::TOGGLE_EDIT_UV);
    QVERIFY(s.isTrue("isCurrentGridXy"));

    s.select(s.texture);
    s.canvas->onAction(Action::TOGGLE_EDIT_UV);
    QVERIFY(s.isTrue("warpToolBar.mapButtonPushed"));
    QVERIFY(s.isTrue("warpToolBar.zoneLockerButtonPushed"));
    pressButton("warpToolBarButton", 0); // texture coordinates of a texture stay locked
    QVERIFY(s.isTrue("warpToolBar.zoneLockerButtonPushed"));
    s.press(s.onScreen(0));
    s.move(s.onScreen(0) + QPoint(80, -80));
    s.release(s.onScreen(0));
    QCOMPARE(s.position(0).y(), 0.0);
    compareWithProducer(false);
    QVERIFY(s.sentPoints(false)[0].x > 0 && s.sentPoints(false)[0].x < 1000);
    QVERIFY(s.sentPoints(true).isEmpty());

    s.select(s.media); // still texture coordinates, now free
    QVERIFY(!s.isTrue("isCurrentGridXy"));
    QVERIFY(!s.isTrue("warpToolBar.zoneLockerButtonPushed"));
    pressButton("warpToolBarButton", 3);
    QVERIFY(s.isTrue("isCurrentGridXy"));
    QVERIFY(s.grid()->isVisible());
    s.canvas->onAction(Action::TOGGLE_EDIT_UV);
    s.select(s.screen);
    QVERIFY(s.isTrue("isCurrentGridXy && !warpToolBar.mapButtonPushed"));
}

/// Every tool that selects, by each of its ways: keys, action of a controller, button. Of four rows
/// of five points, 7 is current before.
void SceneTest::toolsThatSelect() {
    struct Tool {
        const char* keys;
        Action action;
        int button;
        const char* selection;
        int current;
    };
    const Tool tools[]{
        {"Ctrl+A", Action(3), 0, "0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19", 19},
        {"Esc", Action(4), 1, "", -1},
        {"Alt+Up", Action(5), 5, "2", 2},
        {"Alt+Right", Action(6), 2, "8", 8},
        {"Alt+Down", Action(7), 4, "12", 12},
        {"Alt+Left", Action(8), 3, "6", 6},
        {"Shift+Alt+Up", Action(9), 7, "2 7", 2},
        {"Shift+Alt+Right", Action(10), 9, "7 8", 8},
        {"Shift+Alt+Down", Action(11), 8, "7 12", 12},
        {"Shift+Alt+Left", Action(12), 6, "6 7", 6},
        {"Ctrl+Alt+Up, Ctrl+Alt+Down", Action(13), 10, "2 7 12 17", 17},
        {"Ctrl+Alt+Left, Ctrl+Alt+Right", Action(14), 11, "5 6 7 8 9", 9},
        {"Ctrl+Shift+Alt+Up", Action(15), 13, "0 1 2 3 4 7", 4},
        {"Ctrl+Shift+Alt+Right", Action(16), 15, "3 7 8 13 18", 18},
        {"Ctrl+Shift+Alt+Down", Action(17), 14, "7 10 11 12 13 14", 14},
        {"Ctrl+Shift+Alt+Left", Action(18), 12, "1 6 7 11 16", 16},
    };
    SceneRig& s = *scene_;
    s.select(s.media, 3, 4, 5);
    for (const Tool& tool : tools) {
        const QKeySequence keys(tool.keys);
        const QString named = QString(tool.keys).replace(", Ctrl+Alt+", "or"); // as the tip has it
        QVERIFY(button("selectWarpToolButton", tool.button)
                    ->property("toolTip")
                    .toString()
                    .remove(' ')
                    .contains("(" + named + ")"));
        for (int way = -2; way < keys.count(); ++way) {
            s.deform(s.media, 3, 4, 5);
            s.settle();
            s.producer.forget();
            s.click(s.onScreen(7));
            if (way == -2)
                s.canvas->onAction(tool.action);
            else if (way == -1)
                pressButton("selectWarpToolButton", tool.button);
            else
                s.key(keys[uint(way)].key(), keys[uint(way)].keyboardModifiers());
            QStringList selection;
            for (const int point : s.selectedPoints())
                selection << QString::number(point);
            QCOMPARE(selection.join(' '), QString(tool.selection));
            QCOMPARE(s.currentPoint(), tool.current);
            compareWithProducer(true);
        }
    }
}

/// Every tool that deforms, as action and as button, on meshes with fewer and with more rows than
/// columns.
void SceneTest::toolsThatDeform() {
    struct Tool {
        Action action;
        int button;
        bool otherColumn, otherRow; // the point that gives its place is the one opposite
        bool otherX, otherY;        // to the opposite place
        bool regular = false;       // from the texture coordinates, where nothing was moved
    };
    const Tool tools[]{{Action(19), 1, true, false, true, false},
                       {Action(20), 2, false, true, false, true},
                       {Action(21), 3, false, false, true, false},
                       {Action(22), 4, false, false, false, true},
                       {Action(23), 5, false, false, false, false, true}};
    SceneRig& s = *scene_;
    const auto deforms = [&](const Tool& tool, bool byAction, int rows, int columns) {
        s.deform(s.media, 3, rows, columns);
        QMap<int, QPointF> before;
        for (int id = 0; id < rows * columns; ++id) {
            if (!tool.regular)
                s.evaluate(QString("updatePoint(0, %1, %2, %3)").arg(id).arg(id * id).arg(id + 40));
            before[id] = s.position(id);
        }
        if (tool.regular)
            s.evaluate("updatePoint(0, 4, 70, 230)");
        if (byAction)
            s.canvas->onAction(tool.action);
        else
            pressButton("deformWarpToolButton", tool.button);
        for (int id = 0; id < rows * columns; ++id) {
            const int row = id / columns;
            const int column = id % columns;
            const QPointF from = before[(tool.otherRow ? rows - 1 - row : row) * columns +
                                        (tool.otherColumn ? columns - 1 - column : column)];
            // The horizontal mirror takes as many rows as there are columns.
            const bool isLeft = tool.otherColumn && row >= columns;
            QCOMPARE(s.position(id), isLeft ? before[id]
                                            : QPointF(tool.otherX ? 1000 - from.x() : from.x(),
                                                      tool.otherY ? 600 - from.y() : from.y()));
        }
        compareWithProducer(true);
    };
    s.select(s.media);
    for (const Tool& tool : tools) {
        deforms(tool, true, 3, 4);
        deforms(tool, false, 4, 3);
    }
    s.producer.forget();
    pressButton("deformWarpToolButton", 0); // the heading
    s.settle();
    QCOMPARE(int(s.producer.events().size()), 0);

    s.deform(s.media, 3, 3, 4);
    s.evaluate("updatePoint(0, 4, 250, 150)");
    for (const bool byAction : {true, false}) {
        s.evaluate("updatePoint(1, 4, 0, 0)");
        if (byAction)
            s.canvas->onAction(Action(24));
        else
            pressButton("deformWarpToolButton", 6);
        compareWithProducer(false);
        QCOMPARE(s.sentPoints(false)[4].x, 250.0);
        QCOMPARE(s.sentPoints(false)[4].y, 150.0);
    }

    s.select(s.screen);
    s.settle();
    s.producer.forget();
    s.canvas->onAction(Action::UV_TO_XY); // not for screens
    s.canvas->onAction(Action::XY_TO_UV);
    s.settle();
    QCOMPARE(int(s.producer.events().size()), 0);
}

/// Buttons that have nothing to work on look so, at once, and still take a press.
void SceneTest::toolsWithNothingToWorkOn() {
    SceneRig& s = *scene_;
    const auto inUse = [this](const char* type, int id) {
        return button(type, id)->opacity() == 1;
    };
    const auto seen = [&] { // select all, a mirror, XY to UV
        return QString("%1%2%3")
            .arg(inUse("selectWarpToolButton", 0))
            .arg(inUse("deformWarpToolButton", 1))
            .arg(inUse("deformWarpToolButton", 6));
    };
    QCOMPARE(seen(), "000");
    s.select(s.screen);
    QCOMPARE(seen(), "110");
    s.canvas->onScreenMode(SceneRig::kScreen, LV_NTC_ModeType::Simple);
    QCOMPARE(seen(), "000");
    s.canvas->onScreenMode(SceneRig::kScreen, LV_NTC_ModeType::Deformation);
    QCOMPARE(seen(), "110");
    s.select(s.media);
    QCOMPARE(seen(), "111");
    s.canvas->onAction(Action::TOGGLE_EDIT_UV);
    QCOMPARE(seen(), "111");
    s.deform(s.media, 0, 2, 2);
    QCOMPARE(seen(), "000");
    messages_->expect(QtDebugMsg, "selectLine: currentPointId value is -1 (null)");
    pressButton("selectWarpToolButton", 10);
    s.deform(s.media, 1, 2, 2);
    QCOMPARE(seen(), "111");
    s.canvas->onRemoveMediaItem(SceneRig::kMediaCue);
    QCOMPARE(seen(), "000");
}

void SceneTest::sticks() {
    SceneRig& s = *scene_;
    s.canvas->onLeftAxisMoved(1, 1); // no item: nothing
    s.canvas->onAction(Action::SELECT_ALL_POINTS);
    s.select(s.screen, 3, 3, 3);
    s.click(s.onScreen(5));
    const double zoom = s.number("mediaScaleFactor");
    s.canvas->onLeftAxisMoved(0.5F, 0);
    QVERIFY(s.isTrue("isMovingPoint"));
    QCOMPARE(s.position(5).x(), 1920 + 0.5 * 0.5 / zoom);
    s.canvas->onLeftAxisMoved(0, 0);
    QVERIFY(!s.isTrue("isMovingPoint"));
    compareWithProducer(true);
    const double x = s.number("canvasMedia.x");
    s.canvas->onRightAxisMoved(1, 0);
    QCOMPARE(s.number("canvasMedia.x"), x - 2 / zoom);
    s.canvas->onPressure(1);
    QCOMPARE(s.number("mediaScaleFactor"), zoom - 0.01);
}

void SceneTest::clampingKeepsShapeAndBounds() {
    QCOMPARE(scene_->string(R"((() => {
        let seed = 7;
        const random = () => (seed = (seed * 16807) % 2147483647) / 2147483647;
        for (let round = 0; round < 3000; ++round) {
            const width = 1 + Math.floor(random() * 4000), height = 1 + Math.floor(random() * 4000);
            const outside = round % 4 === 0; // one of the points
            const points = [];
            for (let i = 0; i < 4; ++i)
                points.push({ x: random() * width, y: random() * height });
            if (outside)
                points[round % 3].x = -random() * width;
            const dx = (random() - 0.5) * 4 * width, dy = (random() - 0.5) * 4 * height;
            const delta = Rules.clampedDelta(points, width, height, dx, dy);
            for (const p of points) {
                const wasInside = p.x >= 0 && p.x <= width;
                const x = p.x + delta.dx, y = p.y + delta.dy;
                if (wasInside && (x < 0 || x > width) || y < 0 || y > height)
                    return "round " + round + ": " + p.x + " -> " + x + " of " + width;
            }
            if (!outside && (Math.abs(delta.dx) > Math.abs(dx) || delta.dx * dx < 0))
                return "round " + round + ": further than asked";
            const free = points.every(p => p.x + dx >= 0 && p.x + dx <= width);
            if (free && delta.dx !== dx)
                return "round " + round + ": clamped for nothing";
        }
        return "kept";
    })())"),
             "kept");
}

void SceneTest::positionsSurviveTheWayToTheProducerAndBack() {
    QCOMPARE(scene_->string(R"((() => {
        let seed = 11;
        const random = () => (seed = (seed * 16807) % 2147483647) / 2147483647;
        for (let round = 0; round < 8000; ++round) {
            const size = 1 + Math.floor(random() * 16384);
            const x = (random() - 0.3) * size * Math.pow(10, Math.floor(random() * 6) - 3);
            for (const isXy of [true, false]) {
                const told = Rules.toProducer(x, size, isXy);
                const kept = Rules.fromProducer(told, size, isXy);
                if (Math.abs(kept - x) > 1e-9 * (Math.abs(x) + size))
                    return x + " became " + kept;
                // What is told once more, unmoved, is the same to the last bit, and so is its echo.
                const again = Rules.toProducer(kept, size, isXy);
                if (Rules.fromProducer(again, size, isXy) !== kept)
                    return x + " of " + size + " wanders";
                if (isXy && again !== told)
                    return x + " of " + size + " is told as " + told + " and " + again;
            }
        }
        return "agreed";
    })())"),
             "agreed");
}

void SceneTest::incomingMoves() {
    SceneRig& s = *scene_;
    s.select(s.screen, 3, 3, 3);
    s.settle();
    s.producer.forget();
    const auto send = [&s](unsigned int point, double x, double y, bool xy) {
        s.producer.send(
            ScreenMovePointEvent(SceneRig::kScreen, 100, "Screen", point, x, y, 0, xy, true));
    };
    s.click(s.onScreen(4));
    s.press(s.onScreen(4));
    send(4, 5, 5, true);
    send(0, -900, -500.25, true);
    send(1, 0.25, 0.5, false);
    send(4'000'000'000U, 1, 1, true);
    send(99, 1, 1, true);
    QTRY_COMPARE(s.position(0), QPointF(60, 39.75));
    QCOMPARE(s.position(4), QPointF(960, 540)); // the operator has it
    QCOMPARE(s.number("getCurrentItem().deformerGrids[1].pointsArray[1].x"), 480.0);
    s.release(s.onScreen(4));
    send(4, 5, 5, true);
    QTRY_COMPARE(s.position(4), QPointF(965, 545));
    QCOMPARE(s.string("currentPointText.text"),
             "Current point: 4     X: 965.00 px     Y: 545.00 px");
    QCOMPARE(s.selectedPoints(), QList{4});
    s.settle();
    for (const auto* move : s.producer.eventsOf<ScreenMovePointEvent>())
        QVERIFY(move->pointId() == 4 && move->x() == 0); // nothing that came in went out again
}

void SceneTest::meshesThatNobodyLooksAt() {
    SceneRig& s = *scene_;
    s.select(s.screen, 3, 3, 3);
    MeshGridItem* xy = s.grid();
    auto* uv = s.uvGrid();
    QVERIFY(uv->isOutline()); // not needed so far
    QCOMPARE(s.position(8), QPointF(1920, 1080));
    s.key(Qt::Key_R);
    s.click(s.onScreen(4));
    s.press(s.onScreen(4));
    s.move(s.onScreen(4) + QPoint(33, 7));
    s.release(s.onScreen(4));
    const QPointF moved = s.position(4);
    const double turned = xy->point(0)->viewingRotation();
    QVERIFY(moved != QPointF(960, 540) && turned == -90);

    s.select(s.media, 3, 3, 3);
    QVERIFY(xy->isOutline());
    QCOMPARE(int(xy->findChildren<MeshPoint*>().size()), 0);
    s.settle(); // its points were unselected and told
    const auto send = [&s](unsigned int point, double x, double y, bool isXy) {
        s.producer.send(
            ScreenMovePointEvent(SceneRig::kScreen, 100, "Screen", point, x, y, 0, isXy, false));
    };
    send(0, -900, -500.25, true);
    send(9, 1, 1, true);
    send(1, 0.25, 0.5, false);
    s.settle();
    QVERIFY(xy->isOutline() && uv->isOutline());

    s.canvas->onSelectedItem(&s.screen);
    QCOMPARE(s.position(0), QPointF(60, 39.75));
    QCOMPARE(s.position(4), moved);
    QCOMPARE(s.position(8), QPointF(1920, 1080));
    QCOMPARE(s.selectedPoints(), QList<int>());
    QCOMPARE(xy->point(0)->viewingRotation(), turned);
    QCOMPARE(s.integer("getCurrentItem().deformerGrids[0].pointsArray.length"), 9);
    QCOMPARE(s.integer("getCurrentItem().deformerGrids[0].linesArray.length"), 12);
    QCOMPARE(uv->point(1)->x(), 480.0);
    QCOMPARE(uv->point(2)->x(), 1920.0);
}

void SceneTest::configurationDialog() {
    SceneRig& s = *scene_;
    s.select(s.media, 2, 7, 10);
    openDialog();
    QCOMPARE(dialog(), "Bezier 4x3");
    s.key(Qt::Key_A, kCtrl); // out of reach
    QCOMPARE(s.selectedPoints(), QList<int>());
    s.key(Qt::Key_Down); // the next type of curve
    s.evaluate("deformationDialog.resetXY = true");
    s.key(Qt::Key_Return);
    QCOMPARE(dialog(), "closed");
    s.settle();
    const auto modes = s.producer.eventsOf<MediaDeformationModeEvent>();
    QCOMPARE(int(modes.size()), 1);
    QVERIFY(*modes[0] ==
            MediaDeformationModeEvent(LV_NTC_ElementType::Media, LV_NTC_DeformationType::Curve,
                                      SceneRig::kMediaCue, 5, 102, "Media", 3, 4, true));

    // A kind with another smallest count: the lists are those of the kind that is chosen.
    s.select(s.screen, 1, 2, 2);
    openDialog();
    QCOMPARE(dialog(), "Keystone 2x2");
    s.key(Qt::Key_Down);
    QCOMPARE(dialog(), "Bezier 2x2");
    s.key(Qt::Key_Down);
    QCOMPARE(dialog(), "Curve 3x3");
    s.key(Qt::Key_Escape);

    // A mesh beyond the lists is shown as it is, and confirmed as it is.
    s.select(s.screen, 2, 58, 64);
    openDialog();
    QCOMPARE(dialog(), "Bezier 22x20");
    s.key(Qt::Key_Down);
    QCOMPARE(dialog(), "Curve 16x16"); // as another kind it cannot be so large
    s.key(Qt::Key_Up);
    s.key(Qt::Key_Return);
    s.settle();
    QCOMPARE(int(s.producer.eventsOf<DeformationModeEvent>().back()->rows()), 58);
    QCOMPARE(int(s.producer.eventsOf<DeformationModeEvent>().back()->columns()), 64);

    // By pointer: "None" for a part, which cannot be without; the check box is clear again.
    s.select(s.part, 3, 16, 16);
    openDialog();
    QVERIFY(!s.isTrue("deformationDialog.resetXY"));
    QCOMPARE(dialog(), "Curve 16x16");
    for (int i = 0; i < 3; ++i)
        s.key(Qt::Key_Up);
    pressItem(button("confirmButton"));
    s.settle();
    const auto parts = s.producer.eventsOf<ScreenPartDeformationModeEvent>();
    QCOMPARE(int(parts.size()), 1);
    QCOMPARE(parts[0]->deformationType(), LV_NTC_DeformationType::Keystone);

    openDialog();
    s.key(Qt::Key_Tab);
    s.key(Qt::Key_Escape);
    QCOMPARE(dialog(), "closed");
    s.key(Qt::Key_A, kCtrl); // the canvas has the keyboard again
    QCOMPARE(s.selectedPoints().size(), 256);
    openDialog();
    s.key(Qt::Key_Up); // the keyboard is where it was at first
    QVERIFY(dialog().startsWith("Bezier"));

    // Behind the button lies a point, which a second tap does not reach.
    const QPoint at = centreOf(button("cancelButton"));
    const QPointF behind = s.grid()->mapFromScene(at);
    s.evaluate(QString("updatePoint(0, 3, %1, %2)").arg(behind.x()).arg(behind.y()));
    s.click(at);
    QCOMPARE(dialog(), "closed");
    s.click(at);
    QTest::qWait(QGuiApplication::styleHints()->mouseDoubleClickInterval());
    QCOMPARE(s.selectedPoints().size(), 256);
    QCOMPARE(s.currentPoint(), 255);
    s.click(s.onScreen(3));
    QVERIFY(s.currentPoint() != 255);
}

void SceneTest::choiceLists() {
    SceneRig& s = *scene_;
    s.select(s.media, 3, 3, 4);
    openDialog();
    s.view->grabFramebuffer(); // the dialog takes its places with the frame
    QQuickItem* box = choiceBox("Number of columns");
    s.wheel(-1, centreOf(box)); // meant for something else
    QCOMPARE(dialog(), "Curve 4x3");

    // A press beside the open list closes it, and that is all: on the veil, and on what can be
    // pressed.
    s.settle();
    s.producer.forget();
    for (const QPoint& beside : {QPoint(20, 20), centreOf(choiceBox("Type of curves")),
                                 centreOf(button("cancelButton")), centreOf(box)}) {
        pressItem(box);
        QVERIFY(box->property("isOpen").toBool());
        s.click(beside);
        QVERIFY(!box->property("isOpen").toBool());
        QVERIFY(!choiceBox("Type of curves")->property("isOpen").toBool());
        QCOMPARE(dialog(), "Curve 4x3");
    }
    s.settle();
    QCOMPARE(int(s.producer.events().size()), 0);

    pressItem(box);
    s.view->grabFramebuffer();                              // entries come with the frame
    s.click(centreOf(box) + QPoint(0, int(box->height()))); // the first of the list
    QCOMPARE(dialog(), "Curve 3x3");
    QVERIFY(!box->property("isOpen").toBool());
    pressItem(button("confirmButton"));
    QCOMPARE(dialog(), "closed");
}

void SceneTest::rotationDialog() {
    SceneRig& s = *scene_;
    pressButton("canvasButton", 1); // no item
    QVERIFY(!s.isTrue("rotationDialog.visible"));
    s.select(s.screen);
    pressButton("canvasButton", 1);
    pressButton("rotationButton", 2);
    QVERIFY(!s.isTrue("rotationDialog.visible"));
    QCOMPARE(s.integer("getCurrentItem().viewingRotation"), 180);
    pressButton("canvasButton", 1);
    QVERIFY(hasRing(button("rotationButton", 2))); // the view that holds, then the next
    s.key(Qt::Key_Tab);
    QVERIFY(hasRing(button("rotationButton", 3)) && !hasRing(button("rotationButton", 2)));
    s.key(Qt::Key_Return);
    QVERIFY(!s.isTrue("rotationDialog.visible"));
    QCOMPARE(s.integer("getCurrentItem().viewingRotation"), 270);
    pressButton("canvasButton", 1);
    s.canvas->onSelectedItem(nullptr);
    QVERIFY(!s.isTrue("rotationDialog.visible"));
}

void SceneTest::keyboardIsSeen() {
    SceneRig& s = *scene_;
    s.select(s.media);
    const auto canvasHasRing = [&s] {
        return s.view->grabFramebuffer().pixelColor(142, 200) == Qt::white;
    };
    for (const auto reason : {Qt::TabFocusReason, Qt::BacktabFocusReason}) {
        s.view->clearFocus();
        s.view->setFocus(reason);
        QVERIFY(canvasHasRing());
        s.view->clearFocus();
        QVERIFY(!canvasHasRing());
    }
    s.view->setFocus(Qt::MouseFocusReason);
    QVERIFY(!canvasHasRing());

    openDialog();
    QVERIFY(hasRing(choiceBox("Type of curves")));
    QQuickItem* ok = button("confirmButton");
    QVERIFY(!hasRing(ok));
    s.key(Qt::Key_Backtab, kShift); // from the first to the last
    QVERIFY(hasRing(ok) && !hasRing(button("cancelButton")));
    s.key(Qt::Key_Backtab, kShift);
    QVERIFY(hasRing(button("cancelButton")) && !hasRing(ok));
}

void SceneTest::toolTipWaitsForPointer() {
    SceneRig& s = *scene_;
    s.select(s.media);
    QQuickItem* configuration = button("warpToolBarButton", 2);
    const QQuickItem* area = itemUnder(
        configuration,
        [](const QQuickItem* item) { return item->property("containsMouse").isValid(); });
    const auto isUnderPointer = [&] { return area->property("containsMouse").toBool(); };
    const auto isExplained = [&] {
        return s.evaluate("toolTip.owner").value<QQuickItem*>() == configuration;
    };
    s.hover(centreOf(configuration));
    QVERIFY(isExplained());
    QTRY_VERIFY(s.isTrue("toolTip.visible"));
    pressItem(configuration);
    QTRY_VERIFY(!isUnderPointer() && !isExplained());
    s.key(Qt::Key_Escape);
    QTRY_VERIFY(isUnderPointer()); // uncovered, by no movement of the pointer
    QVERIFY(!isExplained());
    s.hover(centreOf(configuration) + QPoint(1, 0));
    QVERIFY(isExplained());
}

void SceneTest::view() {
    SceneRig& s = *scene_;
    s.wheel(1); // no item
    QCOMPARE(s.number("mediaScaleFactor"), 0.1);
    s.select(s.screen);
    const double zoom = std::min(1060 / 1920.0, 610 / 1080.0) / 2.5;
    QCOMPARE(s.number("mediaScaleFactor"), zoom);
    QCOMPARE(s.onScreen(4), QPoint(530, 305));
    s.wheel(2);
    s.wheel(-1);
    QCOMPARE(s.number("mediaScaleFactor"), zoom + 0.05);
    s.wheel(-20);
    QCOMPARE(s.number("mediaScaleFactor"), 0.1);
    s.wheel(2);

    s.press({600, 60});
    s.move({620, 90});
    s.release({620, 90});
    QCOMPARE(s.onScreen(4), QPoint(550, 335));
    s.canvas->resize(1260, 710);
    QTRY_COMPARE(s.root()->size(), QSizeF(1260, 710));
    QCOMPARE(s.onScreen(4), QPoint(650, 385)); // what was in the middle still is
    pressButton("canvasButton", 0);
    QCOMPARE(s.onScreen(4), QPoint(630, 355));

    s.canvas->onSelectedItem(nullptr);
    QVERIFY(!s.isTrue("zoomSlider.enabled"));
}

void SceneTest::fingers() {
    SceneRig& s = *scene_;
    s.select(s.screen);
    const QPoint centre = s.onScreen(4);
    const auto touch = [this] { return QTest::touchEvent(scene_->view, finger_.get()); };

    touch().press(0, centre + QPoint(14, 8)); // beside the circle, within reach
    touch().move(0, centre + QPoint(16, 9));  // a finger trembles
    QCOMPARE(s.position(4), QPointF(960, 540));
    touch().release(0, centre + QPoint(16, 9));
    QCOMPARE(s.selectedPoints(), QList{4});
    QCOMPARE(s.position(4), QPointF(960, 540));

    touch().press(0, centre);
    touch().move(0, centre + QPoint(30, 0));
    QTRY_VERIFY(s.isTrue("isMovingPoint")); // moves of fingers come with the next frame
    touch().move(0, centre + QPoint(50, 20));
    touch().release(0, centre + QPoint(50, 20));
    QVERIFY(!s.isTrue("isMovingPoint"));
    QCOMPARE(s.onScreen(4), centre + QPoint(50, 20));
    compareWithProducer(true);

    openDialog(); // what lies behind it is out of reach, beside it, too
    for (const int point : {0, 1, 8}) {
        touch().press(0, s.onScreen(point));
        touch().release(0, s.onScreen(point));
    }
    QCOMPARE(s.selectedPoints(), QList{4});
    s.key(Qt::Key_Escape);

    // Two fingers, the first of them on another point: neither selection nor points change.
    const QPointF first = s.position(0);
    const double zoom = s.number("mediaScaleFactor");
    const QPoint corner = s.onScreen(0);
    s.producer.forget();
    touch().press(0, corner);
    touch().stationary(0).press(1, corner + QPoint(100, 0));
    touch().move(0, corner).move(1, corner + QPoint(200, 0));
    QTRY_COMPARE(s.number("mediaScaleFactor"), 2 * zoom);
    touch().release(0, corner).release(1, corner + QPoint(200, 0));
    QCOMPARE(s.position(0), first);
    QCOMPARE(s.selectedPoints(), QList{4});
    QVERIFY((s.onScreen(0) - corner).manhattanLength() <= 1); // the fingers keep what they hold
    s.settle();
    QCOMPARE(int(s.producer.events().size()), 0);

    // A second finger soon after the first: what that moved is taken back.
    touch().press(0, s.onScreen(0));
    touch().move(0, s.onScreen(0) + QPoint(40, 0));
    QTRY_VERIFY(s.position(0) != first);
    touch().stationary(0).press(1, QPoint(900, 500));
    QCOMPARE(s.position(0), first);
    touch().release(0, corner).release(1, QPoint(900, 500));
    QVERIFY(!s.isTrue("isMovingPoint"));
    compareWithProducer(true);

    // A third finger comes and one of the first two goes: the view stays where it is.
    const QPoint seen = s.onScreen(4);
    touch().press(0, QPoint(400, 300));
    touch().stationary(0).press(1, QPoint(500, 300));
    touch().stationary(0).stationary(1).press(2, QPoint(700, 200));
    touch().release(0, QPoint(400, 300)).stationary(1).stationary(2);
    QCOMPARE(s.onScreen(4), seen);
    touch().move(1, QPoint(520, 310)).move(2, QPoint(720, 210));
    QTRY_COMPARE(s.onScreen(4), seen + QPoint(20, 10));
    touch().release(1, QPoint(520, 310)).release(2, QPoint(720, 210));

    const double x = s.number("canvasMedia.x");
    touch().press(0, QPoint(600, 30));
    touch().move(0, QPoint(640, 30));
    touch().release(0, QPoint(640, 30));
    QCOMPARE(s.number("canvasMedia.x"), x + 40 / (2 * zoom));
}

void SceneTest::simpleMode() {
    SceneRig& s = *scene_;
    s.select(s.screen);
    s.click(s.onScreen(4));
    s.canvas->onScreenMode(SceneRig::kScreen, LV_NTC_ModeType::Simple);
    QVERIFY(!s.grid()->isVisible());
    QCOMPARE(s.string("currentPointText.text"), "Current point: --     X: -- px     Y: -- px");
    s.key(Qt::Key_Left); // what cannot be seen is not moved
    s.key(Qt::Key_A, kCtrl);
    s.canvas->onLeftAxisMoved(1, 0);
    s.canvas->onLeftAxisMoved(0, 0);
    QCOMPARE(s.selectedPoints(), QList<int>({4}));
    QCOMPARE(s.position(4), QPointF(960, 540));
    openDialog();
    QVERIFY(dialog().startsWith("None"));
    s.key(Qt::Key_Escape);
    s.canvas->onScreenMode(SceneRig::kScreen, LV_NTC_ModeType::Deformation);
    QVERIFY(s.grid()->isVisible());
    s.key(Qt::Key_Left);
    QCOMPARE(s.position(4), QPointF(959, 540));
}

void SceneTest::updatesWhileEdited() {
    SceneRig& s = *scene_;
    s.select(s.media, 3, 3, 3);
    s.canvas->onMediaItemAdded(1, SceneRig::kMediaCue, 5, 50, 50, 90, "Renamed");
    QCOMPARE(s.integer("getCurrentItem().sourceWidth"),
             1000); // size and name are those of the first
    QCOMPARE(s.string("getCurrentItem().name"), "Media");
    QCOMPARE(s.integer("getCurrentItem().sourceRotation"), 90);
    s.select(s.screen, 3, 3, 3);
    s.canvas->onScreenItemAdded(SceneRig::kScreen, 800, 600, 0, 90, "Renamed");
    QCOMPARE(s.integer("getCurrentItem().sourceWidth"), 800);
    QCOMPARE(s.string("getCurrentItem().name"), "Renamed");

    // The mesh is rebuilt under a drag: the drag ends.
    s.press(s.onScreen(4));
    s.deform(s.screen, 3, 4, 4);
    QVERIFY(!s.isTrue("isMovingPoint"));
    s.move({100, 100});
    s.release({100, 100});
    QCOMPARE(s.selectedPoints(), QList<int>());
}

void SceneTest::turnedItemsOfAnySize() {
    SceneRig& s = *scene_;
    constexpr int kHuge = std::numeric_limits<int>::max();
    const MeshpadTest::ThreadTime work;
    unsigned int cue = 100;
    for (const QSize size : {QSize(1000, 600), QSize(1, kHuge), QSize(kHuge, kHuge), QSize(0, 0),
                             QSize(-1, 5), QSize(65'536, 1)}) {
        s.canvas->onMediaItemAdded(1, ++cue, 5, size.width(), size.height(), 30, "Turned");
        MediaItem item(MediaType::Image, cue, 5, 1, size.width(), size.height(), false, "Turned",
                       s.configuration, nullptr);
        s.canvas->onSelectedItem(&item);
        s.canvas->onMediaDeformationMode(LV_NTC_ElementType::Media, LV_NTC_DeformationType::Curve,
                                         cue, 5, "Turned", 4, 4, false);
        QCOMPARE(s.grid()->point(0)->viewingRotation(),
                 -s.number("getCurrentItem().getFullRotation()"));
        s.view->grabFramebuffer();
        for (const double far : {1e308, -1e308, 1e9, 5e-324}) {
            MediaMovePointEvent move(cue, 5, 1, "Turned", 5, far, -far, 0, true, false);
            s.canvas->receive(&move);
        }
        s.view->grabFramebuffer();
        s.key(Qt::Key_R);
        s.key(Qt::Key_A, kCtrl);
        s.key(Qt::Key_Left);
        s.view->grabFramebuffer();
        s.canvas->onSelectedItem(nullptr);
    }
    QVERIFY2(work.elapsed() < 10s, qPrintable(QString::number(work.elapsed().count())));
}

void SceneTest::nothingIsLostInAnyGesture() {
    SceneRig& s = *scene_;
    UpdateProducer::tickPeriod = std::chrono::milliseconds(3);
    QRandomGenerator random(20260217);
    for (const bool xy : {true, false}) {
        s.select(s.media, 3, 5, 6);
        s.settle();
        s.producer.forget();
        if (!xy)
            s.canvas->onAction(Action::TOGGLE_EDIT_UV);
        for (int gesture = 0; gesture < 500; ++gesture) {
            const int point = random.bounded(30);
            const auto modifiers = random.bounded(3) == 0 ? kCtrl : Qt::NoModifier;
            switch (random.bounded(8)) {
            case 0:
            case 1:
            case 2: {
                QPoint at = s.onScreen(point);
                s.press(at, modifiers);
                for (int step = random.bounded(12); step > 0; --step) {
                    at += QPoint(random.bounded(41) - 20, random.bounded(41) - 20);
                    s.move(at, modifiers);
                    if (random.bounded(6) == 0)
                        QTest::qWait(4); // into a tick
                }
                s.release(at, modifiers);
                break;
            }
            case 3:
                s.key(Qt::Key(Qt::Key_Left + random.bounded(4)),
                      Qt::KeyboardModifiers::fromInt(random.bounded(8) << 25));
                break;
            case 4: {
                const auto held = Qt::Key(Qt::Key_Left + random.bounded(4));
                s.repeatKey(held);
                QTest::keyRelease(s.view, held);
                break;
            }
            case 5:
                s.canvas->onLeftAxisMoved(static_cast<float>(random.generateDouble() - 0.5), 0.1F);
                s.canvas->onLeftAxisMoved(0, 0);
                break;
            case 6:
                pressButton("warpToolBarButton", 0);
                break;
            default: {
                const Action actions[] = {Action::SELECT_ALL_POINTS, Action::UNSELECT_ALL_POINTS,
                                          Action::H_FLIP, Action::VERTICAL_MIRROR,
                                          Action::SELECT_ADD_CURRENT_ROW};
                const Action action = actions[random.bounded(5)];
                if (action != Action::SELECT_ADD_CURRENT_ROW || s.currentPoint() != -1)
                    s.canvas->onAction(action);
                break;
            }
            }
            if (gesture % 50 == 49) {
                s.evaluate("getCurrentItem().itemDeformer.adjustView()");
                compareWithProducer(xy);
            }
            if (QTest::currentTestFailed())
                return;
        }
        QVERIFY(s.sentPoints(xy).size() == 30);
    }
    UpdateProducer::tickPeriod = UpdateProducer::kTickPeriod;
}

QTEST_MAIN(SceneTest)
#include "tst_scene.moc"
