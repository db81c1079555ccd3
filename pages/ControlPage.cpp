#include "pages/ControlPage.h"

#include <QShowEvent>

ControlPage::ControlPage(QWidget* parent) : IPage(parent) {}

void ControlPage::showEvent(QShowEvent* event) {
    IPage::showEvent(event);
    if (!event->spontaneous())
        setFocus(Qt::OtherFocusReason);
}
