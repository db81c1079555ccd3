#include "mesh/MeshPointerArea.h"

#include <QCursor>
#include <QGuiApplication>
#include <QLineF>
#include <QMouseEvent>
#include <QQuickWindow>
#include <QStyleHints>
#include <QTimerEvent>
#include <QTouchEvent>
#include <QWheelEvent>

namespace {
constexpr int kGrabDelay = 100; // ms until a resting finger grabs its point
constexpr int kSecondFingerTime =
    250; // ms within which a second finger undoes the first finger's drag
constexpr double kTouchThreshold = 6;  // pixels that a finger moves before its point does
constexpr double kRestThreshold = 1.5; // the same after a rest
constexpr int kRestTime = 250;         // ms
constexpr double kMouseTapSlack = 4;   // pixels between the two taps of a double tap
constexpr int kNotch = 120;
} // namespace

MeshPointerArea::MeshPointerArea(QQuickItem* parent) : QQuickItem(parent) {
    setAcceptedMouseButtons(Qt::LeftButton);
    setAcceptTouchEvents(true);
    setAcceptHoverEvents(true);
}

void MeshPointerArea::setGrid(MeshGridItem* grid) {
    if (grid == grid_)
        return;
    endGesture();
    grid_ = grid;
    emit gridChanged();
}

void MeshPointerArea::endGesture() {
    grabTimer_.stop();
    candidate_ = -1;
    gesture_ = Gesture::None;
    releasePoint();
}

void MeshPointerArea::setPointerIgnored(bool rests) {
    if (std::exchange(pointerIgnored_, rests) != rests)
        emit pointerIgnoredChanged();
}

void MeshPointerArea::setTabFocus(bool reached) {
    if (std::exchange(hasTabFocus_, reached) != reached)
        emit tabFocusChanged();
}

bool MeshPointerArea::eventFilter(QObject* watched, QEvent* event) {
    const bool isWindow = watched == window();
    if (isWindow)
        trackDialogPress(*event);
    if (isWindow && (event->type() == QEvent::MouseMove || event->type() == QEvent::Enter)) {
        setPointerIgnored(false);
    } else if (!isWindow && event->type() == QEvent::FocusIn) {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        setTabFocus(reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason);
    } else if (!isWindow && event->type() == QEvent::FocusOut) {
        setTabFocus(false);
    }
    return QQuickItem::eventFilter(watched, event);
}

void MeshPointerArea::itemChange(ItemChange change, const ItemChangeData& data) {
    if (change == ItemSceneChange && data.window)
        data.window->installEventFilter(this); // hover events also arrive without a movement
    else if (change == ItemParentHasChanged && data.item)
        data.item->installEventFilter(this);
    QQuickItem::itemChange(change, data);
}

int MeshPointerArea::movablePointAt(const QPointF& position, double reach) const {
    if (!grid_ || !grid_->isVisible() || !grid_->pointsMovable())
        return -1;
    return grid_->pointAt(mapToItem(grid_, position), reach);
}

void MeshPointerArea::trackDialogPress(const QEvent& event) {
    const bool isPress =
        event.type() == QEvent::MouseButtonPress || event.type() == QEvent::TouchBegin;
    const bool isRelease =
        event.type() == QEvent::MouseButtonRelease || event.type() == QEvent::TouchEnd;
    if (isEnabled() || !(isPress || isRelease))
        return;
    dialogPressTime_.start();
    if (isPress)
        dialogPress_ =
            mapFromScene(static_cast<const QPointerEvent&>(event).points().first().position());
}

bool MeshPointerArea::isSecondTap(const QPointF& position, double slack) const {
    return dialogPressTime_.isValid() &&
           dialogPressTime_.elapsed() < QGuiApplication::styleHints()->mouseDoubleClickInterval() &&
           QLineF(dialogPress_, position).length() <= slack;
}

