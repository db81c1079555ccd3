#pragma once

#include "app/shell/EventListener.h"
#include "app/shell/EventSubscription.h"
#include "app/shell/Timing.h"
#include "app/shell/UpdateProducer.h"
#include "input/action.h"
#include "input/key_event_listener.h"
#include "input/key_subscription.h"
#include "network/ItemKey.h"
#include "warp/PendingPoints.h"

#include <QPointF>
#include <QPointer>
#include <QString>
#include <QVBoxLayout>
#include <QWidget>
#include <QtNumeric>

#include <map>
#include <memory>
#include <mutex>
#include <optional>

class Item;
class QKeyEvent;
class QQuickWidget;
struct Configuration;

/// Hosts the mesh editor's scene and is its only bridge to the program: emits as signals what the
/// list and the Producer report, and sends the scene's requests as events to the Producer. The
/// scene accesses it as `cppCanvas`.
///
/// Item types in signals are 0 none, 1 media, 2 texture, 3 screen, 4 screen part. Deformation types
/// are 0 none, 1 keystone, 2 bezier, 3 curve: one more than on the wire.
class Canvas final : public QWidget, public EventListener, public KeyEventListener {
    Q_OBJECT

public:
    /// `configuration` has to outlive the canvas.
    Canvas(const Configuration& configuration, QWidget* parent, const Timing& timing = Timing());
    ~Canvas() override;

    void receive(NetworkCompanion::Event* event) override;
    void notified(QKeyEvent* keyEvent) override;

    /// `point` rotated by `angle` degrees about the origin.
    Q_INVOKABLE QPointF rotate(QPointF point, double angle) const;

    // Between these two calls, moves are queued by point and sent with the tick of UpdateProducer;
    // otherwise each is sent at once. The end also shows the reports that the scene has kept.
    Q_INVOKABLE void startMovePointTimer();
    Q_INVOKABLE void stopMovePointTimer();

    // Request another deformation of the current item from the Producer. A bezier's rows and
    // columns are counted in patch corners, a curve's in points. `resetXY` discards the present
    // shape.
    Q_INVOKABLE void newNoneDeformation();
    Q_INVOKABLE void newKeystoneDeformation(bool resetXY);
    Q_INVOKABLE void newBezierDeformation(int rowNumber, int colNumber, bool resetXY);
    Q_INVOKABLE void newCurveDeformation(int rowNumber, int colNumber, bool resetXY);

    // Move one point of the current item: x and y in pixels from the item's centre when `xy`, else
    // in 0..1 of the source's size. Positions that are not finite are ignored, and so are moves of
    // any other item, because the scene may still move an item that was just removed.
    Q_INVOKABLE void moveMediaPoint(int tag, int id, const QString& name, int pointId, double x,
                                    double y, double z, bool xy, bool selected) {
        movePoint({NetworkCompanion::ItemKey::media(number(tag), number(id)), name, number(pointId),
                   x, y, z, xy, selected});
    }
    Q_INVOKABLE void moveScreenPoint(int id, const QString& name, int pointId, double x, double y,
                                     double z, bool xy, bool selected) {
        movePoint({NetworkCompanion::ItemKey::screen(number(id)), name, number(pointId), x, y, z,
                   xy, selected});
    }
    Q_INVOKABLE void moveScreenPartPoint(int screenId, int partId, const QString& name, int pointId,
                                         double x, double y, double z, bool xy, bool selected) {
        movePoint({NetworkCompanion::ItemKey::screenPart(number(screenId), number(partId)), name,
                   number(pointId), x, y, z, xy, selected});
    }
    Q_INVOKABLE void moveTexturePoint(int tag, int id, const QString& name, int pointId, double x,
                                      double y, double z, bool xy, bool selected) {
        movePoint({NetworkCompanion::ItemKey::texture(number(tag), number(id)), name,
                   number(pointId), x, y, z, xy, selected});
    }

    /// Sends the point of the current item, with its identifiers, as the functions above do.
    /// `shownX` and `shownY` are the place that the point has until now; with the same place only
    /// the selection changes. False if the operator's place cannot be sent: then the point must
    /// stay, and pointWentBack() was emitted.
    Q_INVOKABLE bool writePoint(int type, int id, int subId, const QString& name, int pointId,
                                double x, double y, bool xy, bool selected, double shownX,
                                double shownY);
    /// For a receiver of a move signal that must not show that report during a gesture: emits it
    /// again after the gesture. False if it must be shown.
    Q_INVOKABLE bool keepReport();

    /// Emits keyEvent() for a key that the scene does not use.
    Q_INVOKABLE void notifyKeyEventFromQml(int type, int key, int modifiers, const QString& text,
                                           bool autorep, int count);

