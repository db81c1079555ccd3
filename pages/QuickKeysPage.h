#pragma once

#include "app/shell/EventListener.h"
#include "app/shell/EventSubscription.h"
#include "pages/ControlPage.h"

#include <QSignalMapper>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <vector>

struct Configuration;
class QuickKeysButton;

/// The Producer's quick keys, screenful by screenful, in the grid that the Producer configured.
/// Keys and grid keep to the bounds of the protocol: an event outside of them is dropped with one
/// warning. Whatever arrives before the grid is known is ignored, as are unknown keys.
///
/// Events change what is known of the keys, and the spin box, at once; the grid pages follow once
/// in a turn of the event loop, while the page is shown. So a Producer may send as much as it
/// likes, and the window still answers the operator.
class QuickKeysPage final : public ControlPage, public EventListener {
    Q_OBJECT

public:
    /// `configuration` outlives the page.
    QuickKeysPage(const Configuration& configuration, QWidget* parent);
    ~QuickKeysPage() override;

    void receive(NetworkCompanion::Event* event) override;

    // Key ids count from 1; texts are UTF-8.
    void addQuickKey(int id, const char* name, const char* color);
    void updateQuickKey(int id, const char* name, const char* color);
    void deleteQuickKey(int id);
    /// Lays the keys that are there out anew.
    void configQuickKey(int rows, int columns);

    /// Takes the keyboard away from the spin box.
    void lockPage() override;

public slots:
    /// Shows grid page `page`, counted from 1, in stack and spin box; one that is not there is
    /// ignored.
    void navigateToPage(int page);
    /// Has the Producer execute the key.
    void onButtonPressed(int id);

signals:
    void buttonClicked(int id);

protected:
    void showEvent(QShowEvent* event) override;

private:
    /// Where a key is or could be, and what its button shows once there is one.
    struct Place {
        QString name;
        QString color;
        bool isUsed = false;
    };

    void initNavSpinBox();
    void setPageCount(int count);
    void showSpinBoxPage(int page);

    // The grid pages.
    void updateSoon();
    void updateStack();
    void addQuickKeysPage();
    void deleteQuickKeysPage();
    static void emptyPage(QWidget* grid);
    /// Gives the page its buttons, so many in a turn; until it has them all, it is not shown.
    void fillPage(int page);
    void showKey(QuickKeysButton* button, int id);
    /// Takes the keyboard from a control that is about to go, lest it lands on the next key.
    void keepFocusFrom(const QWidget* leaving);

    [[nodiscard]] int keysPerPage() const { return rows_ * columns_; }
    /// Keys count from 1, pages from 0.
    [[nodiscard]] int pageOf(int id) const { return (id - 1) / keysPerPage(); }
    [[nodiscard]] Place& place(int id) { return places_[static_cast<std::size_t>(id - 1)]; }
    [[nodiscard]] bool isKnown(int id) const;
    /// Null while the key's page waits for its buttons.
    [[nodiscard]] QuickKeysButton* button(int id) const;

    const Configuration& configuration_;
    // Children of the page.
    QVBoxLayout* layout_;
    QSpinBox* spinBox_;
    QStackedWidget* stack_; ///< a grid page for each screenful of keys
    QSignalMapper* mapper_;
    std::vector<Place> places_; ///< of all pages; the key `id` is at `id - 1`
    int pageCount_ = 0;
    int rows_ = 0;
    int columns_ = 0;
    int highestId_ = 0;
    bool isGridOutdated_ = false; ///< the grid pages are of earlier rows and columns
    QTimer update_;
    EventSubscription events_;
};
