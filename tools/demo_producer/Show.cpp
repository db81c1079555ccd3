#include "tools/demo_producer/Show.h"

#include "network/events/ProtocolLimits.h"

#include <algorithm>
#include <cmath>

using namespace NetworkCompanion;

namespace {

/// Positions beyond this, in pixels or picture sizes, are invalid.
constexpr double kFarthestPosition = 1e7;

constexpr int kLargestSize = 65'535;

bool isValidPosition(const QPointF& position) {
    // False for NaN, too.
    return std::abs(position.x()) <= kFarthestPosition &&
           std::abs(position.y()) <= kFarthestPosition;
}

} // namespace

Warp::Kind ShowItem::shownKind() const {
    return key.type == LV_NTC_ElementType::Screen && mode == LV_NTC_ModeType::Simple
               ? Warp::Kind::None
               : warp.kind;
}

const ShowItem* Show::find(const ItemKey& key) const {
    const auto found = indexes_.constFind(key);
    return found == indexes_.cend() ? nullptr : &items_[*found];
}

ShowItem* Show::itemOf(const ItemKey& key) {
    const auto found = indexes_.constFind(key);
    return found == indexes_.cend() ? nullptr : &items_[*found];
}

const ShowItem* Show::findByDataIndex(quint32 dataIndex) const {
    const auto found = indexesByDataIndex_.constFind(dataIndex);
    return found == indexesByDataIndex_.cend() ? nullptr : &items_[*found];
}

std::vector<const ShowItem*> Show::partsOf(const ShowItem& screen) const {
    std::vector<const ShowItem*> parts;
    for (const ShowItem& item : items_)
        if (item.key.type == LV_NTC_ElementType::ScreenPart && item.key.id == screen.key.id)
            parts.push_back(&item);
    return parts;
}

std::optional<QString> Show::add(ShowItem item) {
    const LV_NTC_ElementType type = item.key.type;
    const bool screen = type == LV_NTC_ElementType::Screen;
    const bool part = type == LV_NTC_ElementType::ScreenPart;
    if (type < LV_NTC_ElementType::Media || type > LV_NTC_ElementType::ScreenPart)
        return QStringLiteral("it is of no known type");
    if (find(item.key))
        return QStringLiteral("its identifiers are taken");
    if (item.dataIndex > quint32(std::numeric_limits<qint32>::max()) ||
        findByDataIndex(item.dataIndex))
        return QStringLiteral("its data index is taken or too large");
    if ((screen || part) && item.key.id >= Limits::kMaxScreenId)
        return QStringLiteral("its screen id is too large");
    if (screen && item.key.subId != 0)
        return QStringLiteral("a screen has no second identifier");
    if (part && !find(ItemKey::screen(item.key.id)))
        return QStringLiteral("its screen is missing");
    if (item.size.width() < 1 || item.size.height() < 1 || item.size.width() > kLargestSize ||
        item.size.height() > kLargestSize)
        return QStringLiteral("its size is impossible");
    if (item.name.toUtf8().size() > 255)
        return QStringLiteral("its name is too long");
    Warp& warp = item.warp;
    if (part && warp.kind == Warp::Kind::None)
        warp.kind = Warp::Kind::Keystone;
    if (!Warp::isPossible(warp.kind, warp.rows, warp.columns))
        return QStringLiteral("its grid is impossible");
    const Warp straight = Warp::straight(warp.kind, warp.rows, warp.columns, item.size);
    for (auto points : {&Warp::xy, &Warp::uv}) {
        if ((warp.*points).empty())
            warp.*points = straight.*points;
        if ((warp.*points).size() != (straight.*points).size() ||
            !std::ranges::all_of(warp.*points, isValidPosition, &ControlPoint::position))
            return QStringLiteral("its points do not fit its grid");
    }
    if (screen && item.mode == LV_NTC_ModeType::Unset)
        item.mode =
            warp.kind == Warp::Kind::None ? LV_NTC_ModeType::Simple : LV_NTC_ModeType::Deformation;
    indexes_.insert(item.key, items_.size());
    indexesByDataIndex_.insert(item.dataIndex, items_.size());
    items_.push_back(std::move(item));
    return {};
}

bool Show::remove(const ItemKey& key) {
    const std::size_t removed = std::erase_if(items_, [&key](const ShowItem& item) {
        return item.key == key ||
               (key.type == LV_NTC_ElementType::Screen &&
                item.key.type == LV_NTC_ElementType::ScreenPart && item.key.id == key.id);
    });
    if (removed > 0)
        rebuildIndexes();
    return removed > 0;
}

void Show::rebuildIndexes() {
    indexes_.clear();
    indexesByDataIndex_.clear();
    for (std::size_t index = 0; index < items_.size(); ++index) {
        indexes_.insert(items_[index].key, index);
        indexesByDataIndex_.insert(items_[index].dataIndex, index);
    }
}

bool Show::movePoint(const ItemKey& key, bool xy, quint32 point, QPointF position, bool selected) {
    ShowItem* const item = itemOf(key);
    if (!item || item->shownKind() == Warp::Kind::None || !isValidPosition(position))
        return false;
    std::vector<ControlPoint>& points = xy ? item->warp.xy : item->warp.uv;
    if (point >= points.size())
        return false;
    points[point] = {position, selected};
    return true;
}

bool Show::setDeformation(const ItemKey& key, Warp::Kind kind, quint32 rows, quint32 columns,
                          bool reset) {
    ShowItem* const item = itemOf(key);
    if (!item)
        return false;
    if (kind == Warp::Kind::None && key.type == LV_NTC_ElementType::ScreenPart)
        kind = Warp::Kind::Keystone;
    if (kind == Warp::Kind::None || kind == Warp::Kind::Keystone)
        rows = columns = 2;
    if (rows > Limits::kMaxGridSize || columns > Limits::kMaxGridSize ||
        !Warp::isPossible(kind, int(rows), int(columns)))
        return false;
    if (item->shownKind() == Warp::Kind::None) // keep the shape that is shown
        item->warp = Warp::straight(Warp::Kind::None, 2, 2, item->size);
    item->warp = item->warp.rebuilt(kind, int(rows), int(columns), reset, item->size);
    if (key.type == LV_NTC_ElementType::Screen && item->mode != LV_NTC_ModeType::Parts)
        item->mode =
            kind == Warp::Kind::None ? LV_NTC_ModeType::Simple : LV_NTC_ModeType::Deformation;
    return true;
}

bool Show::setMode(const ItemKey& key, LV_NTC_ModeType mode) {
    ShowItem* const item = itemOf(key);
    if (!item || key.type != LV_NTC_ElementType::Screen || mode < LV_NTC_ModeType::Simple ||
        mode > LV_NTC_ModeType::Parts)
        return false;
    item->mode = mode;
    return true;
}

bool Show::setBlinded(const ItemKey& key, bool blinded) {
    ShowItem* const item = itemOf(key);
    if (!item)
        return false;
    item->blinded = blinded;
    return true;
}

void Show::unselectPoints(const ItemKey& key) {
    if (ShowItem* const item = itemOf(key)) {
        for (auto points : {&Warp::xy, &Warp::uv})
            for (ControlPoint& point : item->warp.*points)
                point.selected = false;
    }
}

bool Show::setPattern(LV_NTC_PictureType picture) {
    if (picture < LV_NTC_PictureType::None || picture > LV_NTC_PictureType::White)
        return false;
    pattern = picture;
    return true;
}
