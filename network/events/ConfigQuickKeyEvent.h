#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// The rows and columns of a page of quick keys.
class ConfigQuickKeyEvent final
    : public FieldEvent<ConfigQuickKeyEvent, LV_NTC_EventType::ConfigQuickKey> {
public:
    ConfigQuickKeyEvent() = default;
    ConfigQuickKeyEvent(std::uint32_t rows, std::uint32_t columns, std::uint32_t reserved)
        : rows_(rows), columns_(columns), reserved_(reserved) {}

    std::uint32_t rows() const { return rows_; }
    std::uint32_t columns() const { return columns_; }
    std::uint32_t reserved() const { return reserved_; }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"rows", &ConfigQuickKeyEvent::rows_},
                          Field{"columns", &ConfigQuickKeyEvent::columns_},
                          Field{"reserved", &ConfigQuickKeyEvent::reserved_}};
    }

    std::uint32_t rows_ = 0;
    std::uint32_t columns_ = 0;
    std::uint32_t reserved_ = 0;
};

} // namespace NetworkCompanion
