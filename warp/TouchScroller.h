#pragma once

#include <QObject>
#include <QPointF>

class QScrollArea;
class QTouchEvent;

/// Lets a finger scroll an area's content: dragging moves it, letting go in motion lets it run on.
/// A finger that stays where it is presses what lies under it as it is lifted, so that scrolling
/// never presses anything.
class TouchScroller final : public QObject {
    Q_OBJECT

public:
    /// `area` owns the scroller and already has its content.
    explicit TouchScroller(QScrollArea* area);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(const QTouchEvent& event);
    void press(QPointF position);

    QScrollArea* area_;
    QPointF start_; ///< of the finger, on the screen
    bool isTap_ = false;
};
