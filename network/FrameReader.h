#pragma once

#include "network/events/Event.h"

#include <QByteArray>

#include <optional>

namespace NetworkCompanion {

/// Splits the received bytes of one connection into frames and decodes them.
///
/// The stream is a length, signed and big-endian in 4 bytes, followed by a frame of that length. A
/// length of 0 or less announces no frame; one above Limits::kMaxFrameLength announces a frame that
/// is skipped without being stored.
class FrameReader {
public:
    /// Bytes that are enough to wait at a time, except for a longer frame.
    static constexpr qsizetype kReadAhead = 1024 * 1024;

    /// False while enough bytes are waiting that reading more can be put off.
    bool wantsBytes() const;
    /// Appends what read(char* out, qsizetype size) writes. It returns the number of bytes written.
    template <typename Read>
    void append(qsizetype size, Read read) {
        removeConsumed();
        const qsizetype end = buffer_.size();
        buffer_.resize(end + size);
        buffer_.truncate(end + read(buffer_.data() + end, size));
    }

    /// The next frame. The caller owns its event, which is null when it could not be decoded.
    /// Nothing when reading stops until more bytes arrive: within a frame, within a length (logged
    /// at every call) and behind a length of 0 or less.
    std::optional<eventData> next();
    /// Bytes appended that no frame has consumed yet.
    qsizetype bytesWaiting() const { return buffer_.size() - consumed_; }
    /// Drops all bytes and expects a length.
    void clear() { *this = {}; }

private:
    void removeConsumed();
    void skip();
    qint32 onReadHeader();
    eventData onReadData();

    QByteArray buffer_;
    qsizetype consumed_ = 0;    // bytes at the buffer's front that were read
    qsizetype bytesToSkip_ = 0; // the rest of a frame that is too long
    qint32 expectedLength_ = 0; // of the frame being received, 0 while a length is expected
};

} // namespace NetworkCompanion
