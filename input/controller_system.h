#pragma once

#include "input/controller_device.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// A controller that is plugged in but not opened yet.
struct AttachedController {
    QString name; ///< the product's name
    std::function<std::unique_ptr<ControllerDevice>()>
        create; ///< gives null when it cannot be opened
};

/// The way to the controllers of one platform: everything about them that differs between platforms
/// stands behind this interface and ControllerDevice.
class ControllerSystem {
public:
    enum class OpenResult { Ok, NoModule, NoInterface };

    virtual ~ControllerSystem() = default;

    /// Nothing else may be called unless this gave Ok.
    virtual OpenResult open() = 0;

    /// In the platform's order; nothing when they could not be enumerated.
    virtual std::optional<std::vector<AttachedController>> attachedControllers() = 0;

    /// Whether a native message of the application says that a controller may have come or gone.
    virtual bool announcesChange(const QByteArray& eventType, void* message) const = 0;

    /// How often `attachedChanged` wants to be asked while no controller is in use; zero for never,
    /// where native messages tell.
    virtual std::chrono::milliseconds lookPeriod() const = 0;

    /// Whether controllers have come or gone since the last time.
    virtual bool attachedChanged() = 0;

    /// The system of the platform that this was built for.
    static std::unique_ptr<ControllerSystem> create();
};
