#include "mesh/MeshGridItem.h"

#include "mesh/MeshOcclusion.h"

#include <QGuiApplication>
#include <QJSEngine>
#include <QQuickWindow>
#include <QTransform>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
constexpr double kReachShare = 0.4; // of the way from a point to its nearest neighbour
}

MeshGridItem::MeshGridItem(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
    connect(this, &MeshGridItem::styleChanged, this, &MeshGridItem::onStyleChanged);
    markTimer_.setSingleShot(true);
    connect(&markTimer_, &QTimer::timeout, this, &MeshGridItem::removeOldMarks);
}

MeshGridItem::~MeshGridItem() {
    for (MeshPoint* point : points_)
        point->grid_ = nullptr;
    for (MeshLine* line : lines_)
        line->grid_ = nullptr;
}

void MeshGridItem::setZoom(double zoom) {
    if (zoom == zoom_ || !(zoom > 0))
        return;
    zoom_ = zoom;
    scheduleRedraw();
    emit zoomChanged();
}

QPointF MeshGridItem::Outline::evenPosition(int number) const {
    const int row = number / columns;
    const int column = number % columns;
    return {column * size.width() / (columns - 1), row * size.height() / (rows - 1)};
}

void MeshGridItem::setOutline(int rows, int columns, double width, double height, double rotation,
                              bool skipPatchCenter) {
    erase();
    if (rows < 2 || columns < 2)
        return;
    outline_ = std::make_unique<Outline>(
        Outline{rows, columns, QSizeF(width, height), rotation, skipPatchCenter, {}});
    scheduleRedraw();
}

void MeshGridItem::ensureBuilt() {
    if (isOutline())
        emit meshRequested(outline_->rows, outline_->columns, outline_->skipPatchCenter);
}

void MeshGridItem::setMesh(const QJSValue& points, const QJSValue& lines,
                           const QList<int>& lineEnds) {
    if (!isOutline())
        return;
    isBuilt_ = true;
    pointsArray_ = points;
    linesArray_ = lines;
    const auto count = static_cast<std::size_t>(outline_->count());
    points_.reserve(count);
    for (quint32 number = 0; number < count; ++number) {
        auto* point = qobject_cast<MeshPoint*>(points.property(number).toQObject());
        if (!point || point->grid_)
            break;
        point->grid_ = this;
        point->pointNum_ = static_cast<int>(number);
        point->viewingRotation_ = outline_->rotation;
        const QPointF position = outline_->positions.empty()
                                     ? outline_->evenPosition(static_cast<int>(number))
                                     : outline_->positions[number];
        point->setPosition(position.x(), position.y());
        points_.push_back(point);
    }
    outline_->positions = {};
    const qsizetype lineCount = lineEnds.size() / 2;
    lines_.reserve(static_cast<std::size_t>(lineCount));
    for (qsizetype index = 0; index < lineCount; ++index) {
        auto* line =
            qobject_cast<MeshLine*>(lines.property(static_cast<quint32>(index)).toQObject());
        if (!line || line->grid_)
            break;
        line->grid_ = this;
        line->setFromPoint(point(lineEnds[2 * index]));
        line->setToPoint(point(lineEnds[2 * index + 1]));
        lines_.push_back(line);
    }
    scheduleRedraw();
}

QJSValue MeshGridItem::pointsArray() {
    ensureBuilt();
    return pointsArray_.isUndefined() ? qjsEngine(this)->newArray() : pointsArray_;
}

QJSValue MeshGridItem::linesArray() {
    ensureBuilt();
    return linesArray_.isUndefined() ? qjsEngine(this)->newArray() : linesArray_;
}

void MeshGridItem::reduceToOutline() {
    if (!isBuilt_ || static_cast<int>(points_.size()) != outline_->count() ||
        !selectedNumbers().isEmpty())
        return;
    outline_->rotation = points_.front()->viewingRotation();
    outline_->positions.reserve(points_.size());
    for (const MeshPoint* point : points_)
        outline_->positions.emplace_back(point->x(), point->y());
    destroyPointsAndLines();
}

