#pragma once

#include <chrono>

/// Periods that tests shorten.
struct Timing {
    std::chrono::milliseconds firstCheckDelay{10'000}; ///< of CheckConnection, after its start
    std::chrono::milliseconds checkPeriod{1'000};      ///< of CheckConnection
    std::chrono::milliseconds tickPeriod{125};         ///< of UpdateProducer
    std::chrono::milliseconds echoWait{1'000};         ///< of PendingPoints
    std::chrono::milliseconds inputDelay{150};         ///< of InputGate
};
