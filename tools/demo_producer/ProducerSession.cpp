#include "tools/demo_producer/ProducerSession.h"

#include "network/events/EventTable.h"
#include "network/events/ProtocolLimits.h"
#include "tools/demo_producer/ShowEvents.h"
#include "tools/demo_producer/ShowNames.h"

#include <QMetaEnum>
#include <QRegularExpression>

#include <algorithm>
#include <memory>
#include <ranges>
#include <utility>

using namespace NetworkCompanion;

namespace {

constexpr std::size_t kExecutedKept = 100;
constexpr int kPointShapes = 5;

QString typeName(LV_NTC_EventType type) {
    const char* const key = QMetaEnum::fromType<LV_NTC_EventType>().valueToKey(int(type));
    return key ? QString::fromLatin1(key) : QString::number(int(type));
}

QString ignored(const QString& reason) {
    return QStringLiteral("ignored: %1").arg(reason);
}

QString unknown(const ItemKey& key) {
    return ignored(QStringLiteral("there is no %1").arg(nameOf(key)));
}

template <typename Class>
const Class& as(const Event& event) {
    return static_cast<const Class&>(event);
}

} // namespace

ProducerSession::ProducerSession(std::vector<Show> shows, QObject* parent)
    : QObject(parent), shows_(std::move(shows)), show_(shows_.front()), server_(nullptr) {
    connect(&server_, &CompanionServer::companionConnected, this,
            &ProducerSession::onCompanionConnected);
    connect(&server_, &CompanionServer::companionDisconnected, this,
            &ProducerSession::onCompanionDisconnected);
    connect(&server_, &CompanionServer::eventReceived, this, &ProducerSession::onEventReceived);
}

bool ProducerSession::listen(const QHostAddress& address, quint16 port) {
    return server_.listen(address, port);
}

void ProducerSession::log(const QString& line) {
    emit logged(line);
}

void ProducerSession::onCompanionConnected(int id) {
    companions_[id].address = server_.companionAddress(id).toString();
    log(QStringLiteral("companion %1 connected from %2").arg(id).arg(companions_[id].address));
    emit changed();
}

void ProducerSession::onCompanionDisconnected(int id) {
    stopEditing(id);
    companions_.erase(id);
    log(QStringLiteral("companion %1 disconnected").arg(id));
    emit changed();
}

void ProducerSession::stopEditing(int id) {
    const std::optional<ItemKey> item = std::exchange(companions_[id].editing, std::nullopt);
    companions_[id].editsUv = false;
    // Points do not record who selected them, so they stay selected while another companion edits
    // the item.
    if (item && std::ranges::none_of(companions_, [&item](const auto& companion) {
            return companion.second.editing == item;
        }))
        show_.unselectPoints(*item);
}

void ProducerSession::onEventReceived(int id, const eventData& data) {
    const std::unique_ptr<Event> event(data.second);
    if (!event) {
        log(QStringLiteral("companion %1: ignored: a frame that is no event").arg(id));
        return;
    }
    const QString type = typeName(event->type());
    ++received_[type];
    log(QStringLiteral("companion %1: %2: %3").arg(id).arg(type, handle(id, *event)));
    emit changed();
}

