#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// A part of a screen; the screen was added before.
class AddScreenPartEvent final
    : public FieldEvent<AddScreenPartEvent, LV_NTC_EventType::AddScreenPart> {
public:
    AddScreenPartEvent() = default;
    AddScreenPartEvent(std::uint32_t screenId, std::uint32_t screenPartId, std::uint32_t dataIndex,
                       std::uint32_t sourceWidth, std::uint32_t sourceHeight,
                       std::uint32_t reserved, double sourceDeformerRotation, const char* name,
                       bool blinded)
        : screenId_(screenId), screenPartId_(screenPartId), dataIndex_(dataIndex),
          sourceWidth_(sourceWidth), sourceHeight_(sourceHeight), reserved_(reserved),
          sourceDeformerRotation_(sourceDeformerRotation), name_(name), blinded_(blinded) {}

    std::uint32_t screenId() const { return screenId_; }
    std::uint32_t screenPartId() const { return screenPartId_; }
    std::uint32_t dataIndex() const { return dataIndex_; }
    /// Pixels.
    std::uint32_t sourceWidth() const { return sourceWidth_; }
    std::uint32_t sourceHeight() const { return sourceHeight_; }
    std::uint32_t reserved() const { return reserved_; }
    /// Degrees.
    double sourceDeformerRotation() const { return sourceDeformerRotation_; }
    QString name() const { return name_.toString(); }
    bool blinded() const { return blinded_; }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{
            Field{"screenId", &AddScreenPartEvent::screenId_},
            Field{"screenPartId", &AddScreenPartEvent::screenPartId_},
            Field{"sourceWidth", &AddScreenPartEvent::sourceWidth_},
            Field{"sourceHeight", &AddScreenPartEvent::sourceHeight_},
            Field{"reserved", &AddScreenPartEvent::reserved_},
            Field{"sourceDeformerRotation", &AddScreenPartEvent::sourceDeformerRotation_},
            Field{"name", &AddScreenPartEvent::name_},
            Field{"blinded", &AddScreenPartEvent::blinded_},
            Field{"dataIndex", &AddScreenPartEvent::dataIndex_}};
    }

    std::uint32_t screenId_ = 0;
    std::uint32_t screenPartId_ = 0;
    std::uint32_t dataIndex_ = 0;
    std::uint32_t sourceWidth_ = 0;
    std::uint32_t sourceHeight_ = 0;
    std::uint32_t reserved_ = 0;
    double sourceDeformerRotation_ = 0.0;
    NameText name_;
    bool blinded_ = false;
};

} // namespace NetworkCompanion
