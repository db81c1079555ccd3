#pragma once

#include "app/shell/Configuration.h"
#include "mesh/MeshGridItem.h"
#include "tests/support/FakeProducer.h"
#include "warp/Canvas.h"
#include "warp/MediaItem.h"
#include "warp/ScreenItem.h"
#include "warp/ScreenPartItem.h"
#include "warp/TextureItem.h"

#include <QPointF>
#include <QQuickItem>
#include <QQuickWidget>
#include <QVariant>

#include <memory>

namespace MeshpadTest {

/// The real editor on its real bridge, connected to a fake Producer, with one item of each kind to
/// be selected. What the list would tell the bridge, the test does.
class SceneUnderTest {
public:
    static constexpr int kScreen = 3;
    static constexpr int kPart = 7;
    static constexpr unsigned int kMediaCue = 3'000'000'011U; // beyond the signed numbers
    static constexpr unsigned int kTextureCue = 12;
    static constexpr QSize kScreenSize{1920, 1080};
    static constexpr QSize kMediaSize{1000, 600};

    explicit SceneUnderTest(QSize size = {1060, 610});
    ~SceneUnderTest();

    /// One of the items below. `deformation` in the scene's numbers, 0 none to 3 curve.
    void select(Item& item, int deformation = 3, int rows = 3, int columns = 3);
    void deform(const Item& item, int deformation, int rows, int columns);

    /// A JavaScript expression in the root's scope; fails the test when it throws.
    QVariant evaluate(const QString& expression) const;
    int integer(const QString& expression) const { return evaluate(expression).toInt(); }
    QString string(const QString& expression) const { return evaluate(expression).toString(); }

    QQuickItem* root() const { return view->rootObject(); }
    /// Of the current item, the one being edited.
    MeshGridItem* grid() const;
    QPointF position(int point) const;
    QString state(int point) const;
    /// Where the point is in the view.
    QPoint onScreen(int point) const;
    int currentPoint() const {
        return integer("getCurrentItem().deformerGrids[getCurrentGridId()].currentSelectedPointId");
    }
    QList<int> selectedPoints() const;

    /// What the view shows wrongly of a point on its own, with a line to its right; empty when all
    /// is as it should be: circle, border and line have their colours and their size on the screen.
    QString faultInPicture(int point) const;

    // Real events on the view.
    void press(QPoint at, Qt::KeyboardModifiers modifiers = {}) const;
    void move(QPoint to, Qt::KeyboardModifiers modifiers = {}) const;
    void release(QPoint at, Qt::KeyboardModifiers modifiers = {}) const;
    void click(QPoint at, Qt::KeyboardModifiers modifiers = {}) const;
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const;
    void hover(QPoint at) const;
    void wheel(int notches, QPointF at = {530, 305}) const;

    /// Waits until everything sent so far has arrived at the Producer.
    void settle();
    /// Where the Producer was told last that points are, in the current item's coordinates, and
    /// whether selected; of XY or UV.
    struct Told {
        double x;
        double y;
        bool selected;
    };
    QMap<int, Told> told(bool xy) const;

    Configuration configuration = makeConfiguration();
    FakeProducer producer;
    std::unique_ptr<Canvas> canvas;
    QQuickWidget* view = nullptr;
    ScreenItem screen;
    ScreenPartItem part;
    MediaItem media;
    TextureItem texture;
};

} // namespace MeshpadTest
