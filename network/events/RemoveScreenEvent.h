#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// A screen and its parts were removed.
class RemoveScreenEvent final
    : public FieldEvent<RemoveScreenEvent, LV_NTC_EventType::RemoveScreen> {
public:
    RemoveScreenEvent() = default;
    explicit RemoveScreenEvent(std::uint32_t screenId) : screenId_(screenId) {}

    std::uint32_t screenId() const { return screenId_; }
    QString name() const { return name_.toString(); }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"screenId", &RemoveScreenEvent::screenId_},
                          Field{"name", &RemoveScreenEvent::name_}};
    }

    std::uint32_t screenId_ = 0;
    NameText name_;
};

} // namespace NetworkCompanion
