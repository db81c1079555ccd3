#pragma once

#include <QEvent>
#include <QWidget>

/// Whether the event requests a repaint of a widget outside the visible area. A widget requests one
/// when it is shown, and the window's cost of recording requests grows with the square of their
/// number, so rows outside the view drop theirs; they are painted when they scroll into view.
inline bool isRepaintOutOfView(const QWidget& widget, const QEvent& event) {
    return event.type() == QEvent::UpdateLater && widget.visibleRegion().isEmpty();
}
