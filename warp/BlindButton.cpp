#include "warp/BlindButton.h"

#include "warp/OutOfSight.h"

#include <QMouseEvent>

BlindButton::BlindButton(QWidget* parent) : QLabel(parent) {
    setAlignment(Qt::AlignCenter);
}

void BlindButton::mousePressEvent(QMouseEvent* event) {
    event->accept();
    emit blindPressed();
}

bool BlindButton::event(QEvent* event) {
    return isRepaintOutOfSight(*this, *event) || QLabel::event(event);
}
