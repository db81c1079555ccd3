#include "pages/QuickKeysPage.h"

#include "app/shell/Configuration.h"
#include "app/shell/EventDispatcher.h"
#include "network/events/AddQuickKeyEvent.h"
#include "network/events/ConfigQuickKeyEvent.h"
#include "network/events/DeleteQuickKeyEvent.h"
#include "network/events/ExecuteQuickKeyEvent.h"
#include "network/events/ProtocolLimits.h"
#include "network/events/UpdateQuickKeyEvent.h"
#include "pages/PageSpinBox.h"
#include "pages/PagesLook.h"
#include "pages/QuickKeysButton.h"

#include <QDebug>
#include <QGridLayout>
#include <QScrollArea>

#include <algorithm>

using namespace NetworkCompanion;
using namespace PagesLook;

namespace {

constexpr int kMinId = static_cast<int>(Limits::kMinQuickKeyId);
constexpr int kMaxId = static_cast<int>(Limits::kMaxQuickKeyId);
constexpr int kMinGrid = static_cast<int>(Limits::kMinQuickKeyGrid);
constexpr int kMaxGrid = static_cast<int>(Limits::kMaxQuickKeyGrid);

/// Buttons created in one event-loop iteration: a usual grid page, but not so many that the window
/// stops responding.
constexpr int kButtonsPerIteration = 128;

constexpr LV_NTC_EventType kEventTypes[] = {
    LV_NTC_EventType::AddQuickKey, LV_NTC_EventType::DeleteQuickKey,
    LV_NTC_EventType::UpdateQuickKey, LV_NTC_EventType::ConfigQuickKey};

bool isIdInBounds(int id) {
    if (id < kMinId || id > kMaxId) {
        qWarning("Quick keys: id %d is not in %d to %d", id, kMinId, kMaxId);
        return false;
    }
    return true;
}

bool isGridInBounds(int rows, int columns) {
    if (std::min(rows, columns) < kMinGrid || std::max(rows, columns) > kMaxGrid) {
        qWarning("Quick keys: a grid of %d x %d is not in %d to %d", rows, columns, kMinGrid,
                 kMaxGrid);
        return false;
    }
    return true;
}

} // namespace

QuickKeysPage::QuickKeysPage(const Configuration& configuration, QWidget* parent)
    : ControlPage(parent), configuration_(configuration), layout_(new QVBoxLayout(this)),
      spinBox_(new PageSpinBox(this)), stack_(new QStackedWidget), mapper_(new QSignalMapper(this)),
      events_(this, kEventTypes) {
    initNavSpinBox();

    // A grid that is larger than the window scrolls instead of stretching the window.
    auto* area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidgetResizable(true);
    area->setWidget(stack_);
    layout_->addWidget(area);

    connect(mapper_, &QSignalMapper::mappedInt, this, &QuickKeysPage::onButtonPressed);
    update_.setSingleShot(true);
    connect(&update_, &QTimer::timeout, this, &QuickKeysPage::updateStack);
}

QuickKeysPage::~QuickKeysPage() = default;

void QuickKeysPage::initNavSpinBox() {
    spinBox_->setRange(1, 1);
    spinBox_->setCursor(Qt::PointingHandCursor);
    spinBox_->setFixedSize(kPageSpinBoxSize);
    QFont bold = spinBox_->font();
    bold.setPixelSize(kFontSize);
    bold.setWeight(QFont::Bold);
    spinBox_->setFont(bold);
    spinBox_->setAlignment(Qt::AlignCenter);
    spinBox_->setAccessibleName(QLatin1StringView(kPageSpinBoxName));
    spinBox_->setStyleSheet(QLatin1StringView(kPageSpinBox));
    layout_->addWidget(spinBox_, 0, Qt::AlignCenter);
    connect(spinBox_, &QSpinBox::valueChanged, this, &QuickKeysPage::navigateToPage);
    spinBox_->hide();
}

void QuickKeysPage::receive(Event* event) {
    switch (event->type()) {
    case LV_NTC_EventType::AddQuickKey: {
        const auto& key = static_cast<const AddQuickKeyEvent&>(*event);
        addQuickKey(static_cast<int>(key.keyId()), key.name().toUtf8().constData(),
                    key.color().toUtf8().constData());
        break;
    }
    case LV_NTC_EventType::UpdateQuickKey: {
        const auto& key = static_cast<const UpdateQuickKeyEvent&>(*event);
        updateQuickKey(static_cast<int>(key.keyId()), key.name().toUtf8().constData(),
                       key.color().toUtf8().constData());
        break;
    }
    case LV_NTC_EventType::DeleteQuickKey:
        deleteQuickKey(static_cast<int>(static_cast<const DeleteQuickKeyEvent&>(*event).keyId()));
        break;
    case LV_NTC_EventType::ConfigQuickKey: {
        const auto& grid = static_cast<const ConfigQuickKeyEvent&>(*event);
        configQuickKey(static_cast<int>(grid.rows()), static_cast<int>(grid.columns()));
        break;
    }
    default:
        break;
    }
}

void QuickKeysPage::addQuickKey(int id, const char* name, const char* color) {
    if (!isIdInBounds(id) || keysPerPage() == 0)
        return;
    if (pageOf(id) >= pageCount_)
        setPageCount(pageOf(id) + 1);
    highestId_ = std::max(highestId_, id);
    key(id).isUsed = true;
    updateQuickKey(id, name, color);
}

