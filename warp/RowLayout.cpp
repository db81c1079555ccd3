#include "warp/RowLayout.h"

#include "warp/ItemRegistry.h"
#include "warp/ScreenItem.h"
#include "warp/ScreenPartItem.h"
#include "warp/WarpLook.h"

#include <QCoreApplication>
#include <QEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <optional>
#include <utility>

using namespace NetworkCompanion;

namespace {

qsizetype commonPrefixLength(const QString& a, const QString& b) {
    return std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin();
}

} // namespace

RowLayout::RowLayout(const ItemRegistry& items, QScrollArea* area) : items_(items), area_(area) {
    area_->setWidget(new QWidget);
    area_->setWidgetResizable(true);
    layout_ = new QVBoxLayout(content());
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(WarpLook::kRowSpacing);
    layout_->setAlignment(Qt::AlignTop);
    area_->installEventFilter(this);
    area_->viewport()->installEventFilter(this);
    connect(area_->verticalScrollBar(), &QScrollBar::valueChanged, this, &RowLayout::onScrolled);
    fillTimer_.setSingleShot(true);
    fillTimer_.setInterval(WarpLook::kFillMs);
}

QWidget* RowLayout::content() const {
    return area_->widget();
}

Item* RowLayout::rowAt(int index) {
    sortIfRequested();
    const QLayoutItem* item = layout_->itemAt(index);
    return item != nullptr ? static_cast<Item*>(item->widget()) : nullptr;
}

int RowLayout::indexOf(const Item* row) {
    sortIfRequested();
    return layout_->indexOf(row);
}

void RowLayout::remove(Item* row) {
    defer();
    layout_->removeWidget(row);
    forgetPlace(row);
}

void RowLayout::requestSort() {
    isSortRequested_ = true;
    defer();
}

void RowLayout::sortIfRequested() {
    if (!std::exchange(isSortRequested_, false))
        return;
    while (QLayoutItem* item = layout_->takeAt(0)) {
        // Cleared because addWidget() would otherwise search the layout for the widget.
        item->widget()->setAttribute(Qt::WA_LaidOut, false);
        delete item;
    }
    append(items_.rows(LV_NTC_ElementType::Screen));
    std::vector<Item*> medias = items_.rows(LV_NTC_ElementType::Media);
    const std::vector<Item*> textures = items_.rows(LV_NTC_ElementType::Texture);
    medias.insert(medias.end(), textures.begin(), textures.end());
    append(std::move(medias));
}

void RowLayout::sort(std::vector<Item*>& rows) {
    std::stable_sort(
        rows.begin(), rows.end(),
        [](const Item* a, const Item* b) { return qstrcmp(a->sortKey(), b->sortKey()) < 0; });
}

void RowLayout::append(std::vector<Item*> rows) {
    sort(rows);
    for (Item* row : rows) {
        layout_->addWidget(row);
        if (row->elementType() == LV_NTC_ElementType::Screen)
            for (ScreenPartItem* part : static_cast<ScreenItem*>(row)->parts())
                layout_->addWidget(part);
    }
}

void RowLayout::defer() {
    if (isDeferred_)
        return;
    isDeferred_ = true;
    layout_->setEnabled(false);
    QMetaObject::invokeMethod(this, &RowLayout::applyUnlessHeld, Qt::QueuedConnection);
}

void RowLayout::hold(bool isHeld) {
    isHeld_ = isHeld;
    endFilling();
    applyUnlessHeld();
}

void RowLayout::applyUnlessHeld() {
    if (!isHeld_)
        apply();
}

void RowLayout::applyAnew() {
    if (isDeferred_)
        inView_.clear();
    apply();
}

void RowLayout::forgetPlace(const Item* row) {
    std::erase_if(
        inView_, [row](const Place& place) { return place.row == row; });
}

void RowLayout::apply() {
    if (!isDeferred_)
        return;
    sortIfRequested();
    const int count = layout_->count();
    if (count > count_ && (count_ == 0 || fillTimer_.isActive()))
        fillTimer_.start();
    count_ = count;
    if (fillTimer_.isActive())
        inView_.clear();
    const auto anchor = std::find_if(inView_.begin(), inView_.end(),
                                     [](const Place& place) { return !place.row->isHidden(); });
    const std::optional<Place> before =
        anchor != inView_.end() ? std::optional(*anchor) : std::nullopt;
    const int scrolled = area_->verticalScrollBar()->value();
    isDeferred_ = false;
    isApplying_ = true;
    layout_->setEnabled(true);
    setSlack(0, 0);
    layOut();
    if (before)
        keepInPlace(*before, scrolled);
    isApplying_ = false;
    updateView();
}

void RowLayout::layOut() {
    // The scroll area resizes the content first, so that the rows move only once.
    QEvent request(QEvent::LayoutRequest);
    QCoreApplication::sendEvent(area_, &request);
    layout_->activate();
}

void RowLayout::keepInPlace(const Place& before, int scrolled) {
    QScrollBar* bar = area_->verticalScrollBar();
    const int wanted = scrolled + before.row->y() - before.y;
    if (wanted < 0) {
        setSlack(-wanted, 0);
        layOut();
    } else if (wanted > bar->maximum()) {
        setSlack(0, wanted + area_->viewport()->height() - layout_->minimumSize().height());
        layOut();
    }
    bar->setValue(wanted);
}

void RowLayout::setSlack(int above, int below) {
    layout_->setContentsMargins(0, above, 0, below);
}

void RowLayout::onScrolled() {
    if (isApplying_)
        return;
    endFilling();
    if (!layout_->contentsMargins().isNull())
        defer(); // less of it is needed
    updateView();
}

void RowLayout::updateView() {
    const int top = area_->verticalScrollBar()->value();
    const int bottom = top + area_->viewport()->height();
    inView_.clear();
    Item* above = nullptr;
    bool isAboveInView = false;
    qsizetype commonAbove = 0;
    const auto showAbove = [&](qsizetype commonBelow) {
        if (isAboveInView)
            above->showDifference(std::max(commonAbove, commonBelow));
    };
    for (int index = 0; Item* row = rowAt(index); ++index) {
        if (row->isHidden())
            continue;
        const bool isInView = row->y() + row->height() > top && row->y() < bottom;
        if (isInView) {
            row->createWidgets();
            inView_.push_back({row, row->y()});
        }
        const qsizetype common = above != nullptr && (isInView || isAboveInView)
                                     ? commonPrefixLength(above->labelText(), row->labelText())
                                     : 0;
        showAbove(common);
        above = row;
        isAboveInView = isInView;
        commonAbove = common;
    }
    showAbove(0);
}

bool RowLayout::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize && watched != area_)
        updateView();
    // The range of the scroll bar must not shrink before the rows have moved.
    return (event->type() == QEvent::LayoutRequest && isDeferred_) ||
           QObject::eventFilter(watched, event);
}
