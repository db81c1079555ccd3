#include "warp/Canvas.h"

#include "app/shell/Configuration.h"
#include "app/shell/EventDispatcher.h"
#include "mesh/MeshTypes.h"
#include "network/events/DeformationModeEvent.h"
#include "network/events/ItemDataEvent.h"
#include "network/events/MediaDeformationModeEvent.h"
#include "network/events/MediaMovePointEvent.h"
#include "network/events/ScreenMovePointEvent.h"
#include "network/events/ScreenPartDeformationModeEvent.h"
#include "network/events/ScreenPartMovePointEvent.h"
#include "network/events/TextureMovePointEvent.h"
#include "warp/MediaItem.h"
#include "warp/ScreenItem.h"
#include "warp/ScreenPartItem.h"
#include "warp/TextureItem.h"

#include <QCoreApplication>
#include <QDebug>
#include <QKeyEvent>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickWidget>
#include <QQuickWindow>
#include <QTransform>
#include <QUrl>

#include <array>
#include <cmath>
#include <utility>

using namespace NetworkCompanion;

namespace {

constexpr std::array kEventTypes{LV_NTC_EventType::MediaMovePoint,
                                 LV_NTC_EventType::ScreenMovePoint,
                                 LV_NTC_EventType::ScreenPartMovePoint,
                                 LV_NTC_EventType::TextureMovePoint, LV_NTC_EventType::ItemData};

unsigned int toUnsigned(int number) {
    return static_cast<unsigned int>(number);
}

int sceneDeformation(LV_NTC_DeformationType type) {
    return static_cast<int>(type) + 1;
}

void sendToProducer(Event&& event) {
    EventDispatcher::getInstance()->client().sendEvent(event);
}

bool isPosition(double x, double y, double z) {
    return std::isfinite(x) && std::isfinite(y) && std::isfinite(z);
}

void warnOfBadPositions(bool allGood) {
    if (!allGood)
        qWarning("Canvas: Point position that is not a number ignored");
}

} // namespace

Canvas::Canvas(const Configuration& configuration, QWidget* parent)
    : QWidget(parent), configuration_(configuration), layout_(new QVBoxLayout(this)), keys_(this),
      events_(this, kEventTypes) {
    layout_->setContentsMargins(0, 0, 0, 0);
    updateProducer_ = std::make_unique<UpdateProducer>(nullptr);
    initCanvas();
    connect(updateProducer_.get(), SIGNAL(updateProducer()), this, SLOT(updateProducer()));
}

Canvas::~Canvas() {
    delete quickWidget_; // first, because the scene may call the bridge until it is deleted
    updateProducer_->stop();
}

