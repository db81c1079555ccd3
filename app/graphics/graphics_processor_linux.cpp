#include "app/graphics/GraphicsProcessor.h"

#include <QDir>
#include <QFileInfo>

bool hasGraphicsProcessor() {
    // The kernel's drivers, NVIDIA's driver, the Windows Subsystem for Linux.
    return !QDir("/dev/dri").entryList({"renderD*"}, QDir::System).isEmpty() ||
           QFileInfo::exists("/dev/nvidiactl") || QFileInfo::exists("/dev/dxg");
}
