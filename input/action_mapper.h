#pragma once

#include "input/action.h"
#include "input/gamepad_button.h"
#include "input/mapping.h"

#include <QObject>
#include <QSettings>

#include <vector>

/// Turns presses and releases of a controller's buttons into actions, by the user's mapping file.
class ActionMapper : public QObject {
    Q_OBJECT

public:
    /// Installs the built-in mappings as the user's file when there is none yet, then loads the
    /// file. An existing file is never touched.
    explicit ActionMapper(QObject* parent = nullptr);

    /// Reads the user's file again, as it is now on disk; the mappings loaded before are dropped.
    /// Entries with an unknown action or input are skipped with a warning, the rest is loaded.
    void reloadMappings();

public slots:
    void onButtonPressed(GamepadButton button);

    /// A release of a button that is not held changes nothing.
    void onButtonReleased(GamepadButton button);

signals:
    /// Emitted at the press that completes a combination, exactly when nothing else is held. When
    /// several mappings match, only the first one that was loaded counts.
    void action(Action action);

private:
    void installDefaultMappings();
    void loadMapping(const QString& key);
    bool matchesHeldInputs(const Mapping& mapping) const;

    QSettings settings_;
    std::vector<Mapping> mappings_;
    std::vector<GamepadButton> heldInputs_; ///< in the order in which they were pressed
};
