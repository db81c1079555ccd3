#pragma once

#include "app/shell/EventListener.h"
#include "input/action.h"
#include "input/key_event_listener.h"
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
/// textures. Keeps the books on them, the selection and the filters, and tells what changes.
///
/// Order and visibility of the rows are right as soon as an operation returns; their geometry
/// follows with the next turn of the event loop, however many rows came and went. A row counts as
/// visible when nothing hides it, also while the whole list is not on screen.
class MediaList final : public QWidget, public EventListener, public KeyEventListener {
    Q_OBJECT

public:
    /// `configuration` has to outlive the list.
    MediaList(const Configuration& configuration, QWidget* parent);
    ~MediaList() override;

    /// Events outside the bounds of the protocol are dropped with a warning, those that name
    /// unknown elements silently.
    void receive(NetworkCompanion::Event* event) override;
    void notified(QKeyEvent* keyEvent) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

    // An element that is there already gets no second row, but is announced again.
    void addMedia(NetworkCompanion::MediaType::Enum type, unsigned int cueId, int mediaId,
                  int dataIndex, int sourceWidth, int sourceHeight, double sourceRotation,
                  bool flag, const QString& name);
    void addTexture(unsigned int cueId, int textureId, int dataIndex, int sourceWidth,
                    int sourceHeight, double sourceRotation, bool flag, const QString& name);
    void addScreen(int screenId, int dataIndex, int sourceWidth, int sourceHeight,
                   double sourceDeformerRotation, bool blinded, bool flag, const QString& name);
    void addScreenPart(int screenId, int partId, int dataIndex, int sourceWidth, int sourceHeight,
                       double sourceDeformerRotation, bool blinded, const QString& name);

    // A selected element is unselected before its row is deleted.
    void removeMedia(unsigned int cueId);
    void removeTexture(unsigned int cueId);
    void removeScreen(int screenId);
    void removeScreenPart(int screenId, int partId);
    void purgeMedia();

    void updateScreenMode(int screenId, NetworkCompanion::LV_NTC_ModeType mode);
    void updateScreenBlind(int screenId, bool blinded);
    void updateScreenPartBlind(int screenId, int partId, bool blinded);
    /// Also takes the element's name. The row finds its place anew with the next update.
    void updateMediaBlind(NetworkCompanion::LV_NTC_ElementType elementType, const QString& name,
                          unsigned int cueId, bool blinded);

    // Record a deformation without telling anybody.
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
    // Tell of a deformation that the Producer reports, then record it.
    void receiveAndUpdateDeformationMode(const NetworkCompanion::DeformationModeEvent& event);
    void receiveAndUpdateScreenPartDeformationMode(
        const NetworkCompanion::ScreenPartDeformationModeEvent& event);
    void
    receiveAndUpdateMediaDeformationMode(const NetworkCompanion::MediaDeformationModeEvent& event);

    /// "newShow" empties the list and asks for the new show's elements.
    void processMessage(const QString& text);

    /// Brings order and visibility up to date with the elements, their names and the filters.
    void updateMediaList();
    /// By label, byte by byte with A to Z lowered; equal labels keep their order.
    void sortItemList(std::vector<Item*>& items) const;

    // Show the rows whose label contains the text, ignoring case, and return how many there are.
    int filterByText(const QString& text);
    int filterByText();
    int textFilterOnScreensAndScreenParts(const QString& text);
    int textFilterOnMedias(const QString& text);
    int textFilterOnTextures(const QString& text);

    /// Takes screens and their parts out of view, or back into it.
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

    /// The row at that place of the list, hidden ones counted; null outside the list.
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

    /// What every new row gets. It waits, hidden, for the next updateMediaList().
    void adopt(Item* row);
    /// Removes the row from the layout and from the books of order and visibility.
    void takeOut(Item* row);
    /// Deletes the row, unselected first.
    void dispose(Item* row);
    /// Order and visibility of a row with a new label are due with the next updateMediaList().
    void relabel(Item* row, const QString& text);
    QString partLabel(const ScreenItem* screen, const QString& partName) const;

    void rebuildLayout();
    void place(Item* row);
    /// By the text alone; also false for a screen or part that stands in for the other.
    bool matches(const Item* row, const QString& text) const;
    int showIfMatching(Item* row, const QString& text);
    void applyFilters(Item* row);
    void unselectIfHidden();
    /// Selects the first visible row among those at the places from, from + step and so on.
    void selectVisible(int from, int step);

    /// From here to the next turn of the event loop, a change of a row costs only itself: the
    /// layout is computed and the list painted once for all of them.
    void holdLayout();
    void layOut();
    void furnishRowsInSight();
    /// The selected row if there is one to be seen, the first one otherwise.
    void scrollToWhatMatters();

    const Configuration& configuration_;
    QScrollArea* scrollArea_;
    QWidget* content_;
    QVBoxLayout* rowsLayout_;
    Item* selectedItem_ = nullptr;
    bool screensOnly_ = false; ///< whether screens and their parts are kept out of view
    QString filterText_;
    std::map<unsigned int, MediaItem*> mediaItems_;
    std::map<unsigned int, TextureItem*> textureItems_;
    std::vector<ScreenItem*> screenItems_; ///< by screen number, with null where there is none

    std::vector<Item*> sortedScreens_; ///< as in the layout, without their parts
    std::vector<Item*> sortedMedias_;  ///< as in the layout, with textures
    std::vector<Item*> newRows_;       ///< not in the layout yet
    std::set<Item*> changedRows_;      ///< whose visibility may not be what the filters say
    bool isOrderStale_ = false;        ///< whether a label changed since the rows were sorted
    bool isLayoutHeld_ = false;
};
