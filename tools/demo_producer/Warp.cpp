#include "tools/demo_producer/Warp.h"

#include "network/events/ProtocolLimits.h"

namespace {

std::vector<QPointF> positions(const std::vector<ControlPoint>& points) {
    std::vector<QPointF> result;
    result.reserve(points.size());
    for (const ControlPoint& point : points)
        result.push_back(point.position);
    return result;
}

std::vector<ControlPoint> unselected(const std::vector<QPointF>& positions) {
    std::vector<ControlPoint> result;
    result.reserve(positions.size());
    for (const QPointF& position : positions)
        result.push_back({position, false});
    return result;
}

} // namespace

Warp Warp::straight(Kind kind, int rows, int columns, QSizeF size) {
    Warp warp{kind, rows, columns, {}, {}};
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const double u = double(column) / (columns - 1);
            const double v = double(row) / (rows - 1);
            warp.uv.push_back({{u, v}, false});
            warp.xy.push_back({{(u - 0.5) * size.width(), (v - 0.5) * size.height()}, false});
        }
    }
    return warp;
}

bool Warp::isPossible(Kind kind, int rows, int columns) {
    using namespace NetworkCompanion::Limits;
    const auto inBounds = [](int n) { return n >= int(kMinGridSize) && n <= int(kMaxGridSize); };
    return inBounds(rows) && inBounds(columns) && Surface::isPossible(kind, rows, columns);
}

Surface Warp::xySurface() const {
    return {kind, rows, columns, positions(xy)};
}

Surface Warp::uvSurface() const {
    return {kind, rows, columns, positions(uv)};
}

Warp Warp::rebuilt(Kind newKind, int newRows, int newColumns, bool reset, QSizeF size) const {
    Warp warp = straight(newKind, newRows, newColumns, size);
    if (newKind == Kind::None)
        return warp;
    warp.uv = unselected(uvSurface().controlPointsFor(newKind, newRows, newColumns));
    if (!reset)
        warp.xy = unselected(xySurface().controlPointsFor(newKind, newRows, newColumns));
    return warp;
}
