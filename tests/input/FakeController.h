#pragma once

#include "input/controller_system.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>

namespace MeshpadTest {

/// A controller that a test holds in its hand: it sets what the device answers and sees what was
/// asked of it. As with a real one, properties can only be set while it is not acquired, and once
/// the input is lost it has to be acquired again.
struct FakePad {
    QString name = "Pad";
    std::map<std::uint32_t, AnalogRange> axes{
        {ControllerOffset::kX, {}},  {ControllerOffset::kY, {}},  {ControllerOffset::kZ, {}},
        {ControllerOffset::kRx, {}}, {ControllerOffset::kRy, {}}, {ControllerOffset::kRz, {}}};
    ControllerState state{{32768, 32768, 32768, 32768, 32768, 32768}, 0xFFFFFFFF, {}};
    std::deque<ControllerRecord> records;

    bool canBeCreated = true;
    ControllerResult rangeResult = ControllerResult::Ok;
    ControllerResult acquireResult = ControllerResult::Ok;
    ControllerResult unacquireResult = ControllerResult::Ok;
    ControllerResult pollResult = ControllerResult::Ok;  ///< InputLost is told once
    ControllerResult dataResult = ControllerResult::Ok;  ///< told once
    ControllerResult stateResult = ControllerResult::Ok; ///< told once

    int created = 0;
    bool open = false;
    bool formatSet = false;
    bool acquired = false;
    std::function<void()> polled = [] {};
    std::uint32_t bufferSize = 0;
    std::map<std::uint32_t, std::uint32_t> deadZones;
};

/// All controllers of a test.
struct FakePads {
    std::vector<std::shared_ptr<FakePad>> pads;
    ControllerSystem::OpenResult openResult = ControllerSystem::OpenResult::Ok;
    bool canBeEnumerated = true;
    std::chrono::milliseconds checkPeriod{0};
    bool changed = false;

    std::shared_ptr<FakePad> plugIn(const QString& name = "Pad");
};

/// A source of controllers that offers those pads. They must outlive it.
std::unique_ptr<ControllerSystem> makeFakeSystem(FakePads& pads);

/// The native message by which the fake source tells that something was plugged in or out.
inline constexpr char kFakeChangeMessage[] = "fake_change";

} // namespace MeshpadTest
