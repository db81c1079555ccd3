#pragma once

#include "network/events/ProtocolTypes.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QDebug>
#include <QMetaEnum>

namespace NetworkCompanion {

/// Anything that companion and Producer tell each other: a type and the payload that goes with it.
class Event {
public:
    explicit Event(LV_NTC_EventType type) : type_(type) {}
    virtual ~Event() = default;

    /// Exactly the payload, without header or length.
    virtual QByteArray serialize() const = 0;
    /// Takes the fields from the start of data; bytes behind them are ignored. When data holds too
    /// few bytes, or counts that cannot be true, the event is left as it was.
    virtual void deserialize(QByteArray& data) = 0;
    /// The payload size in bytes that the header announces.
    virtual int getSize() const = 0;

    /// The number of bytes that serialize() returns and writePayload() writes.
    virtual qsizetype encodedSize() const = 0;
    /// Writes the payload to out, which has room for encodedSize() bytes; returns its end.
    virtual char* writePayload(char* out) const = 0;
    /// As deserialize(), without a copy of the bytes; tells whether the payload made sense.
    [[nodiscard]] virtual bool readPayload(QByteArrayView payload) = 0;

    LV_NTC_EventType type() const { return type_; }
    /// A number for the program's own bookkeeping, -1 until set; it never travels.
    int localId() const { return localId_; }
    void setLocalId(int id) { localId_ = id; }

    /// Equal when they are of the same type and would be the same bytes on the wire.
    friend bool operator==(const Event& left, const Event& right) {
        return left.type_ == right.type_ && left.hasSameFields(right);
    }
    friend QDebug operator<<(QDebug debug, const Event& event) {
        const QDebugStateSaver saver(debug);
        debug.nospace() << QMetaEnum::fromType<LV_NTC_EventType>().valueToKey(int(event.type_))
                        << "Event(";
        event.print(debug);
        debug << ')';
        return debug;
    }

protected:
    Event(const Event&) = default;
    Event& operator=(const Event&) = default;

    virtual bool hasSameFields(const Event& other) const = 0;
    virtual void print(QDebug& debug) const = 0;

private:
    LV_NTC_EventType type_;
    std::int32_t localId_ = -1;
};

} // namespace NetworkCompanion
