#pragma once

/// Makes the C++ types of the mesh editor known to QML as the module "Meshpad.Scene" 1.0. Called
/// before the scene is loaded; more calls do nothing.
void registerMeshTypes();
