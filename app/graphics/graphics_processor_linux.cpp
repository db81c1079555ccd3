#include "app/graphics/GraphicsProcessor.h"

#include <QDir>
#include <QFileInfo>

bool hasGraphicsProcessor() {
    // What the kernel's own drivers offer, a vendor's driver, and Windows to a Linux inside it.
    return !QDir("/dev/dri").entryList({"renderD*"}, QDir::System).isEmpty() ||
           QFileInfo::exists("/dev/nvidiactl") || QFileInfo::exists("/dev/dxg");
}
