#pragma once

#include "mesh/MeshGridItem.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QMap>
#include <QPointer>
#include <QQuickItem>
#include <QTransform>
#include <QtQmlIntegration>

#include <optional>

/// Turns what mouse and fingers do on the canvas into gestures: taking hold of a point and dragging
/// it, panning, zooming with the wheel or two fingers. It moves nothing by itself.
///
/// A mouse takes hold of a point at once. A finger does so when it is lifted, rests for a moment or
/// moves on, because until then it may be the first of two; two fingers never take hold of a point,
/// and end a drag.
///
/// It also knows how pointer and keyboard came here: whether the pointer has moved since what it
/// rests on was uncovered, and whether its parent has the keyboard by Tab.
class MeshPointerArea : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    /// The mesh whose points can be taken hold of; null for none.
    Q_PROPERTY(MeshGridItem* grid READ grid WRITE setGrid NOTIFY gridChanged)
    /// How far from its centre a finger reaches a point, in pixels of the screen.
    Q_PROPERTY(double touchReach MEMBER touchReach_ NOTIFY touchReachChanged)
    Q_PROPERTY(bool dragging READ isDragging NOTIFY draggingChanged)
    /// From restPointer() until the pointer moves.
    Q_PROPERTY(bool pointerRests READ pointerRests NOTIFY pointerRestsChanged)
    /// Whether the parent has the keyboard because Tab or Backtab led to it.
    Q_PROPERTY(bool reachedByTab READ isReachedByTab NOTIFY reachedByTabChanged)

public:
    explicit MeshPointerArea(QQuickItem* parent = nullptr);

    MeshGridItem* grid() const { return grid_; }
    void setGrid(MeshGridItem* grid);
    bool isDragging() const { return draggedPoint_ >= 0; }
    bool pointerRests() const { return pointerRests_; }
    bool isReachedByTab() const { return reachedByTab_; }

    /// Lets go of whatever is held; the pointers that are down do nothing until they are lifted.
    Q_INVOKABLE void endGesture();
    /// For the time of a double click no press is taken: what was tapped is gone, and a second tap
    /// was not meant for what lies behind.
    Q_INVOKABLE void ignoreSecondTap();
    /// What covered the window is gone: whatever the pointer is on now, it did not go there.
    Q_INVOKABLE void restPointer() { setPointerRests(true); }

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void gridChanged();
    void touchReachChanged();
    void draggingChanged();
    void pointerRestsChanged();
    void reachedByTabChanged();

    /// A point was taken hold of; every pointPressed() is followed by one pointReleased().
    void pointPressed(int pointId, bool control);
    /// The held point shall be at this position of the mesh.
    void pointDragged(int pointId, double x, double y);
    void pointReleased(int pointId);
    /// The canvas shall be moved by so many pixels of the screen.
    void panned(double dx, double dy);
    /// The canvas shall be scaled by the factor around the position.
    void pinched(double factor, double x, double y);
    /// The wheel was turned by whole notches, upwards positive.
    void wheelTurned(int notches);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseUngrabEvent() override;
    void touchEvent(QTouchEvent* event) override;
    void touchUngrabEvent() override;
    void wheelEvent(QWheelEvent* event) override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

private:
    enum class Gesture { None, Undecided, Drag, Pan, Pinch };

    int movablePointAt(const QPointF& position, double reach) const;
    bool isSecondTap() const;
    void takeOffset();
    void holdPoint(int pointId, const QPointF& position, bool control);
    void dragPointTo(const QPointF& position);
    void releasePoint();
    void panTo(const QPointF& position);
    void beginTouch(const QPointF& position, bool control);
    void continueTouch(const QPointF& position);
    void beginPinch(const QPointF& first, const QPointF& second);
    void continuePinch(const QPointF& first, const QPointF& second);
    void finish();
    void setPointerRests(bool rests);
    void setReachedByTab(bool reached);

    QPointer<MeshGridItem> grid_;
    double touchReach_ = 22;

    Gesture gesture_ = Gesture::None;
    int draggedPoint_ = -1;
    QPointF grabOffset_;   // from the pointer to the point, in the mesh
    QTransform grabView_;  // of the mesh, at that moment
    QPointF lastPosition_; // of the pointer, or between two fingers
    double lastSpan_ = 0;  // between two fingers
    bool pointerRests_ = false;
    bool reachedByTab_ = false;
    int notchRemainder_ = 0; // of the wheel, in eighths of a degree

    QMap<int, QPointF> fingers_; // that are down, by their ids
    QElapsedTimer firstTapTime_;

    // A finger that has not decided yet.
    int candidate_ = -1;
    bool candidateControl_ = false;
    bool moved_ = false; // beyond the trembling of a resting finger
    QPointF touchStart_;
    QPointF pointStart_;
    QElapsedTimer touchTime_;
    QBasicTimer restTimer_;
};
