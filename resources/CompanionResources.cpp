#include "resources/CompanionResources.h"

#include <QtGlobal>

void initCompanionResources() {
    Q_INIT_RESOURCE(CompanionResources);
}