void Canvas::initCanvas() {
    QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
    quickWidget_ = new QQuickWidget(this);
    layout_->addWidget(quickWidget_);
    quickWidget_->setResizeMode(QQuickWidget::SizeRootObjectToView);
    quickWidget_->setClearColor(Qt::black); // white would flash before the first frame
    quickWidget_->setAttribute(Qt::WA_AcceptTouchEvents);
    quickWidget_->setFocusPolicy(Qt::StrongFocus);
    setFocusProxy(quickWidget_);

    QQmlContext* context = quickWidget_->rootContext();
    context->setContextProperty("cppCanvas", this);
    context->setContextProperty("canvasWidth", 1060);
    context->setContextProperty("canvasHeight", 601);
    context->setContextProperty("buttonBackgroundImagesPath",
                                configuration_.buttonBackgroundImagesPath);
    context->setContextProperty("toolTabsWidth", 140U);
    context->setContextProperty("toolTabImagesSize", configuration_.toolTabImagesSize);
    context->setContextProperty("toolTabImagesPath", configuration_.toolTabImagesPath);
    context->setContextProperty("warpToolButtonsSize", configuration_.warpToolButtonsSize);
    context->setContextProperty("selectButtonsPath", configuration_.selectButtonsPath);
    context->setContextProperty("selectButtonsToolTips", configuration_.selectButtonsToolTips);
    context->setContextProperty("deformButtonsPath", configuration_.deformButtonsPath);
    context->setContextProperty("deformButtonsToolTips", configuration_.deformButtonsToolTips);
    context->setContextProperty("warpToolBarHeight", 60);
    context->setContextProperty("zoneLockerImagesPath", configuration_.zoneLockerImagesPath);
    context->setContextProperty("zoneLockerToolTip", configuration_.zoneLockerToolTip);
    context->setContextProperty("moveLockerImagesPath", configuration_.moveLockerImagesPath);
    context->setContextProperty("moveLockerToolTip", configuration_.moveLockerToolTip);
    context->setContextProperty("warpToolBarButtonsText", configuration_.warpToolBarButtonsText);
    context->setContextProperty("warpToolBarButtonsToolTips",
                                configuration_.warpToolBarButtonsToolTips);
    context->setContextProperty("adjustViewButtonPath", configuration_.adjustViewButtonPath);
    context->setContextProperty("adjustViewButtonToolTip", configuration_.adjustViewButtonToolTip);
    context->setContextProperty("rotationButtonPath", configuration_.rotationButtonPath);
    context->setContextProperty("rotationButtonToolTip", configuration_.rotationButtonToolTip);
    context->setContextProperty("closeWindowButtonPath", configuration_.closeWindowButtonPath);
    context->setContextProperty("dialogButtonSize", configuration_.dialogButtonSize);
    context->setContextProperty("comboBoxSize", configuration_.comboBoxSize);
    context->setContextProperty("curveMinRows", 3);
    context->setContextProperty("curveMaxRows", 16);
    context->setContextProperty("curveMinCols", 3);
    context->setContextProperty("curveMaxCols", 16);
    context->setContextProperty("sceneTexts", configuration_.sceneTexts);

    registerMeshTypes();
    quickWidget_->setSource(QUrl(configuration_.canvasPath)); // logs errors in the document
    quickWidget_->show();
}

// From the list and the controllers to the scene

void Canvas::onSelectedItem(Item* item) {
    if (item != currentItem_) {
        if (currentItem_ != nullptr)
            updateProducer();
        else
            dropPendingMoves();
    }
    if (item == nullptr) {
        emit currentItemChanged(0, 0, 0);
    } else if (item->elementType() == LV_NTC_ElementType::ScreenPart) {
        const ScreenItem* screen = static_cast<ScreenPartItem*>(item)->screenItem();
        emit currentItemChanged(static_cast<int>(item->elementType()),
                                screen != nullptr ? screen->id() : -1, item->id());
    } else {
        emit currentItemChanged(static_cast<int>(item->elementType()), item->id(), 0);
    }
    currentItem_ = item;
}

void Canvas::onScreenMode(int screenId, LV_NTC_ModeType modeType) {
    emit screenMode(screenId, static_cast<int>(modeType));
}

void Canvas::onMediaDeformationMode(LV_NTC_ElementType elementType,
                                    LV_NTC_DeformationType deformationType, unsigned int cueId,
                                    int mediaId, const QString& name, int row, int col,
                                    bool reset) {
    if (isCurrent(LV_NTC_ElementType::Media, static_cast<int>(cueId)))
        dropPendingMoves();
    emit mediaDeformationMode(static_cast<int>(elementType), sceneDeformation(deformationType),
                              cueId, mediaId, name, row, col, reset);
}

void Canvas::onScreenDeformationMode(LV_NTC_DeformationType deformationType, int id,
                                     const QString& name, int row, int col, bool reset) {
    if (isCurrent(LV_NTC_ElementType::Screen, id))
        dropPendingMoves();
    emit screenDeformationMode(sceneDeformation(deformationType), id, name, row, col, reset);
}

void Canvas::onScreenPartDeformationMode(LV_NTC_DeformationType deformationType, int screenId,
                                         int screenPartId, const QString& name, int row, int col,
                                         bool reset) {
    if (isCurrent(LV_NTC_ElementType::ScreenPart, screenPartId, screenId))
        dropPendingMoves();
    emit screenPartDeformationMode(sceneDeformation(deformationType), screenId, screenPartId, name,
                                   row, col, reset);
}

