#pragma once

#include <QByteArray>

#include <cstdint>

/// Bytes as they travel, put together by hand and without the library, for tests to compare with.
namespace MeshpadTest {

/// "00 0a ff": spaces are for the reader.
QByteArray hex(const char* digits);
/// A text field: padded with zero bytes to its size.
QByteArray text(const QByteArray& characters, int size = 256);
/// Big-endian.
QByteArray int32(std::int64_t value);
QByteArray int64(std::int64_t value);
/// The header of 9 bytes in front of the payload, as an honest sender fills it.
QByteArray frame(int type, const QByteArray& payload);
/// As the stream carries it: the length of 4 bytes, then the bytes.
QByteArray withLength(const QByteArray& bytes);

} // namespace MeshpadTest
