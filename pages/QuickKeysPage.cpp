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
#include <memory>

using namespace NetworkCompanion;
using namespace PagesLook;

namespace {

constexpr int kMinId = static_cast<int>(Limits::kMinQuickKeyId);
constexpr int kMaxId = static_cast<int>(Limits::kMaxQuickKeyId);
constexpr int kMinGrid = static_cast<int>(Limits::kMinQuickKeyGrid);
constexpr int kMaxGrid = static_cast<int>(Limits::kMaxQuickKeyGrid);

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
    while (static_cast<int>(buttons_.size()) < id) {
        addQuickKeysPage();
    }
    updateSpinBox();
    highestId_ = std::max(highestId_, id);

    fillPage(pageOf(id));
    QuickKeysButton* button = buttons_[static_cast<std::size_t>(id - 1)];
    button->setName(QString::fromUtf8(name));
    button->setBckgColor(QString::fromUtf8(color));
    button->setId(id);
    button->setEnabled(true);
}

void QuickKeysPage::updateQuickKey(int id, const char* name, const char* color) {
    if (!isIdInBounds(id)) {
        return;
    }
    if (QuickKeysButton* button = keyButton(id)) {
        button->setName(QString::fromUtf8(name));
        button->setBckgColor(QString::fromUtf8(color));
    }
}

void QuickKeysPage::deleteQuickKey(int id) {
    if (!isIdInBounds(id)) {
        return;
    }
    QuickKeysButton* button = keyButton(id);
    if (button == nullptr) {
        return;
    }
    keepFocusFrom(button);
    button->setName(QString());
    button->setStyleSheet(QString());
    button->setEnabled(false);

    if (id == highestId_) {
        if (const int highest = highestKey()) {
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
    setUpdatesEnabled(false);
    keepFocusFrom(stack_);
    std::vector<std::unique_ptr<QWidget>> oldPages;
    stack_->setCurrentIndex(0); // so that no other one is shown while they go
    for (int i = stack_->count() - 1; i >= 0; --i) {
        QWidget* old = stack_->widget(i);
        stack_->removeWidget(old);
        delete old->layout();
        oldPages.emplace_back(old);
    }

    // The buttons beyond the highest key go with the old pages.
    std::vector<QuickKeysButton*> kept(
        buttons_.begin(),
        buttons_.begin() + std::min<std::ptrdiff_t>(highestId_, std::ssize(buttons_)));
    buttons_.clear();
    const int count = highestId_ / keysPerPage() + 1;
    for (int i = 0; i < count; ++i) {
        addQuickKeysPage();
    }
    std::copy(kept.begin(), kept.end(), buttons_.begin());
    for (int id = 1; id <= static_cast<int>(kept.size()); ++id) {
        if (kept[static_cast<std::size_t>(id - 1)] != nullptr) {
            fillPage(pageOf(id));
        }
    }
    fillPage(0);
    updateSpinBox();
    spinBox_->setValue(page + 1);
    navigateToPage(spinBox_->value());
    setUpdatesEnabled(true);
}

void QuickKeysPage::addQuickKeysPage() {
    stack_->addWidget(new QWidget(stack_));
    buttons_.resize(buttons_.size() + static_cast<std::size_t>(keysPerPage()), nullptr);
    if (stack_->count() == 1) {
        fillPage(0);
    }
}

void QuickKeysPage::fillPage(int page) {
    QWidget* grid = stack_->widget(page);
    if (grid->layout() != nullptr) {
        return;
    }
    auto* layout = new QGridLayout(grid);
    layout->setAlignment(Qt::AlignCenter);
    layout->setSpacing(kSpacing);
    for (int i = 0; i < keysPerPage(); ++i) {
        const int id = page * keysPerPage() + i + 1;
        QuickKeysButton*& button = buttons_[static_cast<std::size_t>(id - 1)];
        if (button == nullptr) {
            button = new QuickKeysButton(configuration_.patternButtonSize, grid);
            button->setEnabled(false);
            connect(button, &QuickKeysButton::pressed, mapper_, qOverload<>(&QSignalMapper::map));
        }
        mapper_->setMapping(button, id);
        layout->addWidget(button, i / columns_, i % columns_);
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
    buttons_.resize(buttons_.size() - static_cast<std::size_t>(keysPerPage()));
    stack_->removeWidget(page);
    page->deleteLater(); // and its buttons with it
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

QuickKeysButton* QuickKeysPage::keyButton(int id) const {
    if (id > static_cast<int>(buttons_.size())) {
        return nullptr;
    }
    QuickKeysButton* button = buttons_[static_cast<std::size_t>(id - 1)];
    return button != nullptr && button->isEnabledTo(button->parentWidget()) ? button : nullptr;
}

int QuickKeysPage::highestKey() const {
    int id = static_cast<int>(buttons_.size());
    while (id > 0 && keyButton(id) == nullptr) {
        --id;
    }
    return id;
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
