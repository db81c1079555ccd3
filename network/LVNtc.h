#pragma once

#include "network/events/Event.h"

namespace NetworkCompanion {

/// The codec: events to frames and frames to events. Nothing here throws, closes a connection or
/// keeps an event; what cannot be decoded is logged and becomes a null event.
///
/// A frame is a header of 9 bytes and the payload. Two lengths travel: the size of the payload in
/// the header, and the length of the whole frame that the transport puts in front of it.
class LVNtc {
public:
    LVNtc() = delete;

    static constexpr int kHeaderSize = 9;

    static QByteArray serializeHeader(const LV_NTC_Header& header);
    /// The frame. The header is written as it is given: its dataSize is the caller's business.
    static QByteArray serialize(const LV_NTC_Header& header, Event& event);
    /// The frame with its length (4 bytes) in front, as the transport sends it, in one allocation.
    static QByteArray serializeWithLength(const LV_NTC_Header& header, const Event& event);

    /// The header at the start of data, which may hold more than one frame; all zero, with a
    /// warning, when data is shorter than the header says.
    static LV_NTC_Header deserializeHeader(QByteArray& data);
    /// The event in the frame at the start of data, owned by the caller; null, with a log line,
    /// when its type is none or bytes are missing. Bytes behind the payload are ignored.
    static Event* deserializeEvent(const LV_NTC_Header& header, QByteArray& data);
    /// Header and event of the frame at the start of data, which keeps its bytes.
    static eventData deserialize(QByteArray& data);

    /// The same without a QByteArray around the bytes.
    static LV_NTC_Header readHeader(QByteArrayView data);
    static Event* readEvent(const LV_NTC_Header& header, QByteArrayView data);
    static eventData read(QByteArrayView data);

    /// A new event with neutral fields, owned by the caller; null for a code that is no event.
    static Event* getEvent(unsigned char type);
};

} // namespace NetworkCompanion
