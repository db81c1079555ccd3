#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// A screen of the current show.
class AddScreenEvent final : public FieldEvent<AddScreenEvent, LV_NTC_EventType::AddScreen> {
public:
    AddScreenEvent() = default;
    AddScreenEvent(std::uint32_t screenId, std::uint32_t dataIndex, std::uint32_t sourceWidth,
                   std::uint32_t sourceHeight, std::uint32_t reserved,
                   double sourceDeformerRotation, const char* name, bool blinded, bool flag)
        : screenId_(screenId), dataIndex_(dataIndex), sourceWidth_(sourceWidth),
          sourceHeight_(sourceHeight), reserved_(reserved),
          sourceDeformerRotation_(sourceDeformerRotation), name_(name), blinded_(blinded),
          flag_(flag) {}

    std::uint32_t screenId() const { return screenId_; }
    std::uint32_t dataIndex() const { return dataIndex_; }
    /// Pixels.
    std::uint32_t sourceWidth() const { return sourceWidth_; }
    std::uint32_t sourceHeight() const { return sourceHeight_; }
    std::uint32_t reserved() const { return reserved_; }
    /// Degrees.
    double sourceDeformerRotation() const { return sourceDeformerRotation_; }
    QString name() const { return name_.toString(); }
    bool blinded() const { return blinded_; }
    bool flag() const { return flag_; }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"screenId", &AddScreenEvent::screenId_},
                          Field{"sourceWidth", &AddScreenEvent::sourceWidth_},
                          Field{"sourceHeight", &AddScreenEvent::sourceHeight_},
                          Field{"reserved", &AddScreenEvent::reserved_},
                          Field{"sourceDeformerRotation", &AddScreenEvent::sourceDeformerRotation_},
                          Field{"name", &AddScreenEvent::name_},
                          Field{"blinded", &AddScreenEvent::blinded_},
                          Field{"dataIndex", &AddScreenEvent::dataIndex_},
                          Field{"flag", &AddScreenEvent::flag_}};
    }

    std::uint32_t screenId_ = 0;
    std::uint32_t dataIndex_ = 0;
    std::uint32_t sourceWidth_ = 0;
    std::uint32_t sourceHeight_ = 0;
    std::uint32_t reserved_ = 0;
    double sourceDeformerRotation_ = 0.0;
    NameText name_;
    bool blinded_ = false;
    bool flag_ = false;
};

} // namespace NetworkCompanion
