#include "pages/PageSpinBox.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QPointingDevice>

PageSpinBox::PageSpinBox(QWidget* parent) : QSpinBox(parent) {
    setFocusPolicy(Qt::TabFocus);
    lineEdit()->installEventFilter(this);
}

void PageSpinBox::stepBy(int steps) {
    QSpinBox::stepBy(steps);
    if (!hasFocus())
        lineEdit()->deselect();
}

bool PageSpinBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched == lineEdit() && event->type() == QEvent::MouseButtonPress && !hasFocus()) {
        const auto* press = static_cast<QMouseEvent*>(event);
        if (press->source() == Qt::MouseEventNotSynthesized &&
            press->pointingDevice()->type() != QInputDevice::DeviceType::TouchScreen) {
            setFocus(Qt::MouseFocusReason);
            selectAll(); // typing replaces the number
        }
        return true;
    }
    return QSpinBox::eventFilter(watched, event);
}

void PageSpinBox::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
        endTyping();
        event->accept();
        return;
    default:
        QSpinBox::keyPressEvent(event);
    }
}

void PageSpinBox::mousePressEvent(QMouseEvent* event) {
    if (hasFocus())
        endTyping();
    QSpinBox::mousePressEvent(event);
}

void PageSpinBox::endTyping() {
    parentWidget()->setFocus(Qt::OtherFocusReason);
    lineEdit()->deselect();
}
