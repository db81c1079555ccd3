#include "warp/BlindButton.h"

#include <QMouseEvent>

BlindButton::BlindButton(QWidget* parent) : QLabel(parent) {
    setAlignment(Qt::AlignCenter);
}

void BlindButton::mousePressEvent(QMouseEvent* event) {
    event->accept();
    emit blindPressed();
}
