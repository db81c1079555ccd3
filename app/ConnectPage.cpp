#include "app/ConnectPage.h"

#include "app/IPList.h"
#include "app/shell/EventDispatcher.h"
#include "app/shell/ShellLook.h"

#include <QGuiApplication>
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
    // Keeps its own size, centred, and scrolls when there are more Producers than room.
    ipList_->layout()->setSizeConstraint(QLayout::SetFixedSize);
    auto* scrollArea = new QScrollArea(this);
    scrollArea->setWidget(ipList_);
    scrollArea->setAlignment(Qt::AlignCenter);
    scrollArea->setFrameShape(QFrame::NoFrame);
    scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea->setFocusPolicy(Qt::NoFocus);
    layout_.addWidget(scrollArea, kIpListStretch);
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
    if (!selected)
        connectButton_->clearFocus();
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
