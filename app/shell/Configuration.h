#pragma once

#include "network/events/ProtocolTypes.h"

#include <QColor>
#include <QMap>
#include <QMargins>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QVariantMap>

/// One test picture that a Producer can show: its name for the operator and the path of its
/// thumbnail.
struct Pattern {
    QString name;
    QString imagePath;
};

/// Every text, picture path, size and colour of the interface, filled once at start-up and
/// read-only from then on. Sizes are in device-independent pixels.
struct Configuration {
    bool connected = false; ///< whether the window starts connected; always false

    QString logoPath;
    QString applicationName; ///< shown by the banner while not connected
    QString version;
    QStringList menuTabNames; ///< in the order of the banner's tabs
    QSize menuTabSize;
    QString disconnectButtonText;
    QSize disconnectButtonSize;

    QMap<NetworkCompanion::LV_NTC_PictureType, Pattern> testPatterns;
    QSize patternButtonSize; ///< of test pattern and quick key buttons

    QStringList visibilityImagesPath; ///< blinded, not blinded

    // Tool bar of the mesh editor; pictures of a toggle come as off, on.
    QStringList buttonBackgroundImagesPath;
    QStringList toolTabImagesPath; ///< select, deform
    QSize toolTabImagesSize;
    QStringList zoneLockerImagesPath;
    QString zoneLockerToolTip;
    QStringList moveLockerImagesPath;
    QString moveLockerToolTip;
    QStringList warpToolBarButtonsText;     ///< configuration, XY/UV
    QStringList warpToolBarButtonsToolTips; ///< configuration, XY/UV
    QSize warpToolButtonsSize;

    // One entry a button, in the order of the button ids; "%1" and "%2" stand for arrow-key names.
    QStringList selectButtonsPath;
    QStringList selectButtonsToolTips;
    QStringList deformButtonsPath; ///< a label where the entry is no picture
    QStringList deformButtonsToolTips;

    QString currentPointText;
    QString adjustViewButtonPath;
    QString adjustViewButtonToolTip;
    QStringList rotationButtonPath; ///< front, left, back, right
    QString rotationButtonToolTip;
    QString closeWindowButtonPath;
    QVariantMap
        sceneTexts; ///< the other texts of the mesh editor, by the names that its documents use

    QString usePointsText;
    QString pointsColorText;
    QString pointsShapeText;
    QMap<QString, QColor> pointColors;
    QStringList pointShapes; ///< the index is the shape code on the wire

    QSize dialogButtonSize;
    QSize comboBoxSize;
    QString canvasPath;         ///< URL of the scene document
    QStringList itemKindLabels; ///< by kind of item
    QMargins listScrollMargins; ///< kept around the selected row when it is scrolled into view
};

/// The record as the application uses it.
Configuration makeConfiguration();

