#pragma once

#include "app/EventListener.h"
#include "pages/ControlPage.h"

#include <QSignalMapper>
#include <QSpinBox>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <vector>

struct Configuration;
class QuickKeysButton;

/// The Producer's quick keys, screenful by screenful, in the grid that the Producer configured.
/// Keys and grid keep to the bounds of the protocol: an event outside of them is dropped with one
/// warning. Whatever arrives before the grid is known is ignored, as are unknown keys.
class QuickKeysPage final : public ControlPage, public EventListener {
    Q_OBJECT

public:
    /// `configuration` outlives the page. Listens to the dispatcher until it is destroyed.
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
    /// `page` counts from 1; a page that is not there is ignored.
    void navigateToPage(int page);
    /// Has the Producer execute the key.
    void onButtonPressed(int id);

signals:
    void buttonClicked(int id);

private:
    /// Where a key is or could be: its button, and what the button shows once there is one.
    struct Place {
        QString name;
        QString color;
        bool isUsed = false;
        QuickKeysButton* button = nullptr; ///< null until the page is filled
    };

    void initNavSpinBox();
    void addQuickKeysPage();
    void deleteQuickKeysPage();
    void deletePagesBehind(int page);
    void rebuildPages(int page);
    /// Gives the page its buttons, unless it has them.
    void fillPage(int page);
    void updateSpinBox();
    void showKey(int id);
    /// Takes the keyboard from a control that is about to go, lest it lands on the next key.
    void keepFocusFrom(const QWidget* leaving);

    [[nodiscard]] int keysPerPage() const { return rows_ * columns_; }
    /// Keys count from 1, pages from 0.
    [[nodiscard]] int pageOf(int id) const { return (id - 1) / keysPerPage(); }
    [[nodiscard]] Place& place(int id) { return places_[static_cast<std::size_t>(id - 1)]; }
    [[nodiscard]] bool isKnown(int id) const;

    const Configuration& configuration_;
    // Children of the page.
    QVBoxLayout* layout_;
    QSpinBox* spinBox_;
    QStackedWidget* stack_; ///< a grid page for each screenful of keys
    QSignalMapper* mapper_;
    std::vector<Place> places_; ///< of all pages; the key `id` is at `id - 1`
    int rows_ = 0;
    int columns_ = 0;
    int highestId_ = 0;
};
