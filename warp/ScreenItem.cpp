#include "warp/ScreenItem.h"

#include "network/events/BlindEvent.h"
#include "warp/ScreenPartItem.h"
#include "warp/WarpLook.h"

#include <algorithm>

using namespace NetworkCompanion;

ScreenItem::ScreenItem(int screenId, int dataIndex, int sourceWidth, int sourceHeight, bool blinded,
                       const QString& name, const Configuration& configuration, QWidget* parent)
    : Item(LV_NTC_ElementType::Screen, screenId, dataIndex, sourceWidth, sourceHeight, name,
           configuration, parent) {
    setBlinded(blinded);
    setLabelColor(QColor(WarpLook::kScreenLabelColor));
    setActive(false);
}

void ScreenItem::addPart(ScreenPartItem* part) {
    parts_.append(part);
    part->setScreenItem(this);
}

bool ScreenItem::hasPart(int partId) const {
    return getPart(partId) != nullptr;
}

ScreenPartItem* ScreenItem::getPart(int partId) const {
    const auto found = std::find_if(parts_.begin(), parts_.end(),
                                    [partId](const Item* part) { return part->id() == partId; });
    return found != parts_.end() ? *found : nullptr;
}

ScreenPartItem* ScreenItem::removePart(int partId) {
    ScreenPartItem* part = getPart(partId);
    if (part != nullptr)
        parts_.removeOne(part);
    return part;
}

void ScreenItem::hideParts() {
    for (ScreenPartItem* part : parts_)
        part->hide();
    show();
}

void ScreenItem::showParts() {
    hide();
    for (ScreenPartItem* part : parts_)
        part->show();
}

void ScreenItem::onBlind() {
    BlindEvent event(0, static_cast<unsigned int>(id()), name().toUtf8().constData(), !isBlinded());
    sendBlind(event);
}
