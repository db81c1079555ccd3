#pragma once

#include "input/controller_device.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// A controller that is plugged in but not open.
struct AttachedController {
    QString name; ///< the product's name
    std::function<std::unique_ptr<ControllerDevice>()>
        create; ///< returns null if the controller cannot be opened
};

/// Access to the controllers of one platform. This interface and ControllerDevice hide all
/// differences between platforms.
class ControllerSystem {
public:
    enum class OpenResult { Ok, NoModule, NoInterface };

    virtual ~ControllerSystem() = default;

    /// Call this first; the other functions require that it returned Ok.
    virtual OpenResult open() = 0;

    /// The plugged-in controllers in the platform's order, or nullopt if the enumeration failed.
    virtual std::optional<std::vector<AttachedController>> attachedControllers() = 0;

    /// Whether the native message reports that a controller may have been plugged in or removed.
    virtual bool announcesChange(const QByteArray& eventType, void* message) = 0;

    /// The interval at which to poll attachedChanged() while no controller is in use; zero on a
    /// platform that announces changes by native messages.
    virtual std::chrono::milliseconds checkPeriod() const = 0;

    /// Whether controllers were plugged in or removed since the previous call of this function or
    /// of attachedControllers().
    virtual bool attachedChanged() = 0;

    /// The implementation for the platform of this build.
    static std::unique_ptr<ControllerSystem> create();
};
