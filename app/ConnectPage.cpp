#include "app/ConnectPage.h"

#include "app/IPList.h"
#include "app/shell/EventDispatcher.h"
#include "app/shell/ShellLook.h"
#include "warp/TouchScroller.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QScrollArea>

#include <algorithm>

using namespace ShellLook;
using NetworkCompanion::NetworkUtils;

ConnectPage::ConnectPage(const Configuration& configuration, QWidget* parent)
    : ControlPage(parent), configuration_(configuration) {
    setLayout(&layout_);
    initIpList();
    initConnectButton();

    const NetworkUtils* discovery = &EventDispatcher::getInstance()->networkUtils();
    connect(discovery, &NetworkUtils::serverDiscovered, this, &ConnectPage::onServerDiscovered);
    connect(discovery, &NetworkUtils::serverTimeouted, this, &ConnectPage::onServerTimeouted);
    connect(discovery, &NetworkUtils::serverDisconnected, this, &ConnectPage::onServerDisconnected);
    connect(ipList_, &IPList::selectedIpChanged, this, &ConnectPage::onSelectedIpChanged);
}

ConnectPage::~ConnectPage() = default;

void ConnectPage::initIpList() {
    ipList_ = new IPList(this);
    // Keeps its own size and scrolls when there are more Producers than room. At the top, because
    // a centred list moves with every address.
    ipList_->layout()->setSizeConstraint(QLayout::SetFixedSize);
    auto* scrollArea = new QScrollArea(this);
    scrollArea->setWidget(ipList_);
    scrollArea->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    scrollArea->setFrameShape(QFrame::NoFrame);
    scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea->setFocusPolicy(Qt::NoFocus);
    layout_.addWidget(scrollArea, kIpListStretch);
    connect(ipList_, &IPList::walkedTo, scrollArea,
            [scrollArea](QWidget* button) { scrollArea->ensureWidgetVisible(button); });

    const auto* touch = new TouchScroller(scrollArea);
    connect(touch, &TouchScroller::held, ipList_, &IPList::hold);
    connect(
        touch, &TouchScroller::pressed, this,
        [](QWidget* target, bool isPressed) {
            if (auto* button = qobject_cast<QPushButton*>(target))
                button->setDown(isPressed);
        });
    connect(touch, &TouchScroller::tapped, this, [](QWidget* target) {
        if (auto* button = qobject_cast<QPushButton*>(target))
            button->click();
    });
}

void ConnectPage::initConnectButton() {
    connectButton_ = new QPushButton(this);
    connectButton_->setObjectName(QStringLiteral("connectButton"));
    connectButton_->setFixedSize(kConnectButtonSize);
    connectButton_->setStyleSheet(QLatin1StringView(kConnectButtonInitial));
    connectButton_->setCursor(Qt::ArrowCursor);
    connectButton_->setFocusPolicy(Qt::NoFocus);
    connectButton_->setAccessibleName(QLatin1StringView(kConnectButtonName));
    connect(connectButton_, &QPushButton::released, this, &ConnectPage::onConnectToProducer);
    layout_.addWidget(connectButton_, kConnectButtonStretch, Qt::AlignCenter);
}

void ConnectPage::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
        ipList_->selectNext(event->key() == Qt::Key_Up ? -1 : 1);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (event->isAutoRepeat())
            break;
        if (const auto* address = qobject_cast<QPushButton*>(focusWidget());
            address != nullptr && ipList_->isAncestorOf(address))
            ipList_->onIpClicked(address->text());
        onConnectToProducer();
        break;
    default:
        ControlPage::keyPressEvent(event);
        return;
    }
    event->accept();
}

void ConnectPage::purgeIp() {
    ipList_->purgeIp();
}

void ConnectPage::onServerDiscovered(const QString& ip) {
    if (std::find(knownIps_.begin(), knownIps_.end(), ip) != knownIps_.end())
        return;
    knownIps_.push_back(ip);
    ipList_->addIP(ip);
}

void ConnectPage::removeProducer(const QString& ip) {
    const auto known = std::find(knownIps_.begin(), knownIps_.end(), ip);
    if (known == knownIps_.end())
        return;
    knownIps_.erase(known);
    ipList_->removeIp(ip);
}

void ConnectPage::onSelectedIpChanged(const QString& ip) {
    const bool selected = !ip.isEmpty();
    connectButton_->setProperty("selected", selected); // for the application's style sheet
    connectButton_->setStyleSheet(
        QLatin1StringView(selected ? kConnectButtonOn : kConnectButtonOff));
    connectButton_->setCursor(selected ? Qt::PointingHandCursor : Qt::ArrowCursor);
    connectButton_->setFocusPolicy(selected ? Qt::StrongFocus : Qt::NoFocus);
    if (!selected && connectButton_->hasFocus())
        setFocus(Qt::OtherFocusReason); // the page's keys still work
    connectButton_->setToolTip(selected ? QString(QLatin1StringView(kConnectButtonName))
                                        : QString());
}

void ConnectPage::onConnectToProducer() {
    if (QGuiApplication::mouseButtons().testFlag(Qt::LeftButton))
        return; // the finger has left the button, and Qt emits released() then, too
    const QString ip = ipList_->selectedIp();
    if (ip.isEmpty())
        return;
    emit connection(ip);
    ipList_->onIpClicked(QString());
}
