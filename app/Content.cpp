#include "app/Content.h"

#include "app/ConnectPage.h"
#include "app/shell/EventDispatcher.h"
#include "pages/QuickKeysPage.h"
#include "pages/SettingsPage.h"
#include "pages/TestPatternPage.h"
#include "warp/WarpPage.h"

#include <QDebug>

using Companion::Page;

Content::Content(const Configuration& configuration, QWidget* parent, const Timing& timing)
    : QStackedWidget(parent), configuration_(configuration) {
    initPages(timing);
    if (EventDispatcher::getInstance()->client().isConnected())
        qDebug("You should not be connected when the app launches.");
    else
        setCurrentWidget(connectPage_);

    connect(this, &Content::meshpadConnected, settingsPage_, &SettingsPage::onMeshpadConnected);
    connect(this, &Content::leftAxisMoved, warpPage_, &IPage::onLeftAxisMoved);
    connect(this, &Content::rightAxisMoved, warpPage_, &IPage::onRightAxisMoved);
    connect(this, &Content::pressure, warpPage_, &IPage::onPressure);
    connect(this, &Content::action, warpPage_, &IPage::onAction);
}

Content::~Content() = default;

void Content::initPages(const Timing& timing) {
    connectPage_ = new ConnectPage(configuration_, this);
    warpPage_ = new WarpPage(configuration_, this, timing);
    quickKeysPage_ = new QuickKeysPage(configuration_, this);
    testPatternPage_ = new TestPatternPage(configuration_, this);
    settingsPage_ = new SettingsPage(configuration_, this);
    for (IPage* page : {static_cast<IPage*>(connectPage_), static_cast<IPage*>(warpPage_),
                        static_cast<IPage*>(quickKeysPage_), static_cast<IPage*>(testPatternPage_),
                        static_cast<IPage*>(settingsPage_)})
        addWidget(page);
}

void Content::setPage(Page page) {
    switch (page) {
    case Page::None:
        qDebug("Page none should never be called");
        return;
    case Page::Connect:
        setCurrentWidget(connectPage_);
        return;
    case Page::Warp:
        if (currentWidget() != warpPage_) {
            setCurrentWidget(warpPage_);
            warpPage_->giveFocusToCanvas();
        }
        return;
    case Page::QuickKeys:
        setCurrentWidget(quickKeysPage_);
        return;
    case Page::TestPatterns:
        setCurrentWidget(testPatternPage_);
        return;
    case Page::Settings:
        setCurrentWidget(settingsPage_);
        return;
    }
    qDebug("This page does not exist.");
}

void Content::lockCurrentPage() {
    if (auto* page = qobject_cast<IPage*>(currentWidget()))
        page->lockPage();
}

void Content::purgeIp() {
    connectPage_->purgeIp();
}

void Content::purgeMedia() {
    warpPage_->purgeMedia();
}
