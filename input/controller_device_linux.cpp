#include "input/controller_layout.h"
#include "input/controller_system.h"

#include <QDebug>

#include <SDL.h>

#include <algorithm>
#include <array>
#include <utility>

/// Controllers on Linux are SDL joysticks. Their events are converted to DirectInput's form:
/// numbered inputs, positions from 0 to 65535, hats in hundredths of a degree.

namespace {

constexpr AnalogRange kAxisRange{0, 65535};
constexpr std::uint32_t kFullDeadZone = 10000;
constexpr int kRetries = 5;
constexpr std::chrono::milliseconds kCheckPeriod{1000};
constexpr int kEventsPerCall = 64;

std::uint32_t hundredthsOfDegree(int hat) {
    switch (hat) {
    case SDL_HAT_UP:
        return 0;
    case SDL_HAT_RIGHTUP:
        return 4500;
    case SDL_HAT_RIGHT:
        return 9000;
    case SDL_HAT_RIGHTDOWN:
        return 13500;
    case SDL_HAT_DOWN:
        return 18000;
    case SDL_HAT_LEFTDOWN:
        return 22500;
    case SDL_HAT_LEFT:
        return 27000;
    case SDL_HAT_LEFTUP:
        return 31500;
    default:
        return ControllerDevice::kHatCentred;
    }
}

/// The position as DirectInput reports it: the centre inside the dead zone. The rest of the way is
/// stretched over the whole range, so that positions do not jump at the edge of the zone.
std::uint32_t positionOf(int value, std::uint32_t deadZone) {
    // Twice the distance from the centre, because the centre lies between two positions.
    constexpr int kFull = 65535;
    const int distance = 2 * value + 1;
    const int zone = static_cast<int>(std::int64_t{kFull} * deadZone / kFullDeadZone);
    const int beyond = std::abs(distance) - zone;
    if (beyond <= 0 || zone >= kFull)
        return (kFull + 1) / 2;
    const int stretched = static_cast<int>(std::int64_t{beyond} * kFull / (kFull - zone));
    return static_cast<std::uint32_t>((kFull + (distance < 0 ? -stretched : stretched)) / 2);
}

struct JoystickCloser {
    void operator()(SDL_Joystick* joystick) const { SDL_JoystickClose(joystick); }
};
using JoystickPointer = std::unique_ptr<SDL_Joystick, JoystickCloser>;

ControllerLayout::Inputs inputsOf(SDL_Joystick* joystick) {
    ControllerLayout::Inputs inputs;
    auto& [buttons, axes, hats] = inputs;
    for (int i = 0; i < SDL_JoystickNumButtons(joystick); ++i)
        buttons.push_back(SDL_JoystickGetButton(joystick, i));
    for (int i = 0; i < SDL_JoystickNumAxes(joystick); ++i)
        axes.push_back(SDL_JoystickGetAxis(joystick, i));
    for (int i = 0; i < SDL_JoystickNumHats(joystick); ++i)
        hats.push_back(SDL_JoystickGetHat(joystick, i));
    return inputs;
}

/// The layout that SDL's table knows for the device, or one by the order of its inputs.
ControllerLayout layoutOf(SDL_Joystick* joystick, bool& isKnown) {
    char* mapping = SDL_GameControllerMappingForGUID(SDL_JoystickGetGUID(joystick));
    const auto known = mapping ? ControllerLayout::ofMapping(mapping) : std::nullopt;
    SDL_free(mapping);
    isKnown = known.has_value();
    if (known)
        return *known;
    SDL_JoystickUpdate();
    return ControllerLayout::ofUnknown(inputsOf(joystick));
}

class SdlControllerDevice : public ControllerDevice {
public:
    explicit SdlControllerDevice(JoystickPointer joystick)
        : joystick_(std::move(joystick)), id_(SDL_JoystickInstanceID(joystick_.get())) {}

    ControllerResult setDataFormat() override {
        layout_ = layoutOf(joystick_.get(), isLayoutKnown_);
        outputs_.clear();
        for (const std::uint32_t offset : layout_.offsets())
            outputs_.push_back({offset, 0, 0});
        return ControllerResult::Ok;
    }

    bool isRightStickCertain() const override { return isLayoutKnown_; }

    ControllerResult range(std::uint32_t axisOffset, AnalogRange& range) override {
        if (!findOutput(axisOffset))
            return ControllerResult::NoSuchInput;
        range = kAxisRange;
        return ControllerResult::Ok;
    }

