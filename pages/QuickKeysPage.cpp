#include "pages/QuickKeysPage.h"

#include "app/Configuration.h"
#include "app/EventDispatcher.h"
#include "network/AddQuickKeyEvent.h"
#include "network/ConfigQuickKeyEvent.h"
#include "network/DeleteQuickKeyEvent.h"
#include "network/ExecuteQuickKeyEvent.h"
#include "network/ProtocolLimits.h"
#include "network/UpdateQuickKeyEvent.h"
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

/// Keys up to this one get their buttons at once; pages behind it when they are shown, so that a
/// key costs next to nothing however many there are.
constexpr int kKeysFilledAtOnce = 256;

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
      spinBox_(new QSpinBox(this)), stack_(new QStackedWidget), mapper_(new QSignalMapper(this)) {
    initNavSpinBox();

    // A grid that is larger than the window scrolls instead of stretching the window.
    auto* area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidgetResizable(true);
    area->setWidget(stack_);
    layout_->addWidget(area);

    connect(mapper_, &QSignalMapper::mappedInt, this, &QuickKeysPage::onButtonPressed);
    for (const LV_NTC_EventType type : kEventTypes) {
        EventDispatcher::getInstance()->addListener(this, type);
    }
}

QuickKeysPage::~QuickKeysPage() {
    for (const LV_NTC_EventType type : kEventTypes) {
        EventDispatcher::getInstance()->removeListener(this, type);
    }
}

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
    if (!isIdInBounds(id) || keysPerPage() == 0) {
        return;
    }
    while (static_cast<int>(places_.size()) < id) {
        addQuickKeysPage();
    }
    updateSpinBox();
    highestId_ = std::max(highestId_, id);

    Place& added = place(id);
    added.name = QString::fromUtf8(name);
    added.color = QString::fromUtf8(color);
    added.isUsed = true;
    showKey(id);
    if (id <= kKeysFilledAtOnce) {
        fillPage(pageOf(id));
    }
    fillPage(stack_->currentIndex());
}

void QuickKeysPage::updateQuickKey(int id, const char* name, const char* color) {
    if (!isIdInBounds(id) || !isKnown(id)) {
        return;
    }
    place(id).name = QString::fromUtf8(name);
    place(id).color = QString::fromUtf8(color);
    showKey(id);
}

void QuickKeysPage::deleteQuickKey(int id) {
    if (!isIdInBounds(id) || !isKnown(id)) {
        return;
    }
    Place& deleted = place(id);
    deleted.isUsed = false;
    showKey(id);

    if (id == highestId_) {
        int highest = static_cast<int>(places_.size());
        while (highest > 0 && !isKnown(highest)) {
            --highest;
        }
        if (highest > 0) {
            highestId_ = highest;
        }
        deletePagesBehind(pageOf(highestId_));
    }
}

void QuickKeysPage::configQuickKey(int rows, int columns) {
    if (!isGridInBounds(rows, columns) || (rows == rows_ && columns == columns_)) {
        return;
    }
    // The view stays with the key in its first place.
    const int firstShown = (spinBox_->value() - 1) * keysPerPage() + 1;
    rows_ = rows;
    columns_ = columns;
    if (stack_->count() > 0) {
        rebuildPages(pageOf(firstShown));
    }
}

void QuickKeysPage::rebuildPages(int page) {
    keepFocusFrom(stack_);
    stack_->setCurrentIndex(0); // so that no other one is shown while they go
    for (int i = stack_->count() - 1; i >= 0; --i) {
        delete stack_->widget(i);
    }
    for (Place& gone : places_) {
        gone.button = nullptr;
    }
    places_.resize(static_cast<std::size_t>(highestId_));

    const int count = highestId_ / keysPerPage() + 1;
    for (int i = 0; i < count; ++i) {
        addQuickKeysPage();
    }
    updateSpinBox();
    spinBox_->setValue(page + 1);
    navigateToPage(spinBox_->value());
    for (int i = 0; i < count && i * keysPerPage() < kKeysFilledAtOnce; ++i) {
        fillPage(i);
    }
}

