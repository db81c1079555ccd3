#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QWidget>

class QScrollArea;
class QTouchEvent;

/// Scrolls an area by touch: a drag moves the content, a flick keeps it moving. A finger presses
/// the widget on which it came down only when it is lifted from there, so that scrolling presses
/// nothing. A second finger ends the press; otherwise only the first one counts. Mouse events are
/// left alone.
class TouchScroller final : public QObject {
    Q_OBJECT

public:
    /// `area` becomes the owner; its content widget must be set.
    explicit TouchScroller(QScrollArea* area);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// Whether a finger is down on the content or the content still moves after it. The content
    /// should not be laid out anew meanwhile.
    void held(bool isHeld);
    /// A finger has come down on `target`, or that press has ended, by a tap or by sliding.
    void pressed(QWidget* target, bool isPressed);
    /// The finger rests on `target`; a tap may still follow.
    void longPressed(QWidget* target);
    /// The finger was lifted without sliding; `target` is visible, `position` in its coordinates.
    void tapped(QWidget* target, QPointF position);

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    void begin(QPointF position);
    void handleTouch(const QTouchEvent& event);
    void endPress();
    void updateHeld();

    QScrollArea* area_;
    int finger_ = -1; ///< identifier of the first touch point
    QPointF start_;   ///< of the touch, in global coordinates
    QPointer<QWidget> target_;
    QBasicTimer longPress_;
    bool isDown_ = false;
    bool isTap_ = false;
    bool isHeld_ = false;
};
