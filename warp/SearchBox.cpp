#include "warp/SearchBox.h"

#include "app/shell/FocusRing.h"
#include "warp/WarpLook.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QToolButton>

using namespace WarpLook;

SearchBox::SearchBox(QWidget* parent) : QLineEdit(parent), clearButton_(new QToolButton(this)) {
    setTextMargins(0, 0, kClearSearchWidth, 0);
    clearButton_->setStyleSheet(QLatin1StringView(kClearSearch));
    clearButton_->setIcon(style()->standardIcon(QStyle::SP_LineEditClearButton));
    clearButton_->setIconSize(kClearSearchIconSize);
    clearButton_->setAccessibleName(QLatin1StringView(kClearSearchName));
    clearButton_->setToolTip(QLatin1StringView(kClearSearchName));
    clearButton_->setCursor(Qt::PointingHandCursor);
    clearButton_->setFocusPolicy(Qt::NoFocus); // Esc does the same
    clearButton_->hide();
    connect(clearButton_, &QToolButton::clicked, this, &SearchBox::clear);
    connect(this, &SearchBox::textChanged, clearButton_,
            [this](const QString& text) { clearButton_->setVisible(!text.isEmpty()); });
}

void SearchBox::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape:
        if (!text().isEmpty()) {
            clear();
            break;
        }
        [[fallthrough]];
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
        emit focusReleased();
        break;
    default:
        QLineEdit::keyPressEvent(event);
    }
    event->accept();
}

void SearchBox::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    if (hasFocus()) { // drawn here because the style sheet of the box sets a fixed border
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        drawFocusRing(painter, rect(), kSearchRadius);
    }
}

void SearchBox::resizeEvent(QResizeEvent* event) {
    QLineEdit::resizeEvent(event);
    clearButton_->setGeometry(width() - kClearSearchWidth, 0, kClearSearchWidth, height());
}
