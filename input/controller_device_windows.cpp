#include "input/controller_system.h"

#include <QDebug>

#define DIRECTINPUT_VERSION 0x0800
#include <windows.h>

#include <dbt.h>
#include <dinput.h>

#include <algorithm>

/// Controllers on Windows are DirectInput 8 devices; their records and offsets are used unchanged.

namespace {

static_assert(ControllerOffset::kX == DIJOFS_X && ControllerOffset::kY == DIJOFS_Y &&
              ControllerOffset::kZ == DIJOFS_Z && ControllerOffset::kRx == DIJOFS_RX &&
              ControllerOffset::kRy == DIJOFS_RY && ControllerOffset::kRz == DIJOFS_RZ &&
              ControllerOffset::kHat == DIJOFS_POV(0) &&
              ControllerOffset::kButton0 == DIJOFS_BUTTON0);

constexpr HRESULT kNoSuchInput = static_cast<HRESULT>(0x80070002);

/// Releases a COM object.
struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
using DirectInputPointer = std::unique_ptr<IDirectInput8W, Releaser>;
using DevicePointer = std::unique_ptr<IDirectInputDevice8W, Releaser>;

/// DirectInput uses code 1 both for "had no effect" and for "buffer overflowed", so its meaning
/// depends on the call.
ControllerResult resultOf(HRESULT code,
                          ControllerResult meaningOfOne = ControllerResult::NoEffect) {
    static_assert(DI_NOEFFECT == 1 && DI_BUFFEROVERFLOW == 1);
    if (code == 1)
        return meaningOfOne;
    if (SUCCEEDED(code))
        return ControllerResult::Ok;
    switch (code) {
    case DIERR_INPUTLOST:
        return ControllerResult::InputLost;
    case DIERR_NOTACQUIRED:
        return ControllerResult::NotAcquired;
    case kNoSuchInput:
        return ControllerResult::NoSuchInput;
    default:
        return ControllerResult::Failed;
    }
}

template <typename Property>
Property propertyOf(DWORD object, DWORD how) {
    Property property{};
    property.diph.dwSize = sizeof(Property);
    property.diph.dwHeaderSize = sizeof(DIPROPHEADER);
    property.diph.dwObj = object;
    property.diph.dwHow = how;
    return property;
}

class DirectInputDevice : public ControllerDevice {
public:
    /// `directInput` must outlive the device.
    DirectInputDevice(IDirectInput8W* directInput, const GUID& id, DevicePointer device)
        : directInput_(directInput), id_(id), device_(std::move(device)) {}

    ControllerResult setDataFormat() override {
        return resultOf(device_->SetDataFormat(&c_dfDIJoystick));
    }

    ControllerResult range(std::uint32_t axisOffset, AnalogRange& range) override {
        auto property = propertyOf<DIPROPRANGE>(axisOffset, DIPH_BYOFFSET);
        const HRESULT code = device_->GetProperty(DIPROP_RANGE, &property.diph);
        if (SUCCEEDED(code))
            range = {static_cast<std::int32_t>(property.lMin),
                     static_cast<std::int32_t>(property.lMax)};
        return resultOf(code);
    }

    ControllerResult setBufferSize(std::uint32_t records) override {
        auto property = propertyOf<DIPROPDWORD>(0, DIPH_DEVICE);
        property.dwData = records;
        return resultOf(device_->SetProperty(DIPROP_BUFFERSIZE, &property.diph));
    }

    ControllerResult setDeadZone(std::uint32_t axisOffset, std::uint32_t size) override {
        auto property = propertyOf<DIPROPDWORD>(axisOffset, DIPH_BYOFFSET);
        property.dwData = size;
        return resultOf(device_->SetProperty(DIPROP_DEADZONE, &property.diph));
    }

    /// Fails when the device is unplugged, because Acquire() can succeed for a pad plugged in
    /// later, which then sends no data.
    ControllerResult acquire() override {
        if (directInput_->GetDeviceStatus(id_) != DI_OK)
            return ControllerResult::Failed;
        return resultOf(device_->Acquire());
    }

    ControllerResult unacquire() override { return resultOf(device_->Unacquire()); }
    ControllerResult poll() override { return resultOf(device_->Poll()); }

