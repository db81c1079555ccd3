// Feeds any bytes in any chunks to a transport. It emits as many frames as the lengths in the
// stream announce, and reads all bytes.

#include "fuzz/Harness.h"
#include "network/TcpTransportSocket.h"
#include "network/events/ProtocolLimits.h"

#include <QCoreApplication>
#include <QTcpSocket>
#include <QtEndian>

#include <algorithm>
#include <cstdlib>

using namespace NetworkCompanion;

namespace {

/// A connected socket whose bytes come from here.
class ScriptedSocket : public QTcpSocket {
public:
    ScriptedSocket() { setOpenMode(QIODevice::ReadWrite | QIODevice::Unbuffered); }
    void connectToHost(const QString&, quint16, OpenMode, NetworkLayerProtocol) override {
        left_ = 0;
        setSocketState(ConnectedState);
    }
    void disconnectFromHost() override { setSocketState(UnconnectedState); }
    /// The caller keeps data alive until all of it was read.
    void arrive(const char* data, std::size_t size) {
        next_ = data;
        left_ = qint64(size);
    }
    qint64 bytesAvailable() const override { return left_; }

protected:
    qint64 readData(char* data, qint64 maximum) override {
        std::copy_n(next_, std::min(maximum, left_), data);
        return skipData(maximum);
    }
    qint64 skipData(qint64 maximum) override {
        const qint64 size = std::min(maximum, left_);
        next_ += size;
        left_ -= size;
        return size;
    }
    qint64 writeData(const char*, qint64 size) override { return size; }

private:
    const char* next_ = nullptr;
    qint64 left_ = 0;
};

// Reading stops after each length of zero or less until more bytes arrive. A limit keeps inputs
// fast that consist of such lengths.
constexpr int kMaxStops = 4;

/// The frames and stops that a stream's lengths announce, up to the last permitted stop.
struct Contents {
    Contents(const char* stream, std::size_t available) : size(available) {
        for (std::size_t at = 0; at + 4 <= size;) {
            const auto length = qFromBigEndian<qint32>(stream + at);
            at += 4;
            if (length <= 0) {
                if (++stops == kMaxStops)
                    size = at;
                continue;
            }
            if (std::size_t(length) > size - at)
                return;
            at += std::size_t(length);
            if (length <= Limits::kMaxFrameLength)
                ++frames;
        }
    }
    std::size_t size;
    int frames = 0;
    int stops = 0;
};

struct Receiver {
    Receiver() {
        QObject::connect(&transport, &TCPTransportSocket::receivedEvent, &transport,
                         [this](eventData data) {
                             ++frames;
                             delete data.second;
                         });
        transport.startReading();
    }
    void connect() {
        transport.disconnect();
        transport.tryToConnect({});
        frames = 0;
    }
    void arrive(const char* data, std::size_t size) {
        socket->arrive(data, size);
        transport.onReadyRead();
        if (socket->bytesAvailable() != 0)
            std::abort();
    }
    /// Resumes reading after each stop, and once more to detect surplus frames.
    void drain(const Contents& expected) {
        for (int calls = 0; calls <= expected.stops || frames < expected.frames; ++calls) {
            const int before = frames;
            transport.onReadyRead();
            if (calls > expected.stops && frames == before)
                std::abort();
        }
        if (frames != expected.frames)
            std::abort();
    }

    ScriptedSocket* socket = new ScriptedSocket; // the transport's child
    TCPTransportSocket transport{1, socket, nullptr};
    int frames = 0;
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    dropMessages();
    static QCoreApplication application(*argc, *argv);
    return 0;
}

/// The first byte is the number of cuts, then one byte positions each cut; the rest is the stream.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::size_t cuts = size > 0 ? data[0] % 16 : 0;
    if (size < 1 + cuts)
        return 0;
    const char* stream = reinterpret_cast<const char*>(data) + 1 + cuts;
    const Contents expected(stream, size - 1 - cuts);
    const std::size_t length = expected.size;

    static Receiver whole, pieces;
    whole.connect();
    whole.arrive(stream, length);
    whole.drain(expected);

    pieces.connect();
    std::size_t sent = 0;
    for (std::size_t cut = 0; cut < cuts; ++cut) {
        const std::size_t next = std::min<std::size_t>(data[1 + cut], length - sent);
        pieces.arrive(stream + sent, next);
        sent += next;
    }
    pieces.arrive(stream + sent, length - sent);
    pieces.drain(expected);
    return 0;
}
