#include "warp/TouchScroller.h"

#include "warp/WarpLook.h"

#include <QScrollArea>
#include <QScroller>
#include <QTimerEvent>
#include <QTouchEvent>

#include <algorithm>
#include <utility>

TouchScroller::TouchScroller(QScrollArea* area) : QObject(area), area_(area) {
    QScroller* scroller = QScroller::scroller(area);
    QScrollerProperties properties = scroller->scrollerProperties();
    properties.setScrollMetric(QScrollerProperties::VerticalOvershootPolicy,
                               QScrollerProperties::OvershootAlwaysOff);
    properties.setScrollMetric(QScrollerProperties::DragStartDistance, 0.0);
    scroller->setScrollerProperties(properties);
    connect(scroller, &QScroller::stateChanged, this, &TouchScroller::updateHeld);
    area->widget()->setAttribute(Qt::WA_AcceptTouchEvents);
    area->widget()->installEventFilter(this);
}

bool TouchScroller::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
        handleTouch(static_cast<QTouchEvent&>(*event));
        event->accept(); // so that Qt synthesizes no mouse events
        return true;
    case QEvent::TouchCancel:
    case QEvent::Hide: // no end of the touch follows
        endPress();
        isDown_ = false;
        QScroller::scroller(area_)->stop();
        updateHeld();
        return event->type() == QEvent::TouchCancel;
    default:
        return QObject::eventFilter(watched, event);
    }
}

void TouchScroller::handleTouch(const QTouchEvent& event) {
    QScroller* scroller = QScroller::scroller(area_);
    const QList<QEventPoint>& points = event.points();
    if (event.type() == QEvent::TouchBegin) {
        finger_ = points.first().id();
        begin(points.first().globalPosition());
    }
    if (points.size() > 1)
        endPress();
    const auto finger = std::ranges::find(points, finger_, &QEventPoint::id);
    if (!isDown_ || finger == points.end())
        return;
    const QPointF position = area_->mapFromGlobal(finger->globalPosition());
    const auto time = static_cast<qint64>(event.timestamp());
    switch (finger->state()) {
    case QEventPoint::State::Pressed:
        scroller->handleInput(QScroller::InputPress, position, time);
        break;
    case QEventPoint::State::Updated:
        if ((finger->globalPosition() - start_).manhattanLength() > WarpLook::kTapSlack)
            endPress();
        if (!isTap_)
            scroller->handleInput(QScroller::InputMove, position, time);
        break;
    case QEventPoint::State::Released:
        scroller->handleInput(QScroller::InputRelease, position, time);
        isDown_ = false;
        if (isTap_) {
            const QPointer<QWidget> target = target_;
            endPress();
            if (target != nullptr && target->isVisible())
                emit tapped(target, target->mapFromGlobal(finger->globalPosition()));
        }
        updateHeld();
        break;
    default:
        break;
    }
}

void TouchScroller::begin(QPointF position) {
    start_ = position;
    // A touch that stops a flick is no tap.
    isTap_ = QScroller::scroller(area_)->state() != QScroller::Scrolling;
    isDown_ = true;
    updateHeld();
    QWidget* content = area_->widget();
    // Chosen now, because the content may change until the finger is lifted.
    target_ = isTap_ ? content->childAt(content->mapFromGlobal(position).toPoint()) : nullptr;
    if (target_ != nullptr) {
        longPress_.start(WarpLook::kLongPressMs, this);
        emit pressed(target_, true);
    }
}

void TouchScroller::endPress() {
    isTap_ = false;
    longPress_.stop();
    QWidget* target = target_;
    target_ = nullptr;
    if (target != nullptr)
        emit pressed(target, false);
}

void TouchScroller::timerEvent(QTimerEvent* event) {
    if (event->timerId() != longPress_.timerId())
        return;
    longPress_.stop();
    if (target_ != nullptr)
        emit longPressed(target_);
}

void TouchScroller::updateHeld() {
    const bool isHeld = isDown_ || QScroller::scroller(area_)->state() == QScroller::Scrolling;
    if (std::exchange(isHeld_, isHeld) != isHeld)
        emit held(isHeld);
}
