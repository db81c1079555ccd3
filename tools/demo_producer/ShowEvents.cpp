#include "tools/demo_producer/ShowEvents.h"

#include "network/events/EventTable.h"

#include <type_traits>

using namespace NetworkCompanion;

namespace {

/// Id in the two deformations of ItemData that do not apply to the item; no item has it.
constexpr quint32 kNoItem = 0xFFFFFFFF;

DeformationModeEvent screenDeformation(const ShowItem& item, bool reset) {
    const bool none = item.shownKind() == Warp::Kind::None;
    return DeformationModeEvent(item.shownKind(), item.key.id, item.dataIndex,
                                item.name.toUtf8().constData(), none ? 2 : quint32(item.warp.rows),
                                none ? 2 : quint32(item.warp.columns), reset);
}

ScreenPartDeformationModeEvent partDeformation(const ShowItem& item, bool reset) {
    return ScreenPartDeformationModeEvent(
        item.warp.kind, item.key.id, item.key.subId, item.dataIndex, item.name.toUtf8().constData(),
        quint32(item.warp.rows), quint32(item.warp.columns), reset);
}

MediaDeformationModeEvent mediaDeformation(const ShowItem& item, bool reset) {
    return MediaDeformationModeEvent(item.key.type, item.warp.kind, item.key.id, item.key.subId,
                                     item.dataIndex, item.name.toUtf8().constData(),
                                     quint32(item.warp.rows), quint32(item.warp.columns), reset);
}

template <typename PointEvent>
PointEvent pointOf(const ShowItem& item, bool xy, quint32 id) {
    const QByteArray name = item.name.toUtf8();
    const auto& [position, selected] = (xy ? item.warp.xy : item.warp.uv)[id];
    if constexpr (std::is_same_v<PointEvent, ScreenMovePointEvent>)
        return PointEvent(item.key.id, item.dataIndex, name.constData(), id, position.x(),
                          position.y(), 0, xy, selected);
    else
        return PointEvent(item.key.id, item.key.subId, item.dataIndex, name.constData(), id,
                          position.x(), position.y(), 0, xy, selected);
}

template <typename PointEvent>
void addPoints(ItemDataEvent& data, void (ItemDataEvent::*add)(const PointEvent&),
               const ShowItem& item) {
    if (item.shownKind() == Warp::Kind::None)
        return;
    for (const bool xy : {true, false})
        for (quint32 id = 0; id < item.warp.xy.size(); ++id)
            (data.*add)(pointOf<PointEvent>(item, xy, id));
}

template <typename EventClass>
ShowEvents::EventPointer toPointer(EventClass&& event) {
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
        return toPointer(screenDeformation(item, reset));
    case LV_NTC_ElementType::ScreenPart:
        return toPointer(partDeformation(item, reset));
    default:
        return toPointer(mediaDeformation(item, reset));
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

ShowEvents::EventPointer ShowEvents::point(const ShowItem& item, bool xy, quint32 id) {
    switch (item.key.type) {
    case LV_NTC_ElementType::Media:
        return toPointer(pointOf<MediaMovePointEvent>(item, xy, id));
    case LV_NTC_ElementType::Texture:
        return toPointer(pointOf<TextureMovePointEvent>(item, xy, id));
    case LV_NTC_ElementType::Screen:
        return toPointer(pointOf<ScreenMovePointEvent>(item, xy, id));
    default:
        return toPointer(pointOf<ScreenPartMovePointEvent>(item, xy, id));
    }
}

ShowEvents::EventPointer ShowEvents::itemData(const ShowItem& item) {
    using Kind = Warp::Kind;
    using Type = LV_NTC_ElementType;
    auto data = std::make_unique<ItemDataEvent>(int(item.dataIndex));
    data->setDeformationModeEvent({Kind::None, kNoItem, kNoItem, "", 0, 0, false});
    data->setScreenPartDeformationModeEvent(
        {Kind::None, kNoItem, kNoItem, kNoItem, "", 0, 0, false});
    data->setMediaDeformationModeEvent(
        {Type::None, Kind::None, kNoItem, kNoItem, kNoItem, "", 0, 0, false});
    switch (item.key.type) {
    case Type::Media:
        data->setMediaDeformationModeEvent(mediaDeformation(item, false));
        addPoints(*data, &ItemDataEvent::addMediaMovePointEvent, item);
        break;
    case Type::Texture:
        data->setMediaDeformationModeEvent(mediaDeformation(item, false));
        addPoints(*data, &ItemDataEvent::addTextureMovePointEvent, item);
        break;
    case Type::Screen:
        data->setDeformationModeEvent(screenDeformation(item, false));
        addPoints(*data, &ItemDataEvent::addScreenMovePointEvent, item);
        break;
    default:
        data->setScreenPartDeformationModeEvent(partDeformation(item, false));
        addPoints(*data, &ItemDataEvent::addScreenPartMovePointEvent, item);
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
