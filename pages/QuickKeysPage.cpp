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

/// How many buttons a page gets in a turn of the event loop: more than there is room for in sight,
/// and few enough that the operator feels nothing.
constexpr int kButtonsInATurn = 128;
constexpr int kPagesInATurn = 512; // still without buttons

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
    place(id).isUsed = true;
    updateQuickKey(id, name, color);
}

void QuickKeysPage::updateQuickKey(int id, const char* name, const char* color) {
    if (!isIdInBounds(id) || !isKnown(id))
        return;
    place(id).name = QString::fromUtf8(name);
    place(id).color = QString::fromUtf8(color);
    showKey(button(id), id);
}

void QuickKeysPage::deleteQuickKey(int id) {
    if (!isIdInBounds(id) || !isKnown(id))
        return;
    place(id) = Place();
    showKey(button(id), id);

    if (id == highestId_) {
        int highest = id;
        while (highest > 0 && !isKnown(highest))
            --highest;
        if (highest > 0) { // without a key left, number and pages stay
            highestId_ = highest;
            setPageCount(pageOf(highest) + 1);
        }
    }
}

void QuickKeysPage::configQuickKey(int rows, int columns) {
    if (!isGridInBounds(rows, columns))
        return;
    // The view stays with the key in its first place.
    const int firstShown = (spinBox_->value() - 1) * keysPerPage() + 1;
    rows_ = rows;
    columns_ = columns;
    if (pageCount_ == 0)
        return;
    isGridOutdated_ = true;
    places_.resize(static_cast<std::size_t>(highestId_));
    // Where the highest key fills a page, this is one page more than the keys take: a new grid has
    // room for the next key. Deleting the highest key is what tidies up: it leaves no page behind
    // the one with the highest key, a spare one neither.
    setPageCount(highestId_ / keysPerPage() + 1);
    showSpinBoxPage(pageOf(firstShown) + 1);
}

void QuickKeysPage::setPageCount(int count) {
    pageCount_ = count;
    places_.resize(static_cast<std::size_t>(count) * static_cast<std::size_t>(keysPerPage()));
    showSpinBoxPage(std::min(spinBox_->value(), count));
    if (count < 2)
        keepFocusFrom(spinBox_);
    spinBox_->setVisible(count > 1);
    updateSoon();
}

void QuickKeysPage::showSpinBoxPage(int page) {
    const QSignalBlocker silent(spinBox_); // the stack follows with the rest
    spinBox_->setMaximum(pageCount_);
    spinBox_->setValue(page);
}

void QuickKeysPage::updateSoon() {
    if (isVisible())
        update_.start();
}

void QuickKeysPage::showEvent(QShowEvent* event) {
    updateStack();
    ControlPage::showEvent(event);
}

void QuickKeysPage::updateStack() {
    if (isGridOutdated_) {
        keepFocusFrom(stack_);
        for (int i = 0; i < stack_->count(); ++i)
            emptyPage(stack_->widget(i));
        isGridOutdated_ = false;
    }
    const int shown = spinBox_->value() - 1;
    int left = kPagesInATurn;
    while (stack_->count() < pageCount_ && (stack_->count() <= shown || left-- > 0))
        addQuickKeysPage();
    if (shown != stack_->currentIndex()) {
        keepFocusFrom(stack_);
        stack_->setCurrentIndex(shown);
    }
    while (stack_->count() > pageCount_ && left-- > 0)
        deleteQuickKeysPage();
    if (stack_->count() != pageCount_)
        updateSoon();
    if (pageCount_ > 0)
        fillPage(shown);
}

void QuickKeysPage::addQuickKeysPage() {
    stack_->addWidget(new QWidget(stack_));
}

void QuickKeysPage::deleteQuickKeysPage() {
    delete stack_->widget(stack_->count() - 1);
}

void QuickKeysPage::emptyPage(QWidget* grid) {
    delete grid->layout();
    qDeleteAll(grid->findChildren<QuickKeysButton*>(Qt::FindDirectChildrenOnly));
}

void QuickKeysPage::fillPage(int page) {
    QWidget* grid = stack_->widget(page);
    auto* layout = static_cast<QGridLayout*>(grid->layout());
    if (layout == nullptr) {
        layout = new QGridLayout(grid);
        layout->setAlignment(Qt::AlignCenter);
        layout->setSpacing(kSpacing);
    }
    const int first = layout->count();
    if (first == keysPerPage())
        return;
    const int end = std::min(first + kButtonsInATurn, keysPerPage());
    // Out of sight: buttons that come into a visible page have it laid out anew, one by one.
    grid->hide();
    for (int i = first; i < end; ++i) {
        const int id = page * keysPerPage() + i + 1;
        auto* button = new QuickKeysButton(configuration_.patternButtonSize, grid);
        button->setEnabled(false);
        connect(button, &QuickKeysButton::pressed, mapper_, qOverload<>(&QSignalMapper::map));
        mapper_->setMapping(button, id);
        layout->addWidget(button, i / columns_, i % columns_);
        showKey(button, id);
        button->ensurePolished(); // which takes the longest, and would wait for the last one
    }
    if (end == keysPerPage())
        grid->show();
    else
        updateSoon();
}

void QuickKeysPage::showKey(QuickKeysButton* button, int id) {
    if (button == nullptr)
        return;
    const Place& shown = place(id);
    if (shown.isUsed) {
        button->setName(shown.name);
        button->setBckgColor(shown.color);
        button->setId(id);
        button->setEnabled(true);
    } else if (button->isEnabled()) {
        keepFocusFrom(button);
        button->setName(QString());
        button->setStyleSheet(QString());
        button->setEnabled(false);
    }
}

void QuickKeysPage::keepFocusFrom(const QWidget* leaving) {
    const QWidget* focused = window()->focusWidget();
    if (focused != nullptr && (focused == leaving || leaving->isAncestorOf(focused)))
        setFocus(Qt::OtherFocusReason);
}

bool QuickKeysPage::isKnown(int id) const {
    return id <= static_cast<int>(places_.size()) &&
           places_[static_cast<std::size_t>(id - 1)].isUsed;
}

QuickKeysButton* QuickKeysPage::button(int id) const {
    const QWidget* grid = isGridOutdated_ ? nullptr : stack_->widget(pageOf(id));
    const QLayout* layout = grid == nullptr ? nullptr : grid->layout();
    const QLayoutItem* item =
        layout == nullptr ? nullptr : layout->itemAt((id - 1) % keysPerPage());
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