void Canvas::onTextureDeformationMode(LV_NTC_ElementType elementType,
                                      LV_NTC_DeformationType deformationType, unsigned int cueId,
                                      int textureId, const QString& name, int row, int col,
                                      bool reset) {
    if (isCurrent(LV_NTC_ElementType::Texture, static_cast<int>(cueId)))
        dropPendingMoves();
    emit textureDeformationMode(static_cast<int>(elementType), sceneDeformation(deformationType),
                                cueId, textureId, name, row, col, reset);
}

void Canvas::onMediaItemAdded(int type, unsigned int cueId, int mediaId, int sourceWidth,
                              int sourceHeight, double sourceRotation, const QString& name) {
    emit mediaItemAdded(type, cueId, mediaId, sourceWidth, sourceHeight, sourceRotation, name);
}

void Canvas::onRemoveMediaItem(unsigned int cueId) {
    releaseItem(LV_NTC_ElementType::Media, static_cast<int>(cueId));
    emit removeMediaItem(cueId);
}

void Canvas::onScreenItemAdded(int idNum, int sourceWidth, int sourceHeight, float sourceRotation,
                               double sourceDeformerRotation, const QString& name) {
    emit screenItemAdded(idNum, sourceWidth, sourceHeight, sourceRotation, sourceDeformerRotation,
                         name);
}

void Canvas::onRemoveScreenItem(int idNum) {
    releaseItem(LV_NTC_ElementType::Screen, idNum);
    emit removeScreenItem(idNum);
}

void Canvas::onScreenPartItemAdded(int screenId, int screenPartId, int sourceWidth,
                                   int sourceHeight, double sourceDeformerRotation,
                                   const QString& name) {
    emit screenPartItemAdded(screenId, screenPartId, sourceWidth, sourceHeight,
                             sourceDeformerRotation, name);
}

void Canvas::onRemoveScreenPartItem(int screenId, int screenPartId) {
    releaseItem(LV_NTC_ElementType::ScreenPart, screenPartId, screenId);
    emit removeScreenPartItem(screenId, screenPartId);
}

void Canvas::onTextureItemAdded(unsigned int cueId, int textureId, int sourceWidth,
                                int sourceHeight, double sourceRotation, const QString& name) {
    emit textureItemAdded(cueId, textureId, sourceWidth, sourceHeight, sourceRotation, name);
}

void Canvas::onRemoveTextureItem(unsigned int cueId) {
    releaseItem(LV_NTC_ElementType::Texture, static_cast<int>(cueId));
    emit removeTextureItem(cueId);
}

void Canvas::onLeftAxisMoved(float x, float y) {
    emit leftAxisMoved(x, y);
}

void Canvas::onRightAxisMoved(float x, float y) {
    emit rightAxisMoved(x, y);
}

void Canvas::onPressure(float value) {
    emit pressure(value);
}

void Canvas::onAction(Action action) {
    emit this->action(action);
}

// Keys

void Canvas::onKeyEvent(QKeyEvent* keyEvent) {
    notified(keyEvent);
}

void Canvas::notified(QKeyEvent* keyEvent) {
    switch (keyEvent->key()) {
    case Qt::Key_Escape:
    case Qt::Key_A:
    case Qt::Key_R:
    case Qt::Key_Left:
    case Qt::Key_Up:
    case Qt::Key_Right:
    case Qt::Key_Down:
        if (QQuickItem* scene = quickWidget_->rootObject()) {
            QCoreApplication::postEvent(scene,
                                        new QKeyEvent(keyEvent->type(), keyEvent->key(),
                                                      keyEvent->modifiers(), keyEvent->text()));
        }
        break;
    default:
        break;
    }
    keyEvent->accept();
}

void Canvas::notifyKeyEventFromQml(int type, int key, int modifiers, const QString& text,
                                   bool autorep, int count) {
    QKeyEvent event(static_cast<QEvent::Type>(type), key, Qt::KeyboardModifiers(modifiers), text,
                    autorep, static_cast<quint16>(count));
    emit keyEvent(&event);
}

// From the Producer to the scene

