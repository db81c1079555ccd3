#pragma once

#include "network/events/Event.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/MessageGuard.h"

#include <optional>
#include <vector>

/// What the tests of this folder share: a Producer that the process's client is connected to, and
/// a watched log.
class WarpTest {
public:
    /// Call it from init(); false when the connection failed.
    bool connectProducer();
    /// Call it from cleanup(), with nothing of the program left.
    void disconnectProducer();

    MeshpadTest::FakeProducer& producer() { return *producer_; }
    MeshpadTest::MessageGuard& messages() { return *messages_; }

    /// Whether the Producer has got exactly these, in this order, since it was last asked; waits
    /// for them. A marker behind them shows that nothing else was on its way.
    bool gets(std::vector<const NetworkCompanion::Event*> events);
    template <class... Events>
    bool gets(const Events&... events) {
        return gets(std::vector<const NetworkCompanion::Event*>{&events...});
    }
    bool getsNothing() { return gets(std::vector<const NetworkCompanion::Event*>{}); }

private:
    std::optional<MeshpadTest::FakeProducer> producer_;
    std::optional<MeshpadTest::MessageGuard> messages_;
};
