#include "network/FrameReader.h"

#include "network/LVNtc.h"
#include "network/events/ItemDataEvent.h"
#include "network/events/ProtocolLimits.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <utility>

namespace NetworkCompanion {

namespace {

constexpr int kLengthSize = 4;

// A frame with too small a length is decoded from the bytes behind it, at most this many. The limit
// keeps the cost of a chain of small frames linear.
constexpr qsizetype kMaxDecodedBytes = LVNtc::kHeaderSize + ItemDataEvent::wireSize();

} // namespace

bool FrameReader::wantsBytes() const {
    return bytesWaiting() < (expectedLength_ == 0 ? kReadAhead : expectedLength_);
}

/// Moves the undecoded bytes to the buffer's front. Frees the memory of a giant frame.
void FrameReader::removeConsumed() {
    if (consumed_ == 0)
        return;
    const qsizetype left = bytesWaiting();
    std::memmove(buffer_.data(), buffer_.constData() + consumed_, static_cast<std::size_t>(left));
    buffer_.truncate(left);
    consumed_ = 0;
    if (left == 0 && buffer_.capacity() > 4 * kReadAhead)
        buffer_.clear();
}

std::optional<eventData> FrameReader::next() {
    skip();
    while (expectedLength_ == 0 && bytesWaiting() > 0) {
        const qint32 length = onReadHeader();
        if (length <= 0)
            return std::nullopt;
        if (length <= Limits::kMaxFrameLength) {
            expectedLength_ = length;
        } else {
            qCritical().nospace() << "Frame of " << length << " bytes is too large, skipped";
            bytesToSkip_ = length;
            skip();
        }
    }
    if (expectedLength_ == 0 || bytesWaiting() < expectedLength_)
        return std::nullopt;
    return onReadData();
}

void FrameReader::skip() {
    const qsizetype skipped = std::min(bytesToSkip_, bytesWaiting());
    consumed_ += skipped;
    bytesToSkip_ -= skipped;
}

/// Consumes a length. 0, and nothing is consumed, when fewer than 4 bytes are waiting.
qint32 FrameReader::onReadHeader() {
    if (bytesWaiting() < kLengthSize) {
        qCritical().nospace() << "Invalid header size. Size must be at least " << kLengthSize
                              << " bytes, we read " << bytesWaiting();
        return 0;
    }
    const auto length = qFromBigEndian<qint32>(buffer_.constData() + consumed_);
    consumed_ += kLengthSize;
    if (length < 0)
        qCritical().nospace() << "Invalid frame length " << length;
    return length;
}

/// Decodes and consumes the frame, whose bytes have all arrived.
eventData FrameReader::onReadData() {
    const qsizetype visible =
        std::min(bytesWaiting(), std::max<qsizetype>(expectedLength_, kMaxDecodedBytes));
    const eventData frame = LVNtc::read(QByteArrayView(buffer_).sliced(consumed_, visible));
    consumed_ += std::exchange(expectedLength_, 0);
    return frame;
}

} // namespace NetworkCompanion
