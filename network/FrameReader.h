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
    /// Reading pauses while this many undecoded bytes are buffered, unless a frame is longer.
    static constexpr qsizetype kReadAhead = qsizetype{1024} * 1024;

    /// False while kReadAhead bytes, or all bytes of the current frame, are buffered.
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
    /// Nothing when the buffer ends within a frame or within a length (the latter is logged), and
    /// after a length of 0 or less; the next call goes on when more bytes have arrived.
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
