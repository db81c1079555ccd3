#include "tools/demo_producer/ShowEvents.h"

#include "network/events/EventTable.h"

using namespace NetworkCompanion;

namespace {

/// Stands for the ids in the two deformation events of ItemData that are not of the item's kind.
constexpr quint32 kNoItem = 0xFFFFFFFF;

DeformationModeEvent screenDeformation(const ShowItem& item, bool reset) {
    const bool none = item.shownKind() == Warp::Kind::None;
    return {item.shownKind(),
            item.key.id,
            item.dataIndex,
            item.name.toUtf8().constData(),
            none ? 2 : quint32(item.warp.rows),
            none ? 2 : quint32(item.warp.columns),
            reset};
}

ScreenPartDeformationModeEvent partDeformation(const ShowItem& item, bool reset) {
    return {item.warp.kind,
            item.key.id,
            item.key.subId,
            item.dataIndex,
            item.name.toUtf8().constData(),
            quint32(item.warp.rows),
            quint32(item.warp.columns),
            reset};
}

MediaDeformationModeEvent mediaDeformation(const ShowItem& item, bool reset) {
    return {item.key.type,
            item.warp.kind,
            item.key.id,
            item.key.subId,
            item.dataIndex,
            item.name.toUtf8().constData(),
            quint32(item.warp.rows),
            quint32(item.warp.columns),
            reset};
}

ScreenMovePointEvent screenPoint(const ShowItem& item, const QByteArray& name, quint32 id, bool xy,
                                 const ControlPoint& point) {
    return {item.key.id,
            item.dataIndex,
            name.constData(),
            id,
            point.position.x(),
            point.position.y(),
            0.0,
            xy,
            point.selected};
}

/// A part's, media's or texture's point.
template <typename PointEvent>
PointEvent pointOf(const ShowItem& item, const QByteArray& name, quint32 id, bool xy,
                   const ControlPoint& point) {
    return {item.key.id, item.key.subId,     item.dataIndex,     name.constData(),
            id,          point.position.x(), point.position.y(), 0.0,
            xy,          point.selected};
}

template <typename EventClass>
ShowEvents::EventPointer moved(EventClass&& event) {
    return std::make_unique<std::remove_cvref_t<EventClass>>(std::forward<EventClass>(event));
}

} // namespace

ShowEvents::EventPointer ShowEvents::added(const ShowItem& item) {
    const QByteArray name = item.name.toUtf8();
    const auto [type, id, subId] = item.key;
    const auto width = quint32(item.size.width());
    const auto height = quint32(item.size.height());
    switch (type) {
    case LV_NTC_ElementType::Media:
        return std::make_unique<AddMediaEvent>(item.mediaType, id, subId, item.dataIndex, width,
                                               height, 0, item.rotation, name.constData(), false);
    case LV_NTC_ElementType::Texture:
        return std::make_unique<AddTextureEvent>(id, subId, item.dataIndex, width, height, 0,
                                                 item.rotation, name.constData(), false);
    case LV_NTC_ElementType::Screen:
        return std::make_unique<AddScreenEvent>(id, item.dataIndex, width, height, 0, item.rotation,
                                                name.constData(), item.blinded, false);
    default:
        return std::make_unique<AddScreenPartEvent>(id, subId, item.dataIndex, width, height, 0,
                                                    item.rotation, name.constData(), item.blinded);
    }
}

ShowEvents::EventPointer ShowEvents::removed(const ShowItem& item) {
    const QByteArray name = item.name.toUtf8();
    const auto [type, id, subId] = item.key;
    switch (type) {
    case LV_NTC_ElementType::Media:
        return std::make_unique<RemoveMediaEvent>(id, subId, name.constData());
    case LV_NTC_ElementType::Texture:
        return std::make_unique<RemoveTextureEvent>(id, subId, name.constData());
    case LV_NTC_ElementType::Screen:
        return std::make_unique<RemoveScreenEvent>(id);
    default:
        return std::make_unique<RemoveScreenPartEvent>(id, subId, name.constData());
    }
}

ShowEvents::EventPointer ShowEvents::deformation(const ShowItem& item, bool reset) {
    switch (item.key.type) {
    case LV_NTC_ElementType::Screen:
        return moved(screenDeformation(item, reset));
    case LV_NTC_ElementType::ScreenPart:
        return moved(partDeformation(item, reset));
    default:
        return moved(mediaDeformation(item, reset));
    }
}

