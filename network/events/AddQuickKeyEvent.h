#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// A quick key of the Producer: a button that starts an action there.
class AddQuickKeyEvent final : public FieldEvent<AddQuickKeyEvent, LV_NTC_EventType::AddQuickKey> {
public:
    AddQuickKeyEvent() = default;
    AddQuickKeyEvent(std::uint32_t keyId, std::uint32_t firstReserved, std::uint32_t secondReserved,
                     const char* name, const char* color)
        : keyId_(keyId), firstReserved_(firstReserved), secondReserved_(secondReserved),
          name_(name), color_(color) {}

    std::uint32_t keyId() const { return keyId_; }
    std::uint32_t firstReserved() const { return firstReserved_; }
    std::uint32_t secondReserved() const { return secondReserved_; }
    QString name() const { return name_.toString(); }
    /// As "#RRGGBB".
    QString color() const { return color_.toString(); }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"keyId", &AddQuickKeyEvent::keyId_},
                          Field{"firstReserved", &AddQuickKeyEvent::firstReserved_},
                          Field{"secondReserved", &AddQuickKeyEvent::secondReserved_},
                          Field{"name", &AddQuickKeyEvent::name_},
                          Field{"color", &AddQuickKeyEvent::color_}};
    }

    std::uint32_t keyId_ = 0;
    std::uint32_t firstReserved_ = 0;
    std::uint32_t secondReserved_ = 0;
    NameText name_;
    ColorText color_;
};

} // namespace NetworkCompanion
