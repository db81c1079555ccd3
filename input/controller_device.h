#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

/// Offsets of the inputs in the standard joystick state. Records and properties identify inputs by
/// these offsets.
namespace ControllerOffset {
inline constexpr std::uint32_t kX = 0;
inline constexpr std::uint32_t kY = 4;
inline constexpr std::uint32_t kZ = 8;
inline constexpr std::uint32_t kRx = 12;
inline constexpr std::uint32_t kRy = 16;
inline constexpr std::uint32_t kRz = 20;
inline constexpr std::uint32_t kHat = 32;
inline constexpr std::uint32_t kButton0 = 48;
constexpr std::uint32_t button(std::uint32_t index) {
    return kButton0 + index;
}
} // namespace ControllerOffset

/// Result of a call to a controller. Ok, NoEffect and BufferOverflow mean success.
enum class ControllerResult {
    Ok,
    NoEffect,
    BufferOverflow,
    InputLost,
    NotAcquired,
    NoSuchInput,
    Failed
};

/// The range of positions that a device reports for one axis.
struct AnalogRange {
    std::int32_t min = 0;
    std::int32_t max = 65535;
};

/// One change of one input.
struct ControllerRecord {
    std::uint32_t offset = 0; ///< one of ControllerOffset, or any other input of the device
    std::uint32_t data = 0; ///< axis position, hundredths of a degree, or 0x80 for a pressed button
};

/// The positions of all inputs of a controller at one moment.
struct ControllerState {
    std::array<std::int32_t, 6> axes{}; ///< in the order X, Y, Z, Rx, Ry, Rz; 0 for a missing one
    std::uint32_t hat = 0xFFFF;
    std::array<bool, 32> buttons{};
};

/// One controller of the platform. Call it on the GUI thread and in this order: setDataFormat(),
/// properties, acquire(), then poll() and reads.
class ControllerDevice {
public:
    static constexpr std::size_t kBufferSize = 32;
    static constexpr std::uint32_t kButtonDown = 0x80;
    static constexpr std::uint32_t kHatCentred = 0xFFFF; ///< in the low 16 bits

    virtual ~ControllerDevice() = default;

    virtual ControllerResult setDataFormat() = 0;

    /// Whether Rx and Ry are known to be a stick. Some devices report their triggers there.
    virtual bool isRightStickCertain() const { return false; }

    /// Returns NoSuchInput if the device lacks the axis; so does setDeadZone().
    virtual ControllerResult range(std::uint32_t axisOffset, AnalogRange& range) = 0;

    /// Sets how many records the device buffers between two reads.
    virtual ControllerResult setBufferSize(std::uint32_t records) = 0;

    /// `size` is in ten-thousandths of the distance from the centre to either end.
    virtual ControllerResult setDeadZone(std::uint32_t axisOffset, std::uint32_t size) = 0;

    /// Fails if the device is not plugged in any more.
    virtual ControllerResult acquire() = 0;
    virtual ControllerResult unacquire() = 0;
    virtual ControllerResult poll() = 0;
    virtual ControllerResult state(ControllerState& state) = 0;

    /// Moves the oldest records into `records` and sets `count` to their number. After
    /// BufferOverflow the returned records are valid, but further ones were lost.
    virtual ControllerResult bufferedData(std::span<ControllerRecord> records,
                                          std::size_t& count) = 0;
};
