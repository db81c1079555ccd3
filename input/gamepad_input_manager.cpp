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

unsigned long printable(std::uint32_t value) {
    return value;
}

} // namespace

GamepadInputManager::GamepadInputManager(QObject* parent)
    : GamepadInputManager(ControllerSystem::create(), parent) {}

GamepadInputManager::GamepadInputManager(std::unique_ptr<ControllerSystem> system, QObject* parent)
    : QObject(parent), system_(std::move(system)) {
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
    if (system_->announcesChange(eventType, message)) {
        changeMissed_ = device_ != nullptr;
        discoverAvailableDevices();
    }
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
                break;
    }
    updateCheckTimer();
}

/// Whether the controller is now the one in use.
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
        axes_[i].known = axes_[i].value != 0;
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
    initGamepadState();
    startActiveTimer();
    return true;
}

/// What is held already is told at the next poll: whoever has just made this object could not hear
/// it yet, and nothing is to be told without the focus.
void GamepadInputManager::initGamepadState() {
    recordInputLost(device_->poll());
    stateWanted_ = true;
}

void GamepadInputManager::deinitGamepad() {
    if (device_) {
        if (device_->unacquire() == ControllerResult::NoEffect)
            qDebug("Released gamepad (had no effect)");
        else
            qDebug("Released gamepad");
        device_.reset();
    }
    stopActiveTimer();
    inputLost_ = stateWanted_ = false;
    releaseAll();
}

void GamepadInputManager::onFocusGained() {
    focused_ = true;
    if (!device_ || timerId_ != kNoTimer)
        return;
    dropRecords();
    stateWanted_ = true;
    startActiveTimer();
}

/// Sticks come to rest at this moment, as nobody would tell later that they have. Buttons stay held
/// until they are seen to be up, so that none acts a second time for being held across the break.
void GamepadInputManager::onFocusLost() {
    focused_ = false;
    stopActiveTimer();
    centreSticks();
}

void GamepadInputManager::startActiveTimer() {
    // A controller that is plugged in while another application is in front waits for the focus.
    if (timerId_ == kNoTimer && focused_)
        timerId_ = startTimer(kPollPeriodMs, Qt::PreciseTimer);
}

void GamepadInputManager::stopActiveTimer() {
    if (timerId_ == kNoTimer)
        return;
    killTimer(timerId_);
    timerId_ = kNoTimer;
}

void GamepadInputManager::updateCheckTimer() {
    const bool needed = !device_ && system_->checkPeriod().count() > 0;
    if (needed == (checkTimerId_ != kNoTimer))
        return;
    if (needed) {
        checkTimerId_ = startTimer(system_->checkPeriod(), Qt::CoarseTimer);
    } else {
        killTimer(checkTimerId_);
        checkTimerId_ = kNoTimer;
    }
}

void GamepadInputManager::timerEvent(QTimerEvent* event) {
    if (event->timerId() == timerId_) {
        event->accept();
        readDeviceDataAndUpdate();
    } else if (event->timerId() == checkTimerId_) {
        event->accept();
        if (system_->attachedChanged())
            discoverAvailableDevices();
    } else {
        QObject::timerEvent(event);
    }
}

void GamepadInputManager::readDeviceDataAndUpdate() {
    switch (inputLost_ ? ControllerResult::InputLost : device_->poll()) {
    case ControllerResult::Ok:
    case ControllerResult::NoEffect:
    case ControllerResult::BufferOverflow:
        break;
    case ControllerResult::InputLost: {
        inputLost_ = false;
        const bool recovered = succeeded(device_->setDataFormat()) && configureAndAcquireDevice();
        if (!recovered)
            qDebug("Failed to reconfigure device after loosing it.");
        // Another one may be in its place since it was last heard of. A device that is then taken
        // for the old one can be acquired, but stays silent.
        const bool replaced = std::exchange(changeMissed_, false);
        if (recovered && !replaced)
            break;
        deinitGamepad();
        if (replaced || system_->attachedChanged())
            discoverAvailableDevices();
        updateCheckTimer();
        return;
    }
    case ControllerResult::NotAcquired:
        qDebug("Device is not acquired!");
        return;
    case ControllerResult::NoSuchInput:
    case ControllerResult::Failed:
        qWarning("Got error while polling gamepad data");
        return;
    }
    if (std::exchange(stateWanted_, false))
        catchUpWithState();
    if (!isReading())
        return;

    std::array<ControllerRecord, ControllerDevice::kBufferSize> records;
    std::size_t count = 0;
    const ControllerResult result = recordInputLost(device_->bufferedData(records, count));
    if (!succeeded(result)) {
        qWarning("Got error while getting gamepad data despite polling being ok");
        return;
    }
    const bool overflowed = result == ControllerResult::BufferOverflow;
    if (overflowed)
        qWarning("Input buffer overflowed, some imputs may have been lost.");
    for (std::size_t i = 0; i < count && isReading(); ++i)
        processRecord(records[i]);
    if (overflowed) {
        for (Axis& axis : axes_)
            axis.mayHaveMoved = true;
        catchUpWithState();
    }
    if (isReading())
        reportMovement();
}

/// Whoever is told of an input may take the focus away or let an unplugged controller go.
bool GamepadInputManager::isReading() const {
    return device_ && timerId_ != kNoTimer && !inputLost_;
}

/// A loss is told once, by whichever call comes first; the next poll has to know of it.
ControllerResult GamepadInputManager::recordInputLost(ControllerResult result) {
    if (result == ControllerResult::InputLost)
        inputLost_ = true;
    return result;
}

