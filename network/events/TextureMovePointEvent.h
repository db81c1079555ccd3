#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// Position of a point of a texture's mesh, or the request to move it.
class TextureMovePointEvent final
    : public FieldEvent<TextureMovePointEvent, LV_NTC_EventType::TextureMovePoint> {
public:
    TextureMovePointEvent() = default;
    TextureMovePointEvent(std::uint32_t cueId, std::uint32_t textureId, std::uint32_t dataIndex,
                          const char* name, std::uint32_t pointId, double x, double y, double z,
                          bool xy, bool selected)
        : cueId_(cueId), textureId_(textureId), dataIndex_(dataIndex), name_(name),
          pointId_(pointId), x_(x), y_(y), z_(z), xy_(xy), selected_(selected) {}

    std::uint32_t cueId() const { return cueId_; }
    std::uint32_t textureId() const { return textureId_; }
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
        return std::tuple{Field{"cueId", &TextureMovePointEvent::cueId_},
                          Field{"textureId", &TextureMovePointEvent::textureId_},
                          Field{"dataIndex", &TextureMovePointEvent::dataIndex_},
                          Field{"name", &TextureMovePointEvent::name_},
                          Field{"pointId", &TextureMovePointEvent::pointId_},
                          Field{"x", &TextureMovePointEvent::x_},
                          Field{"y", &TextureMovePointEvent::y_},
                          Field{"z", &TextureMovePointEvent::z_},
                          Field{"xy", &TextureMovePointEvent::xy_},
                          Field{"selected", &TextureMovePointEvent::selected_}};
    }

    std::uint32_t cueId_ = 0;
    std::uint32_t textureId_ = 0;
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
