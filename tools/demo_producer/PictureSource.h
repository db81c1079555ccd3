#pragma once

#include "tools/demo_producer/Show.h"

#include <QHash>
#include <QImage>

/// Draws what medias and textures play. Every picture is generated here; the moving ones are
/// functions of the time alone, so that a moment can be drawn again.
class PictureSource {
public:
    /// The picture of a media or texture at a moment (seconds), a few hundred pixels wide and in
    /// the item's proportions. Premultiplied ARGB.
    QImage picture(const ShowItem& item, double seconds);

    /// The test pattern in the proportions asked for: the one that companions show as thumbnail
    /// where it is there, otherwise a plain one. The frame-rate patterns move.
    QImage pattern(NetworkCompanion::LV_NTC_PictureType pattern, QSize size, double seconds);

private:
    /// The image of that name: as it was left, or null. What a window of many sizes leaves behind
    /// is forgotten now and then.
    QImage& still(const QString& name);

    QHash<QString, QImage> stills_;
};
