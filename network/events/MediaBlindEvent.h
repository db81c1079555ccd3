#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// State of the blind of a media or texture, or the request to change it.
class MediaBlindEvent final : public FieldEvent<MediaBlindEvent, LV_NTC_EventType::MediaBlind> {
public:
    MediaBlindEvent() = default;
    MediaBlindEvent(LV_NTC_ElementType elementType, std::uint32_t cueId, std::uint32_t elementId,
                    std::uint32_t reserved, const char* name, bool blinded)
        : elementType_(elementType), cueId_(cueId), elementId_(elementId), reserved_(reserved),
          name_(name), blinded_(blinded) {}

    LV_NTC_ElementType elementType() const { return elementType_; }
    std::uint32_t cueId() const { return cueId_; }
    /// The media id or texture id, depending on elementType().
    std::uint32_t elementId() const { return elementId_; }
    std::uint32_t reserved() const { return reserved_; }
    QString name() const { return name_.toString(); }
    bool blinded() const { return blinded_; }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"elementType", &MediaBlindEvent::elementType_},
                          Field{"cueId", &MediaBlindEvent::cueId_},
                          Field{"elementId", &MediaBlindEvent::elementId_},
                          Field{"reserved", &MediaBlindEvent::reserved_},
                          Field{"name", &MediaBlindEvent::name_},
                          Field{"blinded", &MediaBlindEvent::blinded_}};
    }

    LV_NTC_ElementType elementType_ = LV_NTC_ElementType::None;
    std::uint32_t cueId_ = 0;
    std::uint32_t elementId_ = 0;
    std::uint32_t reserved_ = 0;
    NameText name_;
    bool blinded_ = false;
};

} // namespace NetworkCompanion
