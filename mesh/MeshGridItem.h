#pragma once

#include "mesh/MeshAtlas.h"
#include "mesh/MeshLine.h"
#include "mesh/MeshNodes.h"
#include "mesh/MeshPoint.h"

#include <QDeadlineTimer>
#include <QJSValue>
#include <QQuickItem>
#include <QTimer>
#include <QtQmlIntegration>

#include <map>
#include <memory>
#include <vector>

/// Holds one mesh, draws all its points and lines in one node and finds the point under a pointer.
/// Points keep their size on the screen at every zoom. Positions are in the item's pixels.
///
/// A mesh starts as an outline (its size and the positions of moved points), because an operator
/// opens few of a show's meshes and points and lines take memory. The mesh is built when a property
/// or function needs its points, and before it is drawn.
class MeshGridItem : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    /// Screen pixels that one of the item's pixels takes; above 0.
    Q_PROPERTY(double zoom READ zoom WRITE setZoom NOTIFY zoomChanged)

    // The look, in pixels of the screen.
    Q_PROPERTY(double pointDiameter MEMBER pointDiameter_ NOTIFY styleChanged)
    Q_PROPERTY(double pointBorderWidth MEMBER pointBorderWidth_ NOTIFY styleChanged)
    Q_PROPERTY(double lineThickness MEMBER lineThickness_ NOTIFY styleChanged)
    Q_PROPERTY(QColor lineColor MEMBER lineColor_ NOTIFY styleChanged)
    /// Fill, border and text of a point in each state.
    Q_PROPERTY(QList<QColor> unselectedColors MEMBER unselectedColors_ NOTIFY styleChanged)
    Q_PROPERTY(QList<QColor> selectedColors MEMBER selectedColors_ NOTIFY styleChanged)
    Q_PROPERTY(QList<QColor> currentColors MEMBER currentColors_ NOTIFY styleChanged)

    /// A point that went back has a ring and a trail from the refused position, for that many
    /// milliseconds.
    Q_PROPERTY(QColor markColor MEMBER markColor_ NOTIFY styleChanged)
    Q_PROPERTY(int markTime MEMBER markTime_ NOTIFY styleChanged)

    /// Whether a pointer can grab points.
    Q_PROPERTY(bool pointsMovable MEMBER pointsMovable_ NOTIFY pointsMovableChanged)

    /// Arrays of the points, by number, and of the lines. Reading builds the mesh.
    Q_PROPERTY(QJSValue pointsArray READ pointsArray)
    Q_PROPERTY(QJSValue linesArray READ linesArray)
    /// Whether the mesh is not built yet; no point of an outline is selected.
    Q_PROPERTY(bool isOutline READ isOutline)

public:
    explicit MeshGridItem(QQuickItem* parent = nullptr);
    ~MeshGridItem() override;

    QJSValue pointsArray();
    QJSValue linesArray();
    bool isOutline() const { return outline_ != nullptr && !isBuilt_; }

    /// Replaces the mesh by an outline of `rows` x `columns` points, at least two each, spread
    /// evenly over the area, with numbers rotated by `rotation` degrees. With `skipPatchCenter`
    /// only the borders of patches of three by three cells get lines.
    Q_INVOKABLE void setOutline(int rows, int columns, double width, double height, double rotation,
                                bool skipPatchCenter);
    /// Takes points (by number) and lines in answer to meshRequested(); does not own them.
    /// `lineEnds` holds the two point numbers of each line.
    Q_INVOKABLE void setMesh(const QJSValue& points, const QJSValue& lines,
                             const QList<int>& lineEnds);

    double zoom() const { return zoom_; }
    void setZoom(double zoom);

    /// Destroys points and lines and keeps an outline, unless a point is selected.
    Q_INVOKABLE void reduceToOutline();
    /// Sets the position and last written position of a point; ignores unknown numbers.
    Q_INVOKABLE void setPointPosition(int number, double x, double y);
    /// Marks a point that has gone back from the position (fromX, fromY); ignores unknown numbers
    /// and outlines.
    Q_INVOKABLE void markReturn(int number, double fromX, double fromY);
    /// Numbers of the selected points, ascending.
    Q_INVOKABLE QList<int> selectedNumbers() const;
    /// Removes the mesh and destroys its points and lines.
    Q_INVOKABLE void erase();
    /// Rotates the numbers of all points.
    Q_INVOKABLE void setNumberRotation(double degrees);

    /// Number of the point nearest to the position, -1 if it is too far away: further than its
    /// circle, and further than `reach` screen pixels or 0.4 of the way to the next point. Of
    /// points at the same place it is the topmost.
    Q_INVOKABLE int pointAt(const QPointF& position, double reach);

    int pointCount() const;
    /// Null for an unknown number.
    MeshPoint* point(int number);
    bool pointsMovable() const { return pointsMovable_; }

    /// Schedules a redraw.
    void scheduleRedraw();

signals:
    /// The receiver must call setMesh() before it returns.
    void meshRequested(int rows, int columns, bool skipPatchCenter);
    void zoomChanged();
    void styleChanged();
    void pointsMovableChanged();

protected:
    void updatePolish() override;
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    void releaseResources() override;

private:
    friend class MeshPoint;
    friend class MeshLine;

    struct ReturnMark {
        QPointF from;
        QDeadlineTimer end;
    };
    struct Outline {
        int rows;
        int columns;
        QSizeF size;
        double rotation;
        bool skipPatchCenter;
        std::vector<QPointF> positions; // by number; empty while no point was moved

        int count() const { return rows * columns; }
        QPointF evenPosition(int number) const;
    };

    struct Neighbour {
        int number; // -1 for none
        double distance;
    };

    void ensureBuilt();
    Neighbour nearestPoint(const QPointF& position, int except = -1) const;
    void destroyPointsAndLines();
    void removePoint(MeshPoint* point);
    void removeLine(MeshLine* line);
    void onStyleChanged();
    void removeOldMarks();
    MeshStyle style() const;
    MeshPicture picture() const;

    /// Null without a mesh. While the mesh is built, the points hold the positions instead.
    std::unique_ptr<Outline> outline_;
    bool isBuilt_ = false;
    QJSValue pointsArray_;
    QJSValue linesArray_;
    std::vector<MeshPoint*> points_; // by number; the grid's users own points and lines
    std::vector<MeshLine*> lines_;

    double zoom_ = 1;
    double pointDiameter_ = 20;
    double pointBorderWidth_ = 2;
    double lineThickness_ = 2;
    QColor lineColor_ = Qt::white;
    QList<QColor> unselectedColors_;
    QList<QColor> selectedColors_;
    QList<QColor> currentColors_;
    QColor markColor_ = Qt::yellow;
    int markTime_ = 0;
    bool pointsMovable_ = true;
    std::map<int, ReturnMark> marks_; // by point number
    QTimer markTimer_;                // runs while there are marks

    bool styleDirty_ = true;
    std::shared_ptr<const MeshAtlas> atlas_; // shared with the nodes
};