void QuickKeysPage::updateQuickKey(int id, const char* name, const char* color) {
    if (!isIdInBounds(id) || !isKnown(id))
        return;
    key(id).name = QString::fromUtf8(name);
    key(id).color = QString::fromUtf8(color);
    showKey(button(id), id);
}

void QuickKeysPage::deleteQuickKey(int id) {
    if (!isIdInBounds(id) || !isKnown(id))
        return;
    key(id) = Key();
    showKey(button(id), id);

    if (id == highestId_) {
        int highest = id;
        while (highest > 0 && !isKnown(highest))
            --highest;
        if (highest > 0) { // the last key leaves highest id and pages unchanged
            highestId_ = highest;
            setPageCount(pageOf(highest) + 1);
        }
    }
}

void QuickKeysPage::configQuickKey(int rows, int columns) {
    if (!isGridInBounds(rows, columns))
        return;
    // The first key shown stays in view.
    const int firstShown = (spinBox_->value() - 1) * keysPerPage() + 1;
    rows_ = rows;
    columns_ = columns;
    if (pageCount_ == 0)
        return;
    shownPage_ = kNoPage;
    keys_.resize(static_cast<std::size_t>(highestId_));
    // One page more than needed when the highest key fills a page; deleteQuickKey() removes it.
    setPageCount(highestId_ / keysPerPage() + 1);
    showSpinBoxPage(pageOf(firstShown) + 1);
}

void QuickKeysPage::setPageCount(int count) {
    pageCount_ = count;
    keys_.resize(static_cast<std::size_t>(count) * static_cast<std::size_t>(keysPerPage()));
    showSpinBoxPage(std::min(spinBox_->value(), count));
    if (count < 2)
        releaseFocus(spinBox_);
    spinBox_->setVisible(count > 1);
    scheduleUpdate();
}

void QuickKeysPage::showSpinBoxPage(int page) {
    const QSignalBlocker blocker(spinBox_); // updateStack() shows the page
    spinBox_->setMaximum(pageCount_);
    spinBox_->setValue(page);
}

void QuickKeysPage::scheduleUpdate() {
    if (isVisible())
        update_.start();
}

void QuickKeysPage::showEvent(QShowEvent* event) {
    updateStack();
    ControlPage::showEvent(event);
}

void QuickKeysPage::updateStack() {
    if (pageCount_ == 0)
        return;
    if (const int page = spinBox_->value() - 1; page != shownPage_) {
        releaseFocus(stack_);
        deleteQuickKeysPage();
        shownPage_ = page;
        addQuickKeysPage();
    }
    createButtons();
}

void QuickKeysPage::addQuickKeysPage() {
    auto* page = new QWidget(stack_);
    auto* layout = new QGridLayout(page);
    layout->setAlignment(Qt::AlignCenter);
    layout->setSpacing(kSpacing);
    stack_->addWidget(page);
}

void QuickKeysPage::deleteQuickKeysPage() {
    delete stack_->currentWidget();
}

void QuickKeysPage::createButtons() {
    QWidget* page = stack_->currentWidget();
    auto* layout = static_cast<QGridLayout*>(page->layout());
    const int first = layout->count();
    if (first == keysPerPage())
        return;
    const int end = std::min(first + kButtonsPerIteration, keysPerPage());
    page->hide(); // a visible page is laid out again for each new button
    for (int i = first; i < end; ++i) {
        const int id = shownPage_ * keysPerPage() + i + 1;
        auto* button = new QuickKeysButton(configuration_.patternButtonSize, page);
        button->setEnabled(false);
        connect(button, &QuickKeysButton::pressed, mapper_, qOverload<>(&QSignalMapper::map));
        mapper_->setMapping(button, id);
        layout->addWidget(button, i / columns_, i % columns_);
        showKey(button, id);
        button->ensurePolished(); // slow, so not left to show(), which would polish all at once
    }
    if (end == keysPerPage())
        page->show();
    else
        scheduleUpdate();
}

void QuickKeysPage::showKey(QuickKeysButton* button, int id) {
    if (button == nullptr)
        return;
    const Key& shown = key(id);
    if (shown.isUsed) {
        button->setName(shown.name);
        button->setBckgColor(shown.color);
        button->setId(id);
        button->setEnabled(true);
    } else if (button->isEnabled()) {
        releaseFocus(button);
        button->setName(QString());
        button->setStyleSheet(QString());
        button->setEnabled(false);
    }
}

void QuickKeysPage::releaseFocus(const QWidget* leaving) {
    const QWidget* focused = window()->focusWidget();
    if (focused != nullptr && (focused == leaving || leaving->isAncestorOf(focused)))
        setFocus(Qt::OtherFocusReason);
}

bool QuickKeysPage::isKnown(int id) const {
    return id <= static_cast<int>(keys_.size()) && keys_[static_cast<std::size_t>(id - 1)].isUsed;
}

QuickKeysButton* QuickKeysPage::button(int id) const {
    if (shownPage_ != pageOf(id))
        return nullptr;
    const QLayoutItem* item = stack_->currentWidget()->layout()->itemAt((id - 1) % keysPerPage());
    return item == nullptr ? nullptr : static_cast<QuickKeysButton*>(item->widget());
}

void QuickKeysPage::navigateToPage(int page) {
    if (page < 1 || page > pageCount_)
        return;
    showSpinBoxPage(page);
    updateStack();
}

void QuickKeysPage::onButtonPressed(int id) {
    ExecuteQuickKeyEvent event(static_cast<std::uint32_t>(id));
    EventDispatcher::getInstance()->client().sendEvent(event);
}

void QuickKeysPage::lockPage() {
    spinBox_->clearFocus();
}
