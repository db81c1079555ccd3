#include "app/GuiCompanion.h"

#include "app/ConnectPage.h"
#include "app/ConnectingOverlay.h"
#include "app/Content.h"
#include "app/DisconnectOverlay.h"
#include "app/HeadBanner.h"
#include "app/shell/EventDispatcher.h"
#include "app/shell/ShellLook.h"
#include "input/key_event_manager.h"
#include "network/events/MsgEvent.h"
#include "warp/Canvas.h"

#include <QApplication>
#include <QDebug>
#include <QGuiApplication>
#include <QIcon>
#include <QResizeEvent>

#include <array>
#include <utility>

using Companion::Page;
using NetworkCompanion::CompanionClient;
using namespace ShellLook;

namespace {

constexpr unsigned short kProducerPort = 62330;
constexpr char kGetResources[] = "getResources";
constexpr int kFirstTab = 1; // the banner counts its tabs from 1
constexpr std::array kPageOfTab{Page::Warp, Page::QuickKeys, Page::TestPatterns, Page::Settings};

} // namespace

GuiCompanion::GuiCompanion(QWidget* parent, const Timing& timing)
    : QWidget(parent), dispatcher_(EventDispatcher::getInstance()), gamepad_(this),
      actionMapper_(this), inputGate_(this, timing.inputDelay) {
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
    connect(&dispatcher_->client(), &CompanionClient::connectingFinished, this,
            &GuiCompanion::onConnectingFinished);
    connect(&linkMonitor_, &LinkMonitor::changed, this, &GuiCompanion::updateLink);
    const auto* canvas = content_->findChild<Canvas*>();
    EchoTimes* echoTimes = &linkMonitor_.echoTimes();
    connect(canvas, &Canvas::pointWritten, echoTimes, &EchoTimes::writeSent);
    connect(canvas, &Canvas::pointConfirmed, echoTimes, &EchoTimes::echoArrived);
    connect(canvas, &Canvas::pointsSettled, echoTimes, &EchoTimes::allConfirmed);
    initInput();
}

GuiCompanion::~GuiCompanion() {
    dispatcher_->client().cancelConnecting();
    banner_.reset();
    content_.reset();
    veil_.reset();
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
    connectStick(&GamepadInputManager::leftAxisMoved, &Content::onLeftAxisMoved);
    connectStick(&GamepadInputManager::rightAxisMoved, &Content::onRightAxisMoved);
    connect(&gamepad_, &GamepadInputManager::pressure, content_.get(), [this](float value) {
        if (inputGate_.isOpen())
            content_->onPressure(value);
    });
    connect(&gamepad_, &GamepadInputManager::buttonPressed, &actionMapper_,
            &ActionMapper::onButtonPressed);
    connect(&gamepad_, &GamepadInputManager::buttonReleased, &actionMapper_,
            &ActionMapper::onButtonReleased);
    connect(&actionMapper_, &ActionMapper::action, content_.get(), [this](Action action) {
        if (inputGate_.isOpen())
            content_->onAction(action);
    });

    // The controller is read only while the application is active; a window that opens behind
    // another one is not.
    const auto follow = [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive && !veil_) {
            gamepad_.onFocusGained();
        } else {
            gamepad_.onFocusLost();
        }
    };
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, &gamepad_, follow);
    follow(QGuiApplication::applicationState());
}

void GuiCompanion::connectStick(void (GamepadInputManager::*moved)(float, float),
                                void (Content::*onMoved)(float, float)) {
    connect(
        &gamepad_, moved, content_.get(),
        [this, onMoved](float x, float y) {
            if (inputGate_.isOpen())
                (content_.get()->*onMoved)(x, y);
        });
}

void GuiCompanion::onConnectToServer(const QString& ip) {
    if (!dispatcher_->client().startConnecting(ip, kProducerPort))
        return;
    attemptedIp_ = ip;
    if (std::exchange(triedAgain_, lost_))
        return; // the overlay stays
    auto notice = std::make_unique<ConnectingOverlay>(configuration_, ip, this);
    connect(notice.get(), &ConnectingOverlay::cancelled, this, &GuiCompanion::cancelConnecting);
    raiseVeil(std::move(notice));
}

