#include "app/DisconnectOverlay.h"

#include "app/shell/Configuration.h"
#include "app/shell/ShellLook.h"

#include <QLabel>
#include <QPushButton>

using namespace ShellLook;

DisconnectOverlay::DisconnectOverlay(const Configuration& configuration, QWidget* parent)
    : Veil(configuration, parent) {
    initOverlay();
}

DisconnectOverlay::~DisconnectOverlay() = default;

void DisconnectOverlay::initOverlay() {
    layout_.addWidget(
        createButton(configuration_.disconnectButtonText, configuration_.disconnectButtonSize), 0,
        Qt::AlignRight);
    // Places the button exactly over the banner's.
    const int margin = (kBannerHeight - configuration_.disconnectButtonSize.height()) / 2;
    layout_.setContentsMargins(kOverlaySideMargin, margin, kOverlaySideMargin, margin);

    QLabel* label = createLabel(QLatin1StringView(kDisconnectedText));
    QFont font = label->font();
    font.setPointSize(kDisconnectedPoints);
    font.setBold(true);
    label->setFont(font);
    label->setStyleSheet(QLatin1StringView(kDisconnectedLabel));

    auto* details = new QVBoxLayout;
    badge_ = new LinkBadge(configuration_, this);
    details->addWidget(badge_, 0, Qt::AlignHCenter);
    QLabel* hint = createLabel(configuration_.keepsTryingText);
    QFont hintFont = hint->font();
    hintFont.setPixelSize(configuration_.linkStatePixels);
    hint->setFont(hintFont);
    details->addWidget(hint, 0, Qt::AlignHCenter);
    details->addStretch();

    layout_.addStretch(1); // the label stays in the middle
    layout_.addWidget(label, 0, Qt::AlignCenter);
    layout_.addLayout(details, 1);
}