    ControllerResult setBufferSize(std::uint32_t records) override {
        bufferSize_ = records;
        return ControllerResult::Ok;
    }

    ControllerResult setDeadZone(std::uint32_t axisOffset, std::uint32_t size) override {
        Output* axis = findOutput(axisOffset);
        if (!axis)
            return ControllerResult::NoSuchInput;
        axis->deadZone = size;
        return ControllerResult::Ok;
    }

    ControllerResult acquire() override {
        if (!SDL_JoystickGetAttached(joystick_.get()))
            return ControllerResult::Failed;
        SDL_JoystickUpdate();
        inputs_ = inputsOf(joystick_.get());
        for (Output& output : outputs_)
            output.data = dataOf(output, inputs_);
        records_.clear();
        overflowed_ = false;
        acquired_ = true;
        return ControllerResult::Ok;
    }

    ControllerResult unacquire() override {
        return std::exchange(acquired_, false) ? ControllerResult::Ok : ControllerResult::NoEffect;
    }

    ControllerResult poll() override {
        if (!acquired_)
            return ControllerResult::NotAcquired;
        SDL_JoystickUpdate();
        if (!SDL_JoystickGetAttached(joystick_.get())) {
            acquired_ = false;
            return ControllerResult::InputLost;
        }
        recordPendingEvents();
        return ControllerResult::Ok;
    }

    ControllerResult state(ControllerState& state) override {
        if (!acquired_)
            return ControllerResult::NotAcquired;
        state = {};
        const ControllerLayout::Inputs inputs = inputsOf(joystick_.get());
        for (const Output& output : outputs_) {
            const std::uint32_t data = dataOf(output, inputs);
            if (output.offset / 4 < state.axes.size())
                state.axes[output.offset / 4] = static_cast<std::int32_t>(data);
            else if (output.offset == ControllerOffset::kHat)
                state.hat = data;
            else if (output.offset >= ControllerOffset::kButton0)
                state.buttons[output.offset - ControllerOffset::kButton0] = data != 0;
        }
        return ControllerResult::Ok;
    }

    ControllerResult bufferedData(std::span<ControllerRecord> records,
                                  std::size_t& count) override {
        count = std::min(records.size(), records_.size());
        const auto end = records_.begin() + static_cast<std::ptrdiff_t>(count);
        std::copy(records_.begin(), end, records.begin());
        records_.erase(records_.begin(), end);
        return std::exchange(overflowed_, false) ? ControllerResult::BufferOverflow
                                                 : ControllerResult::Ok;
    }

private:
    using InputKind = ControllerLayout::InputKind;

    /// An input of the standard state.
    struct Output {
        std::uint32_t offset = 0;
        std::uint32_t deadZone = 0;
        std::uint32_t data = 0; ///< last recorded
    };

    Output* findOutput(std::uint32_t offset) {
        const auto found =
            std::find_if(outputs_.begin(), outputs_.end(),
                         [&](const Output& output) { return output.offset == offset; });
        return found == outputs_.end() ? nullptr : &*found;
    }

    std::uint32_t dataOf(const Output& output, const ControllerLayout::Inputs& inputs) const {
        const int position = layout_.position(output.offset, inputs);
        if (output.offset < ControllerOffset::kHat)
            return positionOf(position, output.deadZone);
        if (output.offset < ControllerOffset::kButton0)
            return hundredthsOfDegree(position);
        return position != 0 ? kButtonDown : 0;
    }

    void recordPendingEvents() {
        std::array<SDL_Event, kEventsPerCall> events{};
        int count = 0;
        do {
            count = SDL_PeepEvents(events.data(), kEventsPerCall, SDL_GETEVENT, SDL_JOYAXISMOTION,
                                   SDL_JOYBUTTONUP);
            for (int i = 0; i < count; ++i)
                recordEvent(events[static_cast<std::size_t>(i)]);
        } while (count == kEventsPerCall);
    }

    void recordEvent(const SDL_Event& event) {
        switch (event.type) {
        case SDL_JOYAXISMOTION:
            if (event.jaxis.which == id_)
                recordInput(InputKind::Axis, event.jaxis.axis, event.jaxis.value);
            break;
        case SDL_JOYHATMOTION:
            if (event.jhat.which == id_)
                recordInput(InputKind::Hat, event.jhat.hat, event.jhat.value);
            break;
        case SDL_JOYBUTTONDOWN:
        case SDL_JOYBUTTONUP:
            if (event.jbutton.which == id_)
                recordInput(InputKind::Button, event.jbutton.button, event.jbutton.state);
            break;
        default:
            break;
        }
    }

