#pragma once

#include "tests/chaos/ChaosProxy.h"
#include "tools/demo_producer/Show.h"

#include <memory>

/// A machine with a real Producer behind a bad network, to be made and used on the machine's own
/// thread. It lets companions know of itself all the time, so that nobody waits for a ping.
class ProducerMachine {
public:
    ProducerMachine(const QHostAddress& address, const QHostAddress& companion, quint32 seed);
    ~ProducerMachine();

    /// Whether all of its ports were free.
    bool isUp() const;
    const Show& show() const;
    /// Lets the show change by itself, that many times.
    void edit(int times);

    ChaosProxy& network();
    /// Nobody gets through, until the second one.
    void refuse();
    void accept();

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};
