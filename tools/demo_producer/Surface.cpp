#include "tools/demo_producer/Surface.h"

#include <algorithm>
#include <array>
#include <cmath>

using NetworkCompanion::LV_NTC_DeformationType;

namespace {

using Line = std::vector<QPointF>;

bool hasPatches(LV_NTC_DeformationType kind) {
    return kind == LV_NTC_DeformationType::Bezier || kind == LV_NTC_DeformationType::Curve;
}

/// Applies a function of a line of points to every row and then to every column of a grid. It must
/// be linear, because then the order does not matter.
template <typename Function>
std::vector<QPointF> transformLines(const std::vector<QPointF>& grid, int rows, int columns,
                                    Function function) {
    const auto at = [](int row, int column, int width) {
        return std::size_t(row) * std::size_t(width) + std::size_t(column);
    };
    std::vector<Line> newRows;
    for (int row = 0; row < rows; ++row) {
        const auto first = grid.begin() + std::ptrdiff_t(at(row, 0, columns));
        newRows.push_back(function(Line(first, first + columns)));
    }
    const int newColumns = int(newRows.front().size());
    std::vector<QPointF> result;
    for (int column = 0; column < newColumns; ++column) {
        Line line;
        for (const Line& row : newRows)
            line.push_back(row[std::size_t(column)]);
        line = function(line);
        result.resize(line.size() * std::size_t(newColumns));
        for (int row = 0; row < int(line.size()); ++row)
            result[at(row, column, newColumns)] = line[std::size_t(row)];
    }
    return result;
}

/// The Bezier control points of a Catmull-Rom curve through the points. The tangent at an end is
/// that of the parabola through the last three points, which makes parabolas exact.
Line bezierThroughPoints(const Line& p) {
    const std::size_t n = p.size();
    const auto tangent = [&](std::size_t i) {
        if (n == 2)
            return p[1] - p[0];
        if (i == 0)
            return (-3.0 * p[0] + 4.0 * p[1] - p[2]) / 2.0;
        if (i == n - 1)
            return (3.0 * p[n - 1] - 4.0 * p[n - 2] + p[n - 3]) / 2.0;
        return (p[i + 1] - p[i - 1]) / 2.0;
    };
    Line result{p[0]};
    for (std::size_t i = 0; i + 1 < n; ++i) {
        result.push_back(p[i] + tangent(i) / 3.0);
        result.push_back(p[i + 1] - tangent(i + 1) / 3.0);
        result.push_back(p[i + 1]);
    }
    return result;
}

/// The control points of the cubics through the points, four evenly spaced points to a cubic.
Line bezierThroughSamples(const Line& p) {
    Line result = p;
    for (std::size_t i = 0; i + 3 < p.size(); i += 3) {
        result[i + 1] = (-5.0 * p[i] + 18.0 * p[i + 1] - 9.0 * p[i + 2] + 2.0 * p[i + 3]) / 6.0;
        result[i + 2] = (2.0 * p[i] - 9.0 * p[i + 1] + 18.0 * p[i + 2] - 5.0 * p[i + 3]) / 6.0;
    }
    return result;
}

struct PatchParameter {
    std::size_t first; ///< index of the first of the four control points
    std::array<double, 4> weight;
};

PatchParameter patchParameter(double parameter, int patches) {
    const double scaled = std::clamp(parameter, 0.0, 1.0) * patches;
    const int patch = std::min(int(scaled), patches - 1);
    const double u = scaled - patch;
    const double v = 1.0 - u;
    return {std::size_t(patch) * 3, {v * v * v, 3.0 * u * v * v, 3.0 * u * u * v, u * u * u}};
}

/// The projective map of the unit square onto the corners, in the order of a 2 x 2 grid. Nothing
/// when they span no convex quadrilateral, because then no such map exists.
std::optional<QTransform> projectionOf(const std::vector<QPointF>& corners) {
    QTransform map;
    if (!QTransform::squareToQuad({{corners[0], corners[1], corners[3], corners[2]}}, map))
        return {};
    // w approaches zero at a corner where the quadrilateral degenerates to a triangle.
    constexpr double kSmallest = 1e-3;
    const double g = map.m13();
    const double h = map.m23();
    const bool isConvex = std::isfinite(g + h) && std::min({1 + g, 1 + h, 1 + g + h}) > kSmallest;
    return isConvex ? std::optional(map) : std::nullopt;
}

} // namespace

