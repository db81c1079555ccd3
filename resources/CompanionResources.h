#pragma once

/// Registers the compiled-in files (":/img", ":/qml", ":/js", ":/patterns", ":/config", ":/qss",
/// ":/icon"). Every program that links CompanionResources calls this before it opens one of them,
/// because the linker drops the resources of a static library without a reference. Further calls do
/// nothing.
void initCompanionResources();
