#pragma once

#include <QObject>
#include <QTimer>

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
/// iteration, because a show adds hundreds of rows at once. The topmost row in view keeps its place
/// on the screen, whatever is added, removed, shown or hidden; while the list fills, the view stays
/// at the top.
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
    /// The row may get another position, so the view must not follow it.
    void forgetPlace(const Item* row);

    /// Postpones the computation of the geometry to the next event-loop iteration.
    void defer();
    /// Computes a postponed geometry now, even while it is held.
    void apply();
    /// The same for a change by the operator, who then scrolls: no row keeps its place.
    void applyAnew();
    /// Rows keep their geometry while held, because a finger presses one of them or scrolls.
    void hold(bool isHeld);
    /// The operator uses the list: from now on rows keep their places although it still fills.
    void endFilling() { fillTimer_.stop(); }

    /// Sorts by Item::sortKey(); equal keys keep their order.
    static void sort(std::vector<Item*>& rows);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// A row in view and its vertical position in the content.
    struct Place {
        Item* row;
        int y;
    };

    void append(std::vector<Item*> rows);
    void applyUnlessHeld();
    void layOut();
    void onScrolled();
    /// Creates the widgets of the rows in view, shows in what their names differ from those of
    /// their neighbours, and records their places.
    void updateView();
    /// Scrolls so that the row stands where it stood before the layout.
    void keepInPlace(const Place& before, int scrolled);
    /// Sets the heights of the empty spaces before the first and after the last row, by which a row
    /// keeps its place where the scroll bar ends. They shrink when the operator scrolls.
    void setSlack(int above, int below);

    const ItemRegistry& items_;
    QScrollArea* area_;
    QVBoxLayout* layout_;
    std::vector<Place> inView_; ///< from top to bottom
    QTimer fillTimer_;          ///< runs while the rows of an empty list arrive
    int count_ = 0;             ///< rows at the last layout
    bool isSortRequested_ = false;
    bool isDeferred_ = false;
    bool isHeld_ = false;
    bool isApplying_ = false;
};
