#pragma once

#include "network/events/ProtocolTypes.h"

#include <QPointF>

#include <array>
#include <vector>

/// The projective map of the unit square onto the quadrilateral of four corners.
class Projection {
public:
    /// Corners in the order of a 2 x 2 grid: top left, top right, bottom left, bottom right.
    explicit Projection(const std::array<QPointF, 4>& corners);

    /// False when the corners span no convex quadrilateral, because then no such map exists.
    [[nodiscard]] bool isValid() const { return valid_; }
    [[nodiscard]] QPointF at(double s, double t) const;

    /// The image in homogeneous coordinates: the point is (x / w, y / w), w is positive in the
    /// square.
    struct Homogeneous {
        double x, y, w;
    };
    [[nodiscard]] Homogeneous homogeneousAt(double s, double t) const;

private:
    double a_ = 0, b_ = 0, c_ = 0; // x of s, t, 1
    double d_ = 0, e_ = 0, f_ = 0; // y
    double g_ = 0, h_ = 0;         // w, its constant being 1
    bool valid_ = false;
};

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

    /// The map of None or keystone if it is projective, otherwise null.
    [[nodiscard]] const Projection* projection() const;
    /// The surface is polynomial or projective within a patch; a keystone has one.
    [[nodiscard]] int patchRows() const { return patchRows_; }
    [[nodiscard]] int patchColumns() const { return patchColumns_; }

    /// The control points that give a surface of another kind and grid this one's shape: exactly if
    /// it can have it, otherwise it agrees with this one at as many parameters as it has points.
    [[nodiscard]] std::vector<QPointF>
    controlPointsFor(NetworkCompanion::LV_NTC_DeformationType kind, int rows, int columns) const;

private:
    [[nodiscard]] QPointF bilinearAt(double s, double t) const;

    bool patches_;
    int patchRows_;
    int patchColumns_;
    /// Control points of the bicubic patches, row by row; the four corners without patches.
    std::vector<QPointF> net_;
    Projection projection_;
};

/// n + 1 parameters from 0 to 1, evenly spaced.
std::vector<double> evenParameters(int n);