void GuiCompanion::cancelConnecting() {
    dispatcher_->client().cancelConnecting();
    onConnectingFinished(false);
}

void GuiCompanion::onConnectingFinished(bool connected) {
    if (!connected) {
        if (lost_)
            showOverlay();
        else
            lowerVeil();
        return;
    }
    lost_ = false;
    triedAgain_ = false;
    lowerVeil();
    linkMonitor_.onConnected(attemptedIp_);
    content_->setPage(Page::Warp);
    banner_->updateBanner();

    checkConnection_->setWatchedAddress(attemptedIp_);
    if (!checkConnection_->isRunning())
        checkConnection_->start();
    serverIp_ = attemptedIp_;

    content_->purgeMedia();
    // Unique: this signal connection survives a lost link, and one loss must be handled once.
    connect(dispatcher_, SIGNAL(disconnected()), this, SLOT(onDisconnectError()),
            Qt::UniqueConnection);
    NetworkCompanion::MsgEvent getResources(kGetResources);
    dispatcher_->client().sendEvent(getResources);
    emit meshpadConnected();
    banner_->onMenuTabPressed(kFirstTab);
}

void GuiCompanion::onDisconnectFromServer() {
    lost_ = false;
    triedAgain_ = false;
    lowerVeil();
    checkConnection_->stop();
    disconnect(dispatcher_, SIGNAL(disconnected()), this, SLOT(onDisconnectError()));
    dispatcher_->client().disconnectFromServer();
    linkMonitor_.onLost();
    content_->purgeMedia();
    content_->setPage(Page::Connect);
    banner_->updateBanner();
}

void GuiCompanion::onDisconnectError() {
    lost_ = true;
    linkMonitor_.onLost();
    if (!veil_)
        showOverlay();
    dispatcher_->networkUtils().serverHasDisconnected(serverIp_);
}

void GuiCompanion::onServerAvailableAgain() {
    onConnectToServer(serverIp_);
}

void GuiCompanion::showOverlay() {
    if (qobject_cast<DisconnectOverlay*>(veil_.get()) != nullptr)
        return;
    auto overlay = std::make_unique<DisconnectOverlay>(configuration_, this);
    connect(overlay.get(), SIGNAL(disconnection()), this, SLOT(onDisconnectFromServer()));
    overlay->setLink(linkMonitor_.link());
    raiseVeil(std::move(overlay));
}

/// Replaces the present veil, if any.
void GuiCompanion::raiseVeil(std::unique_ptr<Veil> veil) {
    std::swap(veil_, veil);
    if (!veil) {
        content_->lockCurrentPage();
        gamepad_.onFocusLost(); // the controller must not reach the locked page
        while (QWidget* popup = QApplication::activePopupWidget())
            popup->close(); // a popup would stay above the veil
        focusBeforeVeil_ = focusWidget();
        inputGate_.close();
    }
    veil_->show();
    veil_->setFocus();
    discard(std::move(veil));
}

void GuiCompanion::lowerVeil() {
    if (!veil_)
        return;
    // Before hide(), which would give the focus to the next widget in the tab order.
    const bool takesFocus = focusBeforeVeil_ && focusBeforeVeil_->focusPolicy() != Qt::NoFocus;
    (takesFocus ? focusBeforeVeil_.data() : this)->setFocus();
    discard(std::move(veil_));
    inputGate_.open();
    if (QGuiApplication::applicationState() == Qt::ApplicationActive)
        gamepad_.onFocusGained();
}

/// Not deleted at once, because its own signal may be the caller.
void GuiCompanion::discard(std::unique_ptr<Veil> veil) {
    if (!veil)
        return;
    veil->disconnect();
    veil->hide();
    veil.release()->deleteLater();
}

void GuiCompanion::updateLink() {
    banner_->setLink(linkMonitor_.link());
    if (auto* overlay = qobject_cast<DisconnectOverlay*>(veil_.get()))
        overlay->setLink(linkMonitor_.link());
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
    if (veil_)
        veil_->resize(size());
}
