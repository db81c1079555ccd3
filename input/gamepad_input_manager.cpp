#include "input/gamepad_input_manager.h"

#include <QCoreApplication>
#include <QDebug>
#include <QTimerEvent>

#include <algorithm>

namespace {

constexpr int kPollPeriodMs = 16;
constexpr std::uint32_t kStickDeadZone = 1750;
constexpr std::uint32_t kTriggerDeadZone = 25;

/// The properties of an axis that are the same on every device.
struct AxisTraits {
    std::uint32_t offset;
    std::uint32_t deadZone;
    float outMin;
    float outMax;
};

constexpr std::array<AxisTraits, 6> kAxisTraits{{
    {ControllerOffset::kX, kStickDeadZone, -1, 1},
    {ControllerOffset::kY, kStickDeadZone, -1, 1},
    {ControllerOffset::kZ, kTriggerDeadZone, -1, 1},
    {ControllerOffset::kRx, kStickDeadZone, -1, 1},
    {ControllerOffset::kRy, kStickDeadZone, -1, 1},
    {ControllerOffset::kRz, kTriggerDeadZone, 1, -1}, // opposite to Z, so that the triggers cancel
}};

constexpr std::array<GamepadButton, 8> kButtons{
    GamepadButton::RightCross_Bottom,
    GamepadButton::RightCross_Right,
    GamepadButton::RightCross_Left,
    GamepadButton::RightCross_Top,
    GamepadButton::Trigger_Left,
    GamepadButton::Trigger_Right,
    GamepadButton::Back,
    GamepadButton::Start,
};

bool succeeded(ControllerResult result) {
    return result == ControllerResult::Ok || result == ControllerResult::NoEffect ||
           result == ControllerResult::BufferOverflow;
}

/// Maps a raw axis position onto outMin..outMax. The two middle values of an odd range are both its
/// centre, so that a stick at rest reads exactly the middle.
float remapAnalogValue(std::uint32_t value, const AnalogRange& range, float outMin, float outMax) {
    const std::uint32_t v = value - static_cast<std::uint32_t>(range.min);
    const std::uint32_t w =
        static_cast<std::uint32_t>(range.max) - static_cast<std::uint32_t>(range.min);
    const bool centred = w % 2 == 1 && (v == w / 2 || v == w / 2 + 1);
    if (centred || w == 0)
        return (outMin + outMax) / 2;
    return (outMax - outMin) * (static_cast<float>(v) / static_cast<float>(w)) + outMin;
}

/// The direction of a hat in hundredths of a degree. Exact diagonals have no direction, so that
/// rolling over one releases the first direction before it presses the second.
std::optional<GamepadButton> getButtonFromDirectInputPOV(std::uint32_t value) {
    if ((value & 0xFFFF) == ControllerDevice::kHatCentred)
        return std::nullopt;
    if (value < 4500 || value > 31500)
        return GamepadButton::LeftDPad_Top;
    if (value > 4500 && value < 13500)
        return GamepadButton::LeftDPad_Right;
    if (value > 13500 && value < 22500)
        return GamepadButton::LeftDPad_Bottom;
    if (value > 22500 && value < 31500)
        return GamepadButton::LeftDPad_Left;
    return std::nullopt;
}

bool isInMiddleThird(std::uint32_t position, const AnalogRange& range) {
    const std::int64_t width = std::int64_t{range.max} - range.min;
    const std::int64_t fromMin = std::int64_t{static_cast<std::int32_t>(position)} - range.min;
    return 3 * fromMin > width && 3 * fromMin < 2 * width;
}

std::uint32_t endOf(const AnalogRange& range, bool atMax) {
    return static_cast<std::uint32_t>(atMax ? range.max : range.min);
}

unsigned long printable(std::uint32_t value) {
    return value;
}

} // namespace

GamepadInputManager::GamepadInputManager(QObject* parent)
    : GamepadInputManager(ControllerSystem::create(), parent) {}

