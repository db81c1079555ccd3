#include "app/shell/Configuration.h"

#include "app/shell/ShellLook.h"

using NetworkCompanion::LV_NTC_PictureType;

Configuration makeConfiguration() {
    Configuration c;
    c.connected = false;
    c.logoPath = QStringLiteral(":/img/logos.svg");
    c.applicationName = QLatin1StringView(ShellLook::kApplication);
    c.version = QLatin1StringView(ShellLook::kVersion);
    c.menuTabNames = {"Warp", "Quick Keys", "Test patterns", "Settings"};
    c.menuTabSize = {150, 40};
    c.disconnectButtonText = QStringLiteral("Disconnect");
    c.disconnectButtonSize = {100, 50};

    c.connectingText = QStringLiteral("Connecting to %1");
    c.cancelButtonText = QStringLiteral("Cancel");
    c.cancelButtonSize = {120, 50};
    c.cancelButtonGap = 12;
    c.keepsTryingText = QStringLiteral("Meshpad keeps trying to connect again.");

    const QColor green(0x3c, 0xc8, 0x78), amber(0xff, 0xb0, 0x00), red(0xff, 0x50, 0x50);
    c.linkConnected = {"connected", "%1: connected", green};
    c.linkEchoes = {"connected, %1 ms", "%1: connected, confirms a change after %2 ms", green};
    c.linkNotAnswering = {"not answering", "%1: connected, but not answering", amber};
    c.linkTrying = {"not connected, trying", "%1: not connected, trying to connect again", red};
    c.linkBadgeSize = {240, 54};
    c.linkBackground = QColor(0x14, 0x14, 0x14);
    c.linkTextColor = QColor(0xff, 0xff, 0xff);
    c.linkAddressPixels = 16;
    c.linkStatePixels = 15;
    c.linkPadding = 7;
    c.linkShapeRadius = 11;
    c.linkRadius = 7;
    c.linkBorderWidth = 2;

    const auto pattern = [&c](LV_NTC_PictureType type, const char* name, const char* file) {
        c.testPatterns.insert(
            type, {QString::fromLatin1(name), QStringLiteral(":/patterns/") + QLatin1String(file)});
    };
    pattern(LV_NTC_PictureType::None, "None", "NoneBlack.png");
    pattern(LV_NTC_PictureType::Small, "Small", "mire_small_pattern.png");
    pattern(LV_NTC_PictureType::Horizontal, "Horizontal", "mire_horizontal_black_level.png");
    pattern(LV_NTC_PictureType::Vertical, "Vertical", "mire_vertical_black_level.png");
    pattern(LV_NTC_PictureType::Tile, "Tile", "mire_tile.png");
    pattern(LV_NTC_PictureType::Logo, "LV Logo", "mire_lumivane_logo.png");
    pattern(LV_NTC_PictureType::SmpteHorizontal, "SMPTE Hor.", "mire_smpte_hor_color_bar.png");
    pattern(LV_NTC_PictureType::SmpteVertical, "SMPTE Vert.", "mire_smpte_ver_color_bar.png");
    pattern(LV_NTC_PictureType::Osd, "OSD", "mire_osd.png");
    pattern(LV_NTC_PictureType::FramerateCpu, "Framerate (CPU)", "mire_framerate.png");
    pattern(LV_NTC_PictureType::FramerateGpu, "Framerate (GPU)", "mire_gpu_framerate.png");
    pattern(LV_NTC_PictureType::White, "White", "mire_white.png");
    c.patternButtonSize = {220, 160};

    c.visibilityImagesPath = {":/img/visible-off.svg", ":/img/visible-on.svg"};

    c.buttonBackgroundImagesPath = {"qrc:///img/button-off.svg", "qrc:///img/button-on.svg"};
    c.toolTabImagesPath = {"qrc:///img/select-tool.svg", "qrc:///img/deform-tool.svg"};
    c.toolTabImagesSize = {60, 50};
    c.zoneLockerImagesPath = {"qrc:///img/zone-locker-off.svg", "qrc:///img/zone-locker-on.svg"};
    c.zoneLockerToolTip = QStringLiteral("Allow/Disallow points movement outside the item area");
    c.moveLockerImagesPath = {"qrc:///img/move-locker-off.svg", "qrc:///img/move-locker-on.svg"};
    c.moveLockerToolTip = QStringLiteral("Allow/Disallow points movement");
    c.warpToolBarButtonsText = {"Configuration", "XY/UV"};
    c.warpToolBarButtonsToolTips = {"Configure the item deformation",
                                    "Switch between editing the points positions or UVs"};
    c.warpToolButtonsSize = {50, 50};

    c.selectButtonsPath = {
        "qrc:///img/select-all.svg",         "qrc:///img/select-none.svg",
        "qrc:///img/select-right.svg",       "qrc:///img/select-left.svg",
        "qrc:///img/select-bottom.svg",      "qrc:///img/select-top.svg",
        "qrc:///img/add-select-left.svg",    "qrc:///img/add-select-top.svg",
        "qrc:///img/add-select-bottom.svg",  "qrc:///img/add-select-right.svg",
        "qrc:///img/select-column.svg",      "qrc:///img/select-row.svg",
        "qrc:///img/select-column-left.svg", "qrc:///img/select-row-top.svg",
        "qrc:///img/select-row-bottom.svg",  "qrc:///img/select-column-right.svg"};
    c.selectButtonsToolTips = {"Select all points (Ctrl + A)",
                               "Unselect all points (Esc)",
                               "Select right neighbour point (Alt + %1)",
                               "Select left neighbour point (Alt + %1)",
                               "Select bottom neighbour point (Alt + %1)",
                               "Select top neighbour point (Alt + %1)",
                               "Add left neighbour point to selection (Shift + Alt + %1)",
                               "Add top neighbour point to selection (Shift + Alt + %1)",
                               "Add bottom neighbour point to selection (Shift + Alt + %1)",
                               "Add right neighbour point to selection (Shift + Alt + %1)",
                               "Select current column (Ctrl + Alt + %1 or %2)",
                               "Select current row (Ctrl + Alt + %1 or %2)",
                               "Select left neighbour column (Ctrl + Shift + Alt + %1)",
                               "Select top neighbour row (Ctrl + Shift + Alt + %1)",
                               "Select bottom neighbour row (Ctrl + Shift + Alt + %1)",
                               "Select right neighbour column (Ctrl + Shift + Alt + %1)"};
    c.deformButtonsPath = {"Edit",
                           "qrc:///img/horizontal-mirror.svg",
                           "qrc:///img/vertical-mirror.svg",
                           "H-Flip",
                           "V-Flip",
                           "uv2xy",
                           "xy2uv"};
    c.deformButtonsPictures = {"",
                               "",
                               "",
                               "qrc:///img/horizontal-flip.svg",
                               "qrc:///img/vertical-flip.svg",
                               "qrc:///img/uv-to-xy.svg",
                               "qrc:///img/xy-to-uv.svg"};
    c.deformButtonsToolTips = {"Edit",
                               "Horizontal mirror",
                               "Vertical mirror",
                               "Horizontal flip",
                               "Vertical flip",
                               "Copy UV deformation in XY space",
                               "Copy XY deformation in UV space"};

    c.currentPointText = QStringLiteral("Current point: --  x: --px  y: --px");
    c.adjustViewButtonPath = QStringLiteral("qrc:///img/adjust-view.svg");
    c.adjustViewButtonToolTip = QStringLiteral("Adjust view");
    c.rotationButtonPath = {"qrc:///img/view-front.svg", "qrc:///img/view-left.svg",
                            "qrc:///img/view-back.svg", "qrc:///img/view-right.svg"};
    c.rotationButtonToolTip = QStringLiteral("Change workspace rotation");
    c.closeWindowButtonPath = QStringLiteral("qrc:///img/close-button.svg");
    c.sceneTexts = {
        {"noCurrentPoint", "Current point: --     X: -- px     Y: -- px"},
        {"currentPoint", "Current point: %1     X: %2 px     Y: %3 px"},
        {"toolTabs", QStringList{"Select", "Deform"}},
        {"zoom", "Zoom"},
        {"zoomValue", "%1 %"},
        {"configuration", "Configuration"},
        {"curve", "Type of curves"},
        {"curves", QStringList{"None", "Keystone", "Bezier", "Curve"}},
        {"columns", "Number of columns"},
        {"rows", "Number of rows"},
        {"dialogLabel", "%1:"},
        {"reset", "Reset"},
        {"cancel", "Cancel"},
        {"ok", "OK"},
        {"rotation", "Rotation"},
        {"views", QStringList{"Front", "Left", "Back", "Right"}},
        {"close", "Close"},
    };

    c.usePointsText = QStringLiteral("Use Display remote points");
    c.pointsColorText = QStringLiteral("Points color:");
    c.pointsShapeText = QStringLiteral("Points shape:");
    c.pointColors = {{"Red", QColor(255, 0, 0)},       {"Green", QColor(0, 255, 0)},
                     {"Blue", QColor(0, 0, 255)},      {"Yellow", QColor(255, 255, 0)},
                     {"Magenta", QColor(255, 0, 255)}, {"Cyan", QColor(0, 255, 255)},
                     {"Dark red", QColor(128, 0, 0)},  {"Dark green", QColor(0, 128, 0)},
                     {"Dark blue", QColor(0, 0, 128)}};
    c.pointShapes = {"None", "Small point", "Cross", "Circle", "Square"};

    c.dialogButtonSize = {100, 50};
    c.comboBoxSize = {120, 50};
    c.canvasPath = QStringLiteral("qrc:///qml/Canvas.qml");
    c.itemKindLabels = {"0: Screen", "1: Screen", "2: Screen", "Texture", "Media"};
    c.listScrollMargins = {0, 50, 0, 50};
    return c;
}
