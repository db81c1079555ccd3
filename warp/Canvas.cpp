#include "warp/Canvas.h"

#include "app/shell/Configuration.h"
#include "app/shell/EventDispatcher.h"
#include "mesh/MeshTypes.h"
#include "network/events/DeformationBounds.h"
#include "network/events/DeformationModeEvent.h"
#include "network/events/ItemDataEvent.h"
#include "network/events/MediaDeformationModeEvent.h"
#include "network/events/MediaMovePointEvent.h"
#include "network/events/ScreenMovePointEvent.h"
#include "network/events/ScreenPartDeformationModeEvent.h"
#include "network/events/ScreenPartMovePointEvent.h"
#include "network/events/TextureMovePointEvent.h"
#include "warp/Item.h"

#include <QCoreApplication>
#include <QDebug>
#include <QKeyEvent>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickWidget>
#include <QQuickWindow>
#include <QScopedValueRollback>
#include <QTouchEvent>
#include <QTransform>
#include <QUrl>

#include <array>
#include <cmath>
#include <utility>
#include <vector>

using namespace NetworkCompanion;

namespace {

constexpr std::array kEventTypes{LV_NTC_EventType::MediaMovePoint,
                                 LV_NTC_EventType::ScreenMovePoint,
                                 LV_NTC_EventType::ScreenPartMovePoint,
                                 LV_NTC_EventType::TextureMovePoint, LV_NTC_EventType::ItemData};

/// Shows the scene. Where the scene takes the press of a finger as one of a mouse, it accepts the
/// event but not its points, and the application would not send the rest of the touch.
class SceneWidget final : public QQuickWidget {
public:
    using QQuickWidget::QQuickWidget;

protected:
    bool event(QEvent* event) override {
        const bool isHandled = QQuickWidget::event(event);
        if (event->type() == QEvent::TouchBegin && event->isAccepted()) {
            auto& touch = static_cast<QTouchEvent&>(*event);
            for (qsizetype point = 0; point < touch.pointCount(); ++point)
                touch.point(point).setAccepted(true);
        }
        return isHandled;
    }
};

bool sendToProducer(Event&& event) {
    return EventDispatcher::getInstance()->client().sendEvent(event);
}

bool isPosition(double x, double y, double z) {
    return std::isfinite(x) && std::isfinite(y) && std::isfinite(z);
}

ItemKey keyOf(const MediaMovePointEvent& event) {
    return ItemKey::media(event.cueId(), event.mediaId());
}
ItemKey keyOf(const TextureMovePointEvent& event) {
    return ItemKey::texture(event.cueId(), event.textureId());
}
ItemKey keyOf(const ScreenMovePointEvent& event) {
    return ItemKey::screen(event.screenId());
}
ItemKey keyOf(const ScreenPartMovePointEvent& event) {
    return ItemKey::screenPart(event.screenId(), event.screenPartId());
}

void warnOfBadPositions(bool allGood) {
    if (!allGood)
        qWarning("Canvas: Point position that is not a number ignored");
}

} // namespace

Canvas::Canvas(const Configuration& configuration, QWidget* parent, const Timing& timing)
    : QWidget(parent), configuration_(configuration), pending_(timing.echoWait, this),
      layout_(new QVBoxLayout(this)), keys_(this), events_(this, kEventTypes) {
    layout_->setContentsMargins(0, 0, 0, 0);
    updateProducer_ = std::make_unique<UpdateProducer>(nullptr, timing);
    initCanvas();
    connect(updateProducer_.get(), SIGNAL(updateProducer()), this, SLOT(updateProducer()));
    connect(&pending_, &PendingPoints::placeChanged, this,
            [this](const PendingPoints::Point& point, QPointF place,
                   const std::optional<QPointF>& from, bool isLost) {
                emitMove({point, place, from, isLost});
            });
    connect(&pending_, &PendingPoints::pointWritten, this, &Canvas::pointWritten);
    connect(&pending_, &PendingPoints::pointConfirmed, this, &Canvas::pointConfirmed);
    connect(&pending_, &PendingPoints::pointsSettled, this, &Canvas::pointsSettled);
    connect(EventDispatcher::getInstance(), &EventDispatcher::disconnected, this,
            &Canvas::onDisconnected);
    connect(&EventDispatcher::getInstance()->client(), &CompanionClient::connectingFinished,
            &pending_, [this](bool connected) {
                if (connected) // the former connection may have ended without a signal
                    pending_.reset();
            });
}

Canvas::~Canvas() {
    delete quickWidget_; // first, because the scene may call the bridge until it is deleted
    updateProducer_->stop();
}

