// Throughput and latency of the transport on loopback, compared with a bare QTcpSocket and messages
// of the same size. Each end has its own thread.

#include "network/TcpTransportSocket.h"
#include "network/events/MediaMovePointEvent.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

using namespace NetworkCompanion;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kMessages = 200'000;
constexpr int kRoundTrips = 5'000;
constexpr int kRuns = 5;
constexpr qint64 kUnsent = 256 * 1024;

/// One end of a connection: sends messages and counts those that arrive.
class End {
public:
    virtual ~End() = default;
    virtual void send() = 0;
    virtual qint64 unsent() const = 0;
    std::function<void()> received = [] {};
};

class TransportEnd final : public End {
public:
    explicit TransportEnd(QTcpSocket* socket) : transport_(1, socket, nullptr) {
        QObject::connect(&transport_, &TCPTransportSocket::receivedEvent, &transport_,
                         [this](eventData data) {
                             delete data.second;
                             received();
                         });
        transport_.startReading();
    }
    void send() override { transport_.write(event_); }
    qint64 unsent() const override { return transport_.unsentBytes(); }

private:
    TCPTransportSocket transport_;
    MediaMovePointEvent event_{1, 2, 3, "Sea", 4, 1.5, 2.5, 0.0, true, true};
};

class BareEnd final : public End {
public:
    explicit BareEnd(QTcpSocket* socket) : socket_(socket) {
        socket_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this] {
            for (pending_ += socket_->readAll().size(); pending_ >= message_.size();
                 pending_ -= message_.size())
                received();
        });
    }
    void send() override { socket_->write(message_); }
    qint64 unsent() const override { return socket_->bytesToWrite(); }

private:
    std::unique_ptr<QTcpSocket> socket_;
    QByteArray message_ = QByteArray(4 + 9 + MediaMovePointEvent::wireSize(), 'x');
    qint64 pending_ = 0;
};

using EndFactory = std::function<std::unique_ptr<End>(QTcpSocket*)>;

/// Connects two ends; runs far on its own thread and near on this one until near returns.
void withBothEnds(const EndFactory& create, const std::function<void(End&)>& far,
                  const std::function<void(End&)>& near) {
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    const quint16 port = server.serverPort();
    std::unique_ptr<QThread> thread(QThread::create([&] {
        auto* socket = new QTcpSocket;
        socket->connectToHost(QHostAddress::LocalHost, port);
        socket->waitForConnected();
        const auto end = create(socket);
        far(*end);
        QEventLoop().exec();
    }));
    thread->start();
    server.waitForNewConnection(5000);
    QTcpSocket* socket = server.nextPendingConnection();
    socket->setParent(nullptr);
    {
        const auto end = create(socket);
        near(*end);
    }
    thread->exit();
    thread->wait();
}

double messagesPerSecond(const EndFactory& create) {
    int arrived = 0;
    Clock::time_point start, finish;
    withBothEnds(
        create,
        [&](End& far) {
            start = Clock::now();
            for (int i = 0; i < kMessages; ++i) {
                far.send();
                while (far.unsent() > kUnsent)
                    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            }
        },
        [&](End& near) {
            QEventLoop loop;
            near.received = [&] {
                if (++arrived == kMessages) {
                    finish = Clock::now();
                    loop.quit();
                }
            };
            loop.exec();
        });
    return kMessages / std::chrono::duration<double>(finish - start).count();
}

double medianRoundTrip(const EndFactory& create) {
    std::vector<double> times;
    withBothEnds(
        create, [](End& far) { far.received = [&far] { far.send(); }; },
        [&](End& near) {
            QEventLoop loop;
            Clock::time_point sent;
            near.received = [&] {
                times.push_back(
                    std::chrono::duration<double, std::micro>(Clock::now() - sent).count());
                if (times.size() == kRoundTrips)
                    return loop.quit();
                sent = Clock::now();
                near.send();
            };
            sent = Clock::now();
            near.send();
            loop.exec();
        });
    std::ranges::nth_element(times, times.begin() + kRoundTrips / 2);
    return times[kRoundTrips / 2];
}

template <typename Kind>
EndFactory make() {
    return [](QTcpSocket* socket) { return std::make_unique<Kind>(socket); };
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    double ours = 0, bare = 0, oursTrip = 1e9, bareTrip = 1e9;
    for (int run = 0; run < kRuns; ++run) {
        bare = std::max(bare, messagesPerSecond(make<BareEnd>()));
        ours = std::max(ours, messagesPerSecond(make<TransportEnd>()));
        bareTrip = std::min(bareTrip, medianRoundTrip(make<BareEnd>()));
        oursTrip = std::min(oursTrip, medianRoundTrip(make<TransportEnd>()));
    }
    std::printf("messages of %d bytes, the best of %d runs\n",
                4 + 9 + MediaMovePointEvent::wireSize(), kRuns);
    std::printf("%-34s  ours %.0f /s  bare socket %.0f /s  (x %.2f)\n", "throughput", ours, bare,
                ours / bare);
    std::printf("%-34s  ours %.1f us  bare socket %.1f us  (+ %.1f us)\n", "median round trip",
                oursTrip, bareTrip, oursTrip - bareTrip);
    return 0;
}
