#include "warp/SearchBox.h"

#include <QKeyEvent>

void SearchBox::keyPressEvent(QKeyEvent* event) {
    QLineEdit::keyPressEvent(event);
    event->accept();
}
