#include "input/controller_layout.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <tuple>
#include <utility>

namespace {

using Layout = ControllerLayout;
using Kind = Layout::InputKind;
using namespace ControllerOffset;

constexpr int kMissing = -1;     // index of an input that the device does not have
constexpr double kPressed = 0.5; // part of its way from which an input counts as a pressed button
constexpr int kReleasedTrigger = -32000; // positions up to here count as the low end
// The capacity of the standard joystick state; further inputs of a device are ignored.
constexpr std::size_t kMaxAxes = 8;
constexpr std::size_t kMaxHats = 4;
constexpr std::size_t kMaxButtons = 32;
constexpr std::size_t kStandardAxes = 6;
constexpr std::uint32_t kFirstExtraAxis = 24;

bool isAxis(std::uint32_t offset) {
    return offset < kHat;
}

/// An input that SDL's table names.
struct NamedInput {
    std::string_view name;
    std::uint32_t offset;
    int rest;
    int full;
};

constexpr std::array<NamedInput, 18> kNamedInputs{{
    {"a", button(0), 0, 1},
    {"b", button(1), 0, 1},
    {"x", button(2), 0, 1},
    {"y", button(3), 0, 1},
    {"leftshoulder", button(4), 0, 1},
    {"rightshoulder", button(5), 0, 1},
    {"back", button(6), 0, 1},
    {"start", button(7), 0, 1},
    {"dpup", kHat, 0, Layout::kUp},
    {"dpright", kHat, 0, Layout::kRight},
    {"dpdown", kHat, 0, Layout::kDown},
    {"dpleft", kHat, 0, Layout::kLeft},
    {"leftx", kX, Layout::kLow, Layout::kHigh},
    {"lefty", kY, Layout::kLow, Layout::kHigh},
    {"rightx", kRx, Layout::kLow, Layout::kHigh},
    {"righty", kRy, Layout::kLow, Layout::kHigh},
    {"lefttrigger", kZ, Layout::kLow, Layout::kHigh},
    {"righttrigger", kRz, Layout::kLow, Layout::kHigh},
}};

/// Removes a sign from the front: '+', '-', or 0 if there is none.
char takeSign(std::string_view& text) {
    if (text.empty() || (text.front() != '+' && text.front() != '-'))
        return 0;
    const char sign = text.front();
    text.remove_prefix(1);
    return sign;
}

/// Removes a number from the front.
std::optional<int> takeNumber(std::string_view& text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || number < 0)
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

/// The way of a whole axis, or of the half that the sign names.
std::pair<int, int> wayOf(char sign) {
    return {sign == 0 ? Layout::kLow : 0, sign == '-' ? Layout::kLow : Layout::kHigh};
}

/// Reads "b3", "h0.1" or "a2" with its marks into the device's part of a binding.
bool readSource(std::string_view text, Layout::Binding& binding) {
    const char sign = takeSign(text);
    const char kind = text.empty() ? '\0' : text.front();
    text.remove_prefix(text.empty() ? 0 : 1);
    const std::optional<int> index = takeNumber(text);
    if (!index)
        return false;
    binding.index = *index;
    switch (kind) {
    case 'b':
        binding.kind = Kind::Button;
        return true;
    case 'a':
        binding.kind = Kind::Axis;
        std::tie(binding.rest, binding.full) = wayOf(sign);
        if (text == "~")
            std::swap(binding.rest, binding.full);
        return true;
    case 'h': {
        binding.kind = Kind::Hat;
        text.remove_prefix(text.empty() ? 0 : 1); // the dot
        binding.full = takeNumber(text).value_or(0);
        return binding.full != 0;
    }
    default:
        return false;
    }
}

/// The offsets of the axes of an unknown device. Linux numbers the axes of a pad in the order of
/// their codes: left stick, left trigger, right stick, right trigger. A pad with four axes has two
/// sticks and no analog trigger; with three or five axes, one axis combines both triggers.
///
/// Some drivers order six axes differently. Released triggers are at their low end and released
/// sticks in the middle, so the positions show the order.
std::vector<std::uint32_t> guessedAxes(const std::vector<int>& positions) {
    const auto isReleasedTrigger = [](int position) { return position <= kReleasedTrigger; };
    if (positions.size() >= kStandardAxes &&
        std::count_if(positions.begin() + 2, positions.begin() + kStandardAxes,
                      isReleasedTrigger) == 2) {
        std::vector<std::uint32_t> axes{kX, kY};
        // Drivers that put both triggers at the end put the right one first.
        const bool rightFirst = isReleasedTrigger(positions[4]) && isReleasedTrigger(positions[5]);
        std::vector<std::uint32_t> triggers{rightFirst ? kRz : kZ, rightFirst ? kZ : kRz};
        std::vector<std::uint32_t> stick{kRx, kRy};
        for (std::size_t i = 2; i < kStandardAxes; ++i) {
            std::vector<std::uint32_t>& next = isReleasedTrigger(positions[i]) ? triggers : stick;
            axes.push_back(next.front());
            next.erase(next.begin());
        }
        return axes;
    }
    if (positions.size() == 4)
        return {kX, kY, kRx, kRy};
    return {kX, kY, kZ, kRx, kRy, kRz};
}

/// How far the part of the input is moved, 0 to 1.
double movedPart(const Layout::Binding& binding, const Layout::Inputs& inputs) {
    const std::vector<int>& positions = inputs.at(static_cast<std::size_t>(binding.kind));
    const auto index = static_cast<std::size_t>(binding.index); // huge for kMissing
    if (index >= positions.size())
        return 0;
    if (binding.kind != Kind::Axis)
        return (positions[index] & binding.full) != 0 ? 1 : 0;
    const double way =
        double(positions[index] - binding.rest) / double(binding.full - binding.rest);
    return std::clamp(way, 0.0, 1.0);
}

} // namespace

