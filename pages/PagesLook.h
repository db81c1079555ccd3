#pragma once

#include "app/shell/FocusLook.h"

#include <QSize>

/// Texts, sizes, colours and style sheets of the control pages (test patterns, quick keys,
/// settings). Sizes in device-independent pixels, fonts in pixels.
namespace PagesLook {

inline constexpr char kIdleColor[] = "#323232";   ///< of a key or pattern that is not active
inline constexpr char kActiveColor[] = "#0096ff"; ///< of the pattern that is shown
inline constexpr char kTextColor[] = "#ffffff";
using FocusLook::kShadowColor;
inline constexpr char kOutlineColor[] = "#40ffffff"; ///< around a key of any colour
inline constexpr int kFontSize = 18;
inline constexpr int kSpacing = 12; ///< between the buttons of a grid

inline constexpr int kPatternColumns = 4;
inline constexpr int kPatternRadius = 5;
inline constexpr int kPatternTextHeight = 28;
inline constexpr int kPatternPenWidth = 2;
inline constexpr char kHoverColor[] = "#6a6a6a"; ///< of a pattern's border under the pointer
inline constexpr char kActivePatternDescription[] = "Shown on the outputs";

inline constexpr QSize kSmallestQuickKey{72, 48}; ///< a finger still hits it; larger grids scroll
inline constexpr int kQuickKeyRadius = 9; ///< of lines drawn on a key, within its rounded border
inline constexpr int kQuickKeyPadding = 7;
inline constexpr int kSmallestQuickKeyFontSize = 11;
inline constexpr double kReadableContrast = 3.0; ///< of large bold text
inline constexpr char kQuickKeyStyleStart[] = "QPushButton    {            background-color: ";
inline constexpr char kQuickKeyStyleEnd[] =
    ";                       color: \"#ffffff\"    }        QPushButton:pressed    {            "
    "background-color: \"#0096FF\"    }";

inline constexpr QSize kPageSpinBoxSize{120, 35};
inline constexpr char kPageSpinBoxName[] = "Page of quick keys";
inline constexpr QSize kTurnButtonSize{44, 44};
inline constexpr QSize kTurnIconSize{26, 26};
inline constexpr char kPreviousPageName[] = "Previous page";
inline constexpr char kNextPageName[] = "Next page";
inline constexpr char kPreviousPageIcon[] = ":/img/arrow-left";
inline constexpr char kNextPageIcon[] = ":/img/arrow-right";
inline constexpr char kIconOffSuffix[] = "-off";
inline constexpr char kPageCountText[] = "%1 / %2";
inline constexpr int kPageCountWidth = 140; ///< for "10000 / 10000"
inline constexpr char kPageSpinBox[] =
    "QSpinBox {color : white;border-radius: 10px;background-color: #323232;}QSpinBox::up-button "
    "{subcontrol-position: right; border-image: url(:/img/arrow-right) 1;width: 26px;height: "
    "26px;}QSpinBox::up-button:hover {border-image: url(:/img/arrow-right-hover) "
    "1;}QSpinBox::up-button:pressed {border-image: url(:/img/arrow-right-pressed) "
    "1;}QSpinBox::down-button {subcontrol-position: left;border-image: url(:/img/arrow-left) "
    "1;width: 26px; height: 26px;}QSpinBox::down-button:hover {border-image: "
    "url(:/img/arrow-left-hover) 1;}QSpinBox::down-button:pressed {border-image: "
    "url(:/img/arrow-left-pressed) 1;}";

inline constexpr double kSettingsFontScale = 4.0 / 3; ///< of the usual font, for arm's length
inline constexpr int kSettingsMargin = 100;
inline constexpr QSize kSettingsLargest{300, 250};
inline constexpr int kSettingsHorizontalSpacing = 20;
inline constexpr int kSettingsVerticalSpacing = 50;

} // namespace PagesLook