void Canvas::receive(Event* event) {
    switch (event->type()) {
    case LV_NTC_EventType::MediaMovePoint:
        warnOfBadPositions(updateMediaMovePoint(static_cast<MediaMovePointEvent&>(*event)));
        break;
    case LV_NTC_EventType::TextureMovePoint:
        warnOfBadPositions(updateTextureMovePoint(static_cast<TextureMovePointEvent&>(*event)));
        break;
    case LV_NTC_EventType::ScreenMovePoint:
        warnOfBadPositions(updateScreenMovePoint(static_cast<ScreenMovePointEvent&>(*event)));
        break;
    case LV_NTC_EventType::ScreenPartMovePoint:
        warnOfBadPositions(
            updateScreenPartMovePoint(static_cast<ScreenPartMovePointEvent&>(*event)));
        break;
    case LV_NTC_EventType::ItemData: {
        const auto& mesh = static_cast<ItemDataEvent&>(*event);
        bool allGood = true;
        for (const ScreenMovePointEvent& point : mesh.screenPoints())
            allGood &= updateScreenMovePoint(point);
        for (const ScreenPartMovePointEvent& point : mesh.screenPartPoints())
            allGood &= updateScreenPartMovePoint(point);
        for (const TextureMovePointEvent& point : mesh.texturePoints())
            allGood &= updateTextureMovePoint(point);
        for (const MediaMovePointEvent& point : mesh.mediaPoints())
            allGood &= updateMediaMovePoint(point);
        warnOfBadPositions(allGood);
        break;
    }
    default:
        qDebug("Canvas: Unknown event received");
        break;
    }
}

bool Canvas::updateMediaMovePoint(const MediaMovePointEvent& event) {
    if (!isPosition(event.x(), event.y(), event.z()))
        return false;
    emit mediaMovePoint(event.cueId(), static_cast<int>(event.mediaId()), event.name(),
                        static_cast<int>(event.pointId()), event.x(), event.y(), event.z(),
                        event.xy(), event.selected());
    return true;
}

bool Canvas::updateScreenMovePoint(const ScreenMovePointEvent& event) {
    if (!isPosition(event.x(), event.y(), event.z()))
        return false;
    emit screenMovePoint(static_cast<int>(event.screenId()), event.name(),
                         static_cast<int>(event.pointId()), event.x(), event.y(), event.z(),
                         event.xy(), event.selected());
    return true;
}

bool Canvas::updateScreenPartMovePoint(const ScreenPartMovePointEvent& event) {
    if (!isPosition(event.x(), event.y(), event.z()))
        return false;
    emit screenPartMovePoint(static_cast<int>(event.screenId()),
                             static_cast<int>(event.screenPartId()), event.name(),
                             static_cast<int>(event.pointId()), event.x(), event.y(), event.z(),
                             event.xy(), event.selected());
    return true;
}

bool Canvas::updateTextureMovePoint(const TextureMovePointEvent& event) {
    if (!isPosition(event.x(), event.y(), event.z()))
        return false;
    emit textureMovePoint(event.cueId(), static_cast<int>(event.textureId()), event.name(),
                          static_cast<int>(event.pointId()), event.x(), event.y(), event.z(),
                          event.xy(), event.selected());
    return true;
}

// From the scene to the Producer

QPointF Canvas::rotate(QPointF point, double angle) const {
    return QTransform().rotate(angle).map(point);
}

void Canvas::startMovePointTimer() {
    if (!updateProducer_->isRunning())
        updateProducer_->start();
}

void Canvas::stopMovePointTimer() {
    if (updateProducer_->isRunning())
        updateProducer_->stop();
}

void Canvas::newNoneDeformation() {
    // A screen part cannot be without deformation: it gets a plain keystone.
    const bool isPart =
        currentItem_ != nullptr && currentItem_->elementType() == LV_NTC_ElementType::ScreenPart;
    initializeDeformation(isPart ? LV_NTC_DeformationType::Keystone : LV_NTC_DeformationType::None,
                          2, 2, false);
}

void Canvas::newKeystoneDeformation(bool resetXY) {
    initializeDeformation(LV_NTC_DeformationType::Keystone, 2, 2, resetXY);
}

void Canvas::newBezierDeformation(int rowNumber, int colNumber, bool resetXY) {
    // Two handles lie between neighbouring corners.
    initializeDeformation(LV_NTC_DeformationType::Bezier, 3 * rowNumber - 2, 3 * colNumber - 2,
                          resetXY);
}

