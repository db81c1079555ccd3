// The byte stream of a connection: any bytes in any chunks. The number of frames must not depend
// on the chunks, and nothing may crash, hang or be stored beyond what was received.

#include "network/TcpTransportSocket.h"

#include <QCoreApplication>
#include <QTcpSocket>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

using namespace NetworkCompanion;

namespace {

void silent(QtMsgType, const QMessageLogContext&, const QString&) {}

/// A connected socket whose bytes come from here.
class ScriptedSocket : public QTcpSocket {
public:
    ScriptedSocket() { setOpenMode(QIODevice::ReadWrite | QIODevice::Unbuffered); }
    void connectToHost(const QString&, quint16, OpenMode, NetworkLayerProtocol) override {
        bytes_.clear();
        setSocketState(ConnectedState);
    }
    void disconnectFromHost() override { setSocketState(UnconnectedState); }
    void arrive(const char* data, std::size_t size) {
        bytes_.insert(bytes_.end(), data, data + size);
    }
    qint64 bytesAvailable() const override { return qint64(bytes_.size()); }

protected:
    qint64 readData(char* data, qint64 maximum) override {
        const auto size = std::min(static_cast<std::size_t>(maximum), bytes_.size());
        std::copy_n(bytes_.begin(), size, data);
        bytes_.erase(bytes_.begin(), bytes_.begin() + std::ptrdiff_t(size));
        return qint64(size);
    }
    qint64 skipData(qint64 maximum) override {
        const auto size = std::min(static_cast<std::size_t>(maximum), bytes_.size());
        bytes_.erase(bytes_.begin(), bytes_.begin() + std::ptrdiff_t(size));
        return qint64(size);
    }
    qint64 writeData(const char*, qint64 size) override { return size; }

private:
    std::vector<char> bytes_;
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
    }
    /// Reading stops at a length of zero until the next bytes; none come, so it is called again.
    void drain(std::size_t size) {
        for (std::size_t i = 0; i <= size / 4; ++i)
            transport.onReadyRead();
        if (socket->bytesAvailable() != 0)
            std::abort();
    }

    ScriptedSocket* socket = new ScriptedSocket; // the transport's child
    TCPTransportSocket transport{1, socket, nullptr};
    int frames = 0;
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    qInstallMessageHandler(silent);
    static QCoreApplication application(*argc, *argv);
    return 0;
}

/// The first byte is the number of cuts, each of which a byte places; the rest is the stream.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::size_t cuts = size > 0 ? data[0] % 16 : 0;
    if (size < 1 + cuts)
        return 0;
    const char* stream = reinterpret_cast<const char*>(data) + 1 + cuts;
    const std::size_t length = size - 1 - cuts;

    static Receiver whole, pieces;
    whole.connect();
    pieces.connect();
    whole.arrive(stream, length);
    whole.drain(length);

    std::size_t sent = 0;
    for (std::size_t cut = 0; cut < cuts; ++cut) {
        const std::size_t next = std::min<std::size_t>(data[1 + cut], length - sent);
        pieces.arrive(stream + sent, next);
        sent += next;
    }
    pieces.arrive(stream + sent, length - sent);
    pieces.drain(length);
    if (whole.frames != pieces.frames)
        std::abort();
    return 0;
}
