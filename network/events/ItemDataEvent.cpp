#include "network/events/ItemDataEvent.h"

#include <cstdint>

namespace NetworkCompanion {

namespace {

constexpr qsizetype kCountSize = sizeof(std::int64_t);

template <typename Point>
char* writeList(char* out, const std::vector<Point>& points) {
    qToBigEndian(static_cast<std::int64_t>(points.size()), out);
    out += kCountSize;
    for (const Point& point : points)
        out = point.writeFields(out);
    return out;
}

/// Advances in behind the list. False, with a log line, for a count that exceeds the bytes.
template <typename Point>
bool readList(const char*& in, const char* end, std::vector<Point>& points) {
    points.clear();
    if (end - in < kCountSize) {
        in = end;
        return true;
    }
    const auto count = qFromBigEndian<std::int64_t>(in);
    in += kCountSize;
    const std::int64_t room = (end - in) / Point::wireSize();
    if (count < 0 || count > room) {
        qWarning().nospace() << "Bad point count: " << count << "/" << room;
        return false;
    }
    points.reserve(static_cast<std::size_t>(count));
    Point point; // copying it is twice as fast as zeroing and then reading each in place
    for (std::int64_t i = 0; i < count; ++i) {
        in = point.readFields(in);
        points.push_back(point);
    }
    return true;
}

} // namespace

int ItemDataEvent::getSize() const {
    return static_cast<int>(encodedSize() -
                            qsizetype(std::tuple_size_v<decltype(lists())>) * kCountSize);
}

qsizetype ItemDataEvent::encodedSize() const {
    qsizetype size = wireSize();
    forEachList([&]<typename Point>(std::vector<Point> ItemDataEvent::*list) {
        size += kCountSize + qsizetype((this->*list).size()) * Point::wireSize();
    });
    return size;
}

QByteArray ItemDataEvent::serialize() const {
    QByteArray payload(encodedSize(), Qt::Uninitialized);
    writePayload(payload.data());
    return payload;
}

char* ItemDataEvent::writePayload(char* out) const {
    out = FieldList::write(*this, fields(), out);
    forEachList([&](auto list) { out = writeList(out, this->*list); });
    return out;
}

bool ItemDataEvent::readPayload(QByteArrayView payload) {
    if (payload.size() < wireSize())
        return false;
    ItemDataEvent read;
    const char* in = FieldList::read(read, fields(), payload.data());
    bool ok = true;
    forEachList([&](auto list) { ok = ok && readList(in, payload.end(), read.*list); });
    if (ok) {
        read.setLocalId(localId());
        *this = std::move(read);
    }
    return ok;
}

bool ItemDataEvent::hasSameFields(const Event& other) const {
    const auto& that = static_cast<const ItemDataEvent&>(other);
    return FieldList::same(*this, that, fields()) && FieldList::same(*this, that, lists());
}

void ItemDataEvent::print(QDebug& debug) const {
    FieldList::print(debug, *this, fields());
    std::apply(
        [&](const auto&... list) {
            ((debug << ", " << list.name << '=' << (this->*list.member).size()), ...);
        },
        lists());
}

} // namespace NetworkCompanion