void Canvas::newCurveDeformation(int rowNumber, int colNumber, bool resetXY) {
    initializeDeformation(LV_NTC_DeformationType::Curve, rowNumber, colNumber, resetXY);
}

void Canvas::initializeDeformation(LV_NTC_DeformationType type, int rows, int cols, bool reset) {
    updateProducer(); // queued moves refer to the present mesh
    if (currentItem_ == nullptr)
        return;
    const QByteArray name = currentItem_->name().toUtf8();
    const unsigned int id = toUnsigned(currentItem_->id());
    const unsigned int dataIndex = toUnsigned(currentItem_->dataIndex());
    switch (currentItem_->elementType()) {
    case LV_NTC_ElementType::Media: {
        const int mediaId = static_cast<MediaItem*>(currentItem_.data())->mediaId();
        sendToProducer(MediaDeformationModeEvent(LV_NTC_ElementType::Media, type, id,
                                                 toUnsigned(mediaId), dataIndex, name.constData(),
                                                 toUnsigned(rows), toUnsigned(cols), reset));
        break;
    }
    case LV_NTC_ElementType::Texture: {
        const int textureId = static_cast<TextureItem*>(currentItem_.data())->textureId();
        sendToProducer(MediaDeformationModeEvent(LV_NTC_ElementType::Texture, type, id,
                                                 toUnsigned(textureId), dataIndex, name.constData(),
                                                 toUnsigned(rows), toUnsigned(cols), reset));
        break;
    }
    case LV_NTC_ElementType::Screen:
        sendToProducer(DeformationModeEvent(type, id, dataIndex, name.constData(), toUnsigned(rows),
                                            toUnsigned(cols), reset));
        break;
    case LV_NTC_ElementType::ScreenPart:
        if (const auto* screen = static_cast<ScreenPartItem*>(currentItem_.data())->screenItem()) {
            sendToProducer(ScreenPartDeformationModeEvent(
                type, toUnsigned(screen->id()), id, dataIndex, name.constData(), toUnsigned(rows),
                toUnsigned(cols), reset));
        }
        break;
    case LV_NTC_ElementType::None:
        break;
    }
}

bool Canvas::isCurrent(LV_NTC_ElementType type, int id, int subId) const {
    const Item* item = currentItem_.data();
    if (item == nullptr || item->elementType() != type || item->id() != id)
        return false;
    if (type != LV_NTC_ElementType::ScreenPart)
        return true;
    const ScreenItem* screen = static_cast<const ScreenPartItem*>(item)->screenItem();
    return screen != nullptr && screen->id() == subId;
}

void Canvas::releaseItem(LV_NTC_ElementType type, int id, int subId) {
    if (isCurrent(type, id, subId)) {
        dropPendingMoves();
        currentItem_ = nullptr;
    }
}

void Canvas::dropPendingMoves() {
    const std::lock_guard lock(pendingLock_);
    pendingMediaMoves_.clear();
    pendingScreenMoves_.clear();
    pendingScreenPartMoves_.clear();
    pendingTextureMoves_.clear();
}

void Canvas::updateProducer() {
    if (currentItem_ == nullptr)
        return;
    // The lock is released before sending because a connection lost in sendEvent() reenters here.
    const auto flush = [this](auto& pending, auto send) {
        std::unique_lock lock(pendingLock_);
        const auto moves = std::exchange(pending, {});
        lock.unlock();
        for (auto move = moves.cbegin(); move != moves.cend(); ++move)
            send(move.key(), move.value());
    };
    switch (currentItem_->elementType()) {
    case LV_NTC_ElementType::Media:
        flush(pendingMediaMoves_, sendMediaMove);
        break;
    case LV_NTC_ElementType::Texture:
        flush(pendingTextureMoves_, sendTextureMove);
        break;
    case LV_NTC_ElementType::Screen:
        flush(pendingScreenMoves_, sendScreenMove);
        break;
    case LV_NTC_ElementType::ScreenPart:
        flush(pendingScreenPartMoves_, sendScreenPartMove);
        break;
    case LV_NTC_ElementType::None:
        qDebug("Canvas: Unknown event received");
        break;
    }
}

