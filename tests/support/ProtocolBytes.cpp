#include "tests/support/ProtocolBytes.h"

namespace MeshpadTest {

namespace {

QByteArray bigEndian(std::uint64_t value, int size) {
    QByteArray bytes;
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes.append(static_cast<char>(value >> shift));
    return bytes;
}

} // namespace

QByteArray hex(const char* digits) {
    return QByteArray::fromHex(digits);
}

QByteArray text(const QByteArray& characters, int size) {
    return characters + QByteArray(size - characters.size(), '\0');
}

QByteArray int32(std::int64_t value) {
    return bigEndian(static_cast<std::uint64_t>(value), 4);
}

QByteArray int64(std::int64_t value) {
    return bigEndian(static_cast<std::uint64_t>(value), 8);
}

QByteArray frame(int type, const QByteArray& payload) {
    return int32(9) + int32(payload.size()) + static_cast<char>(type) + payload;
}

QByteArray withLength(const QByteArray& bytes) {
    return int32(bytes.size()) + bytes;
}

} // namespace MeshpadTest
