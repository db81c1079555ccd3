#include "app/HeadBanner.h"

#include "app/shell/Configuration.h"
#include "app/shell/EventDispatcher.h"
#include "app/shell/FocusRing.h"
#include "app/shell/ShellLook.h"

#include <QDebug>
#include <QGuiApplication>
#include <QImageReader>
#include <QPainter>
#include <QVBoxLayout>

using namespace ShellLook;

namespace {

/// The picture at its own size, rendered at the screen's resolution.
QPixmap loadSharp(const QString& path, qreal devicePixelRatio) {
    QImageReader reader(path);
    reader.setScaledSize((QSizeF(reader.size()) * devicePixelRatio).toSize());
    QPixmap pixmap = QPixmap::fromImageReader(&reader);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

/// Draws a focus ring, which its style sheets cannot.
class TabButton final : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void paintEvent(QPaintEvent* event) override {
        QPushButton::paintEvent(event);
        if (hasFocus()) {
            QPainter painter(this);
            painter.setRenderHint(QPainter::Antialiasing);
            drawFocusRing(painter, rect(), kTabFocusRadius);
        }
    }
};

} // namespace

HeadBanner::HeadBanner(const Configuration& configuration, QWidget* parent)
    : QWidget(parent), configuration_(configuration), logoArea_(this),
      linkBadge_(configuration, nullptr), tabs_(this) {
    setLayout(&layout_);
    layout_.setContentsMargins(kBannerMargin, kBannerMargin, kBannerMargin, kBannerMargin);
    initLogoWidget();
    setFixedHeight(kBannerHeight);
    initConnectTitleLabel();
    initMenuWidget();
    initDisconnectButton();
    if (configuration_.connected)
        qDebug("You should not be connected when the app launches.");
    else
        attach(titleLabel_, Qt::AlignCenter);
    onMenuTabPressed(1);
}

HeadBanner::~HeadBanner() = default;

void HeadBanner::initLogoWidget() {
    const QMargins margins = layout_.contentsMargins();
    auto* column = new QVBoxLayout(&logoArea_);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);

    auto* logo = new QLabel(&logoArea_);
    const QPixmap pixmap = loadSharp(configuration_.logoPath, devicePixelRatioF());
    const QSize logoSize = pixmap.deviceIndependentSize().toSize();
    logo->setPixmap(pixmap);
    logo->setFixedSize(logoSize);
    logo->setAccessibleName(configuration_.applicationName);
    column->addWidget(logo, 0, Qt::AlignHCenter);

    auto* version = new QLabel(configuration_.version, &logoArea_);
    QFont font = version->font();
    font.setPointSize(kVersionFontPoints);
    version->setFont(font);
    version->setFixedHeight(kVersionFontPoints + margins.top() + margins.bottom());
    column->addWidget(version, 0, Qt::AlignLeft);

    logoArea_.setFixedSize(logoSize.width() + margins.left() + margins.right(),
                           logoSize.height() + margins.top() + margins.bottom() +
                               version->height());
    layout_.addWidget(&logoArea_);
}

void HeadBanner::initConnectTitleLabel() {
    titleLabel_.setObjectName(QStringLiteral("connectTitle")); // the style sheet gives it its font
    titleLabel_.setText(configuration_.applicationName);
    // The right margin equals the logo's width, so that the title is centred in the window.
    titleLabel_.setContentsMargins(0, 0, logoArea_.width() + layout_.spacing(), 0);
}

void HeadBanner::initMenuWidget() {
    auto* row = new QHBoxLayout(&menu_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    initTabs();
}

void HeadBanner::initTabs() {
    static_cast<QHBoxLayout*>(menu_.layout())->addStretch();
    const QStringList& names = configuration_.menuTabNames;
    const int count = static_cast<int>(names.size());
    const QSize capSize(kTabCapWidth, configuration_.menuTabSize.height());
    addTabButton({}, names.first(), capSize, 1);
    for (int tab = 0; tab < count; ++tab)
        addTabButton(names[tab], names[tab], configuration_.menuTabSize, tab + 1);
    addTabButton({}, names.last(), capSize, count);
    connect(&tabMapper_, &QSignalMapper::mappedInt, this, &HeadBanner::onMenuTabPressed);
}

void HeadBanner::addTabButton(const QString& text, const QString& name, QSize size, int id) {
    auto* button = new TabButton(text, &menu_);
    button->setAccessibleName(name);
    button->setFixedSize(size);
    button->setContentsMargins(0, 0, 0, 0);
    button->setCursor(Qt::PointingHandCursor);
    // TabFocus, so that a touched tab does not take the arrow keys from the mesh.
    button->setFocusPolicy(text.isEmpty() ? Qt::NoFocus : Qt::TabFocus);
    connect(button, &QPushButton::pressed, &tabMapper_, qOverload<>(&QSignalMapper::map));
    tabMapper_.setMapping(button, id);
    tabs_.addButton(button);
    menu_.layout()->addWidget(button);
}

void HeadBanner::initDisconnectButton() {
    disconnectButton_.setText(configuration_.disconnectButtonText);
    disconnectButton_.setFixedSize(configuration_.disconnectButtonSize);
    disconnectButton_.setStyleSheet(QLatin1StringView(kBannerDisconnectButton));
    disconnectButton_.setCursor(Qt::PointingHandCursor);
    // TabFocus, so that Space disconnects only after the operator moved the focus here by Tab.
    disconnectButton_.setFocusPolicy(Qt::TabFocus);
    connect(&disconnectButton_, &QPushButton::released, this,
            &HeadBanner::onDisconnectFromProducer);
}

void HeadBanner::updateBanner() {
    if (EventDispatcher::getInstance()->client().isConnected())
        displayConnectedBanner();
    else
        displayNotConnectedBanner();
}

void HeadBanner::displayConnectedBanner() {
    detach(titleLabel_);
    attach(linkBadge_, {});
    attach(menu_, {});
    attach(disconnectButton_, {});
}

void HeadBanner::displayNotConnectedBanner() {
    detach(linkBadge_);
    detach(menu_);
    detach(disconnectButton_);
    attach(titleLabel_, Qt::AlignCenter);
}

void HeadBanner::attach(QWidget& widget, Qt::Alignment alignment) {
    if (widget.parentWidget() == this)
        return;
    widget.setParent(this);
    layout_.addWidget(&widget, 0, alignment);
    widget.show();
}

void HeadBanner::detach(QWidget& widget) {
    if (widget.parentWidget() != this)
        return;
    // Hidden explicitly, because a widget without parent is a window, and the layout may have
    // queued a show() for it.
    widget.hide();
    layout_.removeWidget(&widget);
    widget.setParent(nullptr);
    widget.hide();
}

void HeadBanner::onDisconnectFromProducer() {
    if (QGuiApplication::mouseButtons().testFlag(Qt::LeftButton))
        return; // the finger has left the button, and Qt emits released() then, too
    emit disconnection();
}

void HeadBanner::onMenuTabPressed(int id) {
    const QList<QAbstractButton*> buttons = tabs_.buttons();
    const auto count = static_cast<int>(buttons.size());
    for (QAbstractButton* button : buttons)
        button->setStyleSheet(QLatin1StringView(kTabOff));
    buttons.first()->setStyleSheet(QLatin1StringView(id == 1 ? kLeftCapOn : kLeftCapOff));
    buttons.last()->setStyleSheet(QLatin1StringView(id == count - 2 ? kRightCapOn : kRightCapOff));
    if (id > 0 && id < count - 1)
        buttons[id]->setStyleSheet(QLatin1StringView(kTabOn));
    emit menuTabPressed(id - 1);
}
