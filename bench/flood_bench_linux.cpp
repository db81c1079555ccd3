#include "app/Content.h"
#include "app/GuiCompanion.h"
#include "app/IPList.h"
#include "app/InputGate.h"
#include "app/shell/ShellLook.h"
#include "bench/ThreadTime.h"
#include "input/key_event_listener.h"
#include "input/key_event_manager.h"
#include "network/LVNtc.h"
#include "network/events/AddMediaEvent.h"
#include "network/events/AddScreenEvent.h"
#include "network/events/BlindEvent.h"
#include "network/events/DeformationModeEvent.h"
#include "network/events/MediaBlindEvent.h"
#include "network/events/ProtocolLimits.h"
#include "network/events/ScreenMovePointEvent.h"
#include "resources/CompanionResources.h"
#include "warp/MediaItem.h"
#include "warp/MediaList.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QUdpSocket>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <functional>
#include <mutex>
#include <thread>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

/// Floods the window with events or with discovery answers and presses a key all the time. Exits
/// with 1 if the slowest key takes more than kMaxKeyTime of processor time, if memory grows by more
/// than kMaxGrowth or if a flood does not arrive as a whole. Needs the interface of
/// scripts/in-namespace.

using namespace NetworkCompanion;
using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

constexpr quint16 kProducerPort = 62330;
constexpr quint16 kCompanionPort = 62331;
constexpr int kEvents = 100'000;
constexpr int kEventsPerBlock = 500;
constexpr unsigned int kScreens = 20;
constexpr unsigned int kMedias = 40;
constexpr auto kKeyPeriod = 20ms;
constexpr auto kTimeout = 280s;
constexpr auto kMaxKeyTime = 100ms;
constexpr double kMaxGrowth = 24; // MiB

QByteArray message(const Event& event) {
    return LVNtc::serializeWithLength({quint32(event.getSize()), event.type()}, event);
}

double residentMiB() {
    QFile status("/proc/self/statm");
    return status.open(QIODevice::ReadOnly)
               ? status.readAll().split(' ')[1].toDouble() * double(sysconf(_SC_PAGESIZE)) / 1048576
               : 0;
}

template <typename Condition>
bool waitUntil(Condition condition, milliseconds timeout = kTimeout) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.hasExpired(timeout.count()))
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QThread::usleep(200);
    }
    return true;
}

/// A Producer that sends as fast as the socket accepts bytes, on threads of its own, and discards
/// everything that it receives.
class FloodProducer {
public:
    FloodProducer() : server_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const int on = 1;
        setsockopt(server_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(kProducerPort);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        isListening = bind(server_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
                      listen(server_, 1) == 0;
    }
    ~FloodProducer() {
        shutdown(connection_, SHUT_RDWR);
        for (std::thread* thread : {&sender_, &receiver_})
            if (thread->joinable())
                thread->join();
        close(connection_);
        close(server_);
    }
    Q_DISABLE_COPY_MOVE(FloodProducer)

    /// Waits for the companion's connection.
    void accept() {
        connection_ = ::accept4(server_, nullptr, nullptr, SOCK_CLOEXEC);
        receiver_ = std::thread([this] {
            char ignored[4096];
            while (recv(connection_, ignored, sizeof ignored, 0) > 0) {
            }
        });
    }
    void send(const QByteArray& bytes) const {
        for (qsizetype sent = 0; sent < bytes.size();) {
            const auto now = ::send(connection_, bytes.constData() + sent,
                                    std::size_t(bytes.size() - sent), MSG_NOSIGNAL);
            if (now <= 0)
                return;
            sent += now;
        }
    }
    void start(std::function<void()> work) { sender_ = std::thread(std::move(work)); }

    bool isListening = false;

private:
    int server_;
    int connection_ = -1;
    std::thread sender_, receiver_;
};

/// Presses a key again and again and measures the processor time of the window's thread until it
/// has handled the key, including the painting.
class KeyLatencyProbe final : public QObject, public KeyEventListener {
public:
    /// The list's key selects another item and shows its mesh.
    explicit KeyLatencyProbe(QWidget* window) : window_(window) {
        KeyEventManager::getInstance()->addListener(this);
        thread_ = std::thread([this] {
            while (!stop_) {
                if (!isWaiting_.exchange(true)) {
                    const std::scoped_lock lock(mutex_);
                    work_.restart();
                    QCoreApplication::postEvent(this, new QEvent(kPress));
                }
                std::this_thread::sleep_for(kKeyPeriod);
            }
        });
    }
    ~KeyLatencyProbe() override {
        stop();
        KeyEventManager::getInstance()->removeListener(this);
    }
    Q_DISABLE_COPY_MOVE(KeyLatencyProbe)

