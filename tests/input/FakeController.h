#pragma once

#include "input/controller_system.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

namespace MeshpadTest {

/// A controller whose answers a test sets. As with a real one, a loss ends the acquisition.
struct FakePad {
    QString name;
    AnalogRange range; ///< of every axis
    ControllerState state{{32768, 32768, 32768, 32768, 32768, 32768}, 0xFFFFFFFF, {}};
    std::vector<ControllerRecord> records;
    std::map<std::string, ControllerResult> results; ///< of the next call with that name, else Ok
    std::map<std::string, int> calls;
    bool open = false;
    bool acquired = false;

    ControllerResult answer(const char* call, bool isRead = false) {
        ++calls[call];
        const auto found = results.extract(call);
        const auto result = found ? found.mapped() : ControllerResult::Ok;
        acquired = result != ControllerResult::InputLost && acquired;
        return found || acquired || !isRead ? result : ControllerResult::NotAcquired;
    }
};

struct FakeDevice : ControllerDevice {
    using Result = ControllerResult;
    explicit FakeDevice(std::shared_ptr<FakePad> pad) : pad_(std::move(pad)) { pad_->open = true; }
    ~FakeDevice() override { pad_->open = false; }

    Result setDataFormat() override { return {}; }
    Result setBufferSize(std::uint32_t /*records*/) override { return {}; }
    Result setDeadZone(std::uint32_t /*axis*/, std::uint32_t /*size*/) override { return {}; }
    Result range(std::uint32_t /*axis*/, AnalogRange& range) override {
        range = pad_->range;
        return {};
    }
    Result acquire() override {
        const Result result = pad_->answer("acquire");
        pad_->acquired = result == Result::Ok;
        return result;
    }
    Result unacquire() override { return pad_->answer("unacquire"); }
    Result poll() override { return pad_->answer("poll", true); }
    Result state(ControllerState& state) override {
        state = pad_->state;
        return pad_->answer("state", true);
    }
    Result bufferedData(std::span<ControllerRecord> records, std::size_t& count) override {
        const Result result = pad_->answer("data", true);
        const auto read = std::exchange(pad_->records, {});
        count = result == Result::Ok ? read.size() : 0;
        std::copy_n(read.begin(), count, records.begin());
        return result;
    }

    std::shared_ptr<FakePad> pad_;
};

/// A source of controllers that a test plugs in.
struct FakeSystem : ControllerSystem {
    std::vector<std::shared_ptr<FakePad>> pads;
    OpenResult openResult = OpenResult::Ok;
    bool canBeEnumerated = true;

    std::shared_ptr<FakePad> plugIn(const QString& name = "Pad") {
        pads.push_back(std::make_shared<FakePad>());
        pads.back()->name = name;
        return pads.back();
    }

    OpenResult open() override { return openResult; }
    std::optional<std::vector<AttachedController>> attachedControllers() override {
        std::vector<AttachedController> controllers;
        controllers.reserve(pads.size());
        for (const auto& pad : pads)
            controllers.push_back({pad->name, [pad] {
                                       return pad->answer("create") == ControllerResult::Ok
                                                  ? std::make_unique<FakeDevice>(pad)
                                                  : nullptr;
                                   }});
        return canBeEnumerated ? std::optional(controllers) : std::nullopt;
    }
    bool announcesChange(const QByteArray& type, void* /*message*/) override {
        return type == "change";
    }
    std::chrono::milliseconds checkPeriod() const override { return {}; }
    bool attachedChanged() override { return false; }
};

} // namespace MeshpadTest
