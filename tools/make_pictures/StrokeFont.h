#pragma once

#include <QColor>
#include <QPointF>
#include <QString>

class QPainter;

/// Capital letters and digits drawn with a round pen, so that a picture with text comes out the
/// same on every machine, whatever fonts it has.
namespace StrokeFont {

/// Width of the text in pixels when its capitals are `height` pixels high.
double width(const QString& text, double height);

/// Draws the text with its capitals `height` pixels high and its middle at `centre`. Knows A to Z,
/// 0 to 9, blank and "%+-.:/"; other characters leave a gap.
void draw(QPainter& painter, QPointF centre, const QString& text, double height,
          const QColor& color);

} // namespace StrokeFont