QString ProducerSession::handle(int id, const Event& event) {
    using Type = LV_NTC_EventType;
    switch (event.type()) {
    case Type::Msg:
        return onMessage(id, as<MsgEvent>(event).message());
    case Type::ItemData:
        return onItemDataRequest(id, as<ItemDataEvent>(event).callerId());
    case Type::MediaMovePoint: {
        const auto& move = as<MediaMovePointEvent>(event);
        return onMove(id, ItemKey::media(move.cueId(), move.mediaId()), move);
    }
    case Type::TextureMovePoint: {
        const auto& move = as<TextureMovePointEvent>(event);
        return onMove(id, ItemKey::texture(move.cueId(), move.textureId()), move);
    }
    case Type::ScreenMovePoint: {
        const auto& move = as<ScreenMovePointEvent>(event);
        return onMove(id, ItemKey::screen(move.screenId()), move);
    }
    case Type::ScreenPartMovePoint: {
        const auto& move = as<ScreenPartMovePointEvent>(event);
        return onMove(id, ItemKey::screenPart(move.screenId(), move.screenPartId()), move);
    }
    case Type::DeformationMode: {
        const auto& mode = as<DeformationModeEvent>(event);
        return onDeformation(ItemKey::screen(mode.screenId()), mode);
    }
    case Type::MediaDeformationMode: {
        const auto& mode = as<MediaDeformationModeEvent>(event);
        return onDeformation(
            ItemKey::mediaOrTexture(mode.elementType(), mode.cueId(), mode.elementId()), mode);
    }
    case Type::ScreenPartDeformationMode: {
        const auto& mode = as<ScreenPartDeformationModeEvent>(event);
        return onDeformation(ItemKey::screenPart(mode.screenId(), mode.screenPartId()), mode);
    }
    case Type::Blind: {
        const auto& blind = as<BlindEvent>(event);
        return onBlind(ItemKey::screen(blind.screenId()), blind.blinded());
    }
    case Type::MediaBlind: {
        const auto& blind = as<MediaBlindEvent>(event);
        return onBlind(
            ItemKey::mediaOrTexture(blind.elementType(), blind.cueId(), blind.elementId()),
            blind.blinded());
    }
    case Type::ScreenPartBlind: {
        const auto& blind = as<ScreenPartBlindEvent>(event);
        return onBlind(ItemKey::screenPart(blind.screenId(), blind.screenPartId()),
                       blind.blinded());
    }
    case Type::ScreenMode: {
        const auto& mode = as<ScreenModeEvent>(event);
        const ItemKey key = ItemKey::screen(mode.screenId());
        if (!setMode(key, mode.modeType()))
            return ignored(QStringLiteral("no such screen or mode"));
        return nameOf(key) + u' ' + nameOf(mode.modeType());
    }
    case Type::Mire:
        return onPattern(id, as<MireEvent>(event).picture());
    case Type::ExecuteQuickKey:
        return onQuickKey(as<ExecuteQuickKeyEvent>(event).keyId());
    case Type::UpdateSettings: {
        const auto& settings = as<UpdateSettingsEvent>(event);
        return onSettings(id, settings.color(), settings.shape());
    }
    default:
        return ignored(QStringLiteral("not an event that companions send"));
    }
}

QString ProducerSession::onMessage(int id, const QString& message) {
    if (message != QLatin1String("getResources"))
        return ignored(QStringLiteral("unknown message"));
    const auto events = ShowEvents::resources(show_);
    for (const auto& event : events)
        server_.send(id, *event);
    return QStringLiteral("getResources; sent %1 items and %2 quick keys in %3 events")
        .arg(show_.items().size())
        .arg(show_.quickKeys.size())
        .arg(events.size());
}

QString ProducerSession::onItemDataRequest(int id, int dataIndex) {
    stopEditing(id);
    if (dataIndex < 0)
        return QStringLiteral("nothing selected");
    const ShowItem* const item = show_.findByDataIndex(quint32(dataIndex));
    if (!item)
        return ignored(QStringLiteral("there is no item with data index %1").arg(dataIndex));
    companions_[id].editing = item->key;
    const auto data = ShowEvents::itemData(*item);
    server_.send(id, *data);
    return QStringLiteral("%1 \"%2\" selected; sent its mesh, %3 %4 x %5")
        .arg(nameOf(item->key), item->name, nameOf(item->shownKind()))
        .arg(item->warp.rows)
        .arg(item->warp.columns);
}

template <typename MoveEvent>
QString ProducerSession::onMove(int id, const ItemKey& key, const MoveEvent& move) {
    if (!show_.find(key))
        return unknown(key);
    const QString what = QStringLiteral("%1 point %2 %3 %4, %5%6")
                             .arg(nameOf(key))
                             .arg(move.pointId())
                             .arg(move.xy() ? QStringLiteral("xy") : QStringLiteral("uv"))
                             .arg(move.x())
                             .arg(move.y())
                             .arg(move.selected() ? QStringLiteral(" selected") : QString());
    if (!show_.movePoint(key, move.xy(), move.pointId(), {move.x(), move.y()}, move.selected()))
        return ignored(what);
    if (companions_[id].editing == key)
        companions_[id].editsUv = !move.xy();
    server_.sendToAll(*ShowEvents::point(*show_.find(key), move.xy(), move.pointId()));
    return what;
}

