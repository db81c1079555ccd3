#pragma once

#include "tools/demo_producer/Show.h"

#include <QJsonObject>

/// Shows as JSON. The form, with what a missing member means (as an item its key is
/// "media:<cue>/<id>", "texture:<cue>/<id>", "screen:<id>" or "part:<screen>/<part>"):
///
///     {
///       "title": "Harbour Night",
///       "pattern": "none",                    // small, tile, smpte-horizontal, white, ...
///       "quickKeys": {"rows": 2, "columns": 3, "keys": [{"id": 1, "name": "Go", "color":
///       "#0096ff"}]}, "items": [{
///         "item": "screen:0",
///         "dataIndex": 1,                     // the next free one
///         "name": "Facade",
///         "width": 1920, "height": 1080,
///         "rotation": 0.0,                    // degrees
///         "blinded": false,
///         "deformation": {
///           "type": "bezier",                 // none, keystone, bezier, curve; none
///           "rows": 4, "columns": 4,          // control points; 2
///           "xy": [[-960, -540], ...],        // row by row, pixels from the centre; the straight
///           grid "uv": [[0, 0], ...],              // row by row, 0 to 1; the straight grid
///           "selectedXy": [5], "selectedUv": []
///         },
///         "mediaType": "video",               // of a media: image, video, live, generated;
///         unknown "picture": "waves",                 // of a media or texture; chosen by its cue
///         "mode": "deformation",              // of a screen: simple, deformation, parts; as it is
///         bent "layers": [{"item": "media:11/1", "area": [0, 0, 1, 1]}], // of a screen, the
///         lowest first "area": [0, 0, 0.5, 1]              // of a part: x, y, width, height of
///         its screen
///       }]
///     }
namespace ShowFile {

QJsonObject toJson(const Show& show);
QJsonObject toJson(const ShowItem& item);

/// The show, or nothing and the reason, a single line, in error.
std::optional<Show> fromJson(const QJsonObject& json, QString& error);

std::optional<Show> read(const QString& path, QString& error);
/// Writes at one go: whoever reads the file finds either its old or its new contents.
bool write(const QString& path, const QJsonObject& json);

} // namespace ShowFile
