#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// A request for the identifiers of the resources.
class GetResourcesIdEvent final
    : public FieldEvent<GetResourcesIdEvent, LV_NTC_EventType::GetResourcesId> {
public:
    GetResourcesIdEvent() = default;
    explicit GetResourcesIdEvent(std::uint32_t resourceId) : resourceId_(resourceId) {}

    std::uint32_t resourceId() const { return resourceId_; }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"resourceId", &GetResourcesIdEvent::resourceId_}};
    }

    std::uint32_t resourceId_ = 0;
};

} // namespace NetworkCompanion