bool Surface::isPossible(LV_NTC_DeformationType kind, int rows, int columns) {
    switch (kind) {
    case LV_NTC_DeformationType::None:
    case LV_NTC_DeformationType::Keystone:
        return rows == 2 && columns == 2;
    case LV_NTC_DeformationType::Bezier:
        return rows >= 4 && columns >= 4 && rows % 3 == 1 && columns % 3 == 1;
    case LV_NTC_DeformationType::Curve:
        return rows >= 2 && columns >= 2;
    }
    return false;
}

Surface::Surface(LV_NTC_DeformationType kind, int rows, int columns, std::vector<QPointF> points)
    : patches_(hasPatches(kind)),
      patchRows_(kind == LV_NTC_DeformationType::Bezier ? (rows - 1) / 3 : rows - 1),
      patchColumns_(kind == LV_NTC_DeformationType::Bezier ? (columns - 1) / 3 : columns - 1),
      net_(kind == LV_NTC_DeformationType::Curve
               ? transformLines(points, rows, columns, bezierThroughPoints)
               : std::move(points)),
      projection_(patches_ ? std::nullopt : projectionOf(net_)) {}

QPointF Surface::bilinearAt(double s, double t) const {
    return (net_[0] * (1.0 - s) + net_[1] * s) * (1.0 - t) +
           (net_[2] * (1.0 - s) + net_[3] * s) * t;
}

QPointF Surface::at(double s, double t) const {
    return sample({s}, {t}).front();
}

std::vector<QPointF> Surface::sample(const std::vector<double>& s,
                                     const std::vector<double>& t) const {
    std::vector<QPointF> result;
    result.reserve(s.size() * t.size());
    if (!patches_) {
        for (const double down : t)
            for (const double right : s)
                result.push_back(projection_ ? projection_->map(QPointF(right, down))
                                             : bilinearAt(right, down));
        return result;
    }
    std::vector<PatchParameter> across;
    across.reserve(s.size());
    for (const double right : s)
        across.push_back(patchParameter(right, patchColumns_));
    const std::size_t width = std::size_t(patchColumns_) * 3 + 1;
    Line line(width); // control points of the curve at one t
    for (const double down : t) {
        const auto [first, weight] = patchParameter(down, patchRows_);
        for (std::size_t column = 0; column < width; ++column) {
            const QPointF* const point = &net_[first * width + column];
            line[column] = point[0] * weight[0] + point[width] * weight[1] +
                           point[2 * width] * weight[2] + point[3 * width] * weight[3];
        }
        for (const PatchParameter& right : across) {
            const QPointF* const point = &line[right.first];
            result.push_back(point[0] * right.weight[0] + point[1] * right.weight[1] +
                             point[2] * right.weight[2] + point[3] * right.weight[3]);
        }
    }
    return result;
}

std::vector<QPointF> Surface::controlPointsFor(LV_NTC_DeformationType kind, int rows,
                                               int columns) const {
    std::vector<QPointF> samples = sample(evenParameters(columns - 1), evenParameters(rows - 1));
    if (kind != LV_NTC_DeformationType::Bezier)
        return samples;
    return transformLines(samples, rows, columns, bezierThroughSamples);
}

std::vector<double> evenParameters(int n) {
    std::vector<double> result;
    for (int i = 0; i <= n; ++i)
        result.push_back(double(i) / n);
    return result;
}
