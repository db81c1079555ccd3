#include "warp/NameLabel.h"

#include "warp/OutOfSight.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>

NameLabel::NameLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void NameLabel::setName(const QString& name) {
    setText(name);
    setToolTip(Qt::mightBeRichText(name) ? name.toHtmlEscaped() : name);
}

void NameLabel::paintEvent(QPaintEvent* event) {
    Q_UNUSED(event)
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);

    const QString line = text().simplified();
    const QRect area = contentsRect();
    style()->drawItemText(&painter, area, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                          option.palette, isEnabled(),
                          fontMetrics().elidedText(line, Qt::ElideRight, area.width()),
                          foregroundRole());
}

bool NameLabel::event(QEvent* event) {
    return isRepaintOutOfSight(*this, *event) || QLabel::event(event);
}
