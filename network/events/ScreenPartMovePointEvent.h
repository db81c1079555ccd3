#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// Position of a point of a screen part's mesh, or the request to move it.
class ScreenPartMovePointEvent final
    : public FieldEvent<ScreenPartMovePointEvent, LV_NTC_EventType::ScreenPartMovePoint> {
public:
    ScreenPartMovePointEvent() = default;
    ScreenPartMovePointEvent(std::uint32_t screenId, std::uint32_t screenPartId,
                             std::uint32_t dataIndex, const char* name, std::uint32_t pointId,
                             double x, double y, double z, bool xy, bool selected)
        : screenId_(screenId), screenPartId_(screenPartId), dataIndex_(dataIndex), name_(name),
          pointId_(pointId), x_(x), y_(y), z_(z), xy_(xy), selected_(selected) {}

    std::uint32_t screenId() const { return screenId_; }
    std::uint32_t screenPartId() const { return screenPartId_; }
    std::uint32_t dataIndex() const { return dataIndex_; }
    QString name() const { return name_.toString(); }
    /// Index in the grid, row by row.
    std::uint32_t pointId() const { return pointId_; }
    /// Pixels from the item's centre when xy(), otherwise texture coordinates from 0 to 1.
    double x() const { return x_; }
    double y() const { return y_; }
    double z() const { return z_; }
    /// True for a position, false for texture coordinates.
    bool xy() const { return xy_; }
    bool selected() const { return selected_; }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"screenId", &ScreenPartMovePointEvent::screenId_},
                          Field{"screenPartId", &ScreenPartMovePointEvent::screenPartId_},
                          Field{"dataIndex", &ScreenPartMovePointEvent::dataIndex_},
                          Field{"name", &ScreenPartMovePointEvent::name_},
                          Field{"pointId", &ScreenPartMovePointEvent::pointId_},
                          Field{"x", &ScreenPartMovePointEvent::x_},
                          Field{"y", &ScreenPartMovePointEvent::y_},
                          Field{"z", &ScreenPartMovePointEvent::z_},
                          Field{"xy", &ScreenPartMovePointEvent::xy_},
                          Field{"selected", &ScreenPartMovePointEvent::selected_}};
    }

    std::uint32_t screenId_ = 0;
    std::uint32_t screenPartId_ = 0;
    std::uint32_t dataIndex_ = 0;
    NameText name_;
    std::uint32_t pointId_ = 0;
    double x_ = 0.0;
    double y_ = 0.0;
    double z_ = 0.0;
    bool xy_ = false;
    bool selected_ = false;
};

} // namespace NetworkCompanion
