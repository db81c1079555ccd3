#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// Type and grid of the deformation of a media or texture, or the request to change them.
class MediaDeformationModeEvent final
    : public FieldEvent<MediaDeformationModeEvent, LV_NTC_EventType::MediaDeformationMode> {
public:
    MediaDeformationModeEvent() = default;
    MediaDeformationModeEvent(LV_NTC_ElementType elementType,
                              LV_NTC_DeformationType deformationType, std::uint32_t cueId,
                              std::uint32_t elementId, std::uint32_t dataIndex, const char* name,
                              std::uint32_t rows, std::uint32_t columns, bool reset)
        : elementType_(elementType), deformationType_(deformationType), cueId_(cueId),
          elementId_(elementId), dataIndex_(dataIndex), name_(name), rows_(rows), columns_(columns),
          reset_(reset) {}

    LV_NTC_ElementType elementType() const { return elementType_; }
    LV_NTC_DeformationType deformationType() const { return deformationType_; }
    std::uint32_t cueId() const { return cueId_; }
    /// The media id or texture id, depending on elementType().
    std::uint32_t elementId() const { return elementId_; }
    std::uint32_t dataIndex() const { return dataIndex_; }
    QString name() const { return name_.toString(); }
    /// Control points.
    std::uint32_t rows() const { return rows_; }
    std::uint32_t columns() const { return columns_; }
    /// Start with a straight grid instead of keeping the shape.
    bool reset() const { return reset_; }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"elementType", &MediaDeformationModeEvent::elementType_},
                          Field{"deformationType", &MediaDeformationModeEvent::deformationType_},
                          Field{"cueId", &MediaDeformationModeEvent::cueId_},
                          Field{"elementId", &MediaDeformationModeEvent::elementId_},
                          Field{"dataIndex", &MediaDeformationModeEvent::dataIndex_},
                          Field{"name", &MediaDeformationModeEvent::name_},
                          Field{"rows", &MediaDeformationModeEvent::rows_},
                          Field{"columns", &MediaDeformationModeEvent::columns_},
                          Field{"reset", &MediaDeformationModeEvent::reset_}};
    }

    LV_NTC_ElementType elementType_ = LV_NTC_ElementType::None;
    LV_NTC_DeformationType deformationType_ = LV_NTC_DeformationType::None;
    std::uint32_t cueId_ = 0;
    std::uint32_t elementId_ = 0;
    std::uint32_t dataIndex_ = 0;
    NameText name_;
    std::uint32_t rows_ = 0;
    std::uint32_t columns_ = 0;
    bool reset_ = false;
};

} // namespace NetworkCompanion
