#pragma once

#include "tools/demo_producer/Show.h"

// Names of enumerators and items in show files, commands and log lines. The functions that parse a
// name return nothing for an unknown one.

QString nameOf(NetworkCompanion::LV_NTC_ElementType type); // "media", "texture", "screen", "part"
QString
nameOf(NetworkCompanion::LV_NTC_DeformationType kind);  // "none", "keystone", "bezier", "curve"
QString nameOf(NetworkCompanion::LV_NTC_ModeType mode); // "simple", "deformation", "parts"
QString nameOf(NetworkCompanion::MediaType::Enum type); // "image", "video", "live", "generated"
QString nameOf(NetworkCompanion::LV_NTC_PictureType picture); // "none", "small", "tile", ...

/// "media:11/1", "texture:21/1", "screen:0", "part:2/1".
QString nameOf(const ItemKey& key);

std::optional<NetworkCompanion::LV_NTC_DeformationType> deformationNamed(const QString& name);
std::optional<NetworkCompanion::LV_NTC_ModeType> modeNamed(const QString& name);
std::optional<NetworkCompanion::MediaType::Enum> mediaTypeNamed(const QString& name);
std::optional<NetworkCompanion::LV_NTC_PictureType> patternNamed(const QString& name);
std::optional<ItemKey> itemNamed(const QString& name);
