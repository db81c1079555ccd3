#include "app/ToolTipFilter.h"

#include <QHelpEvent>
#include <QToolTip>
#include <QWidget>

bool ToolTipFilter::eventFilter(QObject* watched, QEvent* event) {
    const auto* widget =
        event->type() == QEvent::ToolTip ? qobject_cast<QWidget*>(watched) : nullptr;
    if (widget == nullptr || widget->toolTip().isEmpty())
        return QObject::eventFilter(watched, event); // the widget or its parent handles it
    // Owned by the window, because that has no style sheet.
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), widget->toolTip(),
                       widget->window(), {}, widget->toolTipDuration());
    event->accept();
    return true;
}