    void notified(QKeyEvent* event) override {
        if (event->key() == kKey)
            QCoreApplication::postEvent(this, new QEvent(kHandled), Qt::LowEventPriority - 1);
    }

    /// Prints the figures of the flood; returns whether they are within the bounds.
    bool report(const char* flood, double memoryBefore) {
        stop();
        waitUntil([] { return false; }, 100ms); // for a pending key
        const double growth = residentMiB() - memoryBefore;
        if (times_.size() < 5)
            return false;
        std::ranges::sort(times_);
        const auto usual = times_[times_.size() - 1 - times_.size() / 20];
        const auto slowest = times_.back();
        std::printf("%s: %zu keys, 95 of 100 within %d ms, slowest %d ms, %.1f MiB more\n", flood,
                    times_.size(), int(usual.count()), int(slowest.count()), growth);
        return slowest <= kMaxKeyTime && growth < kMaxGrowth;
    }

protected:
    void customEvent(QEvent* event) override {
        const std::scoped_lock lock(mutex_);
        if (event->type() == kPress) {
            QKeyEvent press(QEvent::KeyPress, kKey, {});
            QCoreApplication::sendEvent(window_, &press);
        } else {
            times_.push_back(work_.elapsed());
            isWaiting_ = false;
        }
    }

private:
    static constexpr auto kKey = Qt::Key_M;
    static constexpr auto kPress = QEvent::User;
    static constexpr auto kHandled = QEvent::Type(QEvent::User + 1);

    static clockid_t clockOfThisThread() {
        clockid_t clock{};
        pthread_getcpuclockid(pthread_self(), &clock);
        return clock;
    }
    void stop() {
        stop_ = true;
        if (thread_.joinable())
            thread_.join();
    }

