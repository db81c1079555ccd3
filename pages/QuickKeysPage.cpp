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
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>

#include <algorithm>
#include <cstdlib>
#include <utility>

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

/// Buttons that are kept: at least those of the three largest pages, because creating one of these
/// takes longer than an operator should wait.
constexpr int kMostButtons = 3 * kMaxGrid * kMaxGrid;

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
      previous_(new QPushButton(this)), spinBox_(new PageSpinBox(this)),
      next_(new QPushButton(this)), pageCountLabel_(new QLabel(this)), stack_(new QStackedWidget),
      events_(this, kEventTypes) {
    initNavSpinBox();

    // A grid that is larger than the window scrolls instead of stretching the window.
    auto* area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidgetResizable(true);
    area->setWidget(stack_);
    layout_->addWidget(area);

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
    connect(spinBox_, &QSpinBox::valueChanged, this, &QuickKeysPage::navigateToPage);

    pageCountLabel_->setFont(bold);
    pageCountLabel_->setFixedWidth(kPageCountWidth);
    pageCountLabel_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    initTurnButton(previous_, kPreviousPageName, kPreviousPageIcon, -1);
    initTurnButton(next_, kNextPageName, kNextPageIcon, 1);

    auto* row = new QHBoxLayout;
    layout_->addLayout(row);
    row->setSpacing(kSpacing);
    row->addStretch();
    row->addSpacing(kPageCountWidth); // so that the spin box stands in the middle
    for (QWidget* widget : navigation())
        row->addWidget(widget);
    row->addStretch();
    showNavigation(false);
}

void QuickKeysPage::initTurnButton(QPushButton* button, const char* name, const char* icon,
                                   int step) {
    button->setFixedSize(kTurnButtonSize);
    QIcon pictures(QString::fromLatin1(icon));
    pictures.addFile(QString::fromLatin1(icon) + QLatin1StringView(kIconOffSuffix), {},
                     QIcon::Disabled);
    button->setIcon(pictures);
    button->setIconSize(kTurnIconSize);
    button->setAccessibleName(QLatin1StringView(name));
    button->setToolTip(QLatin1StringView(name));
    button->setCursor(Qt::PointingHandCursor);
    button->setFocusPolicy(Qt::TabFocus);
    connect(button, &QPushButton::clicked, this,
            [this, step] { navigateToPage(spinBox_->value() + step); });
}

std::array<QWidget*, 4> QuickKeysPage::navigation() const {
    return {previous_, spinBox_, next_, pageCountLabel_};
}

void QuickKeysPage::showNavigation(bool isShown) {
    for (QWidget* widget : navigation()) {
        if (!isShown)
            releaseFocus(widget);
        widget->setVisible(isShown);
    }
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
    if (rows != rows_ || columns != columns_) {
        for (auto& [number, page] : std::exchange(pages_, {}))
            formerPages_.push_back(std::move(page));
        shownPage_ = kNoPage;
    }
    rows_ = rows;
    columns_ = columns;
    if (pageCount_ == 0)
        return;
    keys_.resize(static_cast<std::size_t>(highestId_));
    setPageCount(pageOf(highestId_) + 1);
}

void QuickKeysPage::setPageCount(int count) {
    pageCount_ = count;
    keys_.resize(static_cast<std::size_t>(count) * static_cast<std::size_t>(keysPerPage()));
    showSpinBoxPage(std::min(spinBox_->value(), count));
    showNavigation(count > 1);
    scheduleUpdate();
}

void QuickKeysPage::showSpinBoxPage(int page) {
    const QSignalBlocker blocker(spinBox_); // updateStack() shows the page
    spinBox_->setMaximum(pageCount_);
    spinBox_->setValue(page);
    pageCountLabel_->setText(QString::fromLatin1(kPageCountText).arg(page).arg(pageCount_));
    for (const auto& [button, last] : {std::pair{previous_, 1}, {next_, pageCount_}}) {
        if (page == last)
            releaseFocus(button);
        button->setEnabled(page != last);
    }
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
        shownPage_ = page;
        stack_->setCurrentWidget(addQuickKeysPage(page));
        deleteQuickKeysPages();
    }
    createButtons();
}

QWidget* QuickKeysPage::addQuickKeysPage(int number) {
    std::unique_ptr<QWidget>& page = pages_[number];
    if (page == nullptr) {
        page = std::make_unique<QWidget>();
        auto* layout = new QGridLayout(page.get());
        layout->setAlignment(Qt::AlignCenter);
        layout->setSpacing(kSpacing);
        stack_->addWidget(page.get());
    }
    return page.get();
}

void QuickKeysPage::deleteQuickKeysPages() {
    formerPages_.clear();
    const int distance = std::max(1, kMostButtons / keysPerPage() / 2);
    std::erase_if(pages_, [&](const auto& page) {
        return page.first >= pageCount_ || std::abs(page.first - shownPage_) > distance;
    });
}

void QuickKeysPage::createButtons() {
    for (const int number : {shownPage_, shownPage_ + 1, shownPage_ - 1}) {
        if (number >= 0 && number < pageCount_ && createButtons(number)) {
            scheduleUpdate();
            break;
        }
    }
}

bool QuickKeysPage::createButtons(int number) {
    QWidget* page = addQuickKeysPage(number);
    auto* layout = static_cast<QGridLayout*>(page->layout());
    const int first = layout->count();
    if (first == keysPerPage())
        return false;
    const int end = std::min(first + kButtonsPerIteration, keysPerPage());
    page->hide(); // a visible page is laid out again for each new button
    for (int i = first; i < end; ++i) {
        const int id = number * keysPerPage() + i + 1;
        auto* button = new QuickKeysButton(configuration_.patternButtonSize, page);
        button->setEnabled(false);
        // No QSignalMapper, because it searches all its buttons for each one that is deleted.
        connect(button, &QuickKeysButton::pressed, this, [this, id] { onButtonPressed(id); });
        layout->addWidget(button, i / columns_, i % columns_);
        showKey(button, id);
        button->ensurePolished(); // slow, so not left to show(), which would polish all at once
    }
    if (end == keysPerPage() && number == shownPage_)
        page->show();
    return true;
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
    const auto page = pages_.find(pageOf(id));
    if (page == pages_.end())
        return nullptr;
    const QLayoutItem* item = page->second->layout()->itemAt((id - 1) % keysPerPage());
    return item != nullptr ? static_cast<QuickKeysButton*>(item->widget()) : nullptr;
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