/// The program's names, and the looks of window, banner, connect page and overlay: what is needed
/// without the record at hand. Sizes in device-independent pixels, fonts in points, style sheets of
/// one widget.
namespace ShellLook {

inline constexpr char kOrganization[] = "Orvex";
inline constexpr char kApplication[] = "Meshpad";
inline constexpr char kVersion[] = "1.7.2";

inline constexpr int kBannerHeight = 110;
inline constexpr int kBannerMargin = 9;
inline constexpr int kVersionFontPoints = 10;
inline constexpr int kTabCapWidth = 7;
inline constexpr int kTabFocusRadius = 4;
inline constexpr QSize kMinimumWindowSize{1280, 720};
inline constexpr char kWindowIcon[] = "://icon/Meshpad.ico";
inline constexpr char kStyleSheetPath[] = ":/qss/styleSheet.qss";

inline constexpr char kTabOff[] =
    "color: #fff; background-image: url(':/img/menu-center-off.svg'); background-color: "
    "transparent; border: 1px solid #323232; outline: none;";
inline constexpr char kTabOn[] =
    "color: #fff; background-image: url(':/img/menu-center-on.svg'); background-color: "
    "transparent; border: 1px solid #0096ff; outline: none;";
inline constexpr char kLeftCapOff[] =
    "color: #fff; border-image: url(':/img/menu-left-off.svg') 0 0 0 0 stretch stretch; "
    "background-color: transparent; outline: none;";
inline constexpr char kLeftCapOn[] =
    "color: #fff; border-image: url(':/img/menu-left-on.svg') 0 0 0 0 stretch stretch; "
    "background-color: transparent; outline: none;";
inline constexpr char kRightCapOff[] =
    "color: #fff; border-image: url(':/img/menu-right-off.svg') 0 0 0 0 stretch stretch; "
    "background-color: transparent; outline: none;";
inline constexpr char kRightCapOn[] =
    "color: #fff; border-image: url(':/img/menu-right-on.svg') 0 0 0 0 stretch stretch; "
    "background-color: transparent; outline: none;";
inline constexpr char kBannerDisconnectButton[] =
    "color: #fff; border-radius: 7px; background-color: #343434; margin: 0px; outline: none;";

inline constexpr char kProducersTitle[] = "Producers on network";
inline constexpr int kProducersTitlePoints = 14;
inline constexpr int kProducersTitleMargin = 80;
inline constexpr QSize kAddressButtonSize{250, 50};
inline constexpr char kAddressButtonOff[] = "font-weight: bold; font-size: 16px; color: #fff; "
                                            "background-color: transparent;outline: none;";
inline constexpr char kAddressButtonOn[] = "font-weight: bold; font-size: 16px; color: #fff; "
                                           "background-color: #0096ff;outline: none;";
inline constexpr int kIpListStretch = 3; // of the page's height, to the connect button's
inline constexpr int kConnectButtonStretch = 1;
inline constexpr QSize kConnectButtonSize{102, 102};
inline constexpr char kConnectButtonName[] = "Connect to the selected Producer";
inline constexpr char kConnectButtonInitial[] =
    "background-image: none; background-color: transparent; outline: none;";
inline constexpr char kConnectButtonOff[] =
    "background-image: none; background-color: transparent;outline: none;";
inline constexpr char kConnectButtonOn[] =
    "background-image: url(':/img/connect.svg'); background-color: transparent;outline: none;";

inline constexpr char kDisconnectedText[] = "Disconnected";
inline constexpr int kDisconnectedPoints = 12;
inline constexpr char kDisconnectedLabel[] = "color: red;";
inline constexpr int kOverlaySideMargin = 9;
inline constexpr char kOverlayDisconnectButton[] =
    "color: #fff; border-radius: 7px; background-color: #343434; margin: 0px;";

} // namespace ShellLook

/// The looks of the media list; sizes and style sheets as above.
namespace WarpLook {

inline constexpr int kRowWidth = 175;
inline constexpr int kRowHeight = 50;
inline constexpr int kRowLabelWidth = 135;
inline constexpr int kRowLeftMargin = 6;
inline constexpr int kRowSpacing = 2;
inline constexpr char kRowBackground[] = "background-color: #1e1e1e;";
inline constexpr char kActiveRowBackground[] = "background-color: #008cf5;";
inline constexpr char kActiveLabelColor[] = "#ffffff";
inline constexpr char kMediaLabelColor[] = "#ffffff";
inline constexpr char kScreenLabelColor[] = "#10B0FF";
inline constexpr char kBlindName[] = "Blind";
inline constexpr char kBlindToolTip[] = "Blind or unblind";
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

/// Look of the ring that says what the keyboard is with; sizes in device-independent pixels.
namespace FocusLook {

inline constexpr char kRingColor[] = "#ffffff";
inline constexpr char kShadowColor[] = "#c0000000"; ///< beside the ring, and behind white text
inline constexpr int kRingInset = 3;
inline constexpr int kRingWidth = 2;

} // namespace FocusLook

/// Looks of the control pages (test patterns, quick keys, settings): what those widgets need of
/// their own. Sizes in device-independent pixels, fonts in pixels.
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