    QWidget* window_;
    std::atomic<bool> stop_ = false, isWaiting_ = false;
    std::mutex mutex_;
    ThreadTime work_{clockOfThisThread()}; ///< the other thread reads it, too
    std::vector<milliseconds> times_;
    std::thread thread_;
};

enum class Flood { Moves, Blinds, Rebuilds };

QByteArray eventOf(Flood flood, unsigned int i) {
    if (flood == Flood::Blinds && i % 2 == 0)
        return message(BlindEvent(i % kScreens, 0, "Screen", i / kScreens % 2 == 0));
    if (flood == Flood::Blinds)
        return message(MediaBlindEvent(LV_NTC_ElementType::Media, i % kMedias, 0, 0, "Media",
                                       i / kMedias % 2 == 0));
    if (flood == Flood::Rebuilds && i % 1000 == 0)
        return message(DeformationModeEvent(LV_NTC_DeformationType::Curve, 0, 0, "Screen",
                                            8 + i / 1000 % 2, 8, false));
    return message(ScreenMovePointEvent(i / 64 % kScreens, 0, "Screen", i % 64, i % 500, i % 300, 0,
                                        true, false));
}

QByteArray show() {
    QByteArray show;
    for (unsigned int i = 0; i < kScreens; ++i) {
        const QByteArray name = "Screen " + QByteArray::number(i);
        show += message(AddScreenEvent(i, i, 1920, 1080, 0, 0, name.constData(), false, false));
        show += message(DeformationModeEvent(LV_NTC_DeformationType::Curve, i, i, name.constData(),
                                             8, 8, false));
    }
    for (unsigned int i = 0; i < kMedias; ++i) {
        const QByteArray name = "Media " + QByteArray::number(i);
        show += message(AddMediaEvent(MediaType::Video, i, i, kScreens + i, 1920, 1080, 0, 0,
                                      name.constData(), false));
    }
    return show;
}

bool floodWithEvents(GuiCompanion& window, Flood flood, const char* name) {
    FloodProducer producer;
    window.onConnectToServer("127.0.0.1");
    producer.accept();
    producer.send(show());
    auto* list = window.findChild<MediaList*>();
    if (!producer.isListening || !waitUntil([&] {
            return list->getItemFromLayout(kScreens + kMedias - 1) != nullptr &&
                   window.findChild<InputGate*>()->isOpen();
        }))
        return false;
    list->selectFirstVisibleItem();

    std::vector<QByteArray> blocks(kEvents / kEventsPerBlock);
    for (unsigned int i = 0; i < kEvents; ++i)
        blocks[i / kEventsPerBlock] += eventOf(flood, i);
    blocks.push_back(
        message(MediaBlindEvent(LV_NTC_ElementType::Media, 0, 0, 0, "The last one", true)));
    const double memory = residentMiB();
    QElapsedTimer timer;
    timer.start();
    KeyLatencyProbe probe(&window);
    producer.start([&producer, blocks = std::move(blocks)] {
        std::ranges::for_each(blocks, [&](const QByteArray& block) { producer.send(block); });
    });
    const bool hasArrived = waitUntil([list] {
        for (int i = 0; const Item* row = list->getItemFromLayout(i); ++i)
            if (row->name() == "The last one")
                return true;
        return false;
    });
    std::printf("%s: %d events in %.2f s\n", name, kEvents, double(timer.elapsed()) / 1000);
    const bool isGood = probe.report(name, memory);
    window.onDisconnectFromServer();
    return hasArrived && isGood;
}

void answerFrom(int producer) {
    QUdpSocket socket;
    if (socket.bind(
            QHostAddress(QString("10.90.%1.%2").arg(producer / 250).arg(1 + producer % 250))))
        socket.writeDatagram("PingReceived", QHostAddress("10.77.0.1"), kCompanionPort);
}

/// 5,000 answers from 1,000 addresses, so that unlisted Producers keep claiming a place in the
/// list.
bool floodWithAnswers(GuiCompanion& window) {
    if (std::system("ip route add local 10.90.0.0/16 dev lo") != 0)
        return false;
    const double memory = residentMiB();
    KeyLatencyProbe probe(&window);
    std::atomic<bool> isDone = false;
    std::thread flood([&] {
        for (int i = 0; i < 5000; ++i) {
            if (i % 50 == 0) // not more than a socket buffers
                std::this_thread::sleep_for(10ms);
            answerFrom(i % 1000);
        }
        isDone = true;
    });
    const auto listed = [&] {
        return window.findChild<IPList*>()->findChildren<QPushButton*>().size();
    };
    qsizetype most = 0;
    waitUntil([&] {
        most = std::max(most, listed());
        return isDone.load();
    });
    flood.join();
    std::printf("discovery answers: at most %d Producers listed\n", int(most));
    const bool isGood = probe.report("discovery answers", memory);
    return isGood && most == Limits::kMaxListedProducers;
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    initCompanionResources();
    QFile styleSheet{QLatin1StringView(ShellLook::kStyleSheetPath)};
    if (!settings.isValid() || !styleSheet.open(QIODevice::ReadOnly))
        return 1;
    application.setStyleSheet(QString::fromUtf8(styleSheet.readAll()));

    const std::function<bool(GuiCompanion&)> floods[] = {
        [](auto& window) { return floodWithEvents(window, Flood::Moves, "moves"); },
        [](auto& window) { return floodWithEvents(window, Flood::Blinds, "blinds"); },
        [](auto& window) { return floodWithEvents(window, Flood::Rebuilds, "rebuilt meshes"); },
        floodWithAnswers};
    bool isGood = true;
    for (const auto& flood : floods) {
        GuiCompanion window(nullptr);
        window.show();
        waitUntil([&] { return window.isActiveWindow(); });
        isGood = flood(window) && isGood;
    }
    return isGood ? 0 : 1;
}