template <class Pending, class Data, class Send>
void Canvas::queueOrSend(Pending& pending, int pointId, const Data& move, Send send) {
    const PointState& point = move.point;
    if (!isPosition(point.x, point.y, point.z))
        return;
    const auto key = static_cast<typename Pending::key_type>(pointId);
    if (updateProducer_->isRunning()) {
        const std::lock_guard lock(pendingLock_);
        pending.insert(key, move);
        return;
    }
    if (!pending.isEmpty())
        updateProducer(); // keeps the last drag's moves ahead of this one
    send(key, move);
}

void Canvas::moveMediaPoint(int tag, int id, const QString& name, int pointId, double x, double y,
                            double z, bool xy, bool selected) {
    if (isCurrent(LV_NTC_ElementType::Media, tag)) {
        queueOrSend(pendingMediaMoves_, pointId,
                    CuePointData{toUnsigned(tag),
                                 toUnsigned(id),
                                 {currentItem_->dataIndex(), name, x, y, z, xy, selected}},
                    sendMediaMove);
    }
}

void Canvas::moveScreenPoint(int id, const QString& name, int pointId, double x, double y, double z,
                             bool xy, bool selected) {
    if (isCurrent(LV_NTC_ElementType::Screen, id)) {
        queueOrSend(pendingScreenMoves_, pointId,
                    ScreenPointData{toUnsigned(id),
                                    {currentItem_->dataIndex(), name, x, y, z, xy, selected}},
                    sendScreenMove);
    }
}

void Canvas::moveScreenPartPoint(int screenId, int partId, const QString& name, int pointId,
                                 double x, double y, double z, bool xy, bool selected) {
    if (isCurrent(LV_NTC_ElementType::ScreenPart, partId, screenId)) {
        queueOrSend(pendingScreenPartMoves_, pointId,
                    ScreenPartPointData{toUnsigned(screenId),
                                        toUnsigned(partId),
                                        {currentItem_->dataIndex(), name, x, y, z, xy, selected}},
                    sendScreenPartMove);
    }
}

void Canvas::moveTexturePoint(int tag, int id, const QString& name, int pointId, double x, double y,
                              double z, bool xy, bool selected) {
    if (isCurrent(LV_NTC_ElementType::Texture, tag)) {
        queueOrSend(pendingTextureMoves_, pointId,
                    CuePointData{toUnsigned(tag),
                                 toUnsigned(id),
                                 {currentItem_->dataIndex(), name, x, y, z, xy, selected}},
                    sendTextureMove);
    }
}

void Canvas::sendMediaMove(unsigned int pointId, const CuePointData& move) {
    const PointState& point = move.point;
    sendToProducer(MediaMovePointEvent(move.cueId, move.elementId, toUnsigned(point.dataIndex),
                                       point.name.toUtf8().constData(), pointId, point.x, point.y,
                                       point.z, point.xy, point.selected));
}

void Canvas::sendTextureMove(unsigned int pointId, const CuePointData& move) {
    const PointState& point = move.point;
    sendToProducer(TextureMovePointEvent(move.cueId, move.elementId, toUnsigned(point.dataIndex),
                                         point.name.toUtf8().constData(), pointId, point.x, point.y,
                                         point.z, point.xy, point.selected));
}

void Canvas::sendScreenMove(int pointId, const ScreenPointData& move) {
    const PointState& point = move.point;
    sendToProducer(ScreenMovePointEvent(move.screenId, toUnsigned(point.dataIndex),
                                        point.name.toUtf8().constData(), toUnsigned(pointId),
                                        point.x, point.y, point.z, point.xy, point.selected));
}

void Canvas::sendScreenPartMove(int pointId, const ScreenPartPointData& move) {
    const PointState& point = move.point;
    sendToProducer(ScreenPartMovePointEvent(move.screenId, move.screenPartId,
                                            toUnsigned(point.dataIndex),
                                            point.name.toUtf8().constData(), toUnsigned(pointId),
                                            point.x, point.y, point.z, point.xy, point.selected));
}