GamepadInputManager::GamepadInputManager(std::unique_ptr<ControllerSystem> system, QObject* parent,
                                         RightStickTimes times)
    : QObject(parent), system_(std::move(system)), times_(times) {
    switch (system_->open()) {
    case ControllerSystem::OpenResult::Ok:
        break;
    case ControllerSystem::OpenResult::NoModule:
        qWarning("Failed to get module handle");
        system_.reset();
        return;
    case ControllerSystem::OpenResult::NoInterface:
        qWarning("Failed to create instance of direct input interface");
        system_.reset();
        return;
    }
    QCoreApplication::instance()->installNativeEventFilter(this);
    discoverAvailableDevices();
}

GamepadInputManager::~GamepadInputManager() {
    deinitGamepad();
}

bool GamepadInputManager::nativeEventFilter(const QByteArray& eventType, void* message,
                                            qintptr* /*result*/) {
    if (system_->announcesChange(eventType, message))
        discoverAvailableDevices();
    return false;
}

void GamepadInputManager::discoverAvailableDevices() {
    if (device_)
        return;
    const auto controllers = system_->attachedControllers();
    if (!controllers) {
        qWarning("Failed to find gamepad devices");
    } else {
        for (const AttachedController& controller : *controllers)
            if (discoverVisitDevice(controller))
                return;
    }
    setState(State::NoDevice);
}

/// Whether the controller is now in use.
bool GamepadInputManager::discoverVisitDevice(const AttachedController& controller) {
    device_ = controller.create();
    if (!device_) {
        qWarning("Cannot create device '%s', skipping", qUtf8Printable(controller.name));
        return false;
    }
    qDebug("Found device '%s'", qUtf8Printable(controller.name));
    if (succeeded(device_->setDataFormat()) && configureAndAcquireDevice())
        return true;
    deinitGamepad();
    qWarning("Failed to configure device '%s', skipping", qUtf8Printable(controller.name));
    return false;
}

bool GamepadInputManager::configureAndAcquireDevice() {
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        axes_[i].range = {};
        const ControllerResult result = device_->range(kAxisTraits[i].offset, axes_[i].range);
        axes_[i].present = succeeded(result);
        // A device that is acquired anew may not know the position of an axis at rest.
        axes_[i].reported = axes_[i].value != 0;
        if (!axes_[i].present && result != ControllerResult::NoSuchInput)
            return false;
    }
    if (!succeeded(device_->setBufferSize(ControllerDevice::kBufferSize)))
        return false;
    for (const AxisTraits& axis : kAxisTraits) {
        const ControllerResult result = device_->setDeadZone(axis.offset, axis.deadZone);
        if (!succeeded(result) && result != ControllerResult::NoSuchInput)
            return false;
    }
    if (!succeeded(device_->acquire()))
        return false;
    // Held buttons are reported by the first timer event, because listeners connect after the
    // constructor.
    setState(State::OutOfSync);
    recordInputLost(device_->poll());
    return true;
}

void GamepadInputManager::deinitGamepad() {
    if (device_) {
        if (device_->unacquire() == ControllerResult::NoEffect)
            qDebug("Released gamepad (had no effect)");
        else
            qDebug("Released gamepad");
        device_.reset();
    }
    setState(State::NoDevice);
    releaseAll();
}

void GamepadInputManager::onFocusGained() {
    if (std::exchange(focused_, true))
        return;
    setState(state_ == State::InSync ? State::OutOfSync : state_);
    if (state_ == State::OutOfSync)
        discardRecords();
}

/// Centres the sticks, because their return would not be reported without the focus. Buttons stay
/// held until a poll sees them released, so that a held button is not pressed a second time.
void GamepadInputManager::onFocusLost() {
    focused_ = false;
    setState(state_);
    centreSticks();
}

