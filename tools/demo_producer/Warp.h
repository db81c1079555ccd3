#pragma once

#include "tools/demo_producer/Surface.h"

#include <QSizeF>

#include <vector>

/// A control point of a mesh, and whether a companion has it selected.
struct ControlPoint {
    QPointF place;
    bool selected = false;

    friend bool operator==(const ControlPoint&, const ControlPoint&) = default;
};

/// How an item is bent: where the points of its mesh lie on the output, and which place of its
/// picture each of them shows.
struct Warp {
    using Kind = NetworkCompanion::LV_NTC_DeformationType;

    Kind kind = Kind::None;
    int rows = 2;
    int columns = 2;
    std::vector<ControlPoint> xy; ///< pixels from the item's centre, row by row
    std::vector<ControlPoint> uv; ///< 0 to 1 over the picture, row by row

    /// The mesh that leaves the picture as it is. The grid must be possible for the kind.
    static Warp straight(Kind kind, int rows, int columns, QSizeF size);

    /// Whether the kind can have such a grid, within the bounds of what companions build.
    [[nodiscard]] static bool isPossible(Kind kind, int rows, int columns);

    [[nodiscard]] Surface xySurface() const;
    [[nodiscard]] Surface uvSurface() const;

    /// The warp with another kind and grid. It keeps the shape, its output half only unless reset
    /// is set; without deformation there is no shape to keep. Nothing is selected in it.
    [[nodiscard]] Warp rebuilt(Kind newKind, int newRows, int newColumns, bool reset,
                               QSizeF size) const;

    friend bool operator==(const Warp&, const Warp&) = default;
};