void MeshGridItem::setPointPosition(int number, double x, double y) {
    if (number < 0 || number >= pointCount())
        return;
    if (!isOutline()) {
        points_[static_cast<std::size_t>(number)]->setPosition(x, y);
        return;
    }
    std::vector<QPointF>& positions = outline_->positions;
    for (int even = static_cast<int>(positions.size()); even < outline_->count(); ++even)
        positions.push_back(outline_->evenPosition(even));
    positions[static_cast<std::size_t>(number)] = {x, y};
}

void MeshGridItem::markReturn(int number, double fromX, double fromY) {
    if (isOutline() || number < 0 || number >= pointCount())
        return;
    marks_.insert_or_assign(number, ReturnMark{QPointF(fromX, fromY), QDeadlineTimer(markTime_)});
    if (!markTimer_.isActive())
        markTimer_.start(markTime_);
    scheduleRedraw();
}

void MeshGridItem::removeOldMarks() {
    qint64 left = 0;
    std::erase_if(marks_, [&left](const auto& mark) {
        left = std::max(left, mark.second.end.remainingTime());
        return mark.second.end.hasExpired();
    });
    if (!marks_.empty())
        markTimer_.start(static_cast<int>(left));
    scheduleRedraw();
}

QList<int> MeshGridItem::selectedNumbers() const {
    QList<int> numbers;
    for (std::size_t number = 0; number < points_.size(); ++number)
        if (points_[number]->isSelected())
            numbers.append(static_cast<int>(number));
    return numbers;
}

void MeshGridItem::erase() {
    outline_.reset();
    destroyPointsAndLines();
}

void MeshGridItem::destroyPointsAndLines() {
    isBuilt_ = false;
    marks_.clear();
    markTimer_.stop();
    pointsArray_ = linesArray_ = QJSValue();
    // Points before lines: QObject then finds each child at the front of its list.
    const std::vector<MeshLine*> lines = std::exchange(lines_, {});
    for (MeshLine* line : lines)
        line->grid_ = nullptr;
    const std::vector<MeshPoint*> points = std::exchange(points_, {});
    for (MeshPoint* point : points) {
        point->grid_ = nullptr;
        delete point;
    }
    qDeleteAll(lines);
    scheduleRedraw();
}

void MeshGridItem::setNumberRotation(double degrees) {
    if (isOutline())
        outline_->rotation = degrees;
    for (MeshPoint* point : points_)
        point->setViewingRotation(degrees);
}

MeshGridItem::Neighbour MeshGridItem::nearestPoint(const QPointF& position, int except) const {
    int nearest = -1;
    double nearestSquare = std::numeric_limits<double>::infinity();
    for (int number = static_cast<int>(points_.size()) - 1; number >= 0; --number) {
        const MeshPoint& point = *points_[static_cast<std::size_t>(number)];
        const double dx = point.x() - position.x();
        const double dy = point.y() - position.y();
        const double square = dx * dx + dy * dy;
        const bool isOnTop =
            square == nearestSquare && point.selection() == MeshPoint::State::Current;
        if (number != except && (square < nearestSquare || isOnTop)) {
            nearestSquare = square;
            nearest = number;
        }
    }
    return {nearest, std::sqrt(nearestSquare)};
}

int MeshGridItem::pointAt(const QPointF& position, double reach) {
    ensureBuilt();
    const Neighbour nearest = nearestPoint(position);
    if (nearest.distance <= pointDiameter_ / 2 / zoom_)
        return nearest.number;
    if (!(nearest.distance <= reach / zoom_))
        return -1;
    // The room between the points of a fine mesh stays free for panning.
    const MeshPoint& point = *points_[static_cast<std::size_t>(nearest.number)];
    const double gap = nearestPoint(QPointF(point.x(), point.y()), nearest.number).distance;
    return nearest.distance <= kReachShare * gap ? nearest.number : -1;
}

