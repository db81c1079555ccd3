#pragma once

#include "mesh/MeshAtlas.h"
#include "mesh/MeshLine.h"
#include "mesh/MeshNodes.h"
#include "mesh/MeshPoint.h"

#include <QJSValue>
#include <QQuickItem>
#include <QtQmlIntegration>

#include <memory>
#include <vector>

/// Draws all points and lines of one mesh at once and tells which point lies under a pointer.
/// Points keep their size on the screen at every zoom. Positions are in the item's pixels.
///
/// A mesh begins as an outline: its size, and where points were moved to. Of a show's meshes few
/// are ever opened; points and lines of the others would only take memory. They are made when
/// somebody asks for them or is about to see them; no one else notices.
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

    /// Whether a pointer can take hold of points.
    Q_PROPERTY(bool pointsMovable MEMBER pointsMovable_ NOTIFY dragRulesChanged)
    /// The area that a dragged point cannot leave.
    Q_PROPERTY(double dragMinimumX MEMBER dragMinimumX_ NOTIFY dragRulesChanged)
    Q_PROPERTY(double dragMaximumX MEMBER dragMaximumX_ NOTIFY dragRulesChanged)
    Q_PROPERTY(double dragMinimumY MEMBER dragMinimumY_ NOTIFY dragRulesChanged)
    Q_PROPERTY(double dragMaximumY MEMBER dragMaximumY_ NOTIFY dragRulesChanged)

    /// The points by number, and the lines; reading either makes them. Arrays.
    Q_PROPERTY(QJSValue pointsArray READ pointsArray)
    Q_PROPERTY(QJSValue linesArray READ linesArray)
    /// Whether the mesh has points that are not made yet: none of them is selected.
    Q_PROPERTY(bool isOutline READ isOutline)

public:
    explicit MeshGridItem(QQuickItem* parent = nullptr);
    ~MeshGridItem() override;

    QJSValue pointsArray();
    QJSValue linesArray();
    bool isOutline() const { return outline_ != nullptr && !isMade_; }

    /// Replaces the mesh by one of `rows` x `columns` points, at least two each, that lie evenly
    /// over an area of that size with their numbers turned by `rotation` degrees. With
    /// `skipPatchCenter` only the borders of patches of three by three cells get lines.
    Q_INVOKABLE void setOutline(int rows, int columns, double width, double height, double rotation,
                                bool skipPatchCenter);
    /// The answer to meshWanted(): points by number and lines, whose owner is unchanged. `lineEnds`
    /// are the numbers of each line's points, in pairs.
    Q_INVOKABLE void setMesh(const QJSValue& points, const QJSValue& lines,
                             const QList<int>& lineEnds);

    double zoom() const { return zoom_; }
    void setZoom(double zoom);

    /// Makes the mesh an outline again, unless a point is selected.
    Q_INVOKABLE void fold();
    /// Writes position and last written position of a point; a number that is none is ignored.
    Q_INVOKABLE void placePoint(int number, double x, double y);
    /// Numbers of the selected points, ascending.
    Q_INVOKABLE QList<int> selectedNumbers() const;
    /// Destroys all lines and points of the mesh.
    Q_INVOKABLE void erase();
    /// Turns the numbers of all points.
    Q_INVOKABLE void turnNumbers(double degrees);

    /// Number of the point at the position, -1 for none. A point whose circle covers the position
    /// is taken first, the one drawn on top before others; otherwise the nearest point that is at
    /// most `reach` screen pixels away.
    Q_INVOKABLE int pointAt(const QPointF& position, double reach);

    int pointCount() const;
    /// Null when the number is none of the mesh.
    MeshPoint* point(int number);
    bool pointsMovable() const { return pointsMovable_; }
    /// The position moved into the area that a dragged point cannot leave.
    QPointF boundedForDrag(const QPointF& position) const;

    /// Something that is drawn has changed.
    void markMesh();

signals:
    /// The mesh is to be made, at once: somebody needs its points.
    void meshWanted(int rows, int columns, bool skipPatchCenter);
    void zoomChanged();
    void styleChanged();
    void dragRulesChanged();

protected:
    void updatePolish() override;
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    void releaseResources() override;

private:
    friend class MeshPoint;
    friend class MeshLine;

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

    void makeMesh();
    void destroyPointsAndLines();
    void forgetPoint(MeshPoint* point);
    void forgetLine(MeshLine* line);
    void onStyleChanged();
    MeshStyle style() const;
    MeshPicture picture() const;

    std::unique_ptr<Outline> outline_; // null without a mesh; its positions only count until made
    bool isMade_ = false;
    QJSValue pointsArray_;
    QJSValue linesArray_;
    std::vector<MeshPoint*> points_; // by number; points and lines belong to whoever created them
    std::vector<MeshLine*> lines_;

    double zoom_ = 1;
    double pointDiameter_ = 20;
    double pointBorderWidth_ = 2;
    double lineThickness_ = 2;
    QColor lineColor_ = Qt::white;
    QList<QColor> unselectedColors_;
    QList<QColor> selectedColors_;
    QList<QColor> currentColors_;
    bool pointsMovable_ = true;
    double dragMinimumX_;
    double dragMaximumX_;
    double dragMinimumY_;
    double dragMaximumY_;

    bool styleDirty_ = true;
    std::shared_ptr<const MeshAtlas> atlas_; // shared with the nodes that draw from it
};
