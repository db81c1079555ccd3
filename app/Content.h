#pragma once

#include "app/shell/IPage.h"

#include <QStackedWidget>

struct Configuration;
class ConnectPage;
class QuickKeysPage;
class SettingsPage;
class TestPatternPage;
class WarpPage;

/// The stack of pages below the banner. Controller input goes to the warp page, whichever page is
/// shown.
class Content final : public QStackedWidget {
    Q_OBJECT

public:
    /// `configuration` outlives the pages.
    Content(const Configuration& configuration, QWidget* parent);
    ~Content() override;

    /// Shows `page`; the warp page's canvas also gets the focus, unless the page is shown already.
    void setPage(Companion::Page page);
    void lockCurrentPage();
    /// See ConnectPage::purgeIp().
    void purgeIp();
    /// Empties the list of the Producer's items.
    void purgeMedia();

    [[nodiscard]] ConnectPage* connectPage() const { return connectPage_; }

public slots:
    void onMeshpadConnected();
    void onLeftAxisMoved(float x, float y);
    void onRightAxisMoved(float x, float y);
    void onPressure(float value);
    void onAction(Action action);

signals:
    void meshpadConnected();
    void leftAxisMoved(float x, float y);
    void rightAxisMoved(float x, float y);
    void pressure(float value);
    void action(Action action);

private:
    void initPages();

    const Configuration& configuration_;
    // Children of the stack.
    ConnectPage* connectPage_ = nullptr;
    WarpPage* warpPage_ = nullptr;
    QuickKeysPage* quickKeysPage_ = nullptr;
    TestPatternPage* testPatternPage_ = nullptr;
    SettingsPage* settingsPage_ = nullptr;
};
