#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// A quick key was removed.
class DeleteQuickKeyEvent final
    : public FieldEvent<DeleteQuickKeyEvent, LV_NTC_EventType::DeleteQuickKey> {
public:
    DeleteQuickKeyEvent() = default;
    DeleteQuickKeyEvent(std::uint32_t keyId, std::uint32_t reserved)
        : keyId_(keyId), reserved_(reserved) {}

    std::uint32_t keyId() const { return keyId_; }
    std::uint32_t reserved() const { return reserved_; }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"keyId", &DeleteQuickKeyEvent::keyId_},
                          Field{"reserved", &DeleteQuickKeyEvent::reserved_}};
    }

    std::uint32_t keyId_ = 0;
    std::uint32_t reserved_ = 0;
};

} // namespace NetworkCompanion
