#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// A texture was removed.
class RemoveTextureEvent final
    : public FieldEvent<RemoveTextureEvent, LV_NTC_EventType::RemoveTexture> {
public:
    RemoveTextureEvent() = default;
    RemoveTextureEvent(std::uint32_t cueId, std::uint32_t textureId, const char* name)
        : cueId_(cueId), textureId_(textureId), name_(name) {}

    std::uint32_t cueId() const { return cueId_; }
    std::uint32_t textureId() const { return textureId_; }
    QString name() const { return name_.toString(); }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"cueId", &RemoveTextureEvent::cueId_},
                          Field{"textureId", &RemoveTextureEvent::textureId_},
                          Field{"name", &RemoveTextureEvent::name_}};
    }

    std::uint32_t cueId_ = 0;
    std::uint32_t textureId_ = 0;
    NameText name_;
};

} // namespace NetworkCompanion
