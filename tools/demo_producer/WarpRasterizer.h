#pragma once

#include "tools/demo_producer/Surface.h"

#include <QImage>
#include <QTransform>

/// Draws pictures through warps, with the processor alone.
namespace WarpRasterizer {

/// Draws the part of the picture (0 to 1 of it) over the target, each position of the xy surface
/// showing the position of the part that the uv surface names. Two keystones give the exact
/// projective picture; other surfaces are drawn as triangles too small to be seen. Nothing is drawn
/// where uv leaves the part. Both images are premultiplied ARGB; toTarget is affine, from xy to
/// pixels of the target.
void draw(QImage& target, const QImage& picture, const QRectF& part, const Surface& xy,
          const Surface& uv, const QTransform& toTarget);

/// The image at half its size, which must be even; every pixel is the mean of four. Drawing at
/// twice the size and halving is what smoothes the edges.
QImage halved(const QImage& image);

/// The number of steps along a direction of so many patches that makes the triangles small enough.
int steps(int patches);

} // namespace WarpRasterizer
