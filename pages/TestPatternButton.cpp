#include "pages/TestPatternButton.h"

#include "app/shell/FocusRing.h"
#include "pages/PagesLook.h"

#include <QPainter>

// NOLINTNEXTLINE(modernize-pass-by-value): the configuration keeps the pattern
TestPatternButton::TestPatternButton(const Pattern& pattern, const QSize& size, QWidget* parent)
    : QAbstractButton(parent), pattern_(pattern), size_(size) {
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus); // no focus ring after a touch
    setAttribute(Qt::WA_Hover);
    setAccessibleName(pattern_.name);
}

void TestPatternButton::paintEvent(QPaintEvent* event) {
    Q_UNUSED(event)
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawFrame(painter);
    drawName(painter);
    preparePicture();
    drawPicture(painter);
    drawBorder(painter);
    if (hasFocus())
        drawFocusRing(painter, rect(), radius_);
}

void TestPatternButton::drawFrame(QPainter& painter) const {
    const QColor color(color_);
    painter.setPen(QPen(color, penWidth_, Qt::SolidLine));
    painter.setBrush(QBrush(color, Qt::SolidPattern));
    painter.drawRoundedRect(0, 0, width(), height(), radius_, radius_, Qt::AbsoluteSize);
}

void TestPatternButton::drawName(QPainter& painter) const {
    QFont font = painter.font();
    font.setPixelSize(fontSize_);
    font.setWeight(QFont::Bold);
    painter.setFont(font);
    painter.setPen(QPen(QColor(textColor_), penWidth_));
    const QString name = painter.fontMetrics().elidedText(pattern_.name, Qt::ElideRight, width());
    painter.drawText(QRect(0, 0, width(), textHeight_), Qt::AlignCenter, name);
}

QRect TestPatternButton::pictureArea() const {
    return {0, textHeight_, width(), height() - textHeight_};
}

void TestPatternButton::preparePicture() {
    const QSize pixels = (QSizeF(pictureArea().size()) * devicePixelRatioF()).toSize();
    if (pixels == pictureSize_)
        return;
    pictureSize_ = pixels;
    // Loading an empty path would log a warning.
    const QImage image = pattern_.imagePath.isEmpty() ? QImage() : QImage(pattern_.imagePath);
    picture_ = image.isNull() ? QPixmap()
                              : QPixmap::fromImage(image.scaled(pixels, Qt::IgnoreAspectRatio,
                                                                Qt::SmoothTransformation));
}

void TestPatternButton::drawPicture(QPainter& painter) const {
    if (!picture_.isNull())
        painter.drawPixmap(pictureArea(), picture_);
}

void TestPatternButton::drawBorder(QPainter& painter) const {
    if (!isDown() && !underMouse())
        return;
    constexpr qreal kInset = PagesLook::kPatternPenWidth / 2.0;
    painter.setPen(
        QPen(isDown() ? QColor(textColor_) : QColor(QLatin1StringView(PagesLook::kHoverColor)),
             penWidth_));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(kInset, kInset, -kInset, -kInset), radius_,
                            radius_);
}
