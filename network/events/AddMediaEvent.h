#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// A media of the current show. Its cue id identifies it.
class AddMediaEvent final : public FieldEvent<AddMediaEvent, LV_NTC_EventType::AddMedia> {
public:
    AddMediaEvent() = default;
    AddMediaEvent(MediaType::Enum mediaType, std::uint32_t cueId, std::uint32_t mediaId,
                  std::uint32_t dataIndex, std::uint32_t sourceWidth, std::uint32_t sourceHeight,
                  std::uint32_t reserved, double sourceRotation, const char* name, bool flag)
        : mediaType_(mediaType), cueId_(cueId), mediaId_(mediaId), dataIndex_(dataIndex),
          sourceWidth_(sourceWidth), sourceHeight_(sourceHeight), reserved_(reserved),
          sourceRotation_(sourceRotation), name_(name), flag_(flag) {}

    MediaType::Enum mediaType() const { return mediaType_; }
    std::uint32_t cueId() const { return cueId_; }
    std::uint32_t mediaId() const { return mediaId_; }
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
        return std::tuple{Field{"mediaType", &AddMediaEvent::mediaType_},
                          Field{"cueId", &AddMediaEvent::cueId_},
                          Field{"mediaId", &AddMediaEvent::mediaId_},
                          Field{"dataIndex", &AddMediaEvent::dataIndex_},
                          Field{"sourceWidth", &AddMediaEvent::sourceWidth_},
                          Field{"sourceHeight", &AddMediaEvent::sourceHeight_},
                          Field{"reserved", &AddMediaEvent::reserved_},
                          Field{"sourceRotation", &AddMediaEvent::sourceRotation_},
                          Field{"name", &AddMediaEvent::name_},
                          Field{"flag", &AddMediaEvent::flag_}};
    }

    MediaType::Enum mediaType_ = MediaType::Unknown;
    std::uint32_t cueId_ = 0;
    std::uint32_t mediaId_ = 0;
    std::uint32_t dataIndex_ = 0;
    std::uint32_t sourceWidth_ = 0;
    std::uint32_t sourceHeight_ = 0;
    std::uint32_t reserved_ = 0;
    double sourceRotation_ = 0.0;
    NameText name_;
    bool flag_ = false;
};

} // namespace NetworkCompanion
