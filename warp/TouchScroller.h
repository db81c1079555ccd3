#pragma once

#include <QObject>
#include <QPointF>

class QScrollArea;
class QTouchEvent;

/// Scrolls an area by touch: a drag moves the content, a flick keeps it moving. A tap is sent as a
/// mouse press to the widget under the finger on release, so that scrolling never presses a widget.
class TouchScroller final : public QObject {
    Q_OBJECT

public:
    /// `area` becomes the owner; its content widget must be set.
    explicit TouchScroller(QScrollArea* area);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void handleTouch(const QTouchEvent& event);
    void press(QPointF position);

    QScrollArea* area_;
    QPointF start_; ///< of the touch, in global coordinates
    bool isTap_ = false;
};
