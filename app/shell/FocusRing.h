#pragma once

class QPainter;
class QRect;

/// Draws the focus ring just inside `rect`: a white line between two dark ones, visible on every
/// colour and picture. `radius` is that of the corners, in device-independent pixels.
void drawFocusRing(QPainter& painter, const QRect& rect, int radius);
