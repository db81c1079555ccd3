#pragma once

#include "network/events/Event.h"

namespace NetworkCompanion {

/// The codec: turns events into frames and frames into events. A frame that cannot be decoded is
/// logged and becomes a null event.
///
/// A frame is a header of 9 bytes and the payload. Two lengths are sent: the header holds the size
/// of the payload, and the transport prefixes the frame with the length of header and payload.
///
/// "API" marks functions that nothing here calls; they are kept for callers outside this tree.
class LVNtc {
public:
    LVNtc() = delete;

    static constexpr int kHeaderSize = 9;

    static QByteArray serializeHeader(const LV_NTC_Header& header); // API
    /// The frame. Writes the header unchanged; its dataSize is not checked against the event.
    static QByteArray serialize(const LV_NTC_Header& header, Event& event); // API
    /// The frame with its length prefix (4 bytes), in one allocation.
    static QByteArray serializeWithLength(const LV_NTC_Header& header, const Event& event);

    /// The header at the start of data, which may hold more than one frame. All zero, with a
    /// warning, when data is shorter than the header announces.
    static LV_NTC_Header deserializeHeader(QByteArray& data); // API
    /// The event in the frame at the start of data, owned by the caller. Null, with a log line,
    /// when the type is unknown or bytes are missing. Ignores bytes behind the event's last field.
    static Event* deserializeEvent(const LV_NTC_Header& header, QByteArray& data); // API
    /// Header and event of the frame at the start of data, which is not changed.
    static eventData deserialize(QByteArray& data); // API

    /// The same for bytes that are not in a QByteArray.
    static LV_NTC_Header readHeader(QByteArrayView data);
    static Event* readEvent(const LV_NTC_Header& header, QByteArrayView data);
    static eventData read(QByteArrayView data);

    /// A new event with default fields, owned by the caller; null for an unknown code.
    static Event* getEvent(unsigned char type); // API
};

} // namespace NetworkCompanion
