#include "warp/MeshTypes.h"

#include "warp/MeshGridItem.h"
#include "warp/MeshLine.h"
#include "warp/MeshPoint.h"
#include "warp/MeshPointerArea.h"

#include <QtQml>

void registerMeshTypes() {
    static const bool registered = [] {
        constexpr const char* kModule = "Meshpad.Scene";
        qmlRegisterType<MeshPoint>(kModule, 1, 0, "MeshPoint");
        qmlRegisterType<MeshLine>(kModule, 1, 0, "MeshLine");
        qmlRegisterType<MeshGridItem>(kModule, 1, 0, "MeshGridItem");
        qmlRegisterType<MeshPointerArea>(kModule, 1, 0, "MeshPointerArea");
        return true;
    }();
    Q_UNUSED(registered)
}
