#include "pages/FittedText.h"

#include <QFontMetricsF>
#include <QPainter>

namespace {

/// Allows a line break after an underscore, because names are often file names.
constexpr QStringView kBreakableUnderscore = u"_\u200b";

} // namespace

void FittedText::set(const QString& text, const QFont& font, int smallestSize, const QSize& box) {
    if (text == source_ && font == largestFont_ && smallestSize == smallestSize_ && box == box_)
        return;
    source_ = text;
    largestFont_ = font;
    smallestSize_ = smallestSize;
    box_ = box;
    elided_ = false;

    QString shown = text.simplified();
    shown.replace(QLatin1Char('_'), kBreakableUnderscore.toString());
    layout_.setText(shown);
    layout_.setCacheEnabled(true);
    for (const auto wrapMode : {QTextOption::WordWrap, QTextOption::WrapAtWordBoundaryOrAnywhere}) {
        QFont tried = font;
        for (int size = font.pixelSize(); size >= smallestSize; --size) {
            tried.setPixelSize(size);
            if (layOut(tried, wrapMode))
                return;
        }
    }
    elide();
}

bool FittedText::layOut(const QFont& font, QTextOption::WrapMode wrapMode) {
    QTextOption option(Qt::AlignHCenter);
    option.setWrapMode(wrapMode);
    option.setTextDirection(Qt::LayoutDirectionAuto);
    layout_.setTextOption(option);
    layout_.setFont(font);

    bool wideEnough = true;
    height_ = 0;
    layout_.beginLayout();
    for (QTextLine line = layout_.createLine(); line.isValid(); line = layout_.createLine()) {
        line.setLineWidth(box_.width());
        line.setPosition({0, height_});
        height_ += line.height();
        wideEnough = wideEnough && line.naturalTextWidth() <= box_.width();
    }
    layout_.endLayout();
    return wideEnough && height_ <= box_.height();
}

void FittedText::elide() {
    int last = 0; // the last line that fits
    while (last + 1 < layout_.lineCount() &&
           layout_.lineAt(last + 1).rect().bottom() <= box_.height())
        ++last;
    const QString text = layout_.text();
    const int start = layout_.lineAt(last).textStart();
    const QString end =
        QFontMetricsF(layout_.font()).elidedText(text.mid(start), Qt::ElideRight, box_.width());
    elided_ = end != text.mid(start);
    // The separator forces the line break, otherwise the shorter end could move to the line before.
    layout_.setText(last == 0 ? end : text.left(start) + QChar(QChar::LineSeparator) + end);
    static_cast<void>(layOut(layout_.font(), QTextOption::WrapAtWordBoundaryOrAnywhere));
}

void FittedText::draw(QPainter& painter, const QRect& area) const {
    layout_.draw(&painter, QPointF(area.x(), area.y() + (area.height() - height_) / 2));
}
