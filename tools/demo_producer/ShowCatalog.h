#pragma once

#include "tools/demo_producer/Show.h"

/// The built-in shows.
namespace ShowCatalog {

/// Three screens, one of them in parts mode with three parts, four medias, two textures, eight
/// quick keys; every kind of deformation on every kind of item.
Show harbour();

/// A smaller show, in which some identifiers of harbour() belong to other items.
Show winterGarden();

/// A show of that many items (0 or more) of all kinds. The seed chooses their deformations.
Show large(int itemCount, quint32 seed);

/// Rebuilds the mesh of the first screen with that many control points, as bezier if both numbers
/// are 3n + 1 and as curve otherwise. Returns false without a screen or for an impossible grid.
bool setFirstGrid(Show& show, int rows, int columns);

} // namespace ShowCatalog
