#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// Type and grid of the deformation of a screen, or the request to change them.
class DeformationModeEvent final
    : public FieldEvent<DeformationModeEvent, LV_NTC_EventType::DeformationMode> {
public:
    DeformationModeEvent() = default;
    DeformationModeEvent(LV_NTC_DeformationType deformationType, std::uint32_t screenId,
                         std::uint32_t dataIndex, const char* name, std::uint32_t rows,
                         std::uint32_t columns, bool reset)
        : deformationType_(deformationType), screenId_(screenId), dataIndex_(dataIndex),
          name_(name), rows_(rows), columns_(columns), reset_(reset) {}

    LV_NTC_DeformationType deformationType() const { return deformationType_; }
    std::uint32_t screenId() const { return screenId_; }
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
        return std::tuple{Field{"deformationType", &DeformationModeEvent::deformationType_},
                          Field{"screenId", &DeformationModeEvent::screenId_},
                          Field{"dataIndex", &DeformationModeEvent::dataIndex_},
                          Field{"name", &DeformationModeEvent::name_},
                          Field{"rows", &DeformationModeEvent::rows_},
                          Field{"columns", &DeformationModeEvent::columns_},
                          Field{"reset", &DeformationModeEvent::reset_}};
    }

    LV_NTC_DeformationType deformationType_ = LV_NTC_DeformationType::None;
    std::uint32_t screenId_ = 0;
    std::uint32_t dataIndex_ = 0;
    NameText name_;
    std::uint32_t rows_ = 0;
    std::uint32_t columns_ = 0;
    bool reset_ = false;
};

} // namespace NetworkCompanion
