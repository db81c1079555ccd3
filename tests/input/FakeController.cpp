#include "tests/input/FakeController.h"

#include <utility>

namespace MeshpadTest {

namespace {

class FakeDevice : public ControllerDevice {
public:
    explicit FakeDevice(std::shared_ptr<FakePad> pad) : pad_(std::move(pad)) { pad_->open = true; }
    ~FakeDevice() override { pad_->open = false; }

    ControllerResult setDataFormat() override {
        pad_->formatSet = !pad_->acquired;
        return pad_->formatSet ? ControllerResult::Ok : ControllerResult::Failed;
    }

    ControllerResult range(std::uint32_t axisOffset, AnalogRange& range) override {
        const auto axis = pad_->axes.find(axisOffset);
        if (axis == pad_->axes.end())
            return ControllerResult::NoSuchInput;
        range = axis->second;
        return pad_->rangeResult;
    }

    ControllerResult setBufferSize(std::uint32_t records) override {
        pad_->bufferSize = records;
        return pad_->acquired ? ControllerResult::Failed : ControllerResult::Ok;
    }

    ControllerResult setDeadZone(std::uint32_t axisOffset, std::uint32_t size) override {
        if (!pad_->axes.contains(axisOffset))
            return ControllerResult::NoSuchInput;
        pad_->deadZones[axisOffset] = size;
        return pad_->acquired ? ControllerResult::Failed : ControllerResult::Ok;
    }

    ControllerResult acquire() override {
        pad_->acquired = pad_->formatSet && pad_->acquireResult == ControllerResult::Ok;
        return pad_->acquired ? ControllerResult::Ok : ControllerResult::Failed;
    }

    ControllerResult unacquire() override {
        pad_->acquired = false;
        return pad_->unacquireResult;
    }

    ControllerResult poll() override {
        pad_->polled();
        if (pad_->pollResult == ControllerResult::InputLost)
            return tellOnce(pad_->pollResult);
        return pad_->acquired ? pad_->pollResult : ControllerResult::NotAcquired;
    }

    ControllerResult state(ControllerState& state) override {
        state = pad_->state;
        return pad_->acquired ? tellOnce(pad_->stateResult) : ControllerResult::NotAcquired;
    }

    ControllerResult bufferedData(std::span<ControllerRecord> records,
                                  std::size_t& count) override {
        const ControllerResult result = tellOnce(pad_->dataResult);
        count = 0;
        if (result != ControllerResult::Ok && result != ControllerResult::BufferOverflow)
            return result;
        for (; count < records.size() && !pad_->records.empty(); ++count) {
            records[count] = pad_->records.front();
            pad_->records.pop_front();
        }
        return result;
    }

private:
    ControllerResult tellOnce(ControllerResult& result) {
        if (result == ControllerResult::InputLost)
            pad_->acquired = pad_->formatSet = false;
        return std::exchange(result, ControllerResult::Ok);
    }

    std::shared_ptr<FakePad> pad_;
};

class FakeSystem : public ControllerSystem {
public:
    explicit FakeSystem(FakePads& pads) : pads_(pads) {}

    OpenResult open() override { return pads_.openResult; }

    std::optional<std::vector<AttachedController>> attachedControllers() override {
        if (!pads_.canBeEnumerated)
            return std::nullopt;
        std::vector<AttachedController> controllers;
        for (const std::shared_ptr<FakePad>& pad : pads_.pads) {
            controllers.push_back({pad->name,
                                   [pad]() -> std::unique_ptr<ControllerDevice> {
                                       ++pad->created;
                                       if (!pad->canBeCreated)
                                           return nullptr;
                                       return std::make_unique<FakeDevice>(pad);
                                   }});
        }
        return controllers;
    }

    bool announcesChange(const QByteArray& eventType, void* /*message*/) override {
        return eventType == kFakeChangeMessage;
    }

    std::chrono::milliseconds checkPeriod() const override { return pads_.checkPeriod; }
    bool attachedChanged() override { return std::exchange(pads_.changed, false); }

private:
    FakePads& pads_;
};

} // namespace

std::shared_ptr<FakePad> FakePads::plugIn(const QString& name) {
    pads.push_back(std::make_shared<FakePad>());
    pads.back()->name = name;
    return pads.back();
}

std::unique_ptr<ControllerSystem> makeFakeSystem(FakePads& pads) {
    return std::make_unique<FakeSystem>(pads);
}

} // namespace MeshpadTest
