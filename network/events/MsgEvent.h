#pragma once

#include "network/events/FieldEvent.h"

namespace NetworkCompanion {

/// A short text: a request of the companion or a notice of the Producer.
class MsgEvent final : public FieldEvent<MsgEvent, LV_NTC_EventType::Msg> {
public:
    MsgEvent() = default;
    explicit MsgEvent(const char* message) : message_(message) {}

    QString message() const { return message_.toString(); }

private:
    friend FieldEvent;
    static constexpr auto fields() { return std::tuple{Field{"message", &MsgEvent::message_}}; }

    MessageText message_;
};

} // namespace NetworkCompanion
