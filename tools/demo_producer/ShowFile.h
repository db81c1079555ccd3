#pragma once

#include "tools/demo_producer/Show.h"

#include <QJsonObject>

// clang-format off
/// Shows as JSON. Every member may be missing; the comments name its values and, after a semicolon,
/// its default. The key of an item is "media:<cue>/<id>", "texture:<cue>/<id>", "screen:<id>" or
/// "part:<screen>/<part>".
///
///     {
///       "title": "Harbour Night",
///       "pattern": "none",                 // small, tile, smpte-horizontal, white, ...
///       "quickKeys": {"rows": 2, "columns": 3,
///                     "keys": [{"id": 1, "name": "Go", "color": "#0096ff"}]},
///       "items": [{
///         "item": "screen:0",              // required
///         "dataIndex": 1,                  // the next free one
///         "name": "Facade",
///         "width": 1920, "height": 1080,   // required
///         "rotation": 0.0,                 // degrees
///         "blinded": false,
///         "deformation": {
///           "type": "bezier",              // none, keystone, bezier, curve; none
///           "rows": 4, "columns": 4,       // control points; 2
///           "xy": [[-960, -540], ...],     // row by row, pixels from the centre; the straight grid
///           "uv": [[0, 0], ...],           // row by row, 0 to 1; the straight grid
///           "selectedXy": [5], "selectedUv": []
///         },
///         "mediaType": "video",            // of a media: image, video, live, generated; unknown
///         "picture": "waves",              // of a media or texture; chosen by its cue
///         "mode": "deformation",           // of a screen: simple, deformation, parts; by its type
///         "layers": [{"item": "media:11/1", "area": [0, 0, 1, 1]}], // of a screen, the lowest first
///         "area": [0, 0, 0.5, 1]           // of a part: x, y, width, height in its screen, 0 to 1
///       }]
///     }
// clang-format on
namespace ShowFile {

QJsonObject toJson(const Show& show);
QJsonObject toJson(const ShowItem& item);

/// Sets error, a single line, when it returns nothing.
std::optional<Show> fromJson(const QJsonObject& json, QString& error);

std::optional<Show> read(const QString& path, QString& error);
/// Replaces the file atomically, so that readers find either its old or its new contents.
bool write(const QString& path, const QJsonObject& json);

} // namespace ShowFile
