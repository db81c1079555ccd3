#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// New name and colour of a quick key.
class UpdateQuickKeyEvent final
    : public FieldEvent<UpdateQuickKeyEvent, LV_NTC_EventType::UpdateQuickKey> {
public:
    UpdateQuickKeyEvent() = default;
    UpdateQuickKeyEvent(std::uint32_t keyId, std::uint32_t reserved, const char* name,
                        const char* color)
        : keyId_(keyId), reserved_(reserved), name_(name), color_(color) {}

    std::uint32_t keyId() const { return keyId_; }
    std::uint32_t reserved() const { return reserved_; }
    QString name() const { return name_.toString(); }
    /// As "#RRGGBB".
    QString color() const { return color_.toString(); }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"keyId", &UpdateQuickKeyEvent::keyId_},
                          Field{"reserved", &UpdateQuickKeyEvent::reserved_},
                          Field{"name", &UpdateQuickKeyEvent::name_},
                          Field{"color", &UpdateQuickKeyEvent::color_}};
    }

    std::uint32_t keyId_ = 0;
    std::uint32_t reserved_ = 0;
    NameText name_;
    ColorText color_;
};

} // namespace NetworkCompanion
