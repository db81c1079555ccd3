#pragma once

#include <QColor>
#include <QPointF>
#include <QString>

class QPainter;

/// Draws capital letters and digits with a round pen, so that pictures do not depend on the fonts
/// of the machine.
namespace StrokeFont {

/// Width of the text in pixels when its capitals are `height` pixels high.
double width(const QString& text, double height);

/// Draws the text centred at `centre`, its capitals `height` pixels high. Knows A to Z,
/// 0 to 9, blank and "%+-.:/"; other characters leave a gap.
void draw(QPainter& painter, QPointF centre, const QString& text, double height,
          const QColor& color);

} // namespace StrokeFont
