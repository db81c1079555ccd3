#pragma once

#include "tools/demo_producer/Warp.h"

#include <QImage>
#include <QTransform>

class QPainter;

/// Draws pictures through warps.
namespace WarpPainter {

/// Draws the part of the picture (a rectangle in units of its size) through the warp. toTarget maps
/// xy positions to the painter's pixels. Keystones are drawn exactly, other surfaces in cells too
/// small to be seen. The painter must not antialias, because that leaves gaps between cells.
void draw(QPainter& painter, const QImage& picture, const QRectF& part, const Warp& warp,
          const QTransform& toTarget);

/// The number of cells across that many patches.
int steps(int patches);

} // namespace WarpPainter
