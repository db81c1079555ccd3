#include "network/LVNtc.h"

#include "network/events/EventTable.h"

#include <QtEndian>

#include <array>
#include <memory>

namespace NetworkCompanion {

namespace {

char* writeHeader(char* out, const LV_NTC_Header& header) {
    qToBigEndian(std::int32_t{LVNtc::kHeaderSize}, out);
    qToBigEndian(header.dataSize, out + 4);
    out[8] = static_cast<char>(header.type);
    return out + LVNtc::kHeaderSize;
}

/// The big-endian integer at offset; 0 when data ends before it.
std::int32_t readInteger(QByteArrayView data, qsizetype offset) {
    return data.size() < offset + 4 ? 0 : qFromBigEndian<std::int32_t>(data.data() + offset);
}

void warnBadSize(const char* what, std::int64_t expected, qsizetype found) {
    qWarning().noquote().nospace() << what << expected << "/" << found;
}

/// Creates and decodes one class of event.
struct Factory {
    Event* (*create)();
    /// Null, with a log line, when the payload is invalid. Does not zero the fields first, because
    /// reading overwrites them all.
    Event* (*decode)(QByteArrayView payload);
};

template <typename EventClass>
Event* create() {
    return new EventClass;
}

template <typename EventClass>
Event* decode(QByteArrayView payload) {
    if (payload.size() < EventClass::wireSize()) {
        warnBadSize("Bad data size: ", EventClass::wireSize(), payload.size());
        return nullptr;
    }
    auto event = std::make_unique<EventClass>();
    return event->readPayload(payload) ? event.release() : nullptr;
}

template <typename... Rows>
constexpr auto makeFactories(const std::tuple<Rows...>*) {
    return std::array{Factory{&create<typename Rows::Class>, &decode<typename Rows::Class>}...};
}
constexpr auto kFactories = makeFactories(static_cast<const EventTable*>(nullptr));

const Factory* factoryOf(unsigned char type) {
    return type >= 1 && type <= kFactories.size() ? &kFactories[type - 1U] : nullptr;
}

template <typename... Rows>
constexpr bool rowsAreOrderedByCode(const std::tuple<Rows...>*) {
    int code = 0;
    return ((static_cast<int>(Rows::Class::kType) == ++code) && ...);
}
static_assert(rowsAreOrderedByCode(static_cast<const EventTable*>(nullptr)));

} // namespace

QByteArray LVNtc::serializeHeader(const LV_NTC_Header& header) {
    QByteArray bytes(kHeaderSize, Qt::Uninitialized);
    writeHeader(bytes.data(), header);
    return bytes;
}

QByteArray LVNtc::serialize(const LV_NTC_Header& header, Event& event) {
    QByteArray frame(kHeaderSize + event.encodedSize(), Qt::Uninitialized);
    event.writePayload(writeHeader(frame.data(), header));
    return frame;
}

QByteArray LVNtc::serializeWithLength(const LV_NTC_Header& header, const Event& event) {
    const qsizetype frameLength = kHeaderSize + event.encodedSize();
    QByteArray message(4 + frameLength, Qt::Uninitialized);
    qToBigEndian(static_cast<std::int32_t>(frameLength), message.data());
    event.writePayload(writeHeader(message.data() + 4, header));
    return message;
}

LV_NTC_Header LVNtc::readHeader(QByteArrayView data) {
    const std::int32_t headerSize = readInteger(data, 0);
    const std::int32_t dataSize = readInteger(data, 4);
    if (data.size() - dataSize < headerSize) {
        warnBadSize("Bad header size: ", headerSize, data.size() - dataSize);
        return {};
    }
    const auto type = data.size() < kHeaderSize ? 0 : static_cast<signed char>(data[8]);
    return {static_cast<std::uint32_t>(dataSize), static_cast<LV_NTC_EventType>(type)};
}

Event* LVNtc::readEvent(const LV_NTC_Header& header, QByteArrayView data) {
    const QByteArrayView payload =
        data.size() > kHeaderSize ? data.sliced(kHeaderSize) : QByteArrayView();
    if (static_cast<std::int64_t>(header.dataSize) > payload.size()) {
        warnBadSize("Bad data size: ", header.dataSize, payload.size());
        return nullptr;
    }
    const Factory* factory = factoryOf(static_cast<unsigned char>(header.type));
    if (!factory) {
        qCritical("Try to deserialize unknown event");
        return nullptr;
    }
    return factory->decode(payload);
}

eventData LVNtc::read(QByteArrayView data) {
    const LV_NTC_Header header = readHeader(data);
    return {header, header.dataSize == 0 ? nullptr : readEvent(header, data)};
}

LV_NTC_Header LVNtc::deserializeHeader(QByteArray& data) {
    return readHeader(data);
}

Event* LVNtc::deserializeEvent(const LV_NTC_Header& header, QByteArray& data) {
    return readEvent(header, data);
}

eventData LVNtc::deserialize(QByteArray& data) {
    return read(data);
}

Event* LVNtc::getEvent(unsigned char type) {
    const Factory* factory = factoryOf(type);
    return factory ? factory->create() : nullptr;
}

} // namespace NetworkCompanion
