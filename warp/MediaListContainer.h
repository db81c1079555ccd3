#pragma once

#include "input/action.h"
#include "input/key_event_listener.h"
#include "input/key_subscription.h"
#include "network/events/ProtocolTypes.h"

#include <QWidget>

class Item;
class MediaList;
class QCheckBox;
class QKeyEvent;
class SearchBox;
struct Configuration;

/// The media list with its search box and screen filter. Re-emits every signal of the list and
/// forwards keys and actions to it.
class MediaListContainer final : public QWidget, public KeyEventListener {
    Q_OBJECT

public:
    /// `configuration` has to outlive the container.
    MediaListContainer(const Configuration& configuration, QWidget* parent);
    ~MediaListContainer() override;

    MediaList* getMediaList() const { return mediaList_; }
    void notified(QKeyEvent* keyEvent) override;

public slots:
    // Relays: each emits the signal of its name.
    void onSelectedItem(Item* item) { emit selectedItem(item); }
    void onScreenMode(int screenId, NetworkCompanion::LV_NTC_ModeType modeType) {
        emit screenMode(screenId, modeType);
    }
    void onMediaDeformationMode(NetworkCompanion::LV_NTC_ElementType elementType,
                                NetworkCompanion::LV_NTC_DeformationType deformationType,
                                unsigned int cueId, int mediaId, const QString& name, int rows,
                                int columns, bool reset) {
        emit mediaDeformationMode(elementType, deformationType, cueId, mediaId, name, rows, columns,
                                  reset);
    }
    void onScreenDeformationMode(NetworkCompanion::LV_NTC_DeformationType deformationType,
                                 int screenId, const QString& name, int rows, int columns,
                                 bool reset) {
        emit screenDeformationMode(deformationType, screenId, name, rows, columns, reset);
    }
    void onScreenPartDeformationMode(NetworkCompanion::LV_NTC_DeformationType deformationType,
                                     int screenId, int screenPartId, const QString& name, int rows,
                                     int columns, bool reset) {
        emit screenPartDeformationMode(deformationType, screenId, screenPartId, name, rows, columns,
                                       reset);
    }
    void onTextureDeformationMode(NetworkCompanion::LV_NTC_ElementType elementType,
                                  NetworkCompanion::LV_NTC_DeformationType deformationType,
                                  unsigned int cueId, int textureId, const QString& name, int rows,
                                  int columns, bool reset) {
        emit textureDeformationMode(elementType, deformationType, cueId, textureId, name, rows,
                                    columns, reset);
    }
    void onMediaItemAdded(int type, unsigned int cueId, int mediaId, int sourceWidth,
                          int sourceHeight, double sourceRotation, const QString& name) {
        emit mediaItemAdded(type, cueId, mediaId, sourceWidth, sourceHeight, sourceRotation, name);
    }
    void onRemoveMediaItem(unsigned int cueId) { emit removeMediaItem(cueId); }
    void onScreenItemAdded(int idNum, int sourceWidth, int sourceHeight, float sourceRotation,
                           double sourceDeformerRotation, const QString& name) {
        emit screenItemAdded(idNum, sourceWidth, sourceHeight, sourceRotation,
                             sourceDeformerRotation, name);
    }
    void onRemoveScreenItem(int screenId) { emit removeScreenItem(screenId); }
    void onScreenPartItemAdded(int screenId, int screenPartId, int sourceWidth, int sourceHeight,
                               double sourceDeformerRotation, const QString& name) {
        emit screenPartItemAdded(screenId, screenPartId, sourceWidth, sourceHeight,
                                 sourceDeformerRotation, name);
    }
    void onRemoveScreenPartItem(int screenId, int screenPartId) {
        emit removeScreenPartItem(screenId, screenPartId);
    }
    void onTextureItemAdded(unsigned int cueId, int textureId, int sourceWidth, int sourceHeight,
                            double sourceRotation, const QString& name) {
        emit textureItemAdded(cueId, textureId, sourceWidth, sourceHeight, sourceRotation, name);
    }
    void onRemoveTextureItem(unsigned int cueId) { emit removeTextureItem(cueId); }
    void onItemRemoved() { emit itemRemoved(); }
    /// Forwards a key that the mesh editor does not use to the list.
    void onKeyEvent(QKeyEvent* keyEvent) { emit this->keyEvent(keyEvent); }
    void onEmitKeyEvent(QKeyEvent* keyEvent) { emit emitKeyEvent(keyEvent); }
    void onAction(Action action) { emit this->action(action); }
    // End of the relays.

    void onScreenCheckBoxStateChanged(int state);
    void onSearchTextChanged(const QString& text);

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
    void keyEvent(QKeyEvent* keyEvent);
    void emitKeyEvent(QKeyEvent* keyEvent);
    void action(Action action);

private:
    void initControls();
    void initMediaList();
    /// Repeats the search once after all changes of this event-loop iteration, because the search
    /// box shows whether there is a hit.
    void scheduleSearch();
    void showResult(int visible);

    const Configuration& configuration_;
    SearchBox* searchBox_;
    QCheckBox* screenCheckBox_;
    MediaList* mediaList_;
    bool isSearchScheduled_ = false;
    KeySubscription keys_;
};