    ControllerResult state(ControllerState& state) override {
        DIJOYSTATE read{};
        const HRESULT code = device_->GetDeviceState(sizeof(read), &read);
        if (SUCCEEDED(code)) {
            state.axes = {read.lX, read.lY, read.lZ, read.lRx, read.lRy, read.lRz};
            state.hat = read.rgdwPOV[0];
            for (std::size_t i = 0; i < state.buttons.size(); ++i)
                state.buttons[i] = (read.rgbButtons[i] & kButtonDown) != 0;
        }
        return resultOf(code);
    }

    ControllerResult bufferedData(std::span<ControllerRecord> records,
                                  std::size_t& count) override {
        std::array<DIDEVICEOBJECTDATA, kBufferSize> read{};
        DWORD readCount = static_cast<DWORD>(std::min(records.size(), read.size()));
        const HRESULT code =
            device_->GetDeviceData(sizeof(DIDEVICEOBJECTDATA), read.data(), &readCount, 0);
        count = SUCCEEDED(code) ? readCount : 0;
        for (std::size_t i = 0; i < count; ++i)
            records[i] = {static_cast<std::uint32_t>(read[i].dwOfs),
                          static_cast<std::uint32_t>(read[i].dwData)};
        return resultOf(code, ControllerResult::BufferOverflow);
    }

private:
    IDirectInput8W* directInput_;
    GUID id_;
    DevicePointer device_;
};

class DirectInputSystem : public ControllerSystem {
public:
    OpenResult open() override {
        const HMODULE module = GetModuleHandleW(nullptr);
        if (!module)
            return OpenResult::NoModule;
        void* created = nullptr;
        if (FAILED(DirectInput8Create(module, DIRECTINPUT_VERSION, IID_IDirectInput8W, &created,
                                      nullptr)))
            return OpenResult::NoInterface;
        directInput_.reset(static_cast<IDirectInput8W*>(created));
        return OpenResult::Ok;
    }

    std::optional<std::vector<AttachedController>> attachedControllers() override {
        changed_ = false;
        Enumeration enumeration{directInput_.get(), {}};
        if (FAILED(directInput_->EnumDevices(DI8DEVCLASS_GAMECTRL, &DirectInputSystem::visit,
                                             &enumeration, DIEDFL_ATTACHEDONLY)))
            return std::nullopt;
        return std::move(enumeration.controllers);
    }

    bool announcesChange(const QByteArray& eventType, void* message) override {
        if (eventType != "windows_generic_MSG")
            return false;
        const MSG* native = static_cast<const MSG*>(message);
        const bool announces =
            native->message == WM_DEVICECHANGE &&
            (native->wParam == DBT_DEVICEARRIVAL || native->wParam == DBT_DEVICEREMOVECOMPLETE ||
             native->wParam == DBT_DEVNODES_CHANGED);
        changed_ = changed_ || announces;
        return announces;
    }

    std::chrono::milliseconds checkPeriod() const override { return std::chrono::milliseconds(0); }
    bool attachedChanged() override { return std::exchange(changed_, false); }

private:
    struct Enumeration {
        IDirectInput8W* directInput;
        std::vector<AttachedController> controllers;
    };

    static BOOL CALLBACK visit(const DIDEVICEINSTANCEW* instance, void* context) {
        auto* enumeration = static_cast<Enumeration*>(context);
        const auto create = [directInput = enumeration->directInput, id = instance->guidInstance] {
            return createDevice(directInput, id);
        };
        enumeration->controllers.push_back(
            {QString::fromWCharArray(instance->tszProductName), create});
        return DIENUM_CONTINUE;
    }

    static std::unique_ptr<ControllerDevice> createDevice(IDirectInput8W* directInput,
                                                          const GUID& id) {
        IDirectInputDevice8W* device = nullptr;
        if (FAILED(directInput->CreateDevice(id, &device, nullptr)))
            return nullptr;
        return std::make_unique<DirectInputDevice>(directInput, id, DevicePointer(device));
    }

    DirectInputPointer directInput_;
    bool changed_ = false; ///< a message announced a change since the last enumeration
};

} // namespace

std::unique_ptr<ControllerSystem> ControllerSystem::create() {
    return std::make_unique<DirectInputSystem>();
}