/// Forgets what was done while nobody was meant to see it.
void GamepadInputManager::dropRecords() {
    recordInputLost(device_->poll());
    std::array<ControllerRecord, ControllerDevice::kBufferSize> records;
    std::size_t count = records.size();
    while (!inputLost_ && count == records.size()) {
        const ControllerResult result = recordInputLost(device_->bufferedData(records, count));
        if (!succeeded(result))
            return;
        for (std::size_t i = 0; i < kAxisCount; ++i) {
            axes_[i].mayHaveMoved =
                axes_[i].mayHaveMoved || result == ControllerResult::BufferOverflow;
            axes_[i].known =
                axes_[i].known ||
                std::any_of(records.begin(), records.begin() + static_cast<std::ptrdiff_t>(count),
                            [&](const ControllerRecord& record) {
                                return record.offset == kAxisTraits[i].offset;
                            });
        }
    }
}

/// Takes over what the device's records did not tell, so that no button stays held and no stick
/// stays pushed that is not. A device may not know an axis before it has moved, so one that never
/// has is believed to be at rest. So is one whose record may have been lost, if it stands where a
/// trigger rests, at an end of its range.
void GamepadInputManager::catchUpWithState() {
    ControllerState state;
    if (!isReading() || !succeeded(recordInputLost(device_->state(state))))
        return;
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        Axis& axis = axes_[i];
        const std::int32_t position = state.axes[i];
        const bool mayBeTriggerAtRest =
            i != X && i != Y && (position == axis.range.min || position == axis.range.max);
        axis.known = axis.known || (axis.mayHaveMoved && !mayBeTriggerAtRest);
        axis.mayHaveMoved = false;
    }
    if (axes_[Z].known || axes_[Rz].known) {
        axes_[Z].known = axes_[Rz].known = true;
        triggersAligned_ = true;
    }
    for (std::size_t i = 0; i < kAxisCount; ++i)
        if (axes_[i].known && axes_[i].present)
            updateAxis(static_cast<AxisIndex>(i), static_cast<std::uint32_t>(state.axes[i]));
    for (std::size_t i = 0; i < kMappedButtons && isReading(); ++i)
        updateButton(i, state.buttons[i]);
    if (isReading())
        updateHat(state.hat);
}

void GamepadInputManager::processRecord(const ControllerRecord& record) {
    switch (record.offset) {
    case ControllerOffset::kX:
        updateAxis(X, record.data);
        return;
    case ControllerOffset::kY:
        updateAxis(Y, record.data);
        return;
    case ControllerOffset::kRx:
        updateAxis(Rx, record.data);
        return;
    case ControllerOffset::kRy:
        updateAxis(Ry, record.data);
        return;
    case ControllerOffset::kZ:
        alignTriggers();
        updateAxis(Z, record.data);
        return;
    case ControllerOffset::kRz:
        alignTriggers();
        updateAxis(Rz, record.data);
        return;
    case ControllerOffset::kHat:
        updateHat(record.data);
        return;
    case ControllerOffset::button(8):
        qDebug("TODO-JOYSTICK DIJOFS_BUTTON(8) --> %lu", printable(record.data));
        return;
    case ControllerOffset::button(9):
        qDebug("TODO-JOYSTICK DIJOFS_BUTTON(9) --> %lu", printable(record.data));
        return;
    default:
        break;
    }
    if (record.offset >= ControllerOffset::kButton0 &&
        record.offset < ControllerOffset::button(kMappedButtons)) {
        updateButton(record.offset - ControllerOffset::kButton0,
                     (record.data & ControllerDevice::kButtonDown) != 0);
        return;
    }
    qDebug("Ignoring unknown input: %lu -> %lu", printable(record.offset), printable(record.data));
}

void GamepadInputManager::updateAxis(AxisIndex axis, std::uint32_t data) {
    const AxisTraits& traits = kAxisTraits[axis];
    Axis& current = axes_[axis];
    current.known = true;
    const float before = current.value;
    current.value = remapAnalogValue(data, current.range, traits.outMin, traits.outMax);
    if (before == 0 || current.value != 0)
        return;
    if (axis == X || axis == Y)
        leftStickCentred_ = true;
    else if (axis == Rx || axis == Ry)
        rightStickCentred_ = true;
}

/// Two triggers with an axis each rest at opposite ends and cancel each other only when both are
/// known; but a trigger that has never moved gives no record. So when the first of the two moves,
/// the device is asked for the other.
void GamepadInputManager::alignTriggers() {
    if (triggersAligned_ || !device_)
        return;
    ControllerState state;
    if (axes_[Z].present && axes_[Rz].present &&
        succeeded(recordInputLost(device_->state(state)))) {
        updateAxis(Z, static_cast<std::uint32_t>(state.axes[Z]));
        updateAxis(Rz, static_cast<std::uint32_t>(state.axes[Rz]));
    }
    triggersAligned_ = true;
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
    if (axes_[Rx].value != 0 || axes_[Ry].value != 0 || rightCentred)
        emit rightAxisMoved(axes_[Rx].value, axes_[Ry].value);
    const float triggers = axes_[Z].value + axes_[Rz].value;
    if (triggers != 0)
        emit pressure(triggers);
}

/// A controller that is gone holds nothing any more: what it held is released and its sticks are
/// centred, so that neither a later combination nor a later controller inherits them.
void GamepadInputManager::releaseAll() {
    for (std::size_t i = 0; i < kMappedButtons; ++i)
        updateButton(i, false);
    updateHat(ControllerDevice::kHatCentred);
    centreSticks();
    for (Axis& axis : axes_)
        axis.known = false;
    triggersAligned_ = false;
}

void GamepadInputManager::centreSticks() {
    leftStickCentred_ = axes_[X].value != 0 || axes_[Y].value != 0;
    rightStickCentred_ = axes_[Rx].value != 0 || axes_[Ry].value != 0;
    for (Axis& axis : axes_)
        axis.value = 0;
    reportMovement();
}
