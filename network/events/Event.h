#pragma once

#include "network/events/ProtocolTypes.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QDebug>
#include <QMetaEnum>

namespace NetworkCompanion {

/// Base of all messages between companion and Producer: a type and its payload.
///
/// "API" marks functions that nothing here calls; they are kept for callers outside this tree.
class Event {
public:
    explicit Event(LV_NTC_EventType type) : type_(type) {}
    virtual ~Event() = default;

    /// The payload, without header or length prefix.
    virtual QByteArray serialize() const = 0; // API
    /// Reads the fields from the start of data and ignores bytes behind them. Leaves the event
    /// unchanged when data is too short or holds a count that exceeds its bytes.
    virtual void deserialize(QByteArray& data) = 0; // API
    /// The payload size in bytes as the header announces it.
    virtual int getSize() const = 0;

    /// The number of bytes of serialize() and writePayload().
    virtual qsizetype encodedSize() const = 0;
    /// Writes the payload to out, which must have room for encodedSize() bytes. Returns its end.
    virtual char* writePayload(char* out) const = 0;
    /// As deserialize(), without copying the bytes. False when the event was left unchanged.
    [[nodiscard]] virtual bool readPayload(QByteArrayView payload) = 0;

    LV_NTC_EventType type() const { return type_; }
    /// A number for local use, initially -1. Never sent.
    int localId() const { return localId_; }   // API
    void setLocalId(int id) { localId_ = id; } // API

    /// Equal when type and wire bytes are equal.
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
