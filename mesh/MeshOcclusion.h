#pragma once

#include "mesh/MeshNodes.h"

/// Leaves out of a picture what its points hide, as their circles are opaque: in a dense mesh that
/// is nearly all there is to draw, and drawing is what takes the time.
///
/// Removes the lines that lie under the circles of their ends, and sets what is seen of each point
/// and whether its number can be read.
/// `diameter` is that of the circles in pixels of the screen, at least 4.
void leaveOutHidden(MeshPicture& picture, double diameter);
