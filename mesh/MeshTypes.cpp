#include "mesh/MeshTypes.h"

#include <QtGlobal>

// Generated from the classes that are QML elements.
void qml_register_types_Meshpad_Scene();

void registerMeshTypes() {
    static const bool registered = [] {
        qml_register_types_Meshpad_Scene();
        return true;
    }();
    Q_UNUSED(registered)
}