void Canvas::initCanvas() {
    QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
    quickWidget_ = new SceneWidget(this);
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
    context->setContextProperty("deformButtonsPictures", configuration_.deformButtonsPictures);
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
            dropQueuedMoves();
    }
    const ItemKey key = item != nullptr ? item->key() : ItemKey{};
    const bool isPart = key.type == LV_NTC_ElementType::ScreenPart;
    emit currentItemChanged(static_cast<int>(key.type), static_cast<int>(key.id),
                            isPart ? static_cast<int>(key.subId) : 0);
    currentItem_ = item;
}

// Keys

void Canvas::notified(QKeyEvent* keyEvent) {
    switch (keyEvent->key()) {
    case Qt::Key_R:
        if (keyEvent->isAutoRepeat()) // the copy would not tell the scene
            break;
        [[fallthrough]];
    case Qt::Key_Escape:
    case Qt::Key_A:
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

bool Canvas::isDialogOpen() const {
    const QQuickItem* scene = quickWidget_->rootObject(); // null if the document has errors
    return scene != nullptr && scene->property("isDialogOpen").toBool();
}

// From the Producer to the scene

void Canvas::receive(Event* event) {
    switch (event->type()) {
    case LV_NTC_EventType::MediaMovePoint: {
        const auto& move = static_cast<MediaMovePointEvent&>(*event);
        warnOfBadPositions(receivePoint(keyOf(move), move));
        break;
    }
    case LV_NTC_EventType::TextureMovePoint: {
        const auto& move = static_cast<TextureMovePointEvent&>(*event);
        warnOfBadPositions(receivePoint(keyOf(move), move));
        break;
    }
    case LV_NTC_EventType::ScreenMovePoint: {
        const auto& move = static_cast<ScreenMovePointEvent&>(*event);
        warnOfBadPositions(receivePoint(keyOf(move), move));
        break;
    }
    case LV_NTC_EventType::ScreenPartMovePoint: {
        const auto& move = static_cast<ScreenPartMovePointEvent&>(*event);
        warnOfBadPositions(receivePoint(keyOf(move), move));
        break;
    }
    case LV_NTC_EventType::ItemData: {
        const auto& mesh = static_cast<ItemDataEvent&>(*event);
        if (!isInBounds(mesh)) // the list warns
            break;
        bool allGood = true;
        const auto receiveAll = [&](const auto& points) {
            for (const auto& point : points)
                allGood &= receivePoint(keyOf(point), point);
        };
        receiveAll(mesh.screenPoints());
        receiveAll(mesh.screenPartPoints());
        receiveAll(mesh.texturePoints());
        receiveAll(mesh.mediaPoints());
        warnOfBadPositions(allGood);
        break;
    }
    default:
        qDebug("Canvas: Unknown event received");
        break;
    }
}

template <class MoveEvent>
bool Canvas::receivePoint(const ItemKey& item, const MoveEvent& event) {
    if (!isPosition(event.x(), event.y(), event.z()))
        return false;
    const PendingPoints::Point point{item, event.pointId(), event.xy()};
    const QPointF place(event.x(), event.y());
    if (pending_.report(point, place))
        emitMove({point, place}, event.name(), event.z(), event.selected());
    return true;
}

void Canvas::emitMove(ShownReport report, const QString& name, double z, bool selected) {
    const auto [item, pointNumber, xy] = report.point;
    if (!isPosition(report.place.x(), report.place.y(), z))
        return; // the place before a write that the scene did not know
    const auto id = static_cast<int>(item.id);
    const auto subId = static_cast<int>(item.subId);
    const auto pointId = static_cast<int>(pointNumber);
    const auto [x, y] = report.place;
    const QScopedValueRollback shown(shownReport_, &report);
    switch (item.type) {
    case LV_NTC_ElementType::Media:
        emit mediaMovePoint(item.id, subId, name, pointId, x, y, z, xy, selected);
        break;
    case LV_NTC_ElementType::Texture:
        emit textureMovePoint(item.id, subId, name, pointId, x, y, z, xy, selected);
        break;
    case LV_NTC_ElementType::Screen:
        emit screenMovePoint(id, name, pointId, x, y, z, xy, selected);
        break;
    case LV_NTC_ElementType::ScreenPart:
        emit screenPartMovePoint(id, subId, name, pointId, x, y, z, xy, selected);
        break;
    case LV_NTC_ElementType::None:
        return;
    }
    if (report.from && !report.isKept)
        emit pointWentBack(static_cast<int>(item.type), id, subId, pointId, report.from->x(),
                           report.from->y(), xy);
}

bool Canvas::keepReport() {
    if (shownReport_ == nullptr || shownReport_->isLost)
        return false;
    pending_.hold(shownReport_->point, shownReport_->place, shownReport_->from);
    shownReport_->isKept = true;
    return true;
}

void Canvas::onDisconnected() {
    updateProducer(); // the queued moves go back
    dropQueuedMoves();
    pending_.reset();
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
    pending_.releaseHeld();
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
    const ItemKey item = currentItem_->key();
    const QByteArray name = currentItem_->name().toUtf8();
    const unsigned int dataIndex = number(currentItem_->dataIndex());
    pending_.request(item, {type, rows, cols});
    switch (item.type) {
    case LV_NTC_ElementType::Media:
    case LV_NTC_ElementType::Texture:
        sendToProducer(MediaDeformationModeEvent(item.type, type, item.id, item.subId, dataIndex,
                                                 name.constData(), number(rows), number(cols),
                                                 reset));
        break;
    case LV_NTC_ElementType::Screen:
        sendToProducer(DeformationModeEvent(type, item.id, dataIndex, name.constData(),
                                            number(rows), number(cols), reset));
        break;
    case LV_NTC_ElementType::ScreenPart:
        sendToProducer(ScreenPartDeformationModeEvent(type, item.id, item.subId, dataIndex,
                                                      name.constData(), number(rows), number(cols),
                                                      reset));
        break;
    case LV_NTC_ElementType::None:
        break;
    }
}

bool Canvas::isCurrent(const ItemKey& item) const {
    return currentItem_ != nullptr && currentItem_->key() == item;
}

void Canvas::releaseItem(const ItemKey& item) {
    if (isCurrent(item)) {
        dropQueuedMoves();
        currentItem_ = nullptr;
    }
    pending_.drop(item);
}

void Canvas::dropQueuedMoves() {
    const std::lock_guard lock(queueLock_);
    queuedMoves_.clear();
}

void Canvas::replaceMesh(const ItemKey& item, const PendingPoints::Mesh& mesh) {
    if (!pending_.replace(item, mesh) && isCurrent(item))
        dropQueuedMoves();
}

void Canvas::showPendingPlaces(const ItemKey& item) {
    for (const auto& [point, place] : pending_.placesOf(item))
        emitMove({point, place});
}

void Canvas::updateProducer() {
    if (currentItem_ == nullptr)
        return;
    const LV_NTC_ElementType type = currentItem_->elementType();
    if (type == LV_NTC_ElementType::None) {
        qDebug("Canvas: Unknown event received");
        return;
    }
    std::vector<PointMove> moves;
    {
        // Released before sending because a connection lost in sendEvent() reenters here.
        const std::lock_guard lock(queueLock_);
        std::erase_if(queuedMoves_, [&](const auto& pending) {
            const bool isDue = pending.second.item.type == type;
            if (isDue)
                moves.push_back(pending.second);
            return isDue;
        });
    }
    for (const PointMove& move : moves)
        sendMove(move) ? pending_.sent(move.point()) : pending_.unsent(move.point());
}

bool Canvas::writePoint(int type, int id, int subId, const QString& name, int pointId, double x,
                        double y, bool xy, bool selected, double shownX, double shownY) {
    const ItemKey item{static_cast<LV_NTC_ElementType>(type), number(id), number(subId)};
    return movePoint({item, name, number(pointId), x, y, 0, xy, selected}, {shownX, shownY});
}

bool Canvas::movePoint(PointMove move, QPointF shown) {
    if (!isCurrent(move.item) || !isPosition(move.x, move.y, move.z))
        return false;
    const PendingPoints::Point point = move.point();
    const bool isMove = move.x != shown.x() || move.y != shown.y();
    if (isMove) {
        pending_.write(point, {move.x, move.y}, shown);
    } else {
        const QPointF place = pending_.placeOf(point, shown);
        move.x = place.x();
        move.y = place.y();
    }
    move.dataIndex = number(currentItem_->dataIndex());
    if (updateProducer_->isRunning() && EventDispatcher::getInstance()->client().isConnected()) {
        const std::lock_guard lock(queueLock_);
        queuedMoves_.insert_or_assign({move.pointId, move.xy, move.item}, std::move(move));
        return true;
    }
    if (!queuedMoves_.empty())
        updateProducer(); // the queued moves of the last drag come first
    if (sendMove(move)) {
        pending_.sent(point);
        return true;
    }
    pending_.unsent(point);
    return !isMove;
}

template <class MoveEvent, class... Ids>
bool Canvas::send(const PointMove& move, Ids... ids) {
    return sendToProducer(MoveEvent(ids..., move.dataIndex, move.name.toUtf8().constData(),
                                    move.pointId, move.x, move.y, move.z, move.xy, move.selected));
}

bool Canvas::sendMove(const PointMove& move) {
    const auto [type, id, subId] = move.item;
    switch (type) {
    case LV_NTC_ElementType::Media:
        return send<MediaMovePointEvent>(move, id, subId);
    case LV_NTC_ElementType::Texture:
        return send<TextureMovePointEvent>(move, id, subId);
    case LV_NTC_ElementType::Screen:
        return send<ScreenMovePointEvent>(move, id);
    case LV_NTC_ElementType::ScreenPart:
        return send<ScreenPartMovePointEvent>(move, id, subId);
    case LV_NTC_ElementType::None:
        break;
    }
    return false;
}
