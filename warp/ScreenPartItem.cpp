#include "warp/ScreenPartItem.h"

#include "network/events/ScreenPartBlindEvent.h"
#include "warp/ScreenItem.h"
#include "warp/WarpLook.h"

using namespace NetworkCompanion;

ScreenPartItem::ScreenPartItem(int partId, int dataIndex, int sourceWidth, int sourceHeight,
                               bool blinded, const QString& name,
                               const Configuration& configuration, QWidget* parent)
    : Item(LV_NTC_ElementType::ScreenPart, partId, dataIndex, sourceWidth, sourceHeight, name,
           configuration, parent) {
    setBlinded(blinded);
    setLabelColor(QColor(WarpLook::kScreenLabelColor));
    setActive(false);
}

ItemKey ScreenPartItem::key() const {
    if (screenItem_ == nullptr)
        return {};
    return ItemKey::screenPart(static_cast<unsigned int>(screenItem_->id()),
                               static_cast<unsigned int>(id()));
}

void ScreenPartItem::onBlind() {
    if (screenItem_ == nullptr)
        return;
    ScreenPartBlindEvent event(static_cast<unsigned int>(screenItem_->id()),
                               static_cast<unsigned int>(id()), 0, name().toUtf8().constData(),
                               !isBlinded());
    sendBlind(event);
}
