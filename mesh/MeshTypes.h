#pragma once

/// Registers the C++ types of the mesh editor as the QML module "Meshpad.Scene" 1.0. Call before
/// loading the scene; further calls do nothing.
void registerMeshTypes();
