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

/// How the link badge shows one state of the connection: "%1" stands for milliseconds in its text,
/// "%1" and "%2" for the address and for milliseconds in its words for tool tip and screen reader.
struct LinkLook {
    QString text;
    QString toolTip;
    QColor color;
};

/// The texts, picture paths, sizes and colours of the interface; filled once at start-up, read-only
/// afterwards. Sizes in device-independent pixels. Members marked API are not used by the
/// application itself.
struct Configuration {
    bool connected = false; ///< always false

    QString logoPath;
    QString applicationName; ///< shown by the banner while not connected
    QString version;
    QStringList menuTabNames; ///< in the order of the banner's tabs
    QSize menuTabSize;
    QString disconnectButtonText;
    QSize disconnectButtonSize;

    QString connectingText; ///< "%1" stands for the Producer's address
    QString cancelButtonText;
    QSize cancelButtonSize;
    int cancelButtonGap = 0; ///< above it
    QString keepsTryingText; ///< on the veil over a lost connection

    LinkLook linkConnected; ///< without any echo
    LinkLook linkEchoes;    ///< connected
    LinkLook linkNotAnswering;
    LinkLook linkTrying;
    QSize linkBadgeSize;
    QColor linkBackground;
    QColor linkTextColor;
    int linkAddressPixels = 0; ///< sizes of the fonts
    int linkStatePixels = 0;
    int linkPadding = 0;
    int linkShapeRadius = 0;
    int linkRadius = 0; ///< of the corners
    int linkBorderWidth = 0;

    QMap<NetworkCompanion::LV_NTC_PictureType, Pattern> testPatterns;
    QSize patternButtonSize; ///< of test pattern and quick key buttons

    QStringList visibilityImagesPath; ///< blinded, not blinded

    // Tool bar of the mesh editor; the pictures of a toggle are ordered off, on.
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
    QStringList deformButtonsPath;     ///< a label where the entry is no picture
    QStringList deformButtonsPictures; ///< above the labels
    QStringList deformButtonsToolTips;

    QString currentPointText; // API
    QString adjustViewButtonPath;
    QString adjustViewButtonToolTip;
    QStringList rotationButtonPath; ///< front, left, back, right
    QString rotationButtonToolTip;
    QString closeWindowButtonPath;
    /// The other texts of the mesh editor, by the names that its documents use.
    QVariantMap sceneTexts;

    QString usePointsText;
    QString pointsColorText;
    QString pointsShapeText;
    QMap<QString, QColor> pointColors;
    QStringList pointShapes; ///< the index is the shape code on the wire

    QSize dialogButtonSize;
    QSize comboBoxSize;
    QString canvasPath;         ///< URL of the scene document
    QStringList itemKindLabels; // API
    QMargins listScrollMargins; ///< kept around the selected row when it is scrolled into view
};

/// The one record that the application uses.
Configuration makeConfiguration();
