#pragma once

#include "tools/demo_producer/Surface.h"

#include <QSizeF>

#include <vector>

/// A control point of a mesh.
struct ControlPoint {
    QPointF position;
    bool selected = false;

    friend bool operator==(const ControlPoint&, const ControlPoint&) = default;
};

/// The deformation of an item: the position of each point of its mesh on the output (xy) and in its
/// picture (uv).
struct Warp {
    using Kind = NetworkCompanion::LV_NTC_DeformationType;

    Kind kind = Kind::None;
    int rows = 2;
    int columns = 2;
    std::vector<ControlPoint> xy; ///< pixels from the item's centre, row by row
    std::vector<ControlPoint> uv; ///< 0 to 1 over the picture, row by row

    /// The mesh without deformation. The grid must be possible for the kind.
    static Warp straight(Kind kind, int rows, int columns, QSizeF size);

    /// Whether the kind can have that grid, within the limits of companions.
    [[nodiscard]] static bool isPossible(Kind kind, int rows, int columns);

    [[nodiscard]] Surface xySurface() const;
    [[nodiscard]] Surface uvSurface() const;

    /// The warp with another kind and grid and the same shape. With `reset`, its xy half is
    /// straight; with kind None, both are. No point is selected.
    [[nodiscard]] Warp rebuilt(Kind newKind, int newRows, int newColumns, bool reset,
                               QSizeF size) const;

    friend bool operator==(const Warp&, const Warp&) = default;
};
