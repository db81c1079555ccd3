#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// State of the blind of a screen part, or the request to change it.
class ScreenPartBlindEvent final
    : public FieldEvent<ScreenPartBlindEvent, LV_NTC_EventType::ScreenPartBlind> {
public:
    ScreenPartBlindEvent() = default;
    ScreenPartBlindEvent(std::uint32_t screenId, std::uint32_t screenPartId, std::uint32_t reserved,
                         const char* name, bool blinded)
        : screenId_(screenId), screenPartId_(screenPartId), reserved_(reserved), name_(name),
          blinded_(blinded) {}

    std::uint32_t screenId() const { return screenId_; }
    std::uint32_t screenPartId() const { return screenPartId_; }
    std::uint32_t reserved() const { return reserved_; }
    QString name() const { return name_.toString(); }
    bool blinded() const { return blinded_; }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"screenId", &ScreenPartBlindEvent::screenId_},
                          Field{"screenPartId", &ScreenPartBlindEvent::screenPartId_},
                          Field{"reserved", &ScreenPartBlindEvent::reserved_},
                          Field{"name", &ScreenPartBlindEvent::name_},
                          Field{"blinded", &ScreenPartBlindEvent::blinded_}};
    }

    std::uint32_t screenId_ = 0;
    std::uint32_t screenPartId_ = 0;
    std::uint32_t reserved_ = 0;
    NameText name_;
    bool blinded_ = false;
};

} // namespace NetworkCompanion
