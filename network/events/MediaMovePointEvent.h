#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// Position of a point of a media's mesh, or the request to move it.
class MediaMovePointEvent final
    : public FieldEvent<MediaMovePointEvent, LV_NTC_EventType::MediaMovePoint> {
public:
    MediaMovePointEvent() = default;
    MediaMovePointEvent(std::uint32_t cueId, std::uint32_t mediaId, std::uint32_t dataIndex,
                        const char* name, std::uint32_t pointId, double x, double y, double z,
                        bool xy, bool selected)
        : cueId_(cueId), mediaId_(mediaId), dataIndex_(dataIndex), name_(name), pointId_(pointId),
          x_(x), y_(y), z_(z), xy_(xy), selected_(selected) {}

    std::uint32_t cueId() const { return cueId_; }
    std::uint32_t mediaId() const { return mediaId_; }
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
        return std::tuple{Field{"cueId", &MediaMovePointEvent::cueId_},
                          Field{"mediaId", &MediaMovePointEvent::mediaId_},
                          Field{"dataIndex", &MediaMovePointEvent::dataIndex_},
                          Field{"name", &MediaMovePointEvent::name_},
                          Field{"pointId", &MediaMovePointEvent::pointId_},
                          Field{"x", &MediaMovePointEvent::x_},
                          Field{"y", &MediaMovePointEvent::y_},
                          Field{"z", &MediaMovePointEvent::z_},
                          Field{"xy", &MediaMovePointEvent::xy_},
                          Field{"selected", &MediaMovePointEvent::selected_}};
    }

    std::uint32_t cueId_ = 0;
    std::uint32_t mediaId_ = 0;
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
