#include "input/action_mapper.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <algorithm>

namespace {

constexpr QLatin1Char kAlternativeMark('#');
constexpr QLatin1Char kAnyPositionMark('~');

const QHash<QString, Action> kActions{
    {"toggle blind", Action::TOGGLE_BLIND},
    {"select previous screen", Action::SELECT_PREVIOUS_SCREEN},
    {"select next screen", Action::SELECT_NEXT_SCREEN},
    {"select all points", Action::SELECT_ALL_POINTS},
    {"unselect all points", Action::UNSELECT_ALL_POINTS},
    {"select top neighbour", Action::SELECT_NEIGHBOUR_TOP},
    {"select right neighbour", Action::SELECT_NEIGHBOUR_RIGHT},
    {"select bottom neighbour", Action::SELECT_NEIGHBOUR_BOTTOM},
    {"select left neighbour", Action::SELECT_NEIGHBOUR_LEFT},
    {"add top neighbour", Action::SELECT_ADD_NEIGHBOUR_TOP},
    {"add right neighbour", Action::SELECT_ADD_NEIGHBOUR_RIGHT},
    {"add bottom neighbour", Action::SELECT_ADD_NEIGHBOUR_BOTTOM},
    {"add left neighbour", Action::SELECT_ADD_NEIGHBOUR_LEFT},
    {"add current column", Action::SELECT_ADD_CURRENT_COLUMN},
    {"add current row", Action::SELECT_ADD_CURRENT_ROW},
    {"add top neighbour column", Action::SELECT_ADD_NEIGHBOUR_COLUMN_TOP},
    {"add right neighbour column", Action::SELECT_ADD_NEIGHBOUR_COLUMN_RIGHT},
    {"add bottom neighbour column", Action::SELECT_ADD_NEIGHBOUR_COLUMN_BOTTOM},
    {"add left neighbour column", Action::SELECT_ADD_NEIGHBOUR_COLUMN_LEFT},
    {"horizontal mirror", Action::HORIZONTAL_MIRROR},
    {"vertical mirror", Action::VERTICAL_MIRROR},
    {"h flip", Action::H_FLIP},
    {"v flip", Action::V_FLIP},
    {"uv to xy", Action::UV_TO_XY},
    {"xy to uv", Action::XY_TO_UV},
    {"toggle uv editing", Action::TOGGLE_EDIT_UV},
};

const QHash<QString, GamepadButton> kInputs{
    {"rightcross_bottom", GamepadButton::RightCross_Bottom},
    {"rightcross_right", GamepadButton::RightCross_Right},
    {"rightcross_left", GamepadButton::RightCross_Left},
    {"rightcross_top", GamepadButton::RightCross_Top},
    {"leftdpad_top", GamepadButton::LeftDPad_Top},
    {"leftdpad_right", GamepadButton::LeftDPad_Right},
    {"leftdpad_bottom", GamepadButton::LeftDPad_Bottom},
    {"leftdpad_left", GamepadButton::LeftDPad_Left},
    {"trigger_left", GamepadButton::Trigger_Left},
    {"trigger_right", GamepadButton::Trigger_Right},
    {"back", GamepadButton::Back},
    {"start", GamepadButton::Start},
};

bool contains(const std::vector<GamepadButton>& inputs, GamepadButton input) {
    return std::find(inputs.begin(), inputs.end(), input) != inputs.end();
}

} // namespace

ActionMapper::ActionMapper(QObject* parent)
    : QObject(parent), settings_(QSettings::IniFormat, QSettings::UserScope, "Orvex", "Meshpad") {
    installDefaultMappings();
    reloadMappings();
}

void ActionMapper::installDefaultMappings() {
    const QFileInfo file(settings_.fileName());
    if (!file.absoluteDir().mkpath("."))
        return;
    if (!QFile::copy(":/config/Meshpad.ini", file.absoluteFilePath()))
        return;
    // Copies of resources are read-only, but users edit this file.
    QFile copy(file.absoluteFilePath());
    copy.setPermissions(copy.permissions() | QFileDevice::ReadUser | QFileDevice::WriteUser);
}

void ActionMapper::reloadMappings() {
    settings_.sync(); // the user may have edited the file since the last read
    mappings_.clear();
    settings_.beginGroup("ActionMappings");
    const QStringList keys = settings_.childKeys();
    for (const QString& key : keys)
        loadMapping(key);
    settings_.endGroup();
}

void ActionMapper::loadMapping(const QString& key) {
    const auto action = kActions.constFind(key.section(kAlternativeMark, 0, 0).toLower());
    if (action == kActions.cend()) {
        qWarning("Skipping unknown mapping action '%s'", qUtf8Printable(key));
        return;
    }

    const QStringList elements = settings_.value(key).toStringList();
    if (elements.isEmpty() || (elements.size() == 1 && elements.first().isEmpty()))
        return;

    std::vector<GamepadButton> orderedInputs;
    std::vector<GamepadButton> anyPositionInputs;
    for (const QString& element : elements) {
        const bool anyPosition = element.startsWith(kAnyPositionMark);
        const auto input = kInputs.constFind(element.mid(anyPosition ? 1 : 0).toLower());
        if (input == kInputs.cend()) {
            qWarning("Skipping mapping '%s' due to unknown input '%s'", qUtf8Printable(key),
                     qUtf8Printable(element));
            return;
        }
        (anyPosition ? anyPositionInputs : orderedInputs).push_back(*input);
    }
    mappings_.emplace_back(std::move(orderedInputs), std::move(anyPositionInputs), *action);
}

bool ActionMapper::matchesHeldInputs(const Mapping& mapping) const {
    if (heldInputs_.size() != mapping.orderedInputs.size() + mapping.anyPositionInputs.size())
        return false;
    auto nextOrdered = mapping.orderedInputs.begin();
    for (const GamepadButton held : heldInputs_)
        if (nextOrdered != mapping.orderedInputs.end() && *nextOrdered == held)
            ++nextOrdered;
        else if (!contains(mapping.anyPositionInputs, held))
            return false;
    return nextOrdered == mapping.orderedInputs.end();
}

void ActionMapper::onButtonPressed(GamepadButton button) {
    heldInputs_.push_back(button);
    const auto match =
        std::find_if(mappings_.begin(), mappings_.end(),
                     [this](const Mapping& mapping) { return matchesHeldInputs(mapping); });
    if (match != mappings_.end())
        emit action(match->action);
}

void ActionMapper::onButtonReleased(GamepadButton button) {
    const auto held = std::find(heldInputs_.begin(), heldInputs_.end(), button);
    if (held != heldInputs_.end())
        heldInputs_.erase(held);
}
