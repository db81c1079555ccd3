#include "warp/NameLabel.h"

#include "warp/OutOfView.h"
#include "warp/WarpLook.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QTextLayout>

#include <algorithm>

NameLabel::NameLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void NameLabel::setName(const QString& name, qsizetype common) {
    if (name == text() && common == common_)
        return;
    common_ = common;
    setText(name);
    layOut();
}

void NameLabel::layOut() {
    QString name = text();
    for (QChar& c : name)
        if (c.isSpace())
            c = QLatin1Char(' ');
    QTextLayout layout(name, font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    const auto nextLine = [&] {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            return qsizetype(0);
        line.setLineWidth(contentsRect().width());
        return qsizetype(line.textLength());
    };
    const qsizetype first = nextLine();
    const qsizetype second = nextLine();
    layout.endLayout();
    const bool isWhole = first + second == name.size();
    lines_ = QStringList(name.left(first).trimmed());
    if (second > 0)
        lines_ << (isWhole ? name.mid(first) : elidedLine(name, first));
    setToolTip(isWhole ? QString() : toolTipOf(text()));
    update();
}

QString NameLabel::elidedLine(const QString& name, qsizetype first) const {
    const int width = contentsRect().width();
    QString end = fontMetrics().elidedText(name.mid(first), Qt::ElideLeft, width);
    if (common_ < first || common_ > name.size() - end.size())
        return end; // the ends of names are of most use
    const qsizetype word = name.lastIndexOf(QLatin1Char(' '), common_) + 1;
    qsizetype start = std::max({first, word, common_ - WarpLook::kMostContext});
    if (name.at(start).isLowSurrogate())
        --start;
    const QString omitted = start > first ? QStringLiteral("\u2026") : QString();
    return fontMetrics().elidedText(omitted + name.mid(start), Qt::ElideRight, width);
}

QString NameLabel::toolTipOf(const QString& name) {
    return Qt::mightBeRichText(name) ? name.toHtmlEscaped() : name;
}

void NameLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    layOut();
}

void NameLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        layOut();
}

void NameLabel::paintEvent(QPaintEvent* event) {
    Q_UNUSED(event)
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);

    const int height = fontMetrics().lineSpacing();
    QRect line = contentsRect();
    line.setTop(line.top() + (line.height() - height * int(lines_.size())) / 2);
    line.setHeight(height);
    for (const QString& text : lines_) {
        style()->drawItemText(&painter, line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                              option.palette, isEnabled(), text, foregroundRole());
        line.translate(0, height);
    }
}

bool NameLabel::event(QEvent* event) {
    return isRepaintOutOfView(*this, *event) || QLabel::event(event);
}
