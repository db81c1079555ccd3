#pragma once

#include <QByteArray>
#include <QImage>

/// The window icon at `size` pixels: a bent mesh with its pulled point, with fewer lines the
/// smaller it is.
QImage drawWindowIcon(int size);

/// The sizes that a desktop asks for, gathered in one file of the ".ico" format.
QByteArray windowIconFile();
