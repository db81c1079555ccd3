#include "warp/MediaItem.h"

#include "network/events/MediaBlindEvent.h"
#include "warp/WarpLook.h"

using namespace NetworkCompanion;

MediaItem::MediaItem(MediaType::Enum mediaType, unsigned int cueId, int mediaId, int dataIndex,
                     int sourceWidth, int sourceHeight, bool flag, const QString& name,
                     const Configuration& configuration, QWidget* parent)
    : Item(LV_NTC_ElementType::Media, static_cast<int>(cueId), dataIndex, sourceWidth, sourceHeight,
           name, configuration, parent),
      mediaType_(mediaType), mediaId_(mediaId), flag_(flag) {
    setLabelColor(QColor(WarpLook::kMediaLabelColor));
    setActive(false);
}

void MediaItem::onBlind() {
    MediaBlindEvent event(LV_NTC_ElementType::Media, cueId(), static_cast<unsigned int>(mediaId_),
                          0, name().toUtf8().constData(), !isBlinded());
    sendBlind(event);
}
