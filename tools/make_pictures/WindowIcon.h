#pragma once

#include <QByteArray>
#include <QImage>

/// The window icon at `size` pixels: a deformed mesh with one moved point; smaller icons have fewer
/// lines.
QImage drawWindowIcon(int size);

/// The icon in all sizes that desktops use, as an ".ico" file.
QByteArray windowIconFile();