template <typename DeformationEvent>
QString ProducerSession::onDeformation(const ItemKey& key, const DeformationEvent& event) {
    if (!show_.find(key))
        return unknown(key);
    const QString what = QStringLiteral("%1 %2 %3 x %4%5")
                             .arg(nameOf(key), nameOf(event.deformationType()))
                             .arg(event.rows())
                             .arg(event.columns())
                             .arg(event.reset() ? QStringLiteral(" reset") : QString());
    return applyDeformation(key, event.deformationType(), event.rows(), event.columns(),
                            event.reset())
               ? what
               : ignored(what);
}

bool ProducerSession::applyDeformation(const ItemKey& key, Warp::Kind kind, quint32 rows,
                                       quint32 columns, bool reset) {
    if (!show_.setDeformation(key, kind, rows, columns, reset))
        return false;
    const ShowItem& item = *show_.find(key);
    server_.sendToAll(*ShowEvents::deformation(item, reset));
    if (key.type == LV_NTC_ElementType::Screen)
        server_.sendToAll(*ShowEvents::mode(item));
    if (item.shownKind() == Warp::Kind::None)
        return true;
    for (const bool xy : {true, false})
        for (quint32 point = 0; point < item.warp.xy.size(); ++point)
            server_.sendToAll(*ShowEvents::point(item, xy, point));
    return true;
}

QString ProducerSession::onBlind(const ItemKey& key, bool blinded) {
    if (!setBlinded(key, blinded))
        return unknown(key);
    return nameOf(key) + (blinded ? QStringLiteral(" blinded") : QStringLiteral(" visible"));
}

QString ProducerSession::onPattern(int id, LV_NTC_PictureType pattern) {
    if (!show_.setPattern(pattern))
        return ignored(QStringLiteral("unknown pattern %1").arg(int(pattern)));
    MireEvent event(0, pattern);
    server_.sendToAll(event, id); // the sender shows it already
    return nameOf(pattern);
}

QString ProducerSession::onQuickKey(quint32 id) {
    const auto found = show_.quickKeys.find(id);
    if (found == show_.quickKeys.end())
        return ignored(QStringLiteral("there is no quick key %1").arg(id));
    executed_.push_back(id);
    if (executed_.size() > kExecutedKept)
        executed_.pop_front();
    emit quickKeyExecuted(id, found->second.name, found->second.color);
    return QStringLiteral("%1 \"%2\"").arg(id).arg(found->second.name);
}

QString ProducerSession::onSettings(int id, const QString& color, int shape) {
    static const QRegularExpression kColor(QStringLiteral("^#[0-9a-fA-F]{6}$"));
    const bool none = shape == 0;
    if (shape < 0 || shape >= kPointShapes || (!none && !kColor.match(color).hasMatch()))
        return ignored(QStringLiteral("no such colour or shape"));
    companions_[id].pointColor = none ? QString() : color;
    companions_[id].pointShape = shape;
    return none ? QStringLiteral("no remote points")
                : QStringLiteral("remote points %1, shape %2").arg(color).arg(shape);
}

bool ProducerSession::movePoint(const ItemKey& key, bool xy, quint32 point, QPointF position) {
    const ShowItem* const item = show_.find(key);
    if (!item)
        return false;
    const std::vector<ControlPoint>& points = xy ? item->warp.xy : item->warp.uv;
    const bool selected = point < points.size() && points[point].selected;
    if (!show_.movePoint(key, xy, point, position, selected))
        return false;
    server_.sendToAll(*ShowEvents::point(*item, xy, point));
    emit changed();
    return true;
}

bool ProducerSession::setDeformation(const ItemKey& key, Warp::Kind kind, int rows, int columns,
                                     bool reset) {
    if (rows < 0 || columns < 0 ||
        !applyDeformation(key, kind, quint32(rows), quint32(columns), reset))
        return false;
    log(QStringLiteral("%1 is now %2 %3 x %4")
            .arg(nameOf(key), nameOf(kind))
            .arg(rows)
            .arg(columns));
    emit changed();
    return true;
}

bool ProducerSession::setMode(const ItemKey& key, LV_NTC_ModeType mode) {
    if (!show_.setMode(key, mode))
        return false;
    const ShowItem& item = *show_.find(key);
    // Companions derive from the deformation whether the screen has a mesh to edit.
    if (mode != LV_NTC_ModeType::Parts)
        server_.sendToAll(*ShowEvents::deformation(item, false));
    server_.sendToAll(*ShowEvents::mode(item));
    emit changed();
    return true;
}