int MeshGridItem::pointCount() const {
    return isOutline() ? outline_->count() : static_cast<int>(points_.size());
}

MeshPoint* MeshGridItem::point(int number) {
    ensureBuilt();
    const bool isThere = number >= 0 && number < static_cast<int>(points_.size());
    return isThere ? points_[static_cast<std::size_t>(number)] : nullptr;
}

void MeshGridItem::scheduleRedraw() {
    if (isOutline() && isVisible())
        polish();
    update();
}

void MeshGridItem::removePoint(MeshPoint* point) {
    std::erase(points_, point);
    marks_.clear(); // the numbers change
    scheduleRedraw();
}

void MeshGridItem::removeLine(MeshLine* line) {
    std::erase(lines_, line);
    scheduleRedraw();
}

void MeshGridItem::onStyleChanged() {
    styleDirty_ = true;
    update();
}

MeshStyle MeshGridItem::style() const {
    const auto colors = [](const QList<QColor>& list) {
        return MeshStyle::Colors{list.value(0), list.value(1), list.value(2)};
    };
    MeshStyle result;
    result.states = {colors(unselectedColors_), colors(selectedColors_), colors(currentColors_)};
    result.pointDiameter = pointDiameter_;
    result.pointBorderWidth = pointBorderWidth_;
    result.lineThickness = lineThickness_;
    result.lineColor = lineColor_;
    result.markColor = markColor_;
    result.font = QGuiApplication::font();
    return result;
}

MeshPicture MeshGridItem::picture() const {
    MeshPicture result;
    result.zoom = zoom_;
    result.atlas = atlas_;
    result.lines.reserve(lines_.size());
    for (const MeshLine* line : lines_) {
        if (line->fromPoint() && line->toPoint())
            result.lines.emplace_back(line->fromPoint()->x(), line->fromPoint()->y(),
                                      line->toPoint()->x(), line->toPoint()->y());
    }

    const MeshPoint* current = nullptr;
    result.points.reserve(points_.size());
    const auto add = [&result](const MeshPoint& point) {
        result.points.push_back({QPointF(point.x(), point.y()), point.viewingRotation(),
                                 point.pointNum(), true, point.selection(), MeshPicture::kAll});
    };
    for (const MeshPoint* point : points_)
        if (point->selection() == MeshPoint::State::Current)
            current = point;
        else
            add(*point);
    if (current)
        add(*current);

    for (const auto& [number, mark] : marks_) {
        const MeshPoint& point = *points_[static_cast<std::size_t>(number)];
        result.marks.push_back({QPointF(point.x(), point.y()), mark.from, point.viewingRotation()});
    }

    const QTransform toScreen = itemTransform(nullptr, nullptr);
    const double turn = qRadiansToDegrees(std::atan2(toScreen.m12(), toScreen.m11()));
    result.upright = std::abs(std::remainder(turn + result.points.front().rotation, 360)) < 1e-6;

    removeHidden(result, pointDiameter_);
    return result;
}

void MeshGridItem::updatePolish() {
    if (isVisible())
        ensureBuilt();
}

QSGNode* MeshGridItem::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
    // A hidden mesh keeps no node, because a show has thousands of meshes.
    if (points_.empty() || !isVisible()) {
        delete old;
        return nullptr;
    }
    if (styleDirty_ || !atlas_) {
        atlas_ = MeshAtlas::shared(style(), window()->effectiveDevicePixelRatio());
        styleDirty_ = false;
    }
    MeshNode* node = old ? MeshNode::from(old) : MeshNode::create(window());
    node->setPicture(picture());
    return node->node();
}

void MeshGridItem::itemChange(ItemChange change, const ItemChangeData& data) {
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) {
        styleDirty_ = true;
        update();
    } else if (change == ItemVisibleHasChanged) {
        scheduleRedraw();
    }
    QQuickItem::itemChange(change, data);
}

void MeshGridItem::releaseResources() {
    atlas_.reset();
}