void MeshPointerArea::updateGrabOffset() {
    const MeshPoint* point = grid_ ? grid_->point(draggedPoint_) : nullptr;
    if (!point)
        return;
    grabOffset_ = QPointF(point->x(), point->y()) - mapToItem(grid_, lastPosition_);
    grabView_ = grid_->itemTransform(this, nullptr);
}

void MeshPointerArea::grabPoint(int pointId, const QPointF& position, bool control) {
    const MeshPoint* point = grid_->point(pointId);
    pointStart_ = QPointF(point->x(), point->y());
    gesture_ = Gesture::Drag;
    draggedPoint_ = pointId;
    lastPosition_ = position;
    updateGrabOffset();
    emit draggingChanged();
    emit pointPressed(pointId, control);
}

void MeshPointerArea::dragPointTo(const QPointF& position) {
    if (!grid_ || draggedPoint_ < 0)
        return;
    if (grid_->itemTransform(this, nullptr) != grabView_)
        updateGrabOffset(); // rotating or zooming the view must not move the point
    lastPosition_ = position;
    const QPointF target = mapToItem(grid_, position) + grabOffset_;
    emit pointDragged(draggedPoint_, target.x(), target.y());
}

void MeshPointerArea::releasePoint() {
    if (draggedPoint_ < 0)
        return;
    const int point = std::exchange(draggedPoint_, -1);
    emit draggingChanged();
    emit pointReleased(point);
}

void MeshPointerArea::panTo(const QPointF& position) {
    const QPointF step = position - lastPosition_;
    lastPosition_ = position;
    emit panned(step.x(), step.y());
}

void MeshPointerArea::finish() {
    if (gesture_ == Gesture::Drag)
        releasePoint();
    gesture_ = Gesture::None;
}

void MeshPointerArea::mousePressEvent(QMouseEvent* event) {
    finish();
    event->accept();
    if (isSecondTap(event->position(), kMouseTapSlack))
        return;
    lastPosition_ = event->position();
    const int point = movablePointAt(event->position(), 0);
    if (point >= 0)
        grabPoint(point, event->position(), event->modifiers().testFlag(Qt::ControlModifier));
    else
        gesture_ = Gesture::Pan;
}

void MeshPointerArea::mouseMoveEvent(QMouseEvent* event) {
    if (gesture_ == Gesture::Drag)
        dragPointTo(event->position());
    else if (gesture_ == Gesture::Pan)
        panTo(event->position());
    event->accept();
}

void MeshPointerArea::mouseReleaseEvent(QMouseEvent* event) {
    finish();
    event->accept();
}

void MeshPointerArea::mouseDoubleClickEvent(QMouseEvent* event) {
    event->accept(); // the press before it is handled
}

void MeshPointerArea::mouseUngrabEvent() {
    finish();
}

void MeshPointerArea::touchEvent(QTouchEvent* event) {
    event->accept();
    if (event->type() == QEvent::TouchBegin)
        fingers_.clear();
    if (event->type() == QEvent::TouchCancel) {
        fingers_.clear();
        endGesture();
        return;
    }
    bool pressed = false;
    bool released = false;
    for (const QEventPoint& point : event->points()) {
        released = released || point.state() == QEventPoint::Released;
        if (point.state() == QEventPoint::Released)
            fingers_.remove(point.id());
        else if (point.state() != QEventPoint::Stationary || !fingers_.contains(point.id()))
            fingers_.insert(point.id(), point.position());
        pressed = pressed || point.state() == QEventPoint::Pressed;
    }
    const QList<QPointF> down = fingers_.values();
    if (down.isEmpty()) {
        if (gesture_ == Gesture::Undecided && candidate_ >= 0) // a tap
            grabPoint(candidate_, touchStart_, candidateControl_);
        endGesture();
    } else if (down.size() == 1) {
        if (pressed)
            beginTouch(down.first(), event->modifiers().testFlag(Qt::ControlModifier));
        else
            continueTouch(down.first());
    } else if (pressed || (released && gesture_ == Gesture::Pinch)) {
        beginPinch(down.at(0), down.at(1)); // the two fingers may be others now
    } else if (gesture_ == Gesture::Pinch) {
        continuePinch(down.at(0), down.at(1));
    }
}

