#include "tests/chaos/ProducerMachine.h"

#include "tools/demo_producer/DemoEdits.h"
#include "tools/demo_producer/ShowCatalog.h"

#include <QTimer>
#include <QUdpSocket>

using namespace std::chrono_literals;

namespace {

constexpr quint16 kProducerPort = 62330;
constexpr quint16 kCompanionPort = 62331;
constexpr std::chrono::milliseconds kAnswerPeriod = 5ms;

} // namespace

struct ProducerMachine::Parts {
    Parts(const QHostAddress& here, const QHostAddress& companion, quint32 seed)
        : address(here), session({ShowCatalog::harbour(), ShowCatalog::winterGarden()}, nullptr),
          commands(session, nullptr), edits(session, commands, 0, seed, nullptr),
          isListening(session.listen(QHostAddress::LocalHost, 0)),
          network(session.port(), seed, nullptr) {
        isListening = isListening && mouth.bind(here, 0) && network.listen(here, kProducerPort);
        QObject::connect(&answers, &QTimer::timeout, &mouth, [=, this] {
            mouth.writeDatagram("PingReceived", companion, kCompanionPort);
        });
        answers.start(kAnswerPeriod);
    }

    QHostAddress address;
    ProducerSession session;
    Commands commands;
    DemoEdits edits;
    bool isListening;
    ChaosProxy network;
    QUdpSocket mouth;
    QTimer answers;
};

ProducerMachine::ProducerMachine(const QHostAddress& address, const QHostAddress& companion,
                                 quint32 seed)
    : parts_(std::make_unique<Parts>(address, companion, seed)) {}

ProducerMachine::~ProducerMachine() = default;

bool ProducerMachine::isUp() const {
    return parts_->isListening;
}

const Show& ProducerMachine::show() const {
    return parts_->session.show();
}

void ProducerMachine::edit(int times) {
    for (int i = 0; i < times; ++i)
        parts_->edits.edit();
}

ChaosProxy& ProducerMachine::network() {
    return parts_->network;
}

void ProducerMachine::refuse() {
    parts_->network.refuse();
}

void ProducerMachine::accept() {
    parts_->network.listen(parts_->address, kProducerPort);
}
