#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// The mode of a screen: simple, deformed, or handled through its parts.
class ScreenModeEvent final : public FieldEvent<ScreenModeEvent, LV_NTC_EventType::ScreenMode> {
public:
    ScreenModeEvent() = default;
    ScreenModeEvent(LV_NTC_ModeType modeType, std::uint32_t screenId, std::uint32_t dataIndex,
                    const char* name)
        : modeType_(modeType), screenId_(screenId), dataIndex_(dataIndex), name_(name) {}

    LV_NTC_ModeType modeType() const { return modeType_; }
    std::uint32_t screenId() const { return screenId_; }
    std::uint32_t dataIndex() const { return dataIndex_; }
    QString name() const { return name_.toString(); }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"modeType", &ScreenModeEvent::modeType_},
                          Field{"screenId", &ScreenModeEvent::screenId_},
                          Field{"dataIndex", &ScreenModeEvent::dataIndex_},
                          Field{"name", &ScreenModeEvent::name_}};
    }

    LV_NTC_ModeType modeType_ = LV_NTC_ModeType::Unset;
    std::uint32_t screenId_ = 0;
    std::uint32_t dataIndex_ = 0;
    NameText name_;
};

} // namespace NetworkCompanion
