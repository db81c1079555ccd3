#pragma once

#include "app/shell/EventListener.h"
#include "app/shell/EventSubscription.h"
#include "input/action.h"
#include "input/key_event_listener.h"
#include "input/key_subscription.h"
#include "warp/Item.h"
#include "warp/ItemRegistry.h"
#include "warp/RowLayout.h"

#include <QWidget>

#include <memory>
#include <vector>

class QKeyEvent;
class QScrollArea;
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
/// follows once in the next event-loop iteration, or when the finger on the list is lifted. A row
/// is visible unless it is hidden explicitly, whether or not the list itself is on screen. Members
/// marked API are not used by the application itself.
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

    /// Removes every element by itself: medias, textures, then screens with their parts.
    void purgeMedia();

    void updateScreenMode(int screenId, NetworkCompanion::LV_NTC_ModeType mode);
    /// Also sets the element's name. The next updateMediaList() sorts the row again.
    void updateMediaBlind(NetworkCompanion::LV_NTC_ElementType elementType, const QString& name,
                          unsigned int cueId, bool blinded);

    /// "newShow" clears the list and requests the elements of the new show.
    void processMessage(const QString& text);

    /// Updates order and visibility of the rows from the elements, their names and the filters.
    void updateMediaList();

    /// Stores the text and shows the rows whose label contains it, ignoring case. Returns the
    /// number of rows shown.
    int filterByText(const QString& text);
    /// The same with the stored text.
    int filterByText();
    /// Hides screens and their parts, or shows them again.
    void filterScreens(bool on);
    void filterScreens();
    void hideScreensAndScreenParts();
    void showScreensAndScreenParts();

    /// The selected row or null.
    Item* selection() const { return selectedItem_; }
    void selectNextVisibleItem();
    void selectPreviousVisibleItem();

    // Relays: one short function per kind of element or argument; the work is done in the functions
    // that they call.
    void removeMedia(unsigned int cueId) { removeRow(NetworkCompanion::ItemKey::media(cueId)); }
    void removeTexture(unsigned int cueId) { removeRow(NetworkCompanion::ItemKey::texture(cueId)); }
    void removeScreen(int screenId) { removeRow(screenKey(screenId)); }
    void removeScreenPart(int screenId, int partId) { removeRow(partKey(screenId, partId)); }
    void updateScreenBlind(int screenId, bool blinded) { setBlinded(screenKey(screenId), blinded); }
    void updateScreenPartBlind(int screenId, int partId, bool blinded) {
        setBlinded(partKey(screenId, partId), blinded);
    }
    void updateDeformationMode(NetworkCompanion::LV_NTC_DeformationType type, int screenId, // API
                               const QString&, int rows, int columns, bool reset) {
        setDeformation(screenKey(screenId), {static_cast<int>(type), rows, columns, reset});
    }
    void updateScreenPartDeformationMode(NetworkCompanion::LV_NTC_DeformationType type, // API
                                         int screenId, int screenPartId, const QString&, int rows,
                                         int columns, bool reset) {
        setDeformation(partKey(screenId, screenPartId),
                       {static_cast<int>(type), rows, columns, reset});
    }
    void updateMediaDeformationMode(NetworkCompanion::LV_NTC_ElementType elementType, // API
                                    NetworkCompanion::LV_NTC_DeformationType type,
                                    unsigned int cueId, int, const QString&, int rows, int columns,
                                    bool reset) {
        setDeformation(NetworkCompanion::ItemKey::mediaOrTexture(elementType, cueId),
                       {static_cast<int>(type), rows, columns, reset});
    }
    void receiveAndUpdateDeformationMode(const NetworkCompanion::DeformationModeEvent& event);
    void receiveAndUpdateScreenPartDeformationMode(
        const NetworkCompanion::ScreenPartDeformationModeEvent& event);
    void
    receiveAndUpdateMediaDeformationMode(const NetworkCompanion::MediaDeformationModeEvent& event);
    void sortItemList(std::vector<Item*>& items) const { RowLayout::sort(items); } // API
    int textFilterOnScreensAndScreenParts(const QString& text) {
        return filterRows(NetworkCompanion::LV_NTC_ElementType::Screen, text) +
               filterRows(NetworkCompanion::LV_NTC_ElementType::ScreenPart, text);
    }
    int textFilterOnMedias(const QString& text) {
        return filterRows(NetworkCompanion::LV_NTC_ElementType::Media, text);
    }
    int textFilterOnTextures(const QString& text) {
        return filterRows(NetworkCompanion::LV_NTC_ElementType::Texture, text);
    }
    void unselectItem() { onSelectedItem(nullptr); }
    void selectFirstVisibleItem() { selectVisible(0, 1); }
    /// The row at that position, hidden rows included; null outside the list.
    Item* getItemFromLayout(int index) const { return rows_->rowAt(index); }
    // End of the relays.

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
    static NetworkCompanion::ItemKey screenKey(int screenId) {
        return NetworkCompanion::ItemKey::screen(static_cast<unsigned int>(screenId));
    }
    static NetworkCompanion::ItemKey partKey(int screenId, int partId) {
        return NetworkCompanion::ItemKey::screenPart(static_cast<unsigned int>(screenId),
                                                     static_cast<unsigned int>(partId));
    }

    void initMediaList();
    void initTouch();

    /// Registers and shows a new row.
    void initRow(Item* row);
    /// Removes the row of the element, clears the selection if it was selected and deletes it.
    void removeRow(const NetworkCompanion::ItemKey& key);
    void removeParts(int screenId);
    /// Sets the label; the next updateMediaList() sorts and filters the rows again.
    void relabel(Item* row, const QString& text);
    void setBlinded(const NetworkCompanion::ItemKey& key, bool blinded);
    void setDeformation(const NetworkCompanion::ItemKey& key, const Item::Deformation& deformation);
    /// Emits the signal of a deformation that the Producer reports, then stores it.
    template <class DeformationEvent>
    void receiveAndUpdate(const NetworkCompanion::ItemKey& key, const DeformationEvent& event);

    int filterRows(NetworkCompanion::LV_NTC_ElementType type, const QString& text);
    void applyFilters(Item* row);
    void unselectIfHidden();
    /// Selects the first visible row at the positions from, from + step and so on.
    void selectVisible(int from, int step);
    /// Scrolls to the selected row, without a selection to the top.
    void scrollToSelection();

    const Configuration& configuration_;
    QScrollArea* scrollArea_;
    ItemRegistry items_;
    std::unique_ptr<RowLayout> rows_;
    Item* selectedItem_ = nullptr;
    bool screensOnly_ = false; ///< whether screens and their parts are hidden
    QString filterText_;
    /// Whether a label or the visibility of a row has changed since the last updateMediaList().
    bool needsUpdate_ = false;
    KeySubscription keys_;
    EventSubscription events_;
};
