#pragma once

#include "app/InputGate.h"
#include "app/LinkMonitor.h"
#include "app/shell/CheckConnection.h"
#include "app/shell/Configuration.h"
#include "input/action_mapper.h"
#include "input/gamepad_input_manager.h"

#include <QPointer>
#include <QVBoxLayout>
#include <QWidget>

#include <memory>

class Content;
class EventDispatcher;
class HeadBanner;
class Veil;

/// The main window: banner above pages. Controls the connection, which has three states: not
/// connected (connect page, banner without menu), connected (another page, banner with menu,
/// CheckConnection running) and lost (as connected, under the overlay). A veil covers the first
/// attempt to connect and the first attempt after a loss, too; the next ones run under the overlay.
class GuiCompanion final : public QWidget {
    Q_OBJECT

public:
    explicit GuiCompanion(QWidget* parent, const Timing& timing = Timing());
    ~GuiCompanion() override;

public slots:
    /// Starts to connect to the Producer at `ip`. A failure changes nothing. Does nothing while
    /// connected or connecting.
    void onConnectToServer(const QString& ip);
    /// The operator disconnects: no overlay, no reconnection.
    void onDisconnectFromServer();
    /// The connection is lost: shows the overlay once and removes the Producer from discovery's
    /// list.
    void onDisconnectError();
    /// The Producer is on the network: tries to reconnect if the connection is lost.
    void onServerAvailableAgain();
    /// Shows the page of banner tab `tab`, counted from 0.
    void goToPageFromMenu(int tab);

signals:
    /// The Producer has been connected and "getResources" sent.
    void meshpadConnected();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void initConfig();
    void initWindow(const Timing& timing);
    void initInput();
    void connectStick(void (GamepadInputManager::*moved)(float, float),
                      void (Content::*onMoved)(float, float));
    /// The attempt has succeeded, failed or been cancelled.
    void onConnectingFinished(bool connected);
    void cancelConnecting();
    void showOverlay();
    void raiseVeil(std::unique_ptr<Veil> veil);
    void lowerVeil();
    static void discard(std::unique_ptr<Veil> veil);
    void updateLink();

    Configuration configuration_;
    QVBoxLayout layout_;
    std::unique_ptr<HeadBanner> banner_;
    std::unique_ptr<Content> content_;
    std::unique_ptr<Veil> veil_;
    std::unique_ptr<CheckConnection> checkConnection_;
    EventDispatcher* dispatcher_; // outlives the window
    QString serverIp_;            // of the Producer last connected to
    QString attemptedIp_;
    bool lost_ = false;       // from the loss of the connection to the next one
    bool triedAgain_ = false; // since the loss
    GamepadInputManager gamepad_;
    ActionMapper actionMapper_;
    InputGate inputGate_;
    LinkMonitor linkMonitor_{this};
    QPointer<QWidget> focusBeforeVeil_;
};
