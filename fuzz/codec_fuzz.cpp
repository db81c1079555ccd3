// Decodes any bytes as a frame: the result is no event or one that survives encoding and decoding.
// The sanitizer reports reads outside the bytes.

#include "fuzz/Harness.h"
#include "network/LVNtc.h"
#include "tests/support/ProtocolBytes.h"

#include <cstdlib>
#include <memory>
#include <vector>

using namespace NetworkCompanion;

namespace {

void decode(QByteArrayView input) {
    // Exactly sized, so that the sanitizer reports every read behind the end.
    const std::vector<char> bytes(input.begin(), input.end());
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
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    decode(bytes);
    // The same bytes behind a correct header.
    if (size > 0)
        decode(MeshpadTest::frame(bytes[0], bytes.sliced(1)));
    return 0;
}
