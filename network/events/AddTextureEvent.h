#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// A texture of the current show. Its cue id identifies it.
class AddTextureEvent final : public FieldEvent<AddTextureEvent, LV_NTC_EventType::AddTexture> {
public:
    AddTextureEvent() = default;
    AddTextureEvent(std::uint32_t cueId, std::uint32_t textureId, std::uint32_t dataIndex,
                    std::uint32_t sourceWidth, std::uint32_t sourceHeight, std::uint32_t reserved,
                    double sourceRotation, const char* name, bool flag)
        : cueId_(cueId), textureId_(textureId), dataIndex_(dataIndex), sourceWidth_(sourceWidth),
          sourceHeight_(sourceHeight), reserved_(reserved), sourceRotation_(sourceRotation),
          name_(name), flag_(flag) {}

    std::uint32_t cueId() const { return cueId_; }
    std::uint32_t textureId() const { return textureId_; }
    std::uint32_t dataIndex() const { return dataIndex_; }
    /// Pixels.
    std::uint32_t sourceWidth() const { return sourceWidth_; }
    std::uint32_t sourceHeight() const { return sourceHeight_; }
    std::uint32_t reserved() const { return reserved_; }
    /// Degrees.
    double sourceRotation() const { return sourceRotation_; }
    QString name() const { return name_.toString(); }
    bool flag() const { return flag_; }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"cueId", &AddTextureEvent::cueId_},
                          Field{"textureId", &AddTextureEvent::textureId_},
                          Field{"sourceWidth", &AddTextureEvent::sourceWidth_},
                          Field{"sourceHeight", &AddTextureEvent::sourceHeight_},
                          Field{"reserved", &AddTextureEvent::reserved_},
                          Field{"sourceRotation", &AddTextureEvent::sourceRotation_},
                          Field{"name", &AddTextureEvent::name_},
                          Field{"flag", &AddTextureEvent::flag_},
                          Field{"dataIndex", &AddTextureEvent::dataIndex_}};
    }

    std::uint32_t cueId_ = 0;
    std::uint32_t textureId_ = 0;
    std::uint32_t dataIndex_ = 0;
    std::uint32_t sourceWidth_ = 0;
    std::uint32_t sourceHeight_ = 0;
    std::uint32_t reserved_ = 0;
    double sourceRotation_ = 0.0;
    NameText name_;
    bool flag_ = false;
};

} // namespace NetworkCompanion