    /// Whether a dialog of the scene covers the mesh.
    bool isDialogOpen() const;

signals:
    void currentItemChanged(int itemType, int itemId, int subItemId);
    void screenMode(int screenId, int modeType);
    void mediaDeformationMode(int elementType, int deformationType, unsigned int cueId, int mediaId,
                              QString name, int row, int col, bool reset);
    void screenDeformationMode(int deformationType, int id, QString name, int row, int col,
                               bool reset);
    void screenPartDeformationMode(int deformationType, int screenId, int screenPartId,
                                   QString name, int row, int col, bool reset);
    void textureDeformationMode(int elementType, int deformationType, unsigned int cueId,
                                int textureId, QString name, int row, int col, bool reset);
    void mediaItemAdded(int type, unsigned int cueId, int mediaId, int sourceWidth,
                        int sourceHeight, double sourceRotation, QString name);
    void removeMediaItem(unsigned int cueId);
    void screenItemAdded(int idNum, int sourceWidth, int sourceHeight, float sourceRotation,
                         double sourceDeformerRotation, QString name);
    void removeScreenItem(int idNum);
    void screenPartItemAdded(int screenId, int screenPartId, int sourceWidth, int sourceHeight,
                             double sourceDeformerRotation, QString name);
    void removeScreenPartItem(int screenId, int screenPartId);
    void textureItemAdded(unsigned int cueId, int textureId, int sourceWidth, int sourceHeight,
                          double sourceRotation, QString name);
    void removeTextureItem(unsigned int cueId);
    void mediaMovePoint(unsigned int cueId, int mediaId, QString name, int pointId, double x,
                        double y, double z, bool xy, bool selected);
    void screenMovePoint(int id, QString name, int pointId, double x, double y, double z, bool xy,
                         bool selected);
    void screenPartMovePoint(int screenId, int screenPartId, QString name, int pointId, double x,
                             double y, double z, bool xy, bool selected);
    void textureMovePoint(unsigned int cueId, int textureId, QString name, int pointId, double x,
                          double y, double z, bool xy, bool selected);
    /// The point has the Producer's place again, not the place (fromX, fromY) that the operator
    /// set. Follows the move signal.
    void pointWentBack(int itemType, int itemId, int subItemId, int pointId, double fromX,
                       double fromY, bool xy);
    // As the signals of PendingPoints.
    void pointWritten();
    void pointConfirmed(int milliseconds);
    void pointsSettled();
    /// The event is valid only during the signal.
    void keyEvent(QKeyEvent* keyEvent);
    void leftAxisMoved(float x, float y);
    void rightAxisMoved(float x, float y);
    void pressure(float value);
    void action(Action action);

public slots:
    /// Sends the queued moves of the current item in ascending order of points.
    void updateProducer();
    /// Sends the queued moves of the previous item first.
    void onSelectedItem(Item* item);

    // Relays: each emits the signal of its name. A removed item or another mesh ends queued moves
    // and pending places; places of a mesh that the operator has requested stay.
    void onScreenMode(int screenId, NetworkCompanion::LV_NTC_ModeType modeType) {
        emit screenMode(screenId, static_cast<int>(modeType));
    }
    void onMediaDeformationMode(NetworkCompanion::LV_NTC_ElementType elementType,
                                NetworkCompanion::LV_NTC_DeformationType type, unsigned int cueId,
                                int mediaId, const QString& name, int row, int col, bool reset) {
        const auto item = NetworkCompanion::ItemKey::media(cueId, number(mediaId));
        replaceMesh(item, {type, row, col});
        emit mediaDeformationMode(static_cast<int>(elementType), sceneType(type), cueId, mediaId,
                                  name, row, col, reset);
        showPendingPlaces(item);
    }
    void onScreenDeformationMode(NetworkCompanion::LV_NTC_DeformationType type, int id,
                                 const QString& name, int row, int col, bool reset) {
        const auto item = NetworkCompanion::ItemKey::screen(number(id));
        replaceMesh(item, {type, row, col});
        emit screenDeformationMode(sceneType(type), id, name, row, col, reset);
        showPendingPlaces(item);
    }
    void onScreenPartDeformationMode(NetworkCompanion::LV_NTC_DeformationType type, int screenId,
                                     int screenPartId, const QString& name, int row, int col,
                                     bool reset) {
        const auto item =
            NetworkCompanion::ItemKey::screenPart(number(screenId), number(screenPartId));
        replaceMesh(item, {type, row, col});
        emit screenPartDeformationMode(sceneType(type), screenId, screenPartId, name, row, col,
                                       reset);
        showPendingPlaces(item);
    }
    void onTextureDeformationMode(NetworkCompanion::LV_NTC_ElementType elementType,
                                  NetworkCompanion::LV_NTC_DeformationType type, unsigned int cueId,
                                  int textureId, const QString& name, int row, int col,
                                  bool reset) {
        const auto item = NetworkCompanion::ItemKey::texture(cueId, number(textureId));
        replaceMesh(item, {type, row, col});
        emit textureDeformationMode(static_cast<int>(elementType), sceneType(type), cueId,
                                    textureId, name, row, col, reset);
        showPendingPlaces(item);
    }
    void onMediaItemAdded(int type, unsigned int cueId, int mediaId, int sourceWidth,
                          int sourceHeight, double sourceRotation, const QString& name) {
        emit mediaItemAdded(type, cueId, mediaId, sourceWidth, sourceHeight, sourceRotation, name);
    }
    void onRemoveMediaItem(unsigned int cueId) {
        releaseItem(NetworkCompanion::ItemKey::media(cueId));
        emit removeMediaItem(cueId);
    }
    void onScreenItemAdded(int idNum, int sourceWidth, int sourceHeight, float sourceRotation,
                           double sourceDeformerRotation, const QString& name) {
        emit screenItemAdded(idNum, sourceWidth, sourceHeight, sourceRotation,
                             sourceDeformerRotation, name);
    }
    void onRemoveScreenItem(int idNum) {
        releaseItem(NetworkCompanion::ItemKey::screen(number(idNum)));
        emit removeScreenItem(idNum);
    }
    void onScreenPartItemAdded(int screenId, int screenPartId, int sourceWidth, int sourceHeight,
                               double sourceDeformerRotation, const QString& name) {
        emit screenPartItemAdded(screenId, screenPartId, sourceWidth, sourceHeight,
                                 sourceDeformerRotation, name);
    }
    void onRemoveScreenPartItem(int screenId, int screenPartId) {
        releaseItem(NetworkCompanion::ItemKey::screenPart(number(screenId), number(screenPartId)));
        emit removeScreenPartItem(screenId, screenPartId);
    }
    void onTextureItemAdded(unsigned int cueId, int textureId, int sourceWidth, int sourceHeight,
                            double sourceRotation, const QString& name) {
        emit textureItemAdded(cueId, textureId, sourceWidth, sourceHeight, sourceRotation, name);
    }
    void onRemoveTextureItem(unsigned int cueId) {
        releaseItem(NetworkCompanion::ItemKey::texture(cueId));
        emit removeTextureItem(cueId);
    }
    void onKeyEvent(QKeyEvent* keyEvent) { notified(keyEvent); }
    void onLeftAxisMoved(float x, float y) { emit leftAxisMoved(x, y); }
    void onRightAxisMoved(float x, float y) { emit rightAxisMoved(x, y); }
    void onPressure(float value) { emit pressure(value); }
    void onAction(Action action) { emit this->action(action); }
    // End of the relays.

private:
    /// A point move that the scene requested. Holds the data index too, because another item may be
    /// current when the move is sent.
    struct PointMove {
        NetworkCompanion::ItemKey item;
        QString name;
        unsigned int pointId;
        double x, y, z;
        bool xy, selected;
        unsigned int dataIndex = 0;

