#pragma once

// Makes the collection of compiled-in files (":/img", ":/qml", ":/js", ":/patterns", ":/config", ":/qss", ":/icon")
// available. A static library's resources are dropped by the linker unless something refers to them, so every
// program that links CompanionResources calls this once, before it opens the first of the files; more calls do nothing.
void initCompanionResources();
