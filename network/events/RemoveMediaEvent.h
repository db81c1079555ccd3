#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// A media was removed.
class RemoveMediaEvent final : public FieldEvent<RemoveMediaEvent, LV_NTC_EventType::RemoveMedia> {
public:
    RemoveMediaEvent() = default;
    RemoveMediaEvent(std::uint32_t cueId, std::uint32_t mediaId, const char* name)
        : cueId_(cueId), mediaId_(mediaId), name_(name) {}

    std::uint32_t cueId() const { return cueId_; }
    std::uint32_t mediaId() const { return mediaId_; }
    QString name() const { return name_.toString(); }

private:
    friend FieldEvent;
    static constexpr auto fields() {
        return std::tuple{Field{"cueId", &RemoveMediaEvent::cueId_},
                          Field{"mediaId", &RemoveMediaEvent::mediaId_},
                          Field{"name", &RemoveMediaEvent::name_}};
    }

    std::uint32_t cueId_ = 0;
    std::uint32_t mediaId_ = 0;
    NameText name_;
};

} // namespace NetworkCompanion
