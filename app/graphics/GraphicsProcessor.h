#pragma once

/// Whether the machine has a graphics processor to draw with. Asks the system which devices there
/// are; to ask OpenGL, its driver would have to be loaded, and one that emulates it in software
/// takes more memory than the whole program.
bool hasGraphicsProcessor();
