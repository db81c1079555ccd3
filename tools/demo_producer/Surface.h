#pragma once

#include "network/events/ProtocolTypes.h"

#include <QPointF>
#include <QTransform>

#include <optional>
#include <vector>

/// The smooth surface that a grid of control points spans, over the parameters s (to the right) and
/// t (down), each from 0 to 1. Points may be in any unit.
///
/// None and keystone take four points: a projective map, or a bilinear one where no projective one
/// exists. Bezier takes 3n + 1 points each way, every third of them on the surface:
/// bicubic patches. Curve takes 2 points or more each way, all of them on the surface: a
/// Catmull-Rom surface.
class Surface {
public:
    /// Whether rows and columns fit the kind.
    [[nodiscard]] static bool isPossible(NetworkCompanion::LV_NTC_DeformationType kind, int rows,
                                         int columns);

    /// Points row by row; the grid must be possible and match their number.
    Surface(NetworkCompanion::LV_NTC_DeformationType kind, int rows, int columns,
            std::vector<QPointF> points);

    [[nodiscard]] QPointF at(double s, double t) const;
    /// The surface at every pair of the parameters, row by row; much faster than calling at().
    [[nodiscard]] std::vector<QPointF> sample(const std::vector<double>& s,
                                              const std::vector<double>& t) const;

    /// The map from the parameters, if the surface is projective.
    [[nodiscard]] const std::optional<QTransform>& projection() const { return projection_; }
    /// The surface is polynomial or projective within a patch; a keystone has one.
    [[nodiscard]] int patchRows() const { return patchRows_; }
    [[nodiscard]] int patchColumns() const { return patchColumns_; }

    /// Control points of another kind and grid for the same shape. Exact where possible; otherwise
    /// both surfaces agree at as many parameters as there are points.
    [[nodiscard]] std::vector<QPointF>
    controlPointsFor(NetworkCompanion::LV_NTC_DeformationType kind, int rows, int columns) const;

private:
    [[nodiscard]] QPointF bilinearAt(double s, double t) const;

    bool patches_;
    int patchRows_;
    int patchColumns_;
    /// Control points of the bicubic patches, row by row; the four corners without patches.
    std::vector<QPointF> net_;
    std::optional<QTransform> projection_;
};

/// n + 1 parameters from 0 to 1, evenly spaced.
std::vector<double> evenParameters(int n);
