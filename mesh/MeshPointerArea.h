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

/// Recognises the gestures of mouse and fingers on the canvas: grabbing and dragging a point,
/// panning, zooming with the wheel or two fingers. It moves nothing itself.
///
/// A mouse grabs a point when it presses. A finger grabs a point when it lifts, rests for a moment
/// or moves on, because before that it may be the first of two fingers. Two fingers never grab a
/// point, and end a drag. The first pixels of a finger's way do not move its point, because a
/// finger that taps rolls: six, or one and a half after it has rested.
///
/// A press at the place where a dialog was pressed just before has no effect, because it is the
/// second tap on a control that has closed.
///
/// It also tracks whether the pointer has moved since ignorePointerUntilMoved() and whether its
/// parent has the keyboard focus by Tab.
class MeshPointerArea : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    /// The mesh whose points a pointer grabs; null for none.
    Q_PROPERTY(MeshGridItem* grid READ grid WRITE setGrid NOTIFY gridChanged)
    /// Distance within which a finger grabs a point, in screen pixels from the point's centre. It
    /// is less where another point is near.
    Q_PROPERTY(double touchReach MEMBER touchReach_ NOTIFY touchReachChanged)
    Q_PROPERTY(bool dragging READ isDragging NOTIFY draggingChanged)
    /// True from ignorePointerUntilMoved() until the pointer moves.
    Q_PROPERTY(bool pointerIgnored READ pointerIgnored NOTIFY pointerIgnoredChanged)
    /// Whether the parent got the keyboard focus by Tab or Backtab.
    Q_PROPERTY(bool hasTabFocus READ hasTabFocus NOTIFY tabFocusChanged)

public:
    explicit MeshPointerArea(QQuickItem* parent = nullptr);

    MeshGridItem* grid() const { return grid_; }
    void setGrid(MeshGridItem* grid);
    bool isDragging() const { return draggedPoint_ >= 0; }
    bool pointerIgnored() const { return pointerIgnored_; }
    bool hasTabFocus() const { return hasTabFocus_; }

    /// Releases a grabbed point; pointers that are down do nothing until they are lifted.
    Q_INVOKABLE void endGesture();
    /// Call when a dialog closes: the pointer did not choose the control that it is on now.
    Q_INVOKABLE void ignorePointerUntilMoved() { setPointerIgnored(true); }

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void gridChanged();
    void touchReachChanged();
    void draggingChanged();
    void pointerIgnoredChanged();
    void tabFocusChanged();

    /// A point was grabbed; one pointReleased() follows every pointPressed().
    void pointPressed(int pointId, bool control);
    /// The grabbed point moves to this position of the mesh.
    void pointDragged(int pointId, double x, double y);
    void pointReleased(int pointId);
    /// The canvas moves by (dx, dy) screen pixels.
    void panned(double dx, double dy);
    /// The canvas is scaled by the factor around the position.
    void pinched(double factor, double x, double y);
    /// The wheel moved by whole notches, upwards positive.
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
    void trackDialogPress(const QEvent& event);
    bool isSecondTap(const QPointF& position, double slack) const;
    void updateGrabOffset();
    void grabPoint(int pointId, const QPointF& position, bool control);
    void dragPointTo(const QPointF& position);
    void releasePoint();
    void panTo(const QPointF& position);
    void beginTouch(const QPointF& position, bool control);
    void continueTouch(const QPointF& position);
    void leaveThreshold(const QPointF& position);
    void beginPinch(const QPointF& first, const QPointF& second);
    void continuePinch(const QPointF& first, const QPointF& second);
    void finish();
    void setPointerIgnored(bool rests);
    void setTabFocus(bool reached);

    QPointer<MeshGridItem> grid_;
    double touchReach_ = 22;

    Gesture gesture_ = Gesture::None;
    int draggedPoint_ = -1;
    QPointF grabOffset_;   // from the pointer to the point, in the mesh
    QTransform grabView_;  // transform of the mesh when the offset was taken
    QPointF lastPosition_; // of the pointer, or of the middle of two fingers
    double lastSpan_ = 0;  // distance of two fingers
    bool pointerIgnored_ = false;
    bool hasTabFocus_ = false;
    int notchRemainder_ = 0; // of the wheel, in eighths of a degree

    QMap<int, QPointF> fingers_;    // that are down, by id
    QPointF dialogPress_;           // where a pointer pressed while the area was disabled
    QElapsedTimer dialogPressTime_; // since it pressed or was lifted

    // Gesture::Undecided: one finger is down on a point.
    int candidate_ = -1;
    bool candidateControl_ = false;
    bool moved_ = false; // further than its threshold
    QPointF touchStart_;
    QPointF restStart_; // the finger has been near it for restTime_
    QElapsedTimer restTime_;
    QPointF pointStart_;
    QElapsedTimer touchTime_;
    QBasicTimer grabTimer_;
};
