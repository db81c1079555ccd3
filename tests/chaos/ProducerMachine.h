#pragma once

#include "tests/chaos/ChaosProxy.h"
#include "tools/demo_producer/DemoEdits.h"
#include "tools/demo_producer/ShowCatalog.h"

#include <QTimer>
#include <QUdpSocket>

/// A machine with a real Producer behind a bad network. Create and use it on the machine's own
/// thread. It sends discovery answers all the time, so that tests need not wait for a ping.
class ProducerMachine {
public:
    ProducerMachine(const QHostAddress& here, const QHostAddress& companion, quint32 seed)
        : address_(here),
          network(session_.listen(QHostAddress::LocalHost, 0) ? session_.port() : 0, seed, nullptr),
          edits_(session_, commands_, 0, seed, nullptr) {
        isUp = session_.port() > 0 && sender_.bind(here, 0) && accept();
        QObject::connect(&answers_, &QTimer::timeout, &sender_,
                         [=, this] { sender_.writeDatagram("PingReceived", companion, 62331); });
        answers_.start(5);
    }

    const Show& show() const { return session_.show(); }
    /// Makes that many random changes to the show.
    void edit(int times) {
        for (int i = 0; i < times; ++i)
            edits_.edit();
    }
    /// Accepts connections again after network.refuse().
    bool accept() { return network.listen(address_, 62330); }

private:
    QHostAddress address_;
    ProducerSession session_{{ShowCatalog::harbour(), ShowCatalog::winterGarden()}, nullptr};

public:
    ChaosProxy network;
    bool isUp = false; ///< whether all of its ports were free

private:
    Commands commands_{session_, nullptr};
    DemoEdits edits_;
    QUdpSocket sender_;
    QTimer answers_;
};
