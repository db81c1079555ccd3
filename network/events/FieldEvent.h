#pragma once

#include "network/events/Event.h"
#include "network/events/EventFields.h"

namespace NetworkCompanion {

/// Base of every event with a fixed layout. Derived lists its fields once, in wire order; encoding,
/// decoding, comparison and printing use that list.
template <typename Derived, LV_NTC_EventType Type>
class FieldEvent : public Event {
public:
    static constexpr LV_NTC_EventType kType = Type;
    /// Size of the payload in bytes.
    static constexpr int wireSize() { return FieldList::wireSize(Derived::fields()); }

    QByteArray serialize() const final {
        QByteArray payload(wireSize(), Qt::Uninitialized);
        writeFields(payload.data());
        return payload;
    }
    void deserialize(QByteArray& data) final { static_cast<void>(readPayload(data)); }
    int getSize() const final { return wireSize(); }

    qsizetype encodedSize() const final { return wireSize(); }
    char* writePayload(char* out) const final { return writeFields(out); }
    bool readPayload(QByteArrayView payload) final {
        if (payload.size() < wireSize())
            return false;
        readFields(payload.data());
        return true;
    }

    /// As writePayload() and readPayload(), but the caller provides at least wireSize() bytes.
    char* writeFields(char* out) const { return FieldList::write(self(), Derived::fields(), out); }
    const char* readFields(const char* in) {
        return FieldList::read(static_cast<Derived&>(*this), Derived::fields(), in);
    }

protected:
    FieldEvent() : Event(Type) {}
    FieldEvent(const FieldEvent&) = default;
    FieldEvent& operator=(const FieldEvent&) = default;

    bool hasSameFields(const Event& other) const final {
        return FieldList::same(self(), static_cast<const Derived&>(other), Derived::fields());
    }
    void print(QDebug& debug) const final { FieldList::print(debug, self(), Derived::fields()); }

private:
    const Derived& self() const { return static_cast<const Derived&>(*this); }
};

} // namespace NetworkCompanion