bool ProducerSession::setBlinded(const ItemKey& key, bool blinded) {
    if (!show_.setBlinded(key, blinded))
        return false;
    server_.sendToAll(*ShowEvents::blind(*show_.find(key)));
    emit changed();
    return true;
}

bool ProducerSession::setPattern(LV_NTC_PictureType pattern) {
    if (!show_.setPattern(pattern))
        return false;
    MireEvent event(0, pattern);
    server_.sendToAll(event);
    log(QStringLiteral("pattern %1").arg(nameOf(pattern)));
    emit changed();
    return true;
}

bool ProducerSession::addItem(const ShowItem& item) {
    if (show_.add(item))
        return false;
    const ShowItem& added = *show_.find(item.key);
    server_.sendToAll(*ShowEvents::added(added));
    server_.sendToAll(*ShowEvents::deformation(added, false));
    if (item.key.type == LV_NTC_ElementType::Screen)
        server_.sendToAll(*ShowEvents::mode(added));
    if (added.blinded)
        server_.sendToAll(*ShowEvents::blind(added));
    log(QStringLiteral("added %1 \"%2\"").arg(nameOf(item.key), item.name));
    emit changed();
    return true;
}

bool ProducerSession::removeItem(const ItemKey& key) {
    const ShowItem* const item = show_.find(key);
    if (!item)
        return false;
    const auto event = ShowEvents::removed(*item);
    log(QStringLiteral("removed %1 \"%2\"").arg(nameOf(key), item->name));
    show_.remove(key);
    server_.sendToAll(*event);
    for (auto& [id, companion] : companions_)
        if (companion.editing && !show_.find(*companion.editing))
            companion.editing.reset();
    emit changed();
    return true;
}

bool ProducerSession::setQuickKeyGrid(int rows, int columns) {
    const auto fits = [](int n) {
        return n >= int(Limits::kMinQuickKeyGrid) && n <= int(Limits::kMaxQuickKeyGrid);
    };
    if (!fits(rows) || !fits(columns))
        return false;
    show_.quickKeyRows = rows;
    show_.quickKeyColumns = columns;
    ConfigQuickKeyEvent event(quint32(rows), quint32(columns), 0);
    server_.sendToAll(event);
    emit changed();
    return true;
}

bool ProducerSession::setQuickKey(quint32 id, const QuickKey& key) {
    if (id < Limits::kMinQuickKeyId || id > Limits::kMaxQuickKeyId)
        return false;
    const QByteArray name = key.name.toUtf8();
    const QByteArray color = key.color.toUtf8();
    if (show_.quickKeys.insert_or_assign(id, key).second) {
        AddQuickKeyEvent event(id, 0, 0, name.constData(), color.constData());
        server_.sendToAll(event);
    } else {
        UpdateQuickKeyEvent event(id, 0, name.constData(), color.constData());
        server_.sendToAll(event);
    }
    emit changed();
    return true;
}

bool ProducerSession::deleteQuickKey(quint32 id) {
    if (show_.quickKeys.erase(id) == 0)
        return false;
    DeleteQuickKeyEvent event(id, 0);
    server_.sendToAll(event);
    emit changed();
    return true;
}

void ProducerSession::startNewShow() {
    showIndex_ = (showIndex_ + 1) % shows_.size();
    Show next = shows_[showIndex_];
    // Companions drop their items on "newShow", but keep quick keys until each is deleted. The
    // highest id goes first, because that removes pages of keys as soon as they are empty.
    for (const auto& [id, key] : std::views::reverse(show_.quickKeys)) {
        if (!next.quickKeys.contains(id)) {
            DeleteQuickKeyEvent event(id, 0);
            server_.sendToAll(event);
        }
    }
    next.pattern = show_.pattern; // a new show does not change what the outputs show
    show_ = std::move(next);
    ++showsStarted_;
    for (auto& [id, companion] : companions_)
        companion.editing.reset();
    MsgEvent event("newShow");
    server_.sendToAll(event);
    log(QStringLiteral("new show \"%1\", %2 items").arg(show_.title).arg(show_.items().size()));
    emit changed();
}

void ProducerSession::disconnectCompanions() {
    for (const int id : server_.companionIds())
        server_.disconnectCompanion(id);
}
