#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// State of a screen's blind, which mutes its output, or the request to change it.
class BlindEvent final : public FieldEvent<BlindEvent, LV_NTC_EventType::Blind> {
public:
    BlindEvent() = default;
    BlindEvent(std::uint32_t reserved, std::uint32_t screenId, const char* name, bool blinded)
        : reserved_(reserved), screenId_(screenId), name_(name), blinded_(blinded) {}

    std::uint32_t reserved() const { return reserved_; }
    std::uint32_t screenId() const { return screenId_; }
    QString name() const { return name_.toString(); }
    bool blinded() const { return blinded_; }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{
            Field{"screenId", &BlindEvent::screenId_}, Field{"reserved", &BlindEvent::reserved_},
            Field{"name", &BlindEvent::name_}, Field{"blinded", &BlindEvent::blinded_}};
    }

    std::uint32_t reserved_ = 0;
    std::uint32_t screenId_ = 0;
    NameText name_;
    bool blinded_ = false;
};

} // namespace NetworkCompanion
