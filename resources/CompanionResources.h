#pragma once

/// Makes the collection of compiled-in files (":/img", ":/qml", ":/js", ":/patterns", ":/config",
/// ":/qss", ":/icon") available. The linker drops a static library's resources unless something
/// refers to them, so every program that links CompanionResources calls this once, before it opens
/// the first of the files; more calls do nothing.
void initCompanionResources();
