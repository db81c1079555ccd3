#pragma once

#include <QByteArray>

#include <cstdint>

/// Wire bytes built without the library, for tests to compare with.
namespace MeshpadTest {

/// From digits such as "00 0a ff"; spaces are ignored.
QByteArray hex(const char* digits);
/// A text field: padded with zero bytes to its size.
QByteArray text(const QByteArray& characters, int size = 256);
/// Big-endian.
QByteArray int32(std::int64_t value);
QByteArray int64(std::int64_t value);
/// The payload behind a correct header of 9 bytes.
QByteArray frame(int type, const QByteArray& payload);
/// The bytes behind their length of 4 bytes, as in the stream.
QByteArray withLength(const QByteArray& bytes);

} // namespace MeshpadTest
