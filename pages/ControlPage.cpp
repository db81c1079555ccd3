#include "pages/ControlPage.h"

#include <QKeyEvent>
#include <QShowEvent>

ControlPage::ControlPage(QWidget* parent) : IPage(parent) {}

void ControlPage::keyPressEvent(QKeyEvent* event) {
    event->accept();
}

void ControlPage::showEvent(QShowEvent* event) {
    IPage::showEvent(event);
    if (!event->spontaneous()) {
        setFocus(Qt::OtherFocusReason); // the first Tab leads to the first control
    }
}
