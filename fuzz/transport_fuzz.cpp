// Feeds any bytes in any chunks to a frame reader. It returns as many frames as the lengths in the
// stream announce, however the stream is cut.

#include "fuzz/Harness.h"
#include "network/FrameReader.h"
#include "network/events/ProtocolLimits.h"

#include <QtEndian>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

using namespace NetworkCompanion;

namespace {

// Reading stops after each length of zero or less. A limit keeps inputs fast that consist of such
// lengths, each of which is logged.
constexpr int kMaxStops = 4;

/// The frames and stops that a stream's lengths announce, up to the last permitted stop.
struct Contents {
    explicit Contents(QByteArrayView stream) : size(stream.size()) {
        for (qsizetype at = 0; at + 4 <= size;) {
            const auto length = qFromBigEndian<qint32>(stream.data() + at);
            at += 4;
            if (length <= 0) {
                if (++stops == kMaxStops)
                    size = at;
                continue;
            }
            if (length > size - at)
                return;
            at += length;
            if (length <= Limits::kMaxFrameLength)
                ++frames;
        }
    }
    qsizetype size;
    int frames = 0;
    int stops = 0;
};

struct Receiver {
    void append(QByteArrayView bytes) {
        reader.append(bytes.size(), [&](char* out, qsizetype size) {
            std::copy_n(bytes.data(), size, out);
            return size;
        });
        read();
    }
    /// Returns whether there was a frame.
    bool read() {
        const int before = frames;
        while (const auto frame = reader.next()) {
            const std::unique_ptr<Event> event(frame->second);
            ++frames;
        }
        return frames > before;
    }
    /// Resumes reading after each stop, and once more to detect surplus frames.
    void check(const Contents& expected) {
        for (int stop = 0; stop < expected.stops; ++stop)
            read();
        if (read() || frames != expected.frames)
            std::abort();
    }

    FrameReader reader;
    int frames = 0;
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    dropMessages();
    return 0;
}

/// The first byte is the number of cuts, then one byte positions each cut; the rest is the stream.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::size_t cuts = size > 0 ? data[0] % 16 : 0;
    if (size < 1 + cuts)
        return 0;
    QByteArrayView stream(data + 1 + cuts, qsizetype(size - 1 - cuts));
    const Contents expected(stream);
    stream.truncate(expected.size);

    Receiver whole, pieces;
    whole.append(stream);
    whole.check(expected);
    for (std::size_t cut = 0; cut < cuts; ++cut) {
        const qsizetype next = std::min<qsizetype>(data[1 + cut], stream.size());
        pieces.append(stream.first(next));
        stream = stream.sliced(next);
    }
    pieces.append(stream);
    pieces.check(expected);
    return 0;
}
