#pragma once

#include "input/action.h"
#include "input/gamepad_button.h"
#include "input/mapping.h"

#include <QObject>
#include <QSettings>

#include <vector>

/// Translates presses and releases of controller buttons into actions according to the user's
/// mapping file.
class ActionMapper : public QObject {
    Q_OBJECT

public:
    /// Copies the built-in mappings to the user's file if that does not exist, then loads the file.
    /// An existing file is not changed.
    explicit ActionMapper(QObject* parent = nullptr);

    /// Replaces all mappings by those of the user's file, read from disk again. Entries with an
    /// unknown action or input are skipped with a warning; the others are loaded.
    void reloadMappings();

public slots:
    void onButtonPressed(GamepadButton button);

    /// Does nothing if the button is not held.
    void onButtonReleased(GamepadButton button);

signals:
    /// Emitted when a press completes a combination and no other input is held. If several mappings
    /// match, the first loaded one determines the action.
    void action(Action action);

private:
    void installDefaultMappings();
    void loadMapping(const QString& key);
    bool matchesHeldInputs(const Mapping& mapping) const;

    QSettings settings_;
    std::vector<Mapping> mappings_;
    std::vector<GamepadButton> heldInputs_; ///< in the order of their presses
};
