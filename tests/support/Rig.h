#pragma once

#include "app/shell/Configuration.h"
#include "tests/support/FakeProducer.h"

#include <vector>

namespace MeshpadTest {

/// The program's resources and style sheet, its settings in a temporary folder, and a fake Producer
/// for the client of the process.
class Rig {
public:
    Rig();
    ~Rig();
    Q_DISABLE_COPY_MOVE(Rig)

    /// Connects the client to the Producer on loopback. Fails the test when that is impossible.
    void connect();
    /// Waits until the Producer has received everything sent so far, with the tick in progress.
    void settle();
    /// The Producer sends the events; returns when the listeners of the program have received them.
    template <class... Events>
    void deliver(const Events&... events) {
        (producer.send(events), ...);
        waitForDelivery();
    }
    /// Whether the Producer has received exactly these events, in this order, since the last call;
    /// waits for them.
    bool gets(const std::vector<const NetworkCompanion::Event*>& expected);
    template <class... Events>
    bool gets(const Events&... events) {
        return gets(std::vector<const NetworkCompanion::Event*>{&events...});
    }
    bool getsNothing() { return gets(std::vector<const NetworkCompanion::Event*>{}); }

    const Configuration configuration = makeConfiguration();
    FakeProducer producer;

private:
    void waitForDelivery();
};

} // namespace MeshpadTest
