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
#include <utility>

using namespace NetworkCompanion;

RowLayout::RowLayout(const ItemRegistry& items, QScrollArea* area) : items_(items), area_(area) {
    area_->setWidget(new QWidget);
    area_->setWidgetResizable(true);
    layout_ = new QVBoxLayout(content());
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(WarpLook::kRowSpacing);
    layout_->setAlignment(Qt::AlignTop);
    area_->viewport()->installEventFilter(this);
    connect(area_->verticalScrollBar(), &QScrollBar::valueChanged, this,
            &RowLayout::createWidgetsInView);
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
    QMetaObject::invokeMethod(this, &RowLayout::apply, Qt::QueuedConnection);
}

void RowLayout::apply() {
    if (!isDeferred_)
        return;
    sortIfRequested();
    isDeferred_ = false;
    layout_->setEnabled(true);
    // The scroll area resizes the content first, so that the rows move only once.
    QEvent request(QEvent::LayoutRequest);
    QCoreApplication::sendEvent(area_, &request);
    layout_->activate();
    createWidgetsInView();
}

void RowLayout::createWidgetsInView() {
    const int top = area_->verticalScrollBar()->value();
    const int bottom = top + area_->viewport()->height();
    for (int index = 0; Item* row = rowAt(index); ++index) {
        if (row->isHidden() || row->y() + row->height() <= top)
            continue;
        if (row->y() >= bottom)
            break; // all rows below are out of view
        row->createWidgets();
    }
}

bool RowLayout::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize)
        createWidgetsInView();
    return QObject::eventFilter(watched, event);
}
