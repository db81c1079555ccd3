#pragma once

#include <QSize>

#include <cstddef>

/// The program's names, and the texts, sizes and style sheets of window, banner, connect page and
/// overlay that are needed without a Configuration. Sizes in device-independent pixels, fonts in
/// points; each style sheet is for one widget.
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
inline constexpr std::size_t kMostAddresses = 512; // whose places are remembered
inline constexpr char kAddressButtonOff[] = "font-weight: bold; font-size: 16px; color: #fff; "
                                            "background-color: transparent;outline: none;";
inline constexpr char kAddressButtonOn[] = "font-weight: bold; font-size: 16px; color: #fff; "
                                           "background-color: #0096ff;outline: none;";
// The list of addresses and the connect button share the page's height in this ratio.
inline constexpr int kIpListStretch = 3;
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
inline constexpr char kOverlayButton[] =
    "color: #fff; border-radius: 7px; background-color: #343434; margin: 0px;";

} // namespace ShellLook
