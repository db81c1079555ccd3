#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// Shows a test picture on every output of the Producer, or removes it.
class MireEvent final : public FieldEvent<MireEvent, LV_NTC_EventType::Mire> {
public:
    MireEvent() = default;
    MireEvent(std::uint32_t reserved, LV_NTC_PictureType picture)
        : reserved_(reserved), picture_(picture) {}

    std::uint32_t reserved() const { return reserved_; }
    LV_NTC_PictureType picture() const { return picture_; }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"picture", &MireEvent::picture_},
                          Field{"reserved", &MireEvent::reserved_}};
    }

    std::uint32_t reserved_ = 0;
    LV_NTC_PictureType picture_ = LV_NTC_PictureType::None;
};

} // namespace NetworkCompanion
