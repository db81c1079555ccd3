#include "app/shell/FocusRing.h"

#include "app/shell/FocusLook.h"

#include <QPainter>

using namespace FocusLook;

void drawFocusRing(QPainter& painter, const QRect& rect, int radius) {
    constexpr qreal kInset = kRingInset;
    const QRectF line = QRectF(rect).adjusted(kInset, kInset, -kInset, -kInset);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(QLatin1StringView(kShadowColor)), kRingWidth + 2));
    painter.drawRoundedRect(line, radius, radius);
    painter.setPen(QPen(QColor(QLatin1StringView(kRingColor)), kRingWidth));
    painter.drawRoundedRect(line, radius, radius);
}
