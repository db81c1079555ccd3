#include "app/GuiCompanion.h"

#include "app/ConnectPage.h"
#include "app/Content.h"
#include "app/DisconnectOverlay.h"
#include "app/HeadBanner.h"
#include "app/shell/EventDispatcher.h"
#include "app/shell/ShellLook.h"
#include "input/key_event_manager.h"
#include "network/events/MsgEvent.h"

#include <QApplication>
#include <QDebug>
#include <QGuiApplication>
#include <QIcon>
#include <QResizeEvent>

#include <array>

using Companion::Page;
using namespace ShellLook;

namespace {

constexpr unsigned short kProducerPort = 62330;
constexpr char kGetResources[] = "getResources";
constexpr int kFirstTab = 1; // the banner counts its tabs from 1
constexpr std::array kPageOfTab{Page::Warp, Page::QuickKeys, Page::TestPatterns, Page::Settings};

} // namespace

GuiCompanion::GuiCompanion(QWidget* parent, const Timing& timing)
    : QWidget(parent), dispatcher_(EventDispatcher::getInstance()), gamepad_(this),
      actionMapper_(this) {
    setWindowIcon(QIcon(QLatin1StringView(kWindowIcon)));
    initConfig();
    initWindow(timing);
    checkConnection_ = std::make_unique<CheckConnection>(nullptr, timing);

    connect(content_->connectPage(), SIGNAL(connection(QString)), this,
            SLOT(onConnectToServer(QString)));
    connect(banner_.get(), SIGNAL(disconnection()), this, SLOT(onDisconnectFromServer()));
    connect(checkConnection_.get(), SIGNAL(serverAvailableAgain()), this,
            SLOT(onServerAvailableAgain()));
    connect(banner_.get(), SIGNAL(menuTabPressed(int)), this, SLOT(goToPageFromMenu(int)));
    setWindowTitle(configuration_.applicationName + QLatin1Char(' ') + configuration_.version);
    connect(this, SIGNAL(meshpadConnected()), content_.get(), SLOT(onMeshpadConnected()));
    initInput();
}

GuiCompanion::~GuiCompanion() {
    banner_.reset();
    content_.reset();
    overlay_.reset();
    checkConnection_.reset();
}

void GuiCompanion::initConfig() {
    configuration_ = makeConfiguration();
}

void GuiCompanion::initWindow(const Timing& timing) {
    setMinimumSize(kMinimumWindowSize);
    resize(kMinimumWindowSize);
    banner_ = std::make_unique<HeadBanner>(configuration_, this);
    content_ = std::make_unique<Content>(configuration_, this, timing);
    layout_.addWidget(banner_.get());
    layout_.addWidget(content_.get());
    layout_.setContentsMargins(0, 0, 0, 0);
    setLayout(&layout_);
}

void GuiCompanion::initInput() {
    connect(&gamepad_, &GamepadInputManager::leftAxisMoved, content_.get(),
            &Content::onLeftAxisMoved);
    connect(&gamepad_, &GamepadInputManager::rightAxisMoved, content_.get(),
            &Content::onRightAxisMoved);
    connect(&gamepad_, &GamepadInputManager::pressure, content_.get(), &Content::onPressure);
    connect(&gamepad_, &GamepadInputManager::buttonPressed, &actionMapper_,
            &ActionMapper::onButtonPressed);
    connect(&gamepad_, &GamepadInputManager::buttonReleased, &actionMapper_,
            &ActionMapper::onButtonReleased);
    connect(&actionMapper_, &ActionMapper::action, content_.get(), &Content::onAction);

    // The controller is read only while the application is active; a window that opens behind
    // another one is not.
    const auto follow = [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive && !overlay_) {
            gamepad_.onFocusGained();
        } else {
            gamepad_.onFocusLost();
        }
    };
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, &gamepad_, follow);
    follow(QGuiApplication::applicationState());
}

void GuiCompanion::onConnectToServer(const QString& ip) {
    auto& client = dispatcher_->client();
    if (!client.connectToServer(ip, kProducerPort))
        return;
    content_->setPage(Page::Warp);
    banner_->updateBanner();

    checkConnection_->setWatchedAddress(ip);
    if (!checkConnection_->isRunning())
        checkConnection_->start();
    serverIp_ = ip;

    content_->purgeMedia();
    // Unique: this signal connection survives a lost link, and one loss must be handled once.
    connect(dispatcher_, SIGNAL(disconnected()), this, SLOT(onDisconnectError()),
            Qt::UniqueConnection);
    NetworkCompanion::MsgEvent getResources(kGetResources);
    client.sendEvent(getResources);
    emit meshpadConnected();
    banner_->onMenuTabPressed(kFirstTab);
}

void GuiCompanion::onDisconnectFromServer() {
    removeOverlay();
    checkConnection_->stop();
    disconnect(dispatcher_, SIGNAL(disconnected()), this, SLOT(onDisconnectError()));
    dispatcher_->client().disconnectFromServer();
    content_->purgeMedia();
    content_->setPage(Page::Connect);
    banner_->updateBanner();
}

void GuiCompanion::onDisconnectError() {
    if (!overlay_)
        showOverlay();
    dispatcher_->networkUtils().serverHasDisconnected(serverIp_);
}

void GuiCompanion::onServerAvailableAgain() {
    if (overlay_)
        removeOverlay();
    else if (dispatcher_->client().isConnected())
        return;
    onConnectToServer(serverIp_);
}

void GuiCompanion::showOverlay() {
    overlay_ = std::make_unique<DisconnectOverlay>(configuration_, this);
    connect(overlay_.get(), SIGNAL(disconnection()), this, SLOT(onDisconnectFromServer()));
    content_->lockCurrentPage();
    gamepad_.onFocusLost(); // the controller must not reach the locked page
    while (QWidget* popup = QApplication::activePopupWidget())
        popup->close(); // a popup would stay above the overlay
    focusBeforeOverlay_ = focusWidget();
    overlay_->show();
    overlay_->setFocus();
}

void GuiCompanion::removeOverlay() {
    if (!overlay_)
        return;
    disconnect(overlay_.get(), SIGNAL(disconnection()), this, nullptr);
    // Before hide(), which would give the focus to the next widget in the tab order.
    QWidget* focusTarget = focusBeforeOverlay_ ? focusBeforeOverlay_.data() : this;
    focusTarget->setFocus();
    overlay_->hide();
    // Not deleted at once, because its own signal may be the caller.
    overlay_.release()->deleteLater();
    if (QGuiApplication::applicationState() == Qt::ApplicationActive)
        gamepad_.onFocusGained();
}

void GuiCompanion::goToPageFromMenu(int tab) {
    if (tab < 0 || tab >= static_cast<int>(kPageOfTab.size())) {
        qDebug("This menu page does not exist!");
        return;
    }
    content_->setPage(kPageOfTab[static_cast<std::size_t>(tab)]);
}

void GuiCompanion::keyPressEvent(QKeyEvent* event) {
    KeyEventManager::getInstance()->notifyListeners(event);
}

void GuiCompanion::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (overlay_)
        overlay_->resize(size());
}
