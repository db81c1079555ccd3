#pragma once

/// Whether the machine has a graphics processor. Lists the system's devices instead of asking
/// OpenGL, because a driver that emulates OpenGL takes more memory than the whole program.
bool hasGraphicsProcessor();
