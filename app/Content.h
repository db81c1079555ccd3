#pragma once

#include "app/shell/IPage.h"
#include "app/shell/Timing.h"

#include <QStackedWidget>

struct Configuration;
class ConnectPage;
class QuickKeysPage;
class SettingsPage;
class TestPatternPage;
class WarpPage;

/// The stack of pages below the banner. Controller input goes to the warp page, whichever page is
/// shown. Members marked API are not used by the application itself.
class Content final : public QStackedWidget {
    Q_OBJECT

public:
    /// `configuration` outlives the pages.
    Content(const Configuration& configuration, QWidget* parent, const Timing& timing = Timing());
    ~Content() override;

    /// Shows `page`; the warp page's canvas also gets the focus, unless the page is shown already.
    void setPage(Companion::Page page);
    void lockCurrentPage();
    /// See ConnectPage::purgeIp().
    void purgeIp(); // API
    /// Empties the list of the Producer's items.
    void purgeMedia();

    [[nodiscard]] ConnectPage* connectPage() const { return connectPage_; }

public slots:
    // Relays: each emits the signal of its name.
    void onMeshpadConnected() { emit meshpadConnected(); }
    void onLeftAxisMoved(float x, float y) { emit leftAxisMoved(x, y); }
    void onRightAxisMoved(float x, float y) { emit rightAxisMoved(x, y); }
    void onPressure(float value) { emit pressure(value); }
    void onAction(Action value) { emit action(value); }

signals:
    void meshpadConnected();
    void leftAxisMoved(float x, float y);
    void rightAxisMoved(float x, float y);
    void pressure(float value);
    void action(Action action);

private:
    void initPages(const Timing& timing);

    const Configuration& configuration_;
    // Children of the stack.
    ConnectPage* connectPage_ = nullptr;
    WarpPage* warpPage_ = nullptr;
    QuickKeysPage* quickKeysPage_ = nullptr;
    TestPatternPage* testPatternPage_ = nullptr;
    SettingsPage* settingsPage_ = nullptr;
};
