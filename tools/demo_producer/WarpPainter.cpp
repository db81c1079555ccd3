#include "tools/demo_producer/WarpPainter.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

int WarpPainter::steps(int patches) {
    int perPatch = 2;
    if (patches <= 1)
        perPatch = 14;
    else if (patches <= 3)
        perPatch = 8;
    else if (patches <= 8)
        perPatch = 4;
    return patches * perPatch;
}

void WarpPainter::draw(QPainter& painter, const QImage& picture, const QRectF& part,
                       const Warp& warp, const QTransform& toTarget) {
    const QTransform toPicture = QTransform::fromScale(picture.width(), picture.height());
    const QRect visible = toPicture.mapRect(part).toRect() & picture.rect();
    if (visible.isEmpty())
        return; // QImage::copy() would return the whole picture
    const QImage texture = picture.copy(visible);
    const QTransform toTexture = QTransform::fromScale(texture.width(), texture.height());
    const Surface xy = warp.xySurface();
    const Surface uv = warp.uvSurface();
    // A projective map is exact in a single cell.
    const bool isProjective = xy.projection() && uv.projection();
    const int columns = isProjective ? 1 : steps(std::max(xy.patchColumns(), uv.patchColumns()));
    const int rows = isProjective ? 1 : steps(std::max(xy.patchRows(), uv.patchRows()));
    const std::vector<double> s = evenParameters(columns);
    const std::vector<double> t = evenParameters(rows);
    const std::vector<QPointF> positions = xy.sample(s, t);
    const std::vector<QPointF> coordinates = uv.sample(s, t);

    painter.save();
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const std::size_t first = std::size_t(row) * s.size() + std::size_t(column);
            const std::size_t below = first + s.size();
            QPolygonF source;
            QPolygonF target;
            for (const std::size_t corner : {first, first + 1, below + 1, below}) {
                source.append(toTexture.map(coordinates[corner]));
                target.append(toTarget.map(positions[corner]));
            }
            QTransform map;
            if (!QTransform::quadToQuad(source, target, map))
                continue;
            QPainterPath cell;
            cell.addPolygon(target);
            painter.resetTransform();
            painter.setClipPath(cell);
            painter.setTransform(map);
            painter.drawImage(0, 0, texture);
        }
    }
    painter.restore();
}
