#include "app/ToolTipFilter.h"

#include <QHelpEvent>
#include <QToolTip>
#include <QWidget>

bool ToolTipFilter::eventFilter(QObject* watched, QEvent* event) {
    const auto* widget =
        event->type() == QEvent::ToolTip ? qobject_cast<QWidget*>(watched) : nullptr;
    if (widget == nullptr || widget->toolTip().isEmpty())
        return QObject::eventFilter(watched, event); // its own way, or its parent's tip
    // For the window, which has no style sheet of its own.
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), widget->toolTip(),
                       widget->window(), {}, widget->toolTipDuration());
    event->accept();
    return true;
}
