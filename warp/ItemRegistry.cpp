#include "warp/ItemRegistry.h"

#include "warp/ScreenItem.h"

using namespace NetworkCompanion;

void ItemRegistry::add(Item* row) {
    rows_.emplace(row->key(), row);
}

void ItemRegistry::remove(const Item* row) {
    rows_.erase(row->key());
}

Item* ItemRegistry::find(const ItemKey& key) const {
    const auto found = rows_.find(key);
    return found != rows_.end() ? found->second : nullptr;
}

ScreenItem* ItemRegistry::findScreen(int screenId) const {
    return static_cast<ScreenItem*>(find(ItemKey::screen(static_cast<std::uint32_t>(screenId))));
}

std::vector<Item*> ItemRegistry::rows() const {
    std::vector<Item*> rows;
    rows.reserve(rows_.size());
    for (const auto& [key, row] : rows_)
        rows.push_back(row);
    return rows;
}

std::vector<Item*> ItemRegistry::rows(LV_NTC_ElementType type) const {
    std::vector<Item*> rows;
    for (auto row = rows_.lower_bound({type}); row != rows_.end() && row->first.type == type; ++row)
        rows.push_back(row->second);
    return rows;
}
