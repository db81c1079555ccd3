#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// Position of a point of a screen's mesh, or the request to move it.
class ScreenMovePointEvent final
    : public FieldEvent<ScreenMovePointEvent, LV_NTC_EventType::ScreenMovePoint> {
public:
    ScreenMovePointEvent() = default;
    ScreenMovePointEvent(std::uint32_t screenId, std::uint32_t dataIndex, const char* name,
                         std::uint32_t pointId, double x, double y, double z, bool xy,
                         bool selected)
        : screenId_(screenId), dataIndex_(dataIndex), name_(name), pointId_(pointId), x_(x), y_(y),
          z_(z), xy_(xy), selected_(selected) {}

    std::uint32_t screenId() const { return screenId_; }
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
        return std::tuple{Field{"screenId", &ScreenMovePointEvent::screenId_},
                          Field{"dataIndex", &ScreenMovePointEvent::dataIndex_},
                          Field{"name", &ScreenMovePointEvent::name_},
                          Field{"pointId", &ScreenMovePointEvent::pointId_},
                          Field{"x", &ScreenMovePointEvent::x_},
                          Field{"y", &ScreenMovePointEvent::y_},
                          Field{"z", &ScreenMovePointEvent::z_},
                          Field{"xy", &ScreenMovePointEvent::xy_},
                          Field{"selected", &ScreenMovePointEvent::selected_}};
    }

    std::uint32_t screenId_ = 0;
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