/// The only function that changes the state and the timers, which depend on it.
void GamepadInputManager::setState(State state) {
    state_ = state;
    if (focused_ && state != State::NoDevice)
        startActiveTimer();
    else
        stopActiveTimer();
    if (state != State::NoDevice || !system_ || system_->checkPeriod().count() == 0)
        checkTimer_.stop();
    else if (!checkTimer_.isActive())
        checkTimer_.start(static_cast<int>(system_->checkPeriod().count()), this);
}

void GamepadInputManager::startActiveTimer() {
    if (timerId_ == kNoTimer)
        timerId_ = startTimer(kPollPeriodMs, Qt::PreciseTimer);
}

void GamepadInputManager::stopActiveTimer() {
    if (timerId_ != kNoTimer)
        killTimer(std::exchange(timerId_, kNoTimer));
}

void GamepadInputManager::timerEvent(QTimerEvent* event) {
    if (event->timerId() == timerId_) {
        event->accept();
        readDeviceDataAndUpdate();
    } else if (event->timerId() == checkTimer_.timerId()) {
        event->accept();
        if (system_->attachedChanged())
            discoverAvailableDevices();
    } else {
        QObject::timerEvent(event);
    }
}

void GamepadInputManager::readDeviceDataAndUpdate() {
    switch (state_ == State::InputLost ? ControllerResult::InputLost : device_->poll()) {
    case ControllerResult::Ok:
    case ControllerResult::NoEffect:
    case ControllerResult::BufferOverflow:
        break;
    case ControllerResult::InputLost:
        if (succeeded(device_->setDataFormat()) && configureAndAcquireDevice())
            break;
        qDebug("Failed to reconfigure device after loosing it.");
        deinitGamepad();
        if (system_->attachedChanged())
            discoverAvailableDevices();
        return;
    case ControllerResult::NotAcquired:
        qDebug("Device is not acquired!");
        return;
    case ControllerResult::NoSuchInput:
    case ControllerResult::Failed:
        qWarning("Got error while polling gamepad data");
        return;
    }
    if (state_ == State::OutOfSync)
        initGamepadState();
    recogniseRightAxes();
    if (isInSync() && processRecords() && isInSync())
        reportMovement();
}

/// False also after a slot of an emitted signal has removed the focus or the device.
bool GamepadInputManager::isInSync() const {
    return focused_ && state_ == State::InSync;
}

/// A device reports a loss only once, in any call, so the state keeps it for the next poll.
ControllerResult GamepadInputManager::recordInputLost(ControllerResult result) {
    if (result == ControllerResult::InputLost)
        setState(State::InputLost);
    return result;
}

/// Discards the buffered records, except that it notes which axes reported.
void GamepadInputManager::discardRecords() {
    Records records;
    std::size_t count = records.size();
    ControllerResult result = recordInputLost(device_->poll());
    while (succeeded(result) && count == records.size()) {
        result = recordInputLost(device_->bufferedData(records, count));
        for (std::size_t i = 0; i < count; ++i)
            if (const auto axis = axisAt(records[i].offset))
                markReported(*axis);
    }
}

/// False if the device returned an error.
bool GamepadInputManager::processRecords() {
    Records records;
    std::size_t count = 0;
    const ControllerResult result = recordInputLost(device_->bufferedData(records, count));
    if (!succeeded(result)) {
        qWarning("Got error while getting gamepad data despite polling being ok");
        return false;
    }
    const bool overflowed = result == ControllerResult::BufferOverflow;
    if (overflowed)
        qWarning("Input buffer overflowed, some imputs may have been lost.");
    for (std::size_t i = 0; i < count && isInSync(); ++i)
        processRecord(records[i]);
    if (overflowed && isInSync())
        initGamepadState();
    return true;
}

