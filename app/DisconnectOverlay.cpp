#include "app/DisconnectOverlay.h"

#include "app/shell/Configuration.h"
#include "app/shell/ShellLook.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

using namespace ShellLook;

DisconnectOverlay::DisconnectOverlay(const Configuration& configuration, QWidget* parent)
    : QWidget(parent), configuration_(configuration) {
    initOverlay();
}

DisconnectOverlay::~DisconnectOverlay() = default;

void DisconnectOverlay::initOverlay() {
    resize(parentWidget()->size());
    setAttribute(Qt::WA_TranslucentBackground, false);
    setAttribute(Qt::WA_StyledBackground, true);
    setAttribute(Qt::WA_StyleSheet, true);
    setFocusPolicy(Qt::StrongFocus);

    setLayout(&layout_);
    button_ = new QPushButton(configuration_.disconnectButtonText, this);
    button_->setFixedSize(configuration_.disconnectButtonSize);
    button_->setStyleSheet(QLatin1StringView(kOverlayDisconnectButton));
    button_->setCursor(Qt::PointingHandCursor);
    connect(button_, &QPushButton::released, this, &DisconnectOverlay::onDisconnect);
    layout_.addWidget(button_, 0, Qt::AlignRight);
    // Places the button exactly over the banner's.
    const int margin = (kBannerHeight - configuration_.disconnectButtonSize.height()) / 2;
    layout_.setContentsMargins(kOverlaySideMargin, margin, kOverlaySideMargin, margin);

    auto* label = new QLabel(QLatin1StringView(kDisconnectedText), this);
    QFont font = label->font();
    font.setPointSize(kDisconnectedPoints);
    font.setBold(true);
    label->setFont(font);
    label->setMargin(0);
    label->setStyleSheet(QLatin1StringView(kDisconnectedLabel));
    layout_.addWidget(label, 0, Qt::AlignCenter);
}

void DisconnectOverlay::onDisconnect() {
    if (QGuiApplication::mouseButtons().testFlag(Qt::LeftButton))
        return; // the finger has left the button, and Qt emits released() then, too
    emit disconnection();
}

void DisconnectOverlay::keyPressEvent(QKeyEvent* event) {
    event->accept(); // so that the main window does not receive it
}

bool DisconnectOverlay::focusNextPrevChild(bool next) {
    Q_UNUSED(next)
    // Tab alternates between the button and the overlay itself, which ignores keys.
    QWidget* other = button_->hasFocus() ? static_cast<QWidget*>(this) : button_;
    other->setFocus(Qt::TabFocusReason);
    return true;
}
