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
constexpr std::size_t kSixAxes = 6;
constexpr Sint16 kLowEnd = -32000; // positions up to here count as the low end
constexpr std::uint32_t kFirstUnmappedAxis = 24;
constexpr std::uint32_t kNoAxis = 0xFFFFFFFF;
// The capacity of the standard joystick state; further inputs of a device are ignored.
constexpr int kMaxAxes = 8;
constexpr int kMaxHats = 4;
constexpr int kMaxButtons = 32;
constexpr int kRetries = 5;
constexpr std::chrono::milliseconds kCheckPeriod{1000};
constexpr int kEventsPerCall = 64;

/// The offsets of SDL's axes, guessed from their number. Linux numbers the axes of a pad in the
/// order of their codes: left stick, left trigger, right stick, right trigger. A pad with four axes
/// has two sticks and no analog trigger; with three or five axes, one axis combines both triggers.
///
/// Some drivers order six axes differently. Released triggers are at their low end and released
/// sticks in the middle, so `resting`, the axes that are at their low end now, shows the order.
std::vector<std::uint32_t> standardAxes(int count, const std::array<bool, kSixAxes>& resting) {
    using namespace ControllerOffset;
    if (count >= static_cast<int>(kSixAxes) &&
        std::count(resting.begin() + 2, resting.end(), true) == 2) {
        std::vector<std::uint32_t> axes{kX, kY};
        // Drivers that put both triggers at the end put the right one first.
        const bool rightFirst = resting[4] && resting[5];
        std::vector<std::uint32_t> triggers{rightFirst ? kRz : kZ, rightFirst ? kZ : kRz};
        std::vector<std::uint32_t> stick{kRx, kRy};
        for (std::size_t i = 2; i < resting.size(); ++i) {
            std::vector<std::uint32_t>& next = resting[i] ? triggers : stick;
            axes.push_back(next.front());
            next.erase(next.begin());
        }
        return axes;
    }
    switch (count) {
    case 0:
        return {};
    case 1:
        return {kX};
    case 2:
        return {kX, kY};
    case 3:
        return {kX, kY, kZ};
    case 4:
        return {kX, kY, kRx, kRy};
    case 5:
        return {kX, kY, kZ, kRx, kRy};
    default:
        return {kX, kY, kZ, kRx, kRy, kRz};
    }
}

std::uint32_t hundredthsOfDegree(Uint8 hat) {
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
std::uint32_t positionOf(Sint16 value, std::uint32_t deadZone) {
    // Twice the distance from the centre, because the centre lies between two positions.
    constexpr int kFull = 65535;
    const int distance = 2 * int{value} + 1;
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

class SdlControllerDevice : public ControllerDevice {
public:
    explicit SdlControllerDevice(JoystickPointer joystick)
        : joystick_(std::move(joystick)), id_(SDL_JoystickInstanceID(joystick_.get())) {}

    ControllerResult setDataFormat() override {
        const int count = SDL_JoystickNumAxes(joystick_.get());
        SDL_JoystickUpdate();
        std::array<bool, kSixAxes> resting{};
        for (std::size_t i = 0; i < resting.size(); ++i)
            resting[i] = SDL_JoystickGetAxis(joystick_.get(), static_cast<int>(i)) <= kLowEnd;
        const std::vector<std::uint32_t> standard = standardAxes(count, resting);
        axes_.clear();
        for (int i = 0; i < std::min(count, kMaxAxes); ++i) {
            const auto index = static_cast<std::size_t>(i);
            const std::uint32_t extra =
                kFirstUnmappedAxis + 4 * static_cast<std::uint32_t>(i - static_cast<int>(kSixAxes));
            axes_.push_back({index < standard.size() ? standard[index] : extra, 0, 0});
        }
        return ControllerResult::Ok;
    }

    ControllerResult range(std::uint32_t axisOffset, AnalogRange& range) override {
        if (!findAxis(axisOffset))
            return ControllerResult::NoSuchInput;
        range = kAxisRange;
        return ControllerResult::Ok;
    }

    ControllerResult setBufferSize(std::uint32_t records) override {
        bufferSize_ = records;
        return ControllerResult::Ok;
    }

    ControllerResult setDeadZone(std::uint32_t axisOffset, std::uint32_t size) override {
        Axis* axis = findAxis(axisOffset);
        if (!axis)
            return ControllerResult::NoSuchInput;
        axis->deadZone = size;
        return ControllerResult::Ok;
    }

    ControllerResult acquire() override {
        if (!SDL_JoystickGetAttached(joystick_.get()))
            return ControllerResult::Failed;
        SDL_JoystickUpdate();
        for (std::size_t i = 0; i < axes_.size(); ++i)
            axes_[i].position = currentPosition(i);
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
        for (std::size_t i = 0; i < axes_.size(); ++i) {
            const std::size_t place = axes_[i].offset / 4;
            if (place < state.axes.size())
                state.axes[place] = static_cast<std::int32_t>(currentPosition(i));
        }
        if (SDL_JoystickNumHats(joystick_.get()) > 0)
            state.hat = hundredthsOfDegree(SDL_JoystickGetHat(joystick_.get(), 0));
        for (std::size_t i = 0; i < state.buttons.size(); ++i)
            state.buttons[i] = SDL_JoystickGetButton(joystick_.get(), static_cast<int>(i)) != 0;
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
    struct Axis {
        std::uint32_t offset = kNoAxis;
        std::uint32_t deadZone = 0;
        std::uint32_t position = 0; ///< last recorded
    };

    Axis* findAxis(std::uint32_t offset) {
        const auto found = std::find_if(axes_.begin(), axes_.end(),
                                        [&](const Axis& axis) { return axis.offset == offset; });
        return found == axes_.end() ? nullptr : &*found;
    }

    std::uint32_t currentPosition(std::size_t axis) const {
        return positionOf(SDL_JoystickGetAxis(joystick_.get(), static_cast<int>(axis)),
                          axes_[axis].deadZone);
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
            if (event.jaxis.which == id_ && event.jaxis.axis < axes_.size())
                recordAxis(axes_[event.jaxis.axis], event.jaxis.value);
            break;
        case SDL_JOYHATMOTION:
            if (event.jhat.which == id_ && event.jhat.hat < kMaxHats)
                record({ControllerOffset::kHat + 4U * event.jhat.hat,
                        hundredthsOfDegree(event.jhat.value)});
            break;
        case SDL_JOYBUTTONDOWN:
        case SDL_JOYBUTTONUP:
            if (event.jbutton.which == id_ && event.jbutton.button < kMaxButtons)
                record({ControllerOffset::button(event.jbutton.button),
                        event.jbutton.state == SDL_PRESSED ? kButtonDown : 0});
            break;
        default:
            break;
        }
    }

    void recordAxis(Axis& axis, Sint16 value) {
        const std::uint32_t position = positionOf(value, axis.deadZone);
        if (std::exchange(axis.position, position) == position)
            return;
        // Keeps one record per axis, because a pad that reports 1,000 times a second would fill
        // the buffer.
        const auto same =
            std::find_if(records_.begin(), records_.end(),
                         [&](const ControllerRecord& old) { return old.offset == axis.offset; });
        if (same != records_.end())
            same->data = position;
        else
            record({axis.offset, position});
    }

    void record(const ControllerRecord& change) {
        if (records_.size() < bufferSize_)
            records_.push_back(change);
        else
            overflowed_ = true;
    }

    JoystickPointer joystick_;
    SDL_JoystickID id_;
    std::vector<Axis> axes_; ///< in SDL's order
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
