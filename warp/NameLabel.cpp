#include "warp/NameLabel.h"

#include "warp/OutOfView.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>

NameLabel::NameLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void NameLabel::setName(const QString& name) {
    setText(name);
    updateToolTip();
}

QString NameLabel::shownText() const {
    // Elided in the middle because names of a series differ at their ends.
    return fontMetrics().elidedText(text().simplified(), Qt::ElideMiddle, contentsRect().width());
}

void NameLabel::updateToolTip() {
    const QString name = text();
    if (shownText() == name)
        setToolTip({});
    else
        setToolTip(Qt::mightBeRichText(name) ? name.toHtmlEscaped() : name);
}

void NameLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    updateToolTip();
}

void NameLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        updateToolTip();
}

void NameLabel::paintEvent(QPaintEvent* event) {
    Q_UNUSED(event)
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);

    style()->drawItemText(&painter, contentsRect(),
                          Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, option.palette,
                          isEnabled(), shownText(), foregroundRole());
}

bool NameLabel::event(QEvent* event) {
    return isRepaintOutOfView(*this, *event) || QLabel::event(event);
}
