#pragma once

#include <QEvent>
#include <QWidget>

/// Whether the event only asks for a repaint that nobody would see. Widgets ask for one when they
/// are shown, and the window's books of them grow with the square of their number: a long list that
/// appears at once is better off without those of the rows outside the view. They are painted when
/// they scroll into it.
inline bool isRepaintOutOfSight(const QWidget& widget, const QEvent& event) {
    return event.type() == QEvent::UpdateLater && widget.visibleRegion().isEmpty();
}
