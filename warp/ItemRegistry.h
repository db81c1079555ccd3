#pragma once

#include "network/ItemKey.h"

#include <map>
#include <vector>

class Item;
class ScreenItem;

/// The rows of the media list by element. Does not own them.
class ItemRegistry {
public:
    /// Registers the row under its key(), which must not change until remove().
    void add(Item* row);
    void remove(const Item* row);

    bool isEmpty() const { return rows_.empty(); }
    /// Null for an element without a row.
    Item* find(const NetworkCompanion::ItemKey& key) const;
    ScreenItem* findScreen(int screenId) const;
    /// The lowest key: medias, then textures, then screens. The registry must not be empty.
    NetworkCompanion::ItemKey firstKey() const { return rows_.begin()->first; }
    std::vector<Item*> rows() const;
    /// All rows of the type, in ascending order of their keys.
    std::vector<Item*> rows(NetworkCompanion::LV_NTC_ElementType type) const;

private:
    std::map<NetworkCompanion::ItemKey, Item*> rows_;
};
