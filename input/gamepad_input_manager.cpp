#include "input/gamepad_input_manager.h"

#include <QCoreApplication>
#include <QDebug>
#include <QTimerEvent>

namespace {

constexpr int kPollPeriodMs = 16;
constexpr std::uint32_t kStickDeadZone = 1750;
constexpr std::uint32_t kTriggerDeadZone = 25;

/// What is the same for one axis on every device.
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
    {ControllerOffset::kRz, kTriggerDeadZone, 1, -1}, // the triggers pull against each other
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

/// The direction of a hat in hundredths of a degree. Exact diagonals are no direction, so that
/// rolling over one lets go of the first direction before the second is taken.
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
    if (!device_ && system_->announcesChange(eventType, message))
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
        for (const AttachedController& controller : *controllers) {
            if (discoverVisitDevice(controller))
                break;
        }
    }
    updateLookTimer();
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
    return device_ != nullptr; // who is told about a held button may have run an event loop
}

void GamepadInputManager::initGamepadState() {
    device_->poll();
    catchUpWithState(StateScope::Buttons);
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
    letGoOfEverything();
}

void GamepadInputManager::onFocusGained() {
    focused_ = true;
    if (device_)
        startActiveTimer();
}

void GamepadInputManager::onFocusLost() {
    focused_ = false;
    stopActiveTimer();
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

void GamepadInputManager::updateLookTimer() {
    const bool needed = !device_ && system_->lookPeriod().count() > 0;
    if (needed == (lookTimerId_ != kNoTimer))
        return;
    if (needed) {
        lookTimerId_ = startTimer(system_->lookPeriod(), Qt::CoarseTimer);
    } else {
        killTimer(lookTimerId_);
        lookTimerId_ = kNoTimer;
    }
}

void GamepadInputManager::timerEvent(QTimerEvent* event) {
    if (event->timerId() == timerId_) {
        event->accept();
        readDeviceDataAndUpdate();
    } else if (event->timerId() == lookTimerId_) {
        event->accept();
        if (system_->attachedChanged())
            discoverAvailableDevices();
    } else {
        QObject::timerEvent(event);
    }
}

void GamepadInputManager::readDeviceDataAndUpdate() {
    switch (device_->poll()) {
    case ControllerResult::Ok:
    case ControllerResult::NoEffect:
    case ControllerResult::BufferOverflow:
        break;
    case ControllerResult::InputLost:
        if (!succeeded(device_->setDataFormat()) || !configureAndAcquireDevice()) {
            qDebug("Failed to reconfigure device after loosing it.");
            deinitGamepad();
            updateLookTimer();
            return;
        }
        catchUpWithState(StateScope::ButtonsAndMovedAxes);
        break;
    case ControllerResult::NotAcquired:
        qDebug("Device is not acquired!");
        return;
    case ControllerResult::NoSuchInput:
    case ControllerResult::Failed:
        qWarning("Got error while polling gamepad data");
        return;
    }

    std::array<ControllerRecord, ControllerDevice::kBufferSize> records;
    std::size_t count = 0;
    const ControllerResult result = device_->bufferedData(records, count);
    if (!succeeded(result)) {
        qWarning("Got error while getting gamepad data despite polling being ok");
        return;
    }
    const bool overflowed = result == ControllerResult::BufferOverflow;
    if (overflowed)
        qWarning("Input buffer overflowed, some imputs may have been lost.");
    for (std::size_t i = 0; i < count && device_; ++i)
        processRecord(records[i]);
    if (overflowed)
        catchUpWithState(StateScope::Everything);
    reportMovement();
}

/// Takes over what the device's records did not tell, so that no button stays held and no stick
/// stays pushed that is not. A device may not know its axes before one of them has moved, so one at
/// rest is believed to be there unless records are known to be lost.
void GamepadInputManager::catchUpWithState(StateScope scope) {
    ControllerState state;
    if (!device_ || !succeeded(device_->state(state)))
        return;
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        const bool wanted = scope == StateScope::Everything ||
                            (scope == StateScope::ButtonsAndMovedAxes && axes_[i].value != 0);
        if (wanted && axes_[i].present)
            updateAxis(static_cast<AxisIndex>(i), static_cast<std::uint32_t>(state.axes[i]));
    }
    for (std::size_t i = 0; i < kMappedButtons; ++i)
        updateButton(i, state.buttons[i]);
    updateHat(state.hat);
}

void GamepadInputManager::processRecord(const ControllerRecord& record) {
    switch (record.offset) {
    case ControllerOffset::kX:
        return updateAxis(X, record.data);
    case ControllerOffset::kY:
        return updateAxis(Y, record.data);
    case ControllerOffset::kRx:
        return updateAxis(Rx, record.data);
    case ControllerOffset::kRy:
        return updateAxis(Ry, record.data);
    case ControllerOffset::kZ:
        alignTriggers();
        return updateAxis(Z, record.data);
    case ControllerOffset::kRz:
        alignTriggers();
        return updateAxis(Rz, record.data);
    case ControllerOffset::kHat:
        return updateHat(record.data);
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
    if (axes_[Z].present && axes_[Rz].present && succeeded(device_->state(state))) {
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
void GamepadInputManager::letGoOfEverything() {
    for (std::size_t i = 0; i < kMappedButtons; ++i)
        updateButton(i, false);
    updateHat(ControllerDevice::kHatCentred);
    leftStickCentred_ = axes_[X].value != 0 || axes_[Y].value != 0;
    rightStickCentred_ = axes_[Rx].value != 0 || axes_[Ry].value != 0;
    for (Axis& axis : axes_)
        axis.value = 0;
    triggersAligned_ = false;
    reportMovement();
}