ShowEvents::EventPointer ShowEvents::blind(const ShowItem& item) {
    const QByteArray name = item.name.toUtf8();
    const auto [type, id, subId] = item.key;
    switch (type) {
    case LV_NTC_ElementType::Screen:
        return std::make_unique<BlindEvent>(0, id, name.constData(), item.blinded);
    case LV_NTC_ElementType::ScreenPart:
        return std::make_unique<ScreenPartBlindEvent>(id, subId, 0, name.constData(), item.blinded);
    default:
        return std::make_unique<MediaBlindEvent>(type, id, subId, 0, name.constData(),
                                                 item.blinded);
    }
}

ShowEvents::EventPointer ShowEvents::mode(const ShowItem& item) {
    return std::make_unique<ScreenModeEvent>(item.mode, item.key.id, item.dataIndex,
                                             item.name.toUtf8().constData());
}

ShowEvents::EventPointer ShowEvents::point(const ShowItem& item, bool xy, quint32 point) {
    const QByteArray name = item.name.toUtf8();
    const ControlPoint& position = (xy ? item.warp.xy : item.warp.uv)[point];
    switch (item.key.type) {
    case LV_NTC_ElementType::Media:
        return moved(pointOf<MediaMovePointEvent>(item, name, point, xy, position));
    case LV_NTC_ElementType::Texture:
        return moved(pointOf<TextureMovePointEvent>(item, name, point, xy, position));
    case LV_NTC_ElementType::Screen:
        return moved(screenPoint(item, name, point, xy, position));
    default:
        return moved(pointOf<ScreenPartMovePointEvent>(item, name, point, xy, position));
    }
}

ShowEvents::EventPointer ShowEvents::itemData(const ShowItem& item) {
    auto data = std::make_unique<ItemDataEvent>(int(item.dataIndex));
    using Type = LV_NTC_ElementType;
    const Type type = item.key.type;
    data->setDeformationModeEvent(
        type == Type::Screen
            ? screenDeformation(item, false)
            : DeformationModeEvent(Warp::Kind::None, kNoItem, kNoItem, "", 0, 0, false));
    data->setScreenPartDeformationModeEvent(
        type == Type::ScreenPart
            ? partDeformation(item, false)
            : ScreenPartDeformationModeEvent(Warp::Kind::None, kNoItem, kNoItem, kNoItem, "", 0, 0,
                                             false));
    data->setMediaDeformationModeEvent(type == Type::Media || type == Type::Texture
                                           ? mediaDeformation(item, false)
                                           : MediaDeformationModeEvent(Type::None, Warp::Kind::None,
                                                                       kNoItem, kNoItem, kNoItem,
                                                                       "", 0, 0, false));
    if (item.shownKind() == Warp::Kind::None)
        return data;

    const QByteArray name = item.name.toUtf8();
    for (const bool xy : {true, false}) {
        const std::vector<ControlPoint>& points = xy ? item.warp.xy : item.warp.uv;
        for (quint32 id = 0; id < points.size(); ++id) {
            switch (type) {
            case Type::Screen:
                data->addScreenMovePointEvent(screenPoint(item, name, id, xy, points[id]));
                break;
            case Type::ScreenPart:
                data->addScreenPartMovePointEvent(
                    pointOf<ScreenPartMovePointEvent>(item, name, id, xy, points[id]));
                break;
            case Type::Texture:
                data->addTextureMovePointEvent(
                    pointOf<TextureMovePointEvent>(item, name, id, xy, points[id]));
                break;
            default:
                data->addMediaMovePointEvent(
                    pointOf<MediaMovePointEvent>(item, name, id, xy, points[id]));
            }
        }
    }
    return data;
}

std::vector<ShowEvents::EventPointer> ShowEvents::resources(const Show& show) {
    std::vector<EventPointer> events;
    for (const ShowItem& item : show.items())
        events.push_back(added(item));
    // A deformation event makes companions change the screen's mode, so the mode event follows it.
    for (const ShowItem& item : show.items()) {
        events.push_back(deformation(item, false));
        if (item.key.type == LV_NTC_ElementType::Screen)
            events.push_back(mode(item));
    }
    for (const ShowItem& item : show.items())
        if (item.blinded)
            events.push_back(blind(item));
    events.push_back(
        std::make_unique<ConfigQuickKeyEvent>(show.quickKeyRows, show.quickKeyColumns, 0));
    for (const auto& [id, key] : show.quickKeys)
        events.push_back(std::make_unique<AddQuickKeyEvent>(id, 0, 0, key.name.toUtf8().constData(),
                                                            key.color.toUtf8().constData()));
    events.push_back(std::make_unique<MireEvent>(0, show.pattern));
    return events;
}
