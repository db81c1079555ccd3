#pragma once

class QPainter;
class QRect;

/// Draws the sign of the keyboard's focus just inside `rect`: a white line between two dark ones,
/// seen on every colour and on every picture.
void drawFocusRing(QPainter& painter, const QRect& rect, int radius);
