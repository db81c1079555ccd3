#include "pages/FocusRing.h"

#include "app/Configuration.h"

#include <QPainter>

using namespace PagesLook;

void drawFocusRing(QPainter& painter, const QRect& rect, int radius) {
    constexpr qreal kInset = kFocusRingInset;
    const QRectF line = QRectF(rect).adjusted(kInset, kInset, -kInset, -kInset);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(QLatin1StringView(kShadowColor)), kFocusRingWidth + 2));
    painter.drawRoundedRect(line, radius, radius);
    painter.setPen(QPen(QColor(QLatin1StringView(kTextColor)), kFocusRingWidth));
    painter.drawRoundedRect(line, radius, radius);
}
