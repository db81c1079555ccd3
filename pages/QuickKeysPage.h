#pragma once

#include "app/shell/EventListener.h"
#include "app/shell/EventSubscription.h"
#include "pages/ControlPage.h"

#include <QSpinBox>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <array>
#include <map>
#include <memory>
#include <vector>

class QLabel;
class QPushButton;
struct Configuration;
class QuickKeysButton;

/// The Producer's quick keys, page by page, in the grid that the Producer configures. An event with
/// a key id or a grid outside the protocol's limits is dropped with a warning; keys that arrive
/// before the grid, and unknown keys, are ignored. Members marked API are not used by the
/// application itself.
///
/// Events change the stored keys and the spin box at once; the buttons follow in the next
/// event-loop iteration, while the page is visible. Buttons exist for the grid page that is shown
/// and for those around it.
class QuickKeysPage final : public ControlPage, public EventListener {
    Q_OBJECT

public:
    /// `configuration` outlives the page.
    QuickKeysPage(const Configuration& configuration, QWidget* parent);
    ~QuickKeysPage() override;

    void receive(NetworkCompanion::Event* event) override;

    // Ids start at 1; texts are UTF-8.
    void addQuickKey(int id, const char* name, const char* color);
    void updateQuickKey(int id, const char* name, const char* color);
    void deleteQuickKey(int id);
    /// Keeps the keys, and the number of the grid page shown unless there are fewer pages now.
    void configQuickKey(int rows, int columns);

    /// Removes the focus from the spin box.
    void lockPage() override;

public slots:
    /// Shows grid page `page`, counted from 1; ignores a page that does not exist.
    void navigateToPage(int page);
    /// Requests the Producer to execute the key.
    void onButtonPressed(int id);

signals:
    void buttonClicked(int id); // API

protected:
    void showEvent(QShowEvent* event) override;

private:
    static constexpr int kNoPage = -1;

    /// A position in the grid pages; `isUsed` when the Producer has added the key.
    struct Key {
        QString name;
        QString color;
        bool isUsed = false;
    };

    void initNavSpinBox();
    void initTurnButton(QPushButton* button, const char* name, const char* icon, int step);
    /// The widgets that turn pages, from left to right.
    [[nodiscard]] std::array<QWidget*, 4> navigation() const;
    void showNavigation(bool isShown);
    void setPageCount(int count);
    void showSpinBoxPage(int page);

    void scheduleUpdate();
    void updateStack();
    /// The grid page, created empty if there is none.
    QWidget* addQuickKeysPage(int number);
    /// Deletes pages that are not shown: those that went, and those far from the shown one.
    void deleteQuickKeysPages();
    /// Adds buttons to the shown page, then to its neighbours, so that turning to them is quick.
    void createButtons();
    /// Adds a limited number of buttons to a page, and shows it when it has all of them. Returns
    /// false when it has them already.
    bool createButtons(int number);
    void showKey(QuickKeysButton* button, int id);
    /// Moves the focus to this page if `leaving` has it, so that Qt does not move it to the next
    /// key.
    void releaseFocus(const QWidget* leaving);

    [[nodiscard]] int keysPerPage() const { return rows_ * columns_; }
    /// The grid page of a key, counted from 0.
    [[nodiscard]] int pageOf(int id) const { return (id - 1) / keysPerPage(); }
    [[nodiscard]] Key& key(int id) { return keys_[static_cast<std::size_t>(id - 1)]; }
    [[nodiscard]] bool isKnown(int id) const;
    /// Null while the key has no button.
    [[nodiscard]] QuickKeysButton* button(int id) const;

    const Configuration& configuration_;
    // Children of the page.
    QVBoxLayout* layout_;
    QPushButton* previous_;
    QSpinBox* spinBox_;
    QPushButton* next_;
    QLabel* pageCountLabel_;
    QStackedWidget* stack_; ///< contains the grid pages
    std::vector<Key> keys_; ///< of all grid pages; key `id` at position `id - 1`
    int pageCount_ = 0;
    std::map<int, std::unique_ptr<QWidget>> pages_;     ///< grid pages by number, counted from 0
    std::vector<std::unique_ptr<QWidget>> formerPages_; ///< of another grid; deleted when one shows
    int shownPage_ = kNoPage;
    int rows_ = 0;
    int columns_ = 0;
    int highestId_ = 0;
    QTimer update_;
    EventSubscription events_;
};