        PendingPoints::Point point() const { return {item, pointId, xy}; }
    };
    /// A report while its move signal is emitted.
    struct ShownReport {
        PendingPoints::Point point;
        QPointF place;
        std::optional<QPointF> from = std::nullopt; ///< the operator's place that it replaces
        bool isLost = false;                        ///< because that could not be sent
        bool isKept = false;                        ///< by keepReport()
    };
    /// Ordered by points first, because a flush sends in that order.
    struct PointKey {
        unsigned int pointId = 0;
        bool xy = false;
        NetworkCompanion::ItemKey item;
        auto operator<=>(const PointKey&) const = default;
    };

    static unsigned int number(int id) { return static_cast<unsigned int>(id); }
    static int sceneType(NetworkCompanion::LV_NTC_DeformationType type) {
        return static_cast<int>(type) + 1;
    }

    void initCanvas();
    void initializeDeformation(NetworkCompanion::LV_NTC_DeformationType type, int rows, int cols,
                               bool reset);

    bool isCurrent(const NetworkCompanion::ItemKey& item) const;
    void dropQueuedMoves();
    /// Drops queued moves and pending places of an item whose mesh is replaced, unless the operator
    /// has requested that mesh.
    void replaceMesh(const NetworkCompanion::ItemKey& item, const PendingPoints::Mesh& mesh);
    void showPendingPlaces(const NetworkCompanion::ItemKey& item);
    /// Drops what waits of the item; if it is the current one, leaves no current item.
    void releaseItem(const NetworkCompanion::ItemKey& item);

    /// Queues the move during a gesture, otherwise sends it. `shown` as in writePoint(); unknown
    /// when not a number. False if the move cannot be sent.
    bool movePoint(PointMove move, QPointF shown = {qQNaN(), qQNaN()});
    static bool sendMove(const PointMove& move);
    template <class MoveEvent, class... Ids>
    static bool send(const PointMove& move, Ids... ids);

    /// Shows the point unless a pending place stands against it. False, without effect, if the
    /// position is not finite.
    template <class MoveEvent>
    bool receivePoint(const NetworkCompanion::ItemKey& item, const MoveEvent& event);
    void emitMove(ShownReport report, const QString& name = {}, double z = 0,
                  bool selected = false);
    void onDisconnected();

    const Configuration& configuration_;
    QPointer<Item> currentItem_;
    std::unique_ptr<UpdateProducer> updateProducer_;
    std::map<PointKey, PointMove> queuedMoves_;
    std::mutex queueLock_;
    PendingPoints pending_;
    ShownReport* shownReport_ = nullptr; // of the move signal being emitted
    QVBoxLayout* layout_;
    QQuickWidget* quickWidget_ = nullptr;
    KeySubscription keys_;
    EventSubscription events_;
};