void MeshPointerArea::beginTouch(const QPointF& position, bool control) {
    finish();
    if (isSecondTap(position, touchReach_))
        return;
    touchTime_.start();
    restTime_.start();
    touchStart_ = restStart_ = lastPosition_ = position;
    moved_ = false;
    candidate_ = movablePointAt(position, touchReach_);
    candidateControl_ = control;
    gesture_ = candidate_ >= 0 ? Gesture::Undecided : Gesture::Pan;
    if (candidate_ >= 0)
        grabTimer_.start(kGrabDelay, this);
}

void MeshPointerArea::continueTouch(const QPointF& position) {
    switch (gesture_) {
    case Gesture::Undecided:
    case Gesture::Drag:
        if (!moved_)
            leaveThreshold(position);
        if (moved_)
            dragPointTo(position);
        break;
    case Gesture::Pinch: // one of the two fingers was lifted
        gesture_ = Gesture::Pan;
        lastPosition_ = position;
        break;
    case Gesture::Pan:
        panTo(position);
        break;
    case Gesture::None:
        break;
    }
}

// Begins the drag where the finger leaves its threshold, so that the point does not jump.
void MeshPointerArea::leaveThreshold(const QPointF& position) {
    const auto leave = [&](const QPointF& from, double threshold) {
        QLineF way(from, position);
        if (moved_ || way.length() <= threshold)
            return;
        grabTimer_.stop();
        if (gesture_ == Gesture::Undecided)
            grabPoint(std::exchange(candidate_, -1), touchStart_, candidateControl_);
        way.setLength(threshold);
        moved_ = true;
        lastPosition_ = way.p2();
        updateGrabOffset();
    };
    if (restTime_.elapsed() >= kRestTime)
        leave(restStart_, kRestThreshold);
    leave(touchStart_, kTouchThreshold);
    if (QLineF(restStart_, position).length() > kRestThreshold) {
        restStart_ = position;
        restTime_.start();
    }
}

void MeshPointerArea::beginPinch(const QPointF& first, const QPointF& second) {
    if (gesture_ == Gesture::Drag && moved_ && touchTime_.isValid() &&
        touchTime_.elapsed() < kSecondFingerTime)
        emit pointDragged(draggedPoint_, pointStart_.x(), pointStart_.y());
    endGesture();
    gesture_ = Gesture::Pinch;
    lastPosition_ = (first + second) / 2;
    lastSpan_ = QLineF(first, second).length();
}

void MeshPointerArea::continuePinch(const QPointF& first, const QPointF& second) {
    const QPointF centre = (first + second) / 2;
    const double span = QLineF(first, second).length();
    panTo(centre);
    if (lastSpan_ > 0 && span > 0 && span != lastSpan_)
        emit pinched(span / lastSpan_, centre.x(), centre.y());
    lastSpan_ = span;
}

void MeshPointerArea::touchUngrabEvent() {
    endGesture();
}

void MeshPointerArea::wheelEvent(QWheelEvent* event) {
    event->accept();
    notchRemainder_ += event->angleDelta().y();
    const int notches = notchRemainder_ / kNotch;
    notchRemainder_ -= notches * kNotch;
    if (notches != 0)
        emit wheelTurned(notches);
}

void MeshPointerArea::hoverMoveEvent(QHoverEvent* event) {
    setCursor(movablePointAt(event->position(), 0) >= 0 ? Qt::PointingHandCursor : Qt::ArrowCursor);
    event->ignore();
}

void MeshPointerArea::timerEvent(QTimerEvent* event) {
    if (event->timerId() != grabTimer_.timerId()) {
        QQuickItem::timerEvent(event);
        return;
    }
    grabTimer_.stop();
    if (gesture_ == Gesture::Undecided && candidate_ >= 0)
        grabPoint(std::exchange(candidate_, -1), touchStart_, candidateControl_);
}
