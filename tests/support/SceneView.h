#pragma once

#include "mesh/MeshGridItem.h"

#include <QList>
#include <QPoint>
#include <QQuickItem>
#include <QQuickWidget>
#include <QVariant>

namespace MeshpadTest {

/// The scene in its widget: expressions, the mesh of the item being edited, and real events in the
/// widget's coordinates.
class SceneView {
public:
    /// A JavaScript expression in the root's scope; fails the test when it throws.
    QVariant evaluate(const QString& expression) const;
    double number(const QString& expression) const { return evaluate(expression).toDouble(); }
    bool isTrue(const QString& expression) const { return evaluate(expression).toBool(); }
    QString string(const QString& expression) const { return evaluate(expression).toString(); }

    QQuickItem* root() const { return view->rootObject(); }
    /// The mesh being edited; null without an item.
    MeshGridItem* grid() const { return grid("getCurrentGridId()"); }
    MeshGridItem* xyGrid() const { return grid("0"); }
    MeshGridItem* uvGrid() const { return grid("1"); }
    QPointF position(int point) const {
        return {grid()->point(point)->x(), grid()->point(point)->y()};
    }
    QString state(int point) const { return grid()->point(point)->state(); }
    /// The point's position in the widget.
    QPoint onScreen(int point) const { return grid()->mapToScene(position(point)).toPoint(); }
    QList<int> selectedPoints() const;
    /// Which part of a point on its own, with a line to its right, the widget does not draw in its
    /// colour; empty when all are.
    QString faultInPicture(int point) const;

    void press(QPoint at, Qt::KeyboardModifiers modifiers = {}) const;
    /// With the left button held.
    void move(QPoint to, Qt::KeyboardModifiers modifiers = {}) const {
        sendMove(to, Qt::LeftButton, modifiers);
    }
    void hover(QPoint to) const { sendMove(to, Qt::NoButton, {}); }
    void release(QPoint at, Qt::KeyboardModifiers modifiers = {}) const;
    void click(QPoint at, Qt::KeyboardModifiers modifiers = {}) const;
    /// Press, move and release from the point's position.
    void drag(int point, QPoint by) const;
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const;
    /// A repetition of a key that is held.
    void repeatKey(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const;
    void wheel(int notches, QPointF at = {530, 305}) const;

    /// Unloads the scene and releases the pictures and textures that Qt Quick would keep.
    void clear() const;

    QQuickWidget* view = nullptr;

private:
    MeshGridItem* grid(const QString& index) const;
    void sendMove(QPoint to, Qt::MouseButtons held, Qt::KeyboardModifiers modifiers) const;
};

} // namespace MeshpadTest
