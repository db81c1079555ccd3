#include "warp/TextureItem.h"

#include "network/events/MediaBlindEvent.h"
#include "warp/WarpLook.h"

using namespace NetworkCompanion;

TextureItem::TextureItem(unsigned int cueId, int textureId, int dataIndex, int sourceWidth,
                         int sourceHeight, bool flag, const QString& name,
                         const Configuration& configuration, QWidget* parent)
    : Item(LV_NTC_ElementType::Texture, static_cast<int>(cueId), dataIndex, sourceWidth,
           sourceHeight, name, configuration, parent),
      textureId_(textureId), flag_(flag) {
    setLabelColor(QColor(WarpLook::kMediaLabelColor));
    setActive(false);
}

void TextureItem::onBlind() {
    MediaBlindEvent event(LV_NTC_ElementType::Texture, cueId(),
                          static_cast<unsigned int>(textureId_), 0, name().toUtf8().constData(),
                          !isBlinded());
    sendBlind(event);
}