/// Takes the device's whole state. Axes that never reported stay centred, because a device may not
/// know their positions.
void GamepadInputManager::initGamepadState() {
    ControllerState state;
    const ControllerResult result = recordInputLost(device_->state(state));
    if (state_ == State::InputLost)
        return;
    setState(State::InSync);
    if (!succeeded(result))
        return;
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        const auto position = static_cast<std::uint32_t>(state.axes[i]);
        if (!hasReported_)
            axes_[i].releasedAtMax = position == endOf(axes_[i].range, true);
        setPosition(axes_[i], position);
        if (axes_[i].present && axes_[i].reported)
            updateAxis(static_cast<AxisIndex>(i));
    }
    for (std::size_t i = 0; i < kMappedButtons && isInSync(); ++i)
        updateButton(i, state.buttons[i]);
    if (isInSync())
        updateHat(state.hat);
}

void GamepadInputManager::processRecord(const ControllerRecord& record) {
    using namespace ControllerOffset;
    if (!std::exchange(hasReported_, true))
        readAxes(Rx, Ry);
    if (const auto axis = axisAt(record.offset)) {
        const bool triggersReported = axes_[Z].reported;
        markReported(*axis);
        if (axes_[Z].reported != triggersReported)
            readAxes(Z, Rz);
        setPosition(axes_[*axis], record.data);
        updateAxis(*axis);
    } else if (record.offset == kHat) {
        updateHat(record.data);
    } else if (record.offset >= kButton0 && record.offset < button(kMappedButtons)) {
        updateButton(record.offset - kButton0, (record.data & ControllerDevice::kButtonDown) != 0);
    } else if (record.offset == button(8)) {
        qDebug("TODO-JOYSTICK DIJOFS_BUTTON(8) --> %lu", printable(record.data));
    } else if (record.offset == button(9)) {
        qDebug("TODO-JOYSTICK DIJOFS_BUTTON(9) --> %lu", printable(record.data));
    } else {
        qDebug("Ignoring unknown input: %lu -> %lu", printable(record.offset),
               printable(record.data));
    }
}

std::optional<GamepadInputManager::AxisIndex> GamepadInputManager::axisAt(std::uint32_t offset) {
    for (std::size_t i = 0; i < kAxisCount; ++i)
        if (kAxisTraits[i].offset == offset)
            return static_cast<AxisIndex>(i);
    return std::nullopt;
}

/// A report of one trigger counts for both, because separate triggers rest at opposite ends and
/// cancel each other only if both positions are known.
void GamepadInputManager::markReported(AxisIndex axis) {
    axes_[axis].reported = true;
    if (axis == Z || axis == Rz)
        axes_[Z].reported = axes_[Rz].reported = true;
}

/// Takes the positions of two axes from the device's state if it has both.
void GamepadInputManager::readAxes(AxisIndex first, AxisIndex second) {
    ControllerState state;
    if (!axes_[first].present || !axes_[second].present ||
        !succeeded(recordInputLost(device_->state(state))))
        return;
    for (const AxisIndex axis : {first, second}) {
        setPosition(axes_[axis], static_cast<std::uint32_t>(state.axes[axis]));
        if (axes_[axis].reported)
            updateAxis(axis);
    }
}

void GamepadInputManager::setPosition(Axis& axis, std::uint32_t position) {
    axis.position = position;
    axis.restingSince = std::chrono::steady_clock::now();
}

/// Decides by its rest whether a new device reports its right stick or its triggers as Rx and Ry.
/// A device that has not sent anything may not know its positions, and a trigger that is held at
/// its other end is not released there.
void GamepadInputManager::recogniseRightAxes() {
    for (const AxisIndex index : {Rx, Ry}) {
        Axis& axis = axes_[index];
        if (!axis.present || axis.use != Use::Unknown)
            continue;
        const auto rested = std::chrono::steady_clock::now() - axis.restingSince;
        if (isInMiddleThird(axis.position, axis.range) && rested >= times_.stick)
            axis.use = Use::Stick;
        else if (axis.position == endOf(axis.range, axis.releasedAtMax) &&
                 rested >= times_.trigger && hasReported_ && !device_->isRightStickCertain())
            axis.use = Use::Trigger;
        if (axis.reported)
            updateAxis(index);
    }
}

