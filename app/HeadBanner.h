#pragma once

#include "app/LinkBadge.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalMapper>
#include <QWidget>

struct Configuration;

/// The strip above the pages: logo and version, then either a title (not connected) or the link
/// badge, the menu tabs and the "Disconnect" button (connected).
class HeadBanner final : public QWidget {
    Q_OBJECT

public:
    /// `configuration` outlives the banner.
    HeadBanner(const Configuration& configuration, QWidget* parent);
    ~HeadBanner() override;

    /// Shows the connected or the not-connected layout, after CompanionClient::isConnected().
    void updateBanner();
    void setLink(const Link& link) { linkBadge_.setLink(link); }

public slots:
    /// Marks tab `id`, counted from 1, and emits menuTabPressed(id - 1). An `id` that no tab has
    /// marks none.
    void onMenuTabPressed(int id);
    void onDisconnectFromProducer();

signals:
    /// The operator asked to disconnect.
    void disconnection();
    /// Counted from 0, in the order of the configuration's tab names.
    void menuTabPressed(int tab);

private:
    void initLogoWidget();
    void initConnectTitleLabel();
    void initMenuWidget();
    void initTabs();
    void initDisconnectButton();
    void displayConnectedBanner();
    void displayNotConnectedBanner();

    void addTabButton(const QString& text, const QString& name, QSize size, int id);
    void attach(QWidget& widget, Qt::Alignment alignment);
    void detach(QWidget& widget);

    const Configuration& configuration_;
    QHBoxLayout layout_;
    QWidget logoArea_;
    // Values, because title, badge, menu and button have no parent while they are not shown.
    QLabel titleLabel_;
    LinkBadge linkBadge_;
    QWidget menu_;
    QButtonGroup tabs_;
    QPushButton disconnectButton_;
    QSignalMapper tabMapper_;
};
