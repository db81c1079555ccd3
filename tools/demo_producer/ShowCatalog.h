#pragma once

#include "tools/demo_producer/Show.h"

/// The shows that need no file.
namespace ShowCatalog {

/// A harbour front at night: three screens, one of them handled through its three parts, four
/// medias, two textures, eight quick keys. Everything that can be bent is, in every way there is.
Show harbour();

/// A smaller one, with other items under partly the same identifiers: what a "new show" brings.
Show winterGarden();

/// As many items as asked, 0 or more, of all kinds, with short names that sort well. The seed picks
/// their bends: shows of different seeds differ in every mesh.
Show large(int itemCount, quint32 seed);

/// Gives the show's first screen a mesh of that many control points, bezier if the numbers are 3n +
/// 1 and curve otherwise, and keeps its shape. False when there is no screen or no such mesh.
bool setFirstGrid(Show& show, int rows, int columns);

} // namespace ShowCatalog
