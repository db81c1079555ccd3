#pragma once

#include "app/shell/EventListener.h"
#include "app/shell/EventSubscription.h"
#include "input/action.h"
#include "input/key_event_listener.h"
#include "input/key_subscription.h"
#include "network/events/ProtocolTypes.h"

#include <QScrollArea>
#include <QVBoxLayout>
#include <QWidget>

#include <map>
#include <set>
#include <vector>

class Item;
class MediaItem;
class QKeyEvent;
class ScreenItem;
class ScreenPartItem;
class TextureItem;
struct Configuration;

namespace NetworkCompanion {
class DeformationModeEvent;
class MediaDeformationModeEvent;
class ScreenPartDeformationModeEvent;
} // namespace NetworkCompanion

/// The list of the Producer's elements, one row each: screens with their parts, then medias and
/// textures. Holds the rows, the selection and the filters; emits a signal for every change.
///
/// Order and visibility of the rows are up to date when an operation returns; their geometry
/// follows once in the next event-loop iteration. A row is visible unless it is hidden explicitly,
/// whether or not the list itself is on screen.
class MediaList final : public QWidget, public EventListener, public KeyEventListener {
    Q_OBJECT

public:
    /// `configuration` has to outlive the list.
    MediaList(const Configuration& configuration, QWidget* parent);
    ~MediaList() override;

    /// Drops events outside the protocol's bounds with a warning, and events that name unknown
    /// elements silently.
    void receive(NetworkCompanion::Event* event) override;
    void notified(QKeyEvent* keyEvent) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

    // An element that exists gets no second row, but the signal is emitted again.
    void addMedia(NetworkCompanion::MediaType::Enum type, unsigned int cueId, int mediaId,
                  int dataIndex, int sourceWidth, int sourceHeight, double sourceRotation,
                  bool flag, const QString& name);
    void addTexture(unsigned int cueId, int textureId, int dataIndex, int sourceWidth,
                    int sourceHeight, double sourceRotation, bool flag, const QString& name);
    void addScreen(int screenId, int dataIndex, int sourceWidth, int sourceHeight,
                   double sourceDeformerRotation, bool blinded, bool flag, const QString& name);
    void addScreenPart(int screenId, int partId, int dataIndex, int sourceWidth, int sourceHeight,
                       double sourceDeformerRotation, bool blinded, const QString& name);

    // Clear the selection before deleting a selected row.
    void removeMedia(unsigned int cueId);
    void removeTexture(unsigned int cueId);
    void removeScreen(int screenId);
    void removeScreenPart(int screenId, int partId);
    void purgeMedia();

    void updateScreenMode(int screenId, NetworkCompanion::LV_NTC_ModeType mode);
    void updateScreenBlind(int screenId, bool blinded);
    void updateScreenPartBlind(int screenId, int partId, bool blinded);
    /// Also sets the element's name. The next updateMediaList() sorts the row again.
    void updateMediaBlind(NetworkCompanion::LV_NTC_ElementType elementType, const QString& name,
                          unsigned int cueId, bool blinded);

    // Store a deformation without emitting a signal.
    void updateDeformationMode(NetworkCompanion::LV_NTC_DeformationType deformationType,
                               int screenId, const QString& name, int rows, int columns,
                               bool reset);
    void updateScreenPartDeformationMode(NetworkCompanion::LV_NTC_DeformationType deformationType,
                                         int screenId, int screenPartId, const QString& name,
                                         int rows, int columns, bool reset);
    void updateMediaDeformationMode(NetworkCompanion::LV_NTC_ElementType elementType,
                                    NetworkCompanion::LV_NTC_DeformationType deformationType,
                                    unsigned int cueId, int elementId, const QString& name,
                                    int rows, int columns, bool reset);
    // Emit the signal of a deformation that the Producer reports, then store it.
    void receiveAndUpdateDeformationMode(const NetworkCompanion::DeformationModeEvent& event);
    void receiveAndUpdateScreenPartDeformationMode(
        const NetworkCompanion::ScreenPartDeformationModeEvent& event);
    void
    receiveAndUpdateMediaDeformationMode(const NetworkCompanion::MediaDeformationModeEvent& event);

    /// "newShow" clears the list and requests the elements of the new show.
    void processMessage(const QString& text);

    /// Updates order and visibility of the rows from the elements, their names and the filters.
    void updateMediaList();
    /// Sorts by Item::sortKey(); equal keys keep their order.
    void sortItemList(std::vector<Item*>& items) const;

    // Show the rows whose label contains the text, ignoring case, hide the others and return the
    // number of rows shown.
    int filterByText(const QString& text);
    int filterByText();
    int textFilterOnScreensAndScreenParts(const QString& text);
    int textFilterOnMedias(const QString& text);
    int textFilterOnTextures(const QString& text);

    /// Hides screens and their parts, or shows them again.
    void filterScreens(bool on);
    void filterScreens();
    void hideScreensAndScreenParts();
    void showScreensAndScreenParts();