    void recordInput(InputKind kind, std::size_t index, int position) {
        std::vector<int>& positions = inputs_.at(static_cast<std::size_t>(kind));
        if (index >= positions.size())
            return;
        positions[index] = position;
        for (const ControllerLayout::Binding& binding : layout_.bindings())
            if (binding.kind == kind && binding.index == static_cast<int>(index))
                recordOutput(*findOutput(binding.offset));
    }

    void recordOutput(Output& output) {
        const std::uint32_t data = dataOf(output, inputs_);
        if (std::exchange(output.data, data) == data)
            return;
        // Keeps one record per axis, because a pad that reports 1,000 times a second would fill
        // the buffer.
        const auto same =
            std::find_if(records_.begin(), records_.end(), [&](const ControllerRecord& old) {
                return old.offset == output.offset && output.offset < ControllerOffset::kHat;
            });
        if (same != records_.end())
            same->data = data;
        else if (records_.size() < bufferSize_)
            records_.push_back({output.offset, data});
        else
            overflowed_ = true;
    }

    JoystickPointer joystick_;
    SDL_JoystickID id_;
    ControllerLayout layout_;
    bool isLayoutKnown_ = false;
    std::vector<Output> outputs_;
    ControllerLayout::Inputs inputs_; ///< after the events that have been recorded
    std::size_t bufferSize_ = 0;
    std::vector<ControllerRecord> records_;
    bool overflowed_ = false;
    bool acquired_ = false;
};

class SdlControllerSystem : public ControllerSystem {
public:
    ~SdlControllerSystem() override {
        if (opened_)
            SDL_QuitSubSystem(SDL_INIT_JOYSTICK);
    }

    OpenResult open() override {
        // Qt handles windows, focus, signals and the end of the program.
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
        // SDL's own drivers number the inputs of some pads differently from the system's drivers.
        SDL_SetHint(SDL_HINT_JOYSTICK_HIDAPI, "0");
        // SDL's table then names buttons by their positions, not by the letters printed on them.
        SDL_SetHint(SDL_HINT_GAMECONTROLLER_USE_BUTTON_LABELS, "0");
        opened_ = SDL_InitSubSystem(SDL_INIT_JOYSTICK) == 0;
        return opened_ ? OpenResult::Ok : OpenResult::NoInterface;
    }

    std::optional<std::vector<AttachedController>> attachedControllers() override {
        SDL_JoystickUpdate();
        const int count = SDL_NumJoysticks();
        if (count < 0)
            return std::nullopt;
        // The list includes all controllers that these pending events announce.
        SDL_FlushEvents(SDL_JOYDEVICEADDED, SDL_JOYDEVICEREMOVED);
        std::vector<AttachedController> controllers;
        controllers.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            controllers.push_back({QString::fromUtf8(SDL_JoystickNameForIndex(i)),
                                   [this, i] { return openDevice(i); }});
        }
        return controllers;
    }

    bool announcesChange(const QByteArray& /*eventType*/, void* /*message*/) override {
        return false;
    }

    std::chrono::milliseconds checkPeriod() const override { return kCheckPeriod; }

    bool attachedChanged() override {
        SDL_JoystickUpdate();
        const bool changed = SDL_HasEvents(SDL_JOYDEVICEADDED, SDL_JOYDEVICEREMOVED) == SDL_TRUE;
        SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);
        if (changed)
            retries_ = kRetries;
        return changed || std::exchange(openFailed_, false);
    }

private:
    /// The system may announce a controller a moment before it can be opened, so a failed attempt
    /// is repeated; only a few times, because each attempt is logged.
    std::unique_ptr<ControllerDevice> openDevice(int index) {
        JoystickPointer joystick(SDL_JoystickOpen(index));
        if (!joystick) {
            openFailed_ = retries_ > 0;
            retries_ = std::max(0, retries_ - 1);
            return nullptr;
        }
        return std::make_unique<SdlControllerDevice>(std::move(joystick));
    }

    bool opened_ = false;
    bool openFailed_ = false;
    int retries_ = kRetries;
};

} // namespace

std::unique_ptr<ControllerSystem> ControllerSystem::create() {
    return std::make_unique<SdlControllerSystem>();
}
