#pragma once

#include "app/shell/CheckConnection.h"
#include "app/shell/Configuration.h"
#include "input/action_mapper.h"
#include "input/gamepad_input_manager.h"

#include <QPointer>
#include <QVBoxLayout>
#include <QWidget>

#include <memory>

class Content;
class DisconnectOverlay;
class EventDispatcher;
class HeadBanner;

/// The main window: banner above pages. Controls the connection, which has three states: not
/// connected (connect page, banner without menu), connected (another page, banner with menu,
/// CheckConnection running) and lost (as connected, under the overlay).
class GuiCompanion final : public QWidget {
    Q_OBJECT

public:
    explicit GuiCompanion(QWidget* parent, const Timing& timing = Timing());
    ~GuiCompanion() override;

public slots:
    /// Blocks until the Producer at `ip` has accepted or the attempt has failed, which changes
    /// nothing.
    void onConnectToServer(const QString& ip);
    /// The operator disconnects: no overlay, no reconnection.
    void onDisconnectFromServer();
    /// The connection is lost: shows the overlay once and removes the Producer from discovery's
    /// list.
    void onDisconnectError();
    /// The Producer is on the network: reconnects if the connection is lost.
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
    void showOverlay();
    void removeOverlay();

    Configuration configuration_;
    QVBoxLayout layout_;
    std::unique_ptr<HeadBanner> banner_;
    std::unique_ptr<Content> content_;
    std::unique_ptr<DisconnectOverlay> overlay_; // null while the connection stands
    std::unique_ptr<CheckConnection> checkConnection_;
    EventDispatcher* dispatcher_; // outlives the window
    QString serverIp_;            // of the Producer last connected to
    GamepadInputManager gamepad_;
    ActionMapper actionMapper_;
    QPointer<QWidget> focusBeforeOverlay_;
};