    /// The selected row or null.
    Item* selection() const { return selectedItem_; }
    void unselectItem();
    void selectFirstVisibleItem();
    void selectPreviousVisibleItem();
    void selectNextVisibleItem();

    /// The row at that position, hidden rows included; null outside the list.
    Item* getItemFromLayout(int index) const;

public slots:
    void onSelectedItem(Item* item);
    void onAction(Action action);

signals:
    void selectedItem(Item* item);
    void screenMode(int screenId, NetworkCompanion::LV_NTC_ModeType modeType);
    void mediaDeformationMode(NetworkCompanion::LV_NTC_ElementType elementType,
                              NetworkCompanion::LV_NTC_DeformationType deformationType,
                              unsigned int cueId, int mediaId, QString name, int rows, int columns,
                              bool reset);
    void screenDeformationMode(NetworkCompanion::LV_NTC_DeformationType deformationType,
                               int screenId, QString name, int rows, int columns, bool reset);
    void screenPartDeformationMode(NetworkCompanion::LV_NTC_DeformationType deformationType,
                                   int screenId, int screenPartId, QString name, int rows,
                                   int columns, bool reset);
    void textureDeformationMode(NetworkCompanion::LV_NTC_ElementType elementType,
                                NetworkCompanion::LV_NTC_DeformationType deformationType,
                                unsigned int cueId, int textureId, QString name, int rows,
                                int columns, bool reset);
    void mediaItemAdded(int type, unsigned int cueId, int mediaId, int sourceWidth,
                        int sourceHeight, double sourceRotation, QString name);
    void removeMediaItem(unsigned int cueId);
    void screenItemAdded(int idNum, int sourceWidth, int sourceHeight, float sourceRotation,
                         double sourceDeformerRotation, QString name);
    void removeScreenItem(int screenId);
    void screenPartItemAdded(int screenId, int screenPartId, int sourceWidth, int sourceHeight,
                             double sourceDeformerRotation, QString name);
    void removeScreenPartItem(int screenId, int screenPartId);
    void textureItemAdded(unsigned int cueId, int textureId, int sourceWidth, int sourceHeight,
                          double sourceRotation, QString name);
    void removeTextureItem(unsigned int cueId);
    void itemRemoved();
    void emitKeyEvent(QKeyEvent* keyEvent);

private:
    void initMediaList();

    MediaItem* findMedia(unsigned int cueId) const;
    TextureItem* findTexture(unsigned int cueId) const;
    /// Null for a number that is out of range or belongs to no screen.
    ScreenItem* findScreen(int screenId) const;
    ScreenPartItem* findScreenPart(int screenId, int partId) const;

    /// Sets up a new row, which stays hidden until the next updateMediaList().
    void initRow(Item* row);
    /// Removes the row from the layout and from the state of order and visibility.
    void removeFromLayout(Item* row);
    /// Clears the selection if it is this row, then deletes the row.
    void deleteRow(Item* row);
    /// Sets the label; the next updateMediaList() sorts and filters the row again.
    void relabel(Item* row, const QString& text);
    QString partLabel(const ScreenItem* screen, const QString& partName) const;

    void rebuildLayout();
    void insertIntoLayout(Item* row);
    /// Whether the text filter shows the row. False for a screen in mode `Parts`, and for the parts
    /// of any other screen.
    bool matches(const Item* row, const QString& text) const;
    int showIfMatching(Item* row, const QString& text);
    void applyFilters(Item* row);
    void unselectIfHidden();
    /// Selects the first visible row at the positions from, from + step and so on.
    void selectVisible(int from, int step);

    /// Disables the layout until the next event-loop iteration, so that many changes of rows cost
    /// one layout pass and one repaint.
    void deferLayout();
    void applyLayout();
    void createWidgetsInView();
    /// Scrolls to the selected row, without a selection to the top.
    void scrollToSelection();

    const Configuration& configuration_;
    QScrollArea* scrollArea_;
    QWidget* content_;
    QVBoxLayout* rowsLayout_;
    Item* selectedItem_ = nullptr;
    bool screensOnly_ = false; ///< whether screens and their parts are hidden
    QString filterText_;
    std::map<unsigned int, MediaItem*> mediaItems_;
    std::map<unsigned int, TextureItem*> textureItems_;
    std::vector<ScreenItem*> screenItems_; ///< by screen id; null where there is no screen

    std::vector<Item*> sortedScreens_; ///< in layout order, without parts
    std::vector<Item*> sortedMedias_;  ///< in layout order, with textures
    std::vector<Item*> newRows_;       ///< not yet in the layout
    std::set<Item*> changedRows_;      ///< visibility may differ from the filters
    bool isOrderStale_ = false;        ///< whether a label changed since the last sort
    bool isLayoutDeferred_ = false;
    KeySubscription keys_;
    EventSubscription events_;
};
