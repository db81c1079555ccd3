#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// How the Producer draws the companion's points on its outputs.
class UpdateSettingsEvent final
    : public FieldEvent<UpdateSettingsEvent, LV_NTC_EventType::UpdateSettings> {
public:
    UpdateSettingsEvent() = default;
    UpdateSettingsEvent(const char* color, std::int32_t shape) : color_(color), shape_(shape) {}

    /// As "#RRGGBB"; empty draws nothing.
    QString color() const { return color_.toString(); }
    /// 0 draws nothing.
    std::int32_t shape() const { return shape_; }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"color", &UpdateSettingsEvent::color_},
                          Field{"shape", &UpdateSettingsEvent::shape_}};
    }

    ColorText color_{"#FFFFFF"};
    std::int32_t shape_ = 0;
};

} // namespace NetworkCompanion
