// Decodes any bytes as a frame: the result is no event or one that survives encoding and decoding.
// The sanitizer reports reads outside the bytes.

#include "fuzz/Harness.h"
#include "network/LVNtc.h"

#include <QByteArray>
#include <QtEndian>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

using namespace NetworkCompanion;

namespace {

void decode(const std::vector<char>& bytes) {
    const eventData decoded = LVNtc::read({bytes.data(), qsizetype(bytes.size())});
    const std::unique_ptr<Event> event(decoded.second);
    if (!event)
        return;
    const LV_NTC_Header header{static_cast<std::uint32_t>(event->getSize()), event->type()};
    QByteArray frame = LVNtc::serialize(header, *event);
    const std::unique_ptr<Event> again(LVNtc::deserialize(frame).second);
    if (!again || !(*again == *event))
        std::abort();
    QString line;
    QDebug(&line) << *event;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    dropMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Exactly sized vectors, so that the sanitizer reports every read behind the end.
    const std::vector<char> bytes(data, data + size);
    decode(bytes);
    // The same bytes behind a correct header.
    if (size == 0)
        return 0;
    std::vector<char> frame(9 + size - 1);
    qToBigEndian(qint32(9), frame.data());
    qToBigEndian(qint32(size - 1), frame.data() + 4);
    frame[8] = bytes[0];
    std::memcpy(frame.data() + 9, bytes.data() + 1, size - 1);
    decode(frame);
    return 0;
}
