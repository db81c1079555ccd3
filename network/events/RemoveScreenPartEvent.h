#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// A part of a screen was removed.
class RemoveScreenPartEvent final
    : public FieldEvent<RemoveScreenPartEvent, LV_NTC_EventType::RemoveScreenPart> {
public:
    RemoveScreenPartEvent() = default;
    RemoveScreenPartEvent(std::uint32_t screenId, std::uint32_t screenPartId, const char* name)
        : screenId_(screenId), screenPartId_(screenPartId), name_(name) {}

    std::uint32_t screenId() const { return screenId_; }
    std::uint32_t screenPartId() const { return screenPartId_; }
    QString name() const { return name_.toString(); }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"screenId", &RemoveScreenPartEvent::screenId_},
                          Field{"screenPartId", &RemoveScreenPartEvent::screenPartId_},
                          Field{"name", &RemoveScreenPartEvent::name_}};
    }

    std::uint32_t screenId_ = 0;
    std::uint32_t screenPartId_ = 0;
    NameText name_;
};

} // namespace NetworkCompanion
