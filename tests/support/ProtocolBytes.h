#pragma once

#include <QByteArray>
#include <QtEndian>

/// Wire bytes built without the library, for tests to compare with.
namespace MeshpadTest {

/// From digits such as "00 0a ff"; spaces are ignored.
inline QByteArray hex(const char* digits) {
    return QByteArray::fromHex(digits);
}

/// A text field: padded with zero bytes to its size.
inline QByteArray text(const QByteArray& characters, int size = 256) {
    return characters.leftJustified(size, '\0');
}

/// Big-endian.
inline QByteArray int64(qint64 value) {
    QByteArray bytes(sizeof value, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

inline QByteArray int32(qint64 value) {
    return int64(value).last(4);
}

/// The payload behind a correct header of 9 bytes.
inline QByteArray frame(int type, const QByteArray& payload) {
    return int32(9) + int32(payload.size()) + static_cast<char>(type) + payload;
}

/// The bytes behind their length of 4 bytes, as in the stream.
inline QByteArray withLength(const QByteArray& bytes) {
    return int32(bytes.size()) + bytes;
}

} // namespace MeshpadTest
