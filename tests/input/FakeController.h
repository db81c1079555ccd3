#pragma once

#include "input/controller_system.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

namespace MeshpadTest {

/// A controller whose answers a test sets. As with a real one, properties can only be set before
/// the acquisition, and a loss ends the acquisition.
struct FakePad {
    QString name;
    AnalogRange range; ///< of every axis
    ControllerState state{{32768, 32768, 32768, 32768, 32768, 32768}, 0xFFFFFFFF, {}};
    std::vector<ControllerRecord> records;
    std::map<std::string, ControllerResult> results; ///< of the next call with that name, else Ok
    bool canBeCreated = true;
    int created = 0;
    int polls = 0; ///< and acquisitions
    bool open = false;
    bool formatSet = false;
    bool acquired = false;

    ControllerResult take(const char* call, bool isAllowed) {
        const auto found = results.extract(call);
        const auto result = found ? found.mapped() : ControllerResult::Ok;
        if (result == ControllerResult::InputLost)
            acquired = formatSet = false;
        return isAllowed ? result : ControllerResult::NotAcquired;
    }
};

class FakeDevice : public ControllerDevice {
    using Result = ControllerResult;

public:
    explicit FakeDevice(std::shared_ptr<FakePad> pad) : pad_(std::move(pad)) { pad_->open = true; }
    ~FakeDevice() override { pad_->open = false; }

    Result setDataFormat() override {
        pad_->formatSet = !pad_->acquired;
        return configure();
    }
    Result range(std::uint32_t /*axis*/, AnalogRange& range) override {
        range = pad_->range;
        return pad_->take("range", true);
    }
    Result setBufferSize(std::uint32_t /*records*/) override { return configure(); }
    Result setDeadZone(std::uint32_t /*axis*/, std::uint32_t /*size*/) override {
        return configure();
    }
    Result acquire() override {
        ++pad_->polls;
        const Result result = pad_->take("acquire", pad_->formatSet);
        pad_->acquired = result == Result::Ok;
        return result;
    }
    Result unacquire() override { return pad_->take("unacquire", true); }
    Result poll() override {
        ++pad_->polls;
        return pad_->take("poll", pad_->acquired);
    }
    Result state(ControllerState& state) override {
        state = pad_->state;
        return pad_->take("state", pad_->acquired);
    }
    Result bufferedData(std::span<ControllerRecord> records, std::size_t& count) override {
        const Result result = pad_->take("data", pad_->acquired);
        const auto read = std::exchange(pad_->records, {});
        count = result == Result::Ok ? read.size() : 0;
        std::copy_n(read.begin(), count, records.begin());
        return result;
    }

private:
    Result configure() const { return pad_->acquired ? Result::Failed : Result::Ok; }

    std::shared_ptr<FakePad> pad_;
};

/// A source of controllers that a test plugs in.
struct FakeSystem : ControllerSystem {
    static constexpr char kChangeMessage[] = "fake_change";

    std::vector<std::shared_ptr<FakePad>> pads;
    OpenResult openResult = OpenResult::Ok;
    bool canBeEnumerated = true;
    bool changed = false;

    std::shared_ptr<FakePad> plugIn(const QString& name = "Pad") {
        pads.push_back(std::make_shared<FakePad>());
        pads.back()->name = name;
        return pads.back();
    }

    OpenResult open() override { return openResult; }
    std::optional<std::vector<AttachedController>> attachedControllers() override {
        std::vector<AttachedController> controllers;
        for (const auto& pad : pads)
            controllers.push_back({pad->name, [pad] {
                                       ++pad->created;
                                       return pad->canBeCreated ? std::make_unique<FakeDevice>(pad)
                                                                : nullptr;
                                   }});
        return canBeEnumerated ? std::optional(controllers) : std::nullopt;
    }
    bool announcesChange(const QByteArray& eventType, void* /*message*/) override {
        return eventType == kChangeMessage;
    }
    std::chrono::milliseconds checkPeriod() const override { return {}; }
    bool attachedChanged() override { return std::exchange(changed, false); }
};

} // namespace MeshpadTest