/// Computes the value of an axis from its position.
void GamepadInputManager::updateAxis(AxisIndex axis) {
    const AxisTraits& traits = kAxisTraits[axis];
    Axis& current = axes_[axis];
    const float before = stickValue(axis);
    if ((axis != Rx && axis != Ry) || current.use == Use::Stick)
        current.value =
            remapAnalogValue(current.position, current.range, traits.outMin, traits.outMax);
    else if (current.use == Use::Trigger)
        current.value = axis == Rx ? pull(current) : -pull(current);
    if (before == 0 || stickValue(axis) != 0)
        return;
    if (axis == X || axis == Y)
        leftStickCentred_ = true;
    else if (axis == Rx || axis == Ry)
        rightStickCentred_ = true;
}

/// 0 for a released trigger to 1.
float GamepadInputManager::pull(const Axis& trigger) {
    const float position = remapAnalogValue(trigger.position, trigger.range, 0, 1);
    return trigger.releasedAtMax ? 1 - position : position;
}

float GamepadInputManager::stickValue(AxisIndex axis) const {
    const bool isStick = (axis != Rx && axis != Ry) || axes_[axis].use == Use::Stick;
    return isStick ? axes_[axis].value : 0;
}

/// Z and Rz are one axis each for the two triggers, or Z alone is one axis for both.
float GamepadInputManager::triggerPressure() const {
    float sum = axes_[Z].value + axes_[Rz].value;
    if (axes_[Z].present && axes_[Rz].present)
        sum /= 2;
    for (const AxisIndex axis : {Rx, Ry})
        if (axes_[axis].use == Use::Trigger)
            sum += axes_[axis].value;
    return std::clamp(sum, -1.0F, 1.0F);
}

void GamepadInputManager::updateHat(std::uint32_t data) {
    const std::optional<GamepadButton> direction = getButtonFromDirectInputPOV(data);
    if (povHeld_ && direction == povButton_)
        return;
    if (povHeld_) {
        povHeld_ = false;
        emit buttonReleased(povButton_);
    }
    if (direction) {
        povHeld_ = true;
        povButton_ = *direction;
        emit buttonPressed(povButton_);
    }
}

void GamepadInputManager::updateButton(std::size_t index, bool down) {
    if (heldButtons_[index] == down)
        return;
    heldButtons_[index] = down;
    if (down)
        emit buttonPressed(kButtons[index]);
    else
        emit buttonReleased(kButtons[index]);
}

void GamepadInputManager::reportMovement() {
    const bool leftCentred = std::exchange(leftStickCentred_, false);
    const bool rightCentred = std::exchange(rightStickCentred_, false);
    if (axes_[X].value != 0 || axes_[Y].value != 0 || leftCentred)
        emit leftAxisMoved(axes_[X].value, axes_[Y].value);
    const float rightX = stickValue(Rx);
    const float rightY = stickValue(Ry);
    if (rightX != 0 || rightY != 0 || rightCentred)
        emit rightAxisMoved(rightX, rightY);
    if (const float triggers = triggerPressure(); triggers != 0)
        emit pressure(triggers);
}

/// Releases the buttons and centres the sticks of a removed controller, so that neither a later
/// combination nor a later controller includes them.
void GamepadInputManager::releaseAll() {
    for (std::size_t i = 0; i < kMappedButtons; ++i)
        updateButton(i, false);
    updateHat(ControllerDevice::kHatCentred);
    centreSticks();
    axes_ = {};
    hasReported_ = false;
}

void GamepadInputManager::centreSticks() {
    leftStickCentred_ = axes_[X].value != 0 || axes_[Y].value != 0;
    rightStickCentred_ = stickValue(Rx) != 0 || stickValue(Ry) != 0;
    for (Axis& axis : axes_)
        axis.value = 0;
    reportMovement();
}