void QuickKeysPage::addQuickKeysPage() {
    stack_->addWidget(new QWidget(stack_));
    const auto room = static_cast<std::size_t>(stack_->count() * keysPerPage());
    places_.resize(std::max(places_.size(), room)); // while pages are rebuilt, keys are there first
}

void QuickKeysPage::fillPage(int page) {
    QWidget* grid = stack_->widget(page);
    if (grid->layout() != nullptr) {
        return;
    }
    // Out of sight: buttons that come into a visible page have it laid out anew, one by one.
    const bool isShown = !grid->isHidden();
    grid->hide();
    auto* layout = new QGridLayout(grid);
    layout->setAlignment(Qt::AlignCenter);
    layout->setSpacing(kSpacing);
    for (int i = 0; i < keysPerPage(); ++i) {
        const int id = page * keysPerPage() + i + 1;
        auto* button = new QuickKeysButton(configuration_.patternButtonSize, grid);
        button->setEnabled(false);
        connect(button, &QuickKeysButton::pressed, mapper_, qOverload<>(&QSignalMapper::map));
        mapper_->setMapping(button, id);
        layout->addWidget(button, i / columns_, i % columns_);
        place(id).button = button;
        if (place(id).isUsed) {
            showKey(id);
        }
    }
    grid->setVisible(isShown);
}

void QuickKeysPage::showKey(int id) {
    const Place& shown = place(id);
    if (shown.button == nullptr) {
        return;
    }
    if (shown.isUsed) {
        shown.button->setName(shown.name);
        shown.button->setBckgColor(shown.color);
        shown.button->setId(id);
        shown.button->setEnabled(true);
    } else {
        keepFocusFrom(shown.button);
        shown.button->setName(QString());
        shown.button->setStyleSheet(QString());
        shown.button->setEnabled(false);
    }
}

void QuickKeysPage::deletePagesBehind(int page) {
    const int remaining = page + 1;
    if (stack_->count() <= remaining) {
        return;
    }
    // The view moves to the new last page, once, before the others go.
    spinBox_->setValue(remaining);
    while (stack_->count() > remaining) {
        deleteQuickKeysPage();
    }
    updateSpinBox();
}

void QuickKeysPage::deleteQuickKeysPage() {
    QWidget* page = stack_->widget(stack_->count() - 1);
    const auto first = places_.end() - keysPerPage();
    std::for_each(first, places_.end(), [](const Place& gone) { delete gone.button; });
    places_.erase(first, places_.end());
    stack_->removeWidget(page);
    page->deleteLater();
}

void QuickKeysPage::updateSpinBox() {
    const int pages = stack_->count();
    if (spinBox_->maximum() == pages) {
        return;
    }
    spinBox_->setMaximum(pages);
    if (pages < 2) {
        keepFocusFrom(spinBox_);
    }
    spinBox_->setVisible(pages > 1);
}

void QuickKeysPage::keepFocusFrom(const QWidget* leaving) {
    const QWidget* focused = window()->focusWidget();
    if (focused != nullptr && (focused == leaving || leaving->isAncestorOf(focused))) {
        setFocus(Qt::OtherFocusReason);
    }
}

bool QuickKeysPage::isKnown(int id) const {
    return id <= static_cast<int>(places_.size()) &&
           places_[static_cast<std::size_t>(id - 1)].isUsed;
}

void QuickKeysPage::navigateToPage(int page) {
    if (page < 1 || page > stack_->count()) {
        return;
    }
    if (page - 1 != stack_->currentIndex()) {
        keepFocusFrom(stack_);
    }
    fillPage(page - 1);
    stack_->setCurrentIndex(page - 1);
}

void QuickKeysPage::onButtonPressed(int id) {
    ExecuteQuickKeyEvent event(static_cast<std::uint32_t>(id));
    EventDispatcher::getInstance()->client().sendEvent(event);
}

void QuickKeysPage::lockPage() {
    spinBox_->clearFocus();
}
