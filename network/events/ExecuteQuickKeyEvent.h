#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// A quick key was pressed.
class ExecuteQuickKeyEvent final
    : public FieldEvent<ExecuteQuickKeyEvent, LV_NTC_EventType::ExecuteQuickKey> {
public:
    ExecuteQuickKeyEvent() = default;
    explicit ExecuteQuickKeyEvent(std::uint32_t keyId) : keyId_(keyId) {}

    std::uint32_t keyId() const { return keyId_; }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"keyId", &ExecuteQuickKeyEvent::keyId_}};
    }

    std::uint32_t keyId_ = 0;
};

} // namespace NetworkCompanion
