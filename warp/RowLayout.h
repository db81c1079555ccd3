#pragma once

#include <QObject>

#include <vector>

class Item;
class ItemRegistry;
class QScrollArea;
class QVBoxLayout;
class QWidget;

/// The layout of the media list's rows in a scroll area: screens by label, each followed by its
/// parts, then medias and textures by label.
///
/// Sorts the rows when they are next read, and computes their geometry once per event-loop
/// iteration, because a show adds hundreds of rows at once.
class RowLayout final : public QObject {
    Q_OBJECT

public:
    /// Sets the area's content. Both arguments must outlive the layout.
    RowLayout(const ItemRegistry& items, QScrollArea* area);

    /// The parent of the rows.
    QWidget* content() const;
    /// The row at that position, hidden rows included; null outside the list.
    Item* rowAt(int index);
    /// -1 for a row that is not in the list.
    int indexOf(const Item* row);

    /// Sorts the registered rows before the next access to their order.
    void requestSort();
    /// Sorts the rows now if a sort was requested.
    void sortIfRequested();
    void remove(Item* row);

    /// Postpones the computation of the geometry to the next event-loop iteration.
    void defer();
    /// Computes a postponed geometry now.
    void apply();

    /// Sorts by Item::sortKey(); equal keys keep their order.
    static void sort(std::vector<Item*>& rows);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void append(std::vector<Item*> rows);
    void createWidgetsInView();

    const ItemRegistry& items_;
    QScrollArea* area_;
    QVBoxLayout* layout_;
    bool isSortRequested_ = false;
    bool isDeferred_ = false;
};
