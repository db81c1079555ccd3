#include "warp/BlindButton.h"

#include "warp/OutOfView.h"

#include <QMouseEvent>

BlindButton::BlindButton(QWidget* parent) : QLabel(parent) {
    setAlignment(Qt::AlignCenter);
}

void BlindButton::mousePressEvent(QMouseEvent* event) {
    event->accept();
    emit blindPressed();
}

bool BlindButton::event(QEvent* event) {
    return isRepaintOutOfView(*this, *event) || QLabel::event(event);
}
