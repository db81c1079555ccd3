#pragma once

#include "tools/demo_producer/Show.h"

#include <QHash>
#include <QImage>

/// Generates the pictures of medias, textures and test patterns. Moving ones depend on the time
/// alone.
class PictureSource {
public:
    /// The picture of a media or texture at a time in seconds, 480 pixels long, in the item's
    /// proportions. Premultiplied ARGB.
    QImage picture(const ShowItem& item, double seconds);

    /// The test pattern at that size, from the pictures that companions show as thumbnails, or a
    /// plain one where that is missing. The frame-rate patterns move.
    QImage pattern(NetworkCompanion::LV_NTC_PictureType pattern, QSize size, double seconds);

private:
    /// The cached image of that name; null the first time. The cache is cleared when it is full,
    /// because every window size adds images.
    QImage& still(const QString& name);

    QHash<QString, QImage> stills_;
};
