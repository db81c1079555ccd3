#pragma once

#include <QMargins>
#include <QSize>

/// Texts, sizes, colours and style sheets of the media list. Sizes in device-independent pixels;
/// each style sheet is for one widget.
namespace WarpLook {

inline constexpr int kRowWidth = 175;
inline constexpr int kRowHeight = 50;
inline constexpr int kRowLabelWidth = 135;
inline constexpr int kRowLeftMargin = 6;
inline constexpr int kRowSpacing = 2;
inline constexpr int kNameFontSize = 15;
inline constexpr int kMostContext = 8; // characters shown before those in which names differ
inline constexpr char kRowBackground[] = "background-color: #1e1e1e;";
inline constexpr char kActiveRowBackground[] = "background-color: #008cf5;";
inline constexpr char kActiveLabelColor[] = "#ffffff";
inline constexpr char kMediaLabelColor[] = "#ffffff";
inline constexpr char kScreenLabelColor[] = "#10B0FF";
inline constexpr char kBlindName[] = "Blind";
inline constexpr char kBlindToolTip[] = "Blind or unblind";
inline constexpr char kBlindWaiting[] = "Waiting for the Producer";
inline constexpr char kBlindRefused[] = "Not confirmed by the Producer";
inline constexpr int kConfirmMs = 1000; // within which the Producer reports a requested blind
inline constexpr int kRefusedMs = 2000; // how long the eye shows that it did not
inline constexpr int kEyeWidth = 44;    // of the target; covers the last pixels of the name
inline constexpr int kEyeRadius = 8;
inline constexpr char kEye[] = "background-color: transparent;";
inline constexpr char kEyeDownColor[] = "#70ffffff";
inline constexpr qreal kEyeWaitingOpacity = 0.3;
inline constexpr qreal kEyeDotSize = 6;
inline constexpr char kEyeDotColor[] = "#ffffff";
inline constexpr qreal kEyeSignSize = 18;
inline constexpr char kEyeSignColor[] = "#ffb000";
inline constexpr char kEyeSignTextColor[] = "#000000";
inline constexpr char kUnnamedPart[] = "Part";

inline constexpr int kListWidth = 220; // without the scroll bar
inline constexpr QMargins kListMargins{6, 6, 0, 0};
inline constexpr int kSearchHeight = 44;
inline constexpr int kClearSearchWidth = 40;
inline constexpr QSize kClearSearchIconSize{20, 20};
inline constexpr char kSearchName[] = "Search";
inline constexpr char kClearSearchName[] = "Clear the search";
inline constexpr char kFilterScreensText[] = "Filter screens";
inline constexpr int kTapSlack = 10; // how far a finger that taps may slip
inline constexpr int kLongPressMs = 600;
inline constexpr int kFillMs = 1000; // pause after which a list counts as filled
inline constexpr char kListName[] = "Items";
inline constexpr char kListArea[] = "background-color: transparent; border: none; color: #fff;";
inline constexpr char kListScrollBar[] = "color: #0096ff; background-color: #323232;";
inline constexpr char kSearchBox[] =
    "background-color: #323232; border: 1px solid #222; border-radius: 4px; color: #fff;";
inline constexpr char kClearSearch[] = "background-color: transparent; border: none;";
inline constexpr int kSearchRadius = 4;
inline constexpr char kSearchBoxNothingFound[] =
    "background-color: #323232; border: 1px solid #222; border-radius: 4px; color: red;";

} // namespace WarpLook
