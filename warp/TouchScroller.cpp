#include "warp/TouchScroller.h"

#include "warp/WarpLook.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QScrollArea>
#include <QScroller>
#include <QTouchEvent>

TouchScroller::TouchScroller(QScrollArea* area) : QObject(area), area_(area) {
    QScroller* scroller = QScroller::scroller(area);
    QScrollerProperties properties = scroller->scrollerProperties();
    properties.setScrollMetric(QScrollerProperties::VerticalOvershootPolicy,
                               QScrollerProperties::OvershootAlwaysOff);
    properties.setScrollMetric(QScrollerProperties::DragStartDistance, 0.0);
    scroller->setScrollerProperties(properties);
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
        isTap_ = false;
        QScroller::scroller(area_)->stop();
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}

void TouchScroller::handleTouch(const QTouchEvent& event) {
    QScroller* scroller = QScroller::scroller(area_);
    const QEventPoint& finger = event.points().first();
    const QPointF position = area_->mapFromGlobal(finger.globalPosition());
    const auto time = static_cast<qint64>(event.timestamp());
    switch (event.type()) {
    case QEvent::TouchBegin:
        start_ = finger.globalPosition();
        isTap_ = scroller->state() != QScroller::Scrolling; // a touch that stops a flick is no tap
        scroller->handleInput(QScroller::InputPress, position, time);
        break;
    case QEvent::TouchUpdate:
        if ((finger.globalPosition() - start_).manhattanLength() > WarpLook::kTapSlack)
            isTap_ = false;
        if (!isTap_)
            scroller->handleInput(QScroller::InputMove, position, time);
        break;
    default:
        scroller->handleInput(QScroller::InputRelease, position, time);
        if (isTap_)
            press(finger.globalPosition());
        break;
    }
}

void TouchScroller::press(QPointF position) {
    area_->setFocus(Qt::MouseFocusReason);
    QWidget* content = area_->widget();
    QWidget* target = content->childAt(content->mapFromGlobal(position).toPoint());
    if (target == nullptr)
        return;
    QMouseEvent press(QEvent::MouseButtonPress, target->mapFromGlobal(position), position,
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &press);
}