std::optional<ControllerLayout> ControllerLayout::ofMapping(std::string_view line) {
    ControllerLayout layout;
    for (int field = 0; !line.empty(); ++field) {
        const std::string_view element = line.substr(0, line.find(','));
        line.remove_prefix(std::min(element.size() + 1, line.size()));
        const std::size_t colon = element.find(':');
        if (field >= 2 && colon != std::string_view::npos) // after identifier and name
            layout.bind(element.substr(0, colon), element.substr(colon + 1));
    }
    if (layout.bindings_.empty())
        return std::nullopt;

    const std::vector<std::uint32_t> present = layout.offsets();
    const auto lacks = [&](std::uint32_t offset) {
        return std::find(present.begin(), present.end(), offset) == present.end();
    };
    if (lacks(kZ) != lacks(kRz))
        layout.bindings_.push_back(
            {Kind::Button, kMissing, 0, 1, lacks(kZ) ? kZ : kRz, kLow, kHigh});
    return layout;
}

void ControllerLayout::bind(std::string_view target, std::string_view source) {
    const char sign = takeSign(target);
    const auto* const named =
        std::find_if(kNamedInputs.begin(), kNamedInputs.end(),
                     [&](const NamedInput& input) { return input.name == target; });
    Binding binding;
    if (named == kNamedInputs.end() || !readSource(source, binding))
        return;
    binding.offset = named->offset;
    binding.offsetRest = named->rest;
    binding.offsetFull = named->full;
    // One line of the table names three directions of a hat where it means one.
    if (binding.kind == Kind::Hat && !std::has_single_bit(static_cast<unsigned>(binding.full)))
        binding.full = binding.offsetFull;
    if (sign != 0 && isAxis(binding.offset))
        std::tie(binding.offsetRest, binding.offsetFull) = wayOf(sign);
    bindings_.push_back(binding);
}

ControllerLayout ControllerLayout::ofUnknown(const Inputs& released) {
    const auto& [buttons, axes, hats] = released;
    ControllerLayout layout;
    const std::vector<std::uint32_t> guessed = guessedAxes(axes);
    for (std::size_t i = 0; i < std::min(axes.size(), kMaxAxes); ++i) {
        const auto extra = static_cast<std::uint32_t>(kFirstExtraAxis + 4 * (i - guessed.size()));
        layout.bindings_.push_back({Kind::Axis, static_cast<int>(i), kLow, kHigh,
                                    i < guessed.size() ? guessed[i] : extra, kLow, kHigh});
    }
    for (std::size_t i = 0; i < std::min(hats.size(), kMaxHats); ++i)
        for (const int bit : {kUp, kRight, kDown, kLeft})
            layout.bindings_.push_back({Kind::Hat, static_cast<int>(i), 0, bit,
                                        kHat + 4 * static_cast<std::uint32_t>(i), 0, bit});
    for (std::size_t i = 0; i < std::min(buttons.size(), kMaxButtons); ++i)
        layout.bindings_.push_back(
            {Kind::Button, static_cast<int>(i), 0, 1, button(static_cast<std::uint32_t>(i)), 0, 1});
    return layout;
}

std::vector<std::uint32_t> ControllerLayout::offsets() const {
    std::vector<std::uint32_t> all;
    for (const Binding& binding : bindings_)
        if (std::find(all.begin(), all.end(), binding.offset) == all.end())
            all.push_back(binding.offset);
    return all;
}

int ControllerLayout::position(std::uint32_t offset, const Inputs& inputs) const {
    int bits = 0;
    std::optional<double> position;
    for (const Binding& binding : bindings_) {
        if (binding.offset != offset)
            continue;
        const double moved = movedPart(binding, inputs);
        if (moved >= kPressed)
            bits |= binding.offsetFull;
        position = position.value_or(binding.offsetRest) +
                   moved * (binding.offsetFull - binding.offsetRest);
    }
    if (!isAxis(offset))
        return bits;
    return std::clamp(static_cast<int>(std::lround(position.value_or(0))), kLow, kHigh);
}
