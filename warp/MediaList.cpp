#include "warp/MediaList.h"

#include "app/shell/Configuration.h"
#include "app/shell/EventDispatcher.h"
#include "network/events/AddMediaEvent.h"
#include "network/events/AddScreenEvent.h"
#include "network/events/AddScreenPartEvent.h"
#include "network/events/AddTextureEvent.h"
#include "network/events/BlindEvent.h"
#include "network/events/DeformationModeEvent.h"
#include "network/events/ItemDataEvent.h"
#include "network/events/MediaBlindEvent.h"
#include "network/events/MediaDeformationModeEvent.h"
#include "network/events/MsgEvent.h"
#include "network/events/ProtocolLimits.h"
#include "network/events/RemoveMediaEvent.h"
#include "network/events/RemoveScreenEvent.h"
#include "network/events/RemoveScreenPartEvent.h"
#include "network/events/RemoveTextureEvent.h"
#include "network/events/ScreenModeEvent.h"
#include "network/events/ScreenPartBlindEvent.h"
#include "network/events/ScreenPartDeformationModeEvent.h"
#include "warp/MediaItem.h"
#include "warp/ScreenItem.h"
#include "warp/ScreenPartItem.h"
#include "warp/TextureItem.h"
#include "warp/TouchScroller.h"
#include "warp/WarpLook.h"

#include <QCoreApplication>
#include <QDebug>
#include <QKeyEvent>
#include <QScrollBar>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

using namespace NetworkCompanion;

namespace {

constexpr std::array kEventTypes{
    LV_NTC_EventType::Msg,
    LV_NTC_EventType::Blind,
    LV_NTC_EventType::MediaBlind,
    LV_NTC_EventType::ScreenPartBlind,
    LV_NTC_EventType::DeformationMode,
    LV_NTC_EventType::MediaDeformationMode,
    LV_NTC_EventType::ScreenPartDeformationMode,
    LV_NTC_EventType::AddMedia,
    LV_NTC_EventType::AddTexture,
    LV_NTC_EventType::AddScreen,
    LV_NTC_EventType::AddScreenPart,
    LV_NTC_EventType::RemoveMedia,
    LV_NTC_EventType::RemoveTexture,
    LV_NTC_EventType::RemoveScreen,
    LV_NTC_EventType::RemoveScreenPart,
    LV_NTC_EventType::ScreenMode,
    LV_NTC_EventType::ItemData,
};

const QString kNewShow = QStringLiteral("newShow");
const QString kLabelSeparator = QStringLiteral(", ");

bool contains(const QString& label, const QString& text) {
    return label.contains(text, Qt::CaseInsensitive);
}

bool isScreenOrPart(const Item* row) {
    return row->elementType() == LV_NTC_ElementType::Screen ||
           row->elementType() == LV_NTC_ElementType::ScreenPart;
}

/// Whether `a` is sorted before `b`: by label, medias before textures of the same label, then by
/// id.
bool precedes(const Item* a, const Item* b) {
    if (const int order = qstrcmp(a->sortKey(), b->sortKey()); order != 0)
        return order < 0;
    if (a->elementType() != b->elementType())
        return a->elementType() < b->elementType();
    return static_cast<unsigned int>(a->id()) < static_cast<unsigned int>(b->id());
}

/// Whether the scene can build the deformation; warns otherwise.
template <class DeformationEvent>
bool isBuildable(const DeformationEvent& event) {
    const auto isGridSize = [](std::uint32_t size) {
        return size >= Limits::kMinGridSize && size <= Limits::kMaxGridSize;
    };
    switch (event.deformationType()) {
    case LV_NTC_DeformationType::None:
    case LV_NTC_DeformationType::Keystone: // always 2 x 2
        return true;
    case LV_NTC_DeformationType::Bezier:
    case LV_NTC_DeformationType::Curve:
        if (isGridSize(event.rows()) && isGridSize(event.columns()))
            return true;
        break;
    }
    qWarning("MediaList: Deformation of type %d with %u x %u points ignored",
             static_cast<int>(event.deformationType()), event.rows(), event.columns());
    return false;
}

template <class DeformationEvent>
Item::Deformation deformationOf(const DeformationEvent& event) {
    return {static_cast<int>(event.deformationType()), static_cast<int>(event.rows()),
            static_cast<int>(event.columns()), event.reset()};
}

} // namespace

MediaList::MediaList(const Configuration& configuration, QWidget* parent)
    : QWidget(parent), configuration_(configuration), scrollArea_(new QScrollArea(this)),
      content_(new QWidget), rowsLayout_(new QVBoxLayout(content_)), keys_(this),
      events_(this, kEventTypes) {
    initMediaList();
}

MediaList::~MediaList() = default;

void MediaList::initMediaList() {
    rowsLayout_->setContentsMargins(0, 0, 0, 0);
    rowsLayout_->setSpacing(WarpLook::kRowSpacing);
    rowsLayout_->setAlignment(Qt::AlignTop);

    scrollArea_->setStyleSheet(QLatin1StringView(WarpLook::kListArea));
    scrollArea_->verticalScrollBar()->setStyleSheet(QLatin1StringView(WarpLook::kListScrollBar));
    scrollArea_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea_->setWidgetResizable(true);
    scrollArea_->setWidget(content_);
    scrollArea_->setAccessibleName(QLatin1StringView(WarpLook::kListName));
    scrollArea_->installEventFilter(this);
    scrollArea_->viewport()->installEventFilter(this);
    connect(scrollArea_->verticalScrollBar(), &QScrollBar::valueChanged, this,
            &MediaList::createWidgetsInView);
    new TouchScroller(scrollArea_);
    setFocusProxy(scrollArea_);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scrollArea_);
}

// Events

void MediaList::receive(Event* event) {
    switch (event->type()) {
    case LV_NTC_EventType::Msg:
        processMessage(static_cast<MsgEvent*>(event)->message());
        break;
    case LV_NTC_EventType::Blind: {
        const auto& blind = static_cast<BlindEvent&>(*event);
        updateScreenBlind(static_cast<int>(blind.screenId()), blind.blinded());
        break;
    }
    case LV_NTC_EventType::MediaBlind: {
        const auto& blind = static_cast<MediaBlindEvent&>(*event);
        updateMediaBlind(blind.elementType(), blind.name(), blind.cueId(), blind.blinded());
        break;
    }
    case LV_NTC_EventType::ScreenPartBlind: {
        const auto& blind = static_cast<ScreenPartBlindEvent&>(*event);
        updateScreenPartBlind(static_cast<int>(blind.screenId()),
                              static_cast<int>(blind.screenPartId()), blind.blinded());
        break;
    }
    case LV_NTC_EventType::DeformationMode:
        receiveAndUpdateDeformationMode(static_cast<DeformationModeEvent&>(*event));
        break;
    case LV_NTC_EventType::MediaDeformationMode:
        receiveAndUpdateMediaDeformationMode(static_cast<MediaDeformationModeEvent&>(*event));
        break;
    case LV_NTC_EventType::ScreenPartDeformationMode:
        receiveAndUpdateScreenPartDeformationMode(
            static_cast<ScreenPartDeformationModeEvent&>(*event));
        break;
    case LV_NTC_EventType::AddMedia: {
        const auto& media = static_cast<AddMediaEvent&>(*event);
        addMedia(media.mediaType(), media.cueId(), static_cast<int>(media.mediaId()),
                 static_cast<int>(media.dataIndex()), static_cast<int>(media.sourceWidth()),
                 static_cast<int>(media.sourceHeight()), media.sourceRotation(), media.flag(),
                 media.name());
        break;
    }
    case LV_NTC_EventType::AddTexture: {
        const auto& texture = static_cast<AddTextureEvent&>(*event);
        addTexture(texture.cueId(), static_cast<int>(texture.textureId()),
                   static_cast<int>(texture.dataIndex()), static_cast<int>(texture.sourceWidth()),
                   static_cast<int>(texture.sourceHeight()), texture.sourceRotation(),
                   texture.flag(), texture.name());
        break;
    }
    case LV_NTC_EventType::AddScreen: {
        const auto& screen = static_cast<AddScreenEvent&>(*event);
        addScreen(static_cast<int>(screen.screenId()), static_cast<int>(screen.dataIndex()),
                  static_cast<int>(screen.sourceWidth()), static_cast<int>(screen.sourceHeight()),
                  screen.sourceDeformerRotation(), screen.blinded(), screen.flag(), screen.name());
        break;
    }
    case LV_NTC_EventType::AddScreenPart: {
        const auto& part = static_cast<AddScreenPartEvent&>(*event);
        addScreenPart(static_cast<int>(part.screenId()), static_cast<int>(part.screenPartId()),
                      static_cast<int>(part.dataIndex()), static_cast<int>(part.sourceWidth()),
                      static_cast<int>(part.sourceHeight()), part.sourceDeformerRotation(),
                      part.blinded(), part.name());
        break;
    }
    case LV_NTC_EventType::RemoveMedia:
        removeMedia(static_cast<RemoveMediaEvent*>(event)->cueId());
        break;
    case LV_NTC_EventType::RemoveTexture:
        removeTexture(static_cast<RemoveTextureEvent*>(event)->cueId());
        break;
    case LV_NTC_EventType::RemoveScreen:
        removeScreen(static_cast<int>(static_cast<RemoveScreenEvent*>(event)->screenId()));
        break;
    case LV_NTC_EventType::RemoveScreenPart: {
        const auto& part = static_cast<RemoveScreenPartEvent&>(*event);
        removeScreenPart(static_cast<int>(part.screenId()), static_cast<int>(part.screenPartId()));
        break;
    }
    case LV_NTC_EventType::ScreenMode: {
        const auto& mode = static_cast<ScreenModeEvent&>(*event);
        updateScreenMode(static_cast<int>(mode.screenId()), mode.modeType());
        break;
    }
    case LV_NTC_EventType::ItemData: {
        const auto& mesh = static_cast<ItemDataEvent&>(*event);
        receiveAndUpdateDeformationMode(mesh.deformationMode());
        receiveAndUpdateScreenPartDeformationMode(mesh.screenPartDeformationMode());
        receiveAndUpdateMediaDeformationMode(mesh.mediaDeformationMode());
        break;
    }
    default:
        qDebug("MediaList: Unknown event received");
        break;
    }
}

void MediaList::processMessage(const QString& text) {
    if (text != kNewShow)
        return;
    purgeMedia();
    MsgEvent request("getResources");
    EventDispatcher::getInstance()->client().sendEvent(request);
}

// Elements

MediaItem* MediaList::findMedia(unsigned int cueId) const {
    const auto found = mediaItems_.find(cueId);
    return found != mediaItems_.end() ? found->second : nullptr;
}

TextureItem* MediaList::findTexture(unsigned int cueId) const {
    const auto found = textureItems_.find(cueId);
    return found != textureItems_.end() ? found->second : nullptr;
}

ScreenItem* MediaList::findScreen(int screenId) const {
    const auto index = static_cast<std::size_t>(screenId);
    return screenId >= 0 && index < screenItems_.size() ? screenItems_[index] : nullptr;
}

ScreenPartItem* MediaList::findScreenPart(int screenId, int partId) const {
    const ScreenItem* screen = findScreen(screenId);
    return screen != nullptr ? screen->getPart(partId) : nullptr;
}

QString MediaList::partLabel(const ScreenItem* screen, const QString& partName) const {
    return screen->labelText() + kLabelSeparator +
           (partName.isEmpty() ? QString(QLatin1StringView(WarpLook::kUnnamedPart)) : partName);
}

void MediaList::initRow(Item* row) {
    row->setFixedHeight(WarpLook::kRowHeight);
    row->move(0, -WarpLook::kRowHeight); // above the visible area until the layout positions it
    connect(row, &Item::selected, this, &MediaList::onSelectedItem);
    newRows_.push_back(row);
}

void MediaList::removeFromLayout(Item* row) {
    deferLayout();
    rowsLayout_->removeWidget(row);
    std::erase(isScreenOrPart(row) ? sortedScreens_ : sortedMedias_, row);
    std::erase(newRows_, row);
    changedRows_.erase(row);
}

void MediaList::deleteRow(Item* row) {
    if (row == selectedItem_)
        onSelectedItem(nullptr);
    delete row;
}

void MediaList::relabel(Item* row, const QString& text) {
    if (row->labelText() == text)
        return;
    row->setLabelText(text);
    changedRows_.insert(row);
    isOrderStale_ = true;
}

void MediaList::addMedia(MediaType::Enum type, unsigned int cueId, int mediaId, int dataIndex,
                         int sourceWidth, int sourceHeight, double sourceRotation, bool flag,
                         const QString& name) {
    if (findMedia(cueId) == nullptr) {
        auto* row = new MediaItem(type, cueId, mediaId, dataIndex, sourceWidth, sourceHeight, flag,
                                  name, configuration_, content_);
        initRow(row);
        mediaItems_.emplace(cueId, row);
    }
    emit mediaItemAdded(type, cueId, mediaId, sourceWidth, sourceHeight, sourceRotation, name);
    updateMediaList();
}

void MediaList::addTexture(unsigned int cueId, int textureId, int dataIndex, int sourceWidth,
                           int sourceHeight, double sourceRotation, bool flag,
                           const QString& name) {
    if (findTexture(cueId) == nullptr) {
        auto* row = new TextureItem(cueId, textureId, dataIndex, sourceWidth, sourceHeight, flag,
                                    name, configuration_, content_);
        initRow(row);
        textureItems_.emplace(cueId, row);
    }
    emit textureItemAdded(cueId, textureId, sourceWidth, sourceHeight, sourceRotation, name);
    updateMediaList();
}

void MediaList::addScreen(int screenId, int dataIndex, int sourceWidth, int sourceHeight,
                          double sourceDeformerRotation, bool blinded, bool flag,
                          const QString& name) {
    Q_UNUSED(flag)
    if (static_cast<std::uint32_t>(screenId) >= Limits::kMaxScreenId) {
        qWarning("MediaList: Screen with number %u ignored", static_cast<std::uint32_t>(screenId));
        return;
    }
    const auto index = static_cast<std::size_t>(screenId);
    if (index >= screenItems_.size())
        screenItems_.resize(index + 1);
    ScreenItem* screen = screenItems_[index];
    if (screen != nullptr) {
        screen->setName(name);
        relabel(screen, name);
        for (ScreenPartItem* part : screen->parts())
            relabel(part, partLabel(screen, part->name()));
    } else {
        screen = new ScreenItem(screenId, dataIndex, sourceWidth, sourceHeight, blinded, name,
                                configuration_, content_);
        initRow(screen);
        screenItems_[index] = screen;
    }
    emit screenItemAdded(screenId, sourceWidth, sourceHeight, 0.0F, sourceDeformerRotation, name);
    updateMediaList();
}

void MediaList::addScreenPart(int screenId, int partId, int dataIndex, int sourceWidth,
                              int sourceHeight, double sourceDeformerRotation, bool blinded,
                              const QString& name) {
    ScreenItem* screen = findScreen(screenId);
    if (screen == nullptr)
        return;
    ScreenPartItem* part = screen->getPart(partId);
    const bool isNew = part == nullptr;
    if (isNew) {
        if (screen->parts().size() >= Limits::kMaxPartsPerScreen) {
            qWarning("MediaList: Part of screen %d ignored, it has too many", screenId);
            return;
        }
        part = new ScreenPartItem(partId, dataIndex, sourceWidth, sourceHeight, blinded, name,
                                  configuration_, content_);
        part->setLabelText(partLabel(screen, name));
        initRow(part);
        screen->addPart(part);
    } else {
        relabel(part, partLabel(screen, name));
    }
    emit screenPartItemAdded(screenId, partId, sourceWidth, sourceHeight, sourceDeformerRotation,
                             name);
    updateMediaList();
}

void MediaList::removeMedia(unsigned int cueId) {
    MediaItem* row = findMedia(cueId);
    if (row == nullptr)
        return;
    removeFromLayout(row);
    emit removeMediaItem(cueId);
    mediaItems_.erase(cueId);
    deleteRow(row);
    emit itemRemoved();
}

void MediaList::removeTexture(unsigned int cueId) {
    TextureItem* row = findTexture(cueId);
    if (row == nullptr)
        return;
    removeFromLayout(row);
    emit removeTextureItem(cueId);
    textureItems_.erase(cueId);
    deleteRow(row);
    emit itemRemoved();
}

void MediaList::removeScreen(int screenId) {
    ScreenItem* screen = findScreen(screenId);
    if (screen == nullptr)
        return;
    while (!screen->parts().isEmpty())
        removeScreenPart(screenId, screen->parts().constLast()->id());
    emit removeScreenItem(screenId);
    if (screen == selectedItem_)
        onSelectedItem(nullptr);
    removeFromLayout(screen);
    screenItems_[static_cast<std::size_t>(screenId)] = nullptr;
    delete screen;
    emit itemRemoved();
}

void MediaList::removeScreenPart(int screenId, int partId) {
    ScreenItem* screen = findScreen(screenId);
    ScreenPartItem* part = screen != nullptr ? screen->removePart(partId) : nullptr;
    if (part == nullptr)
        return;
    removeFromLayout(part);
    emit removeScreenPartItem(screenId, partId);
    deleteRow(part);
    emit itemRemoved();
}

void MediaList::purgeMedia() {
    while (!mediaItems_.empty())
        removeMedia(mediaItems_.begin()->first);
    while (!textureItems_.empty())
        removeTexture(textureItems_.begin()->first);
    for (int screenId = 0; screenId < static_cast<int>(screenItems_.size()); ++screenId)
        removeScreen(screenId);
    selectedItem_ = nullptr;
}

// State of elements

void MediaList::updateScreenMode(int screenId, LV_NTC_ModeType mode) {
    ScreenItem* screen = findScreen(screenId);
    if (screen == nullptr)
        return;
    if (mode < LV_NTC_ModeType::Unset || mode > LV_NTC_ModeType::Parts) {
        qWarning("MediaList: Mode %d of screen %d ignored", static_cast<int>(mode), screenId);
        return;
    }
    screen->setMode(mode);
    deferLayout();
    if (screen->isHandledThroughParts()) {
        if (selectedItem_ == screen)
            onSelectedItem(nullptr);
        screen->showParts();
    } else {
        if (std::find(screen->parts().begin(), screen->parts().end(), selectedItem_) !=
            screen->parts().end())
            onSelectedItem(nullptr);
        screen->hideParts();
    }
    applyFilters(screen);
    unselectIfHidden();
    emit screenMode(screenId, mode);
}

void MediaList::updateScreenBlind(int screenId, bool blinded) {
    if (ScreenItem* screen = findScreen(screenId))
        screen->setBlinded(blinded);
}

void MediaList::updateScreenPartBlind(int screenId, int partId, bool blinded) {
    if (ScreenPartItem* part = findScreenPart(screenId, partId))
        part->setBlinded(blinded);
}

void MediaList::updateMediaBlind(LV_NTC_ElementType elementType, const QString& name,
                                 unsigned int cueId, bool blinded) {
    Item* row = nullptr;
    if (elementType == LV_NTC_ElementType::Media)
        row = findMedia(cueId);
    else if (elementType == LV_NTC_ElementType::Texture)
        row = findTexture(cueId);
    if (row == nullptr)
        return;
    row->setName(name);
    relabel(row, name);
    row->setBlinded(blinded);
}

void MediaList::updateDeformationMode(LV_NTC_DeformationType deformationType, int screenId,
                                      const QString& name, int rows, int columns, bool reset) {
    Q_UNUSED(name)
    if (ScreenItem* screen = findScreen(screenId))
        screen->setDeformation({static_cast<int>(deformationType), rows, columns, reset});
}

void MediaList::updateScreenPartDeformationMode(LV_NTC_DeformationType deformationType,
                                                int screenId, int screenPartId, const QString& name,
                                                int rows, int columns, bool reset) {
    Q_UNUSED(name)
    if (ScreenPartItem* part = findScreenPart(screenId, screenPartId))
        part->setDeformation({static_cast<int>(deformationType), rows, columns, reset});
}

void MediaList::updateMediaDeformationMode(LV_NTC_ElementType elementType,
                                           LV_NTC_DeformationType deformationType,
                                           unsigned int cueId, int elementId, const QString& name,
                                           int rows, int columns, bool reset) {
    Q_UNUSED(elementId)
    Q_UNUSED(name)
    const Item::Deformation deformation{static_cast<int>(deformationType), rows, columns, reset};
    if (elementType == LV_NTC_ElementType::Media) {
        if (MediaItem* media = findMedia(cueId))
            media->setDeformation(deformation);
    } else if (elementType == LV_NTC_ElementType::Texture) {
        if (TextureItem* texture = findTexture(cueId))
            texture->setDeformation(deformation);
    }
}

void MediaList::receiveAndUpdateDeformationMode(const DeformationModeEvent& event) {
    const int screenId = static_cast<int>(event.screenId());
    ScreenItem* screen = findScreen(screenId);
    if (screen == nullptr || !isBuildable(event))
        return;
    const Item::Deformation deformation = deformationOf(event);
    emit screenDeformationMode(event.deformationType(), screenId, event.name(), deformation.rows,
                               deformation.columns, deformation.reset);
    screen->setDeformation(deformation);
}

void MediaList::receiveAndUpdateScreenPartDeformationMode(
    const ScreenPartDeformationModeEvent& event) {
    const int screenId = static_cast<int>(event.screenId());
    const int partId = static_cast<int>(event.screenPartId());
    ScreenPartItem* part = findScreenPart(screenId, partId);
    if (part == nullptr || !isBuildable(event))
        return;
    const Item::Deformation deformation = deformationOf(event);
    emit screenPartDeformationMode(event.deformationType(), screenId, partId, event.name(),
                                   deformation.rows, deformation.columns, deformation.reset);
    part->setDeformation(deformation);
}

void MediaList::receiveAndUpdateMediaDeformationMode(const MediaDeformationModeEvent& event) {
    const int elementId = static_cast<int>(event.elementId());
    const Item::Deformation deformation = deformationOf(event);
    if (event.elementType() == LV_NTC_ElementType::Media) {
        MediaItem* media = findMedia(event.cueId());
        if (media != nullptr && isBuildable(event)) {
            emit mediaDeformationMode(event.elementType(), event.deformationType(), event.cueId(),
                                      elementId, event.name(), deformation.rows,
                                      deformation.columns, deformation.reset);
            media->setDeformation(deformation);
        }
    } else if (event.elementType() == LV_NTC_ElementType::Texture) {
        TextureItem* texture = findTexture(event.cueId());
        if (texture != nullptr && isBuildable(event)) {
            emit textureDeformationMode(event.elementType(), event.deformationType(), event.cueId(),
                                        elementId, event.name(), deformation.rows,
                                        deformation.columns, deformation.reset);
            texture->setDeformation(deformation);
        }
    }
}

// Order

void MediaList::sortItemList(std::vector<Item*>& items) const {
    std::stable_sort(
        items.begin(), items.end(),
        [](const Item* a, const Item* b) { return qstrcmp(a->sortKey(), b->sortKey()) < 0; });
}

void MediaList::updateMediaList() {
    if (isOrderStale_ || !newRows_.empty() || !changedRows_.empty())
        deferLayout();
    for (Item* row : newRows_)
        applyFilters(row);
    for (Item* row : std::exchange(changedRows_, {}))
        applyFilters(row);
    if (isOrderStale_)
        rebuildLayout();
    else
        for (Item* row : newRows_)
            insertIntoLayout(row);
    newRows_.clear();
    unselectIfHidden();
}

void MediaList::rebuildLayout() {
    while (QLayoutItem* item = rowsLayout_->takeAt(0)) {
        // Cleared because addWidget() would otherwise search the layout for the widget.
        item->widget()->setAttribute(Qt::WA_LaidOut, false);
        delete item;
    }
    sortedScreens_.clear();
    std::copy_if(screenItems_.begin(), screenItems_.end(), std::back_inserter(sortedScreens_),
                 [](const ScreenItem* screen) { return screen != nullptr; });
    sortItemList(sortedScreens_);
    for (Item* screen : sortedScreens_) {
        rowsLayout_->addWidget(screen);
        for (ScreenPartItem* part : static_cast<ScreenItem*>(screen)->parts())
            rowsLayout_->addWidget(part);
    }
    sortedMedias_.clear();
    for (const auto& [cueId, media] : mediaItems_)
        sortedMedias_.push_back(media);
    for (const auto& [cueId, texture] : textureItems_)
        sortedMedias_.push_back(texture);
    sortItemList(sortedMedias_);
    for (Item* row : sortedMedias_)
        rowsLayout_->addWidget(row);
    isOrderStale_ = false;
}

void MediaList::insertIntoLayout(Item* row) {
    // The layout holds the screens with their parts, then the medias and textures.
    const int firstMedia = rowsLayout_->count() - static_cast<int>(sortedMedias_.size());
    if (row->elementType() == LV_NTC_ElementType::ScreenPart) {
        const ScreenItem* screen = static_cast<ScreenPartItem*>(row)->screenItem();
        const auto next = std::find(screen->parts().begin(), screen->parts().end(), row);
        const Item* above =
            next != screen->parts().begin() ? static_cast<Item*>(*std::prev(next)) : screen;
        rowsLayout_->insertWidget(rowsLayout_->indexOf(above) + 1, row);
    } else if (row->elementType() == LV_NTC_ElementType::Screen) {
        const auto next =
            std::lower_bound(sortedScreens_.begin(), sortedScreens_.end(), row, precedes);
        rowsLayout_->insertWidget(
            next != sortedScreens_.end() ? rowsLayout_->indexOf(*next) : firstMedia, row);
        sortedScreens_.insert(next, row);
    } else {
        const auto next =
            std::lower_bound(sortedMedias_.begin(), sortedMedias_.end(), row, precedes);
        rowsLayout_->insertWidget(firstMedia + static_cast<int>(next - sortedMedias_.begin()), row);
        sortedMedias_.insert(next, row);
    }
}

Item* MediaList::getItemFromLayout(int index) const {
    const QLayoutItem* item = rowsLayout_->itemAt(index);
    return item != nullptr ? static_cast<Item*>(item->widget()) : nullptr;
}

void MediaList::deferLayout() {
    if (isLayoutDeferred_)
        return;
    isLayoutDeferred_ = true;
    rowsLayout_->setEnabled(false);
    QMetaObject::invokeMethod(this, &MediaList::applyLayout, Qt::QueuedConnection);
}

void MediaList::applyLayout() {
    if (!isLayoutDeferred_)
        return;
    isLayoutDeferred_ = false;
    rowsLayout_->setEnabled(true);
    // The scroll area resizes the content first, so that the rows move only once.
    QEvent request(QEvent::LayoutRequest);
    QCoreApplication::sendEvent(scrollArea_, &request);
    rowsLayout_->activate();
    createWidgetsInView();
}

void MediaList::createWidgetsInView() {
    const int top = scrollArea_->verticalScrollBar()->value();
    const int bottom = top + scrollArea_->viewport()->height();
    for (int index = 0; Item* row = getItemFromLayout(index); ++index) {
        if (row->isHidden() || row->y() + row->height() <= top)
            continue;
        if (row->y() >= bottom)
            break; // all rows below are out of view
        row->createWidgets();
    }
}

// Filters

bool MediaList::matches(const Item* row, const QString& text) const {
    switch (row->elementType()) {
    case LV_NTC_ElementType::Screen:
        return !static_cast<const ScreenItem*>(row)->isHandledThroughParts() &&
               contains(row->labelText(), text);
    case LV_NTC_ElementType::ScreenPart: {
        const ScreenItem* screen = static_cast<const ScreenPartItem*>(row)->screenItem();
        return screen->isHandledThroughParts() &&
               contains(screen->labelText() + kLabelSeparator + row->labelText(), text);
    }
    default:
        return contains(row->labelText(), text);
    }
}

void MediaList::applyFilters(Item* row) {
    row->setVisible(!(screensOnly_ && isScreenOrPart(row)) && matches(row, filterText_));
    if (row->elementType() == LV_NTC_ElementType::Screen)
        for (ScreenPartItem* part : static_cast<ScreenItem*>(row)->parts())
            applyFilters(part);
}

int MediaList::showIfMatching(Item* row, const QString& text) {
    const bool isMatching = matches(row, text);
    row->setVisible(isMatching);
    return isMatching ? 1 : 0;
}

void MediaList::unselectIfHidden() {
    if (selectedItem_ != nullptr && selectedItem_->isHidden())
        onSelectedItem(nullptr);
}

int MediaList::filterByText(const QString& text) {
    filterText_ = text;
    const int visible = filterByText();
    scrollToSelection();
    return visible;
}

int MediaList::filterByText() {
    int visible = screensOnly_ ? 0 : textFilterOnScreensAndScreenParts(filterText_);
    visible += textFilterOnMedias(filterText_);
    visible += textFilterOnTextures(filterText_);
    return visible;
}

int MediaList::textFilterOnScreensAndScreenParts(const QString& text) {
    deferLayout();
    int visible = 0;
    for (Item* row : sortedScreens_) {
        visible += showIfMatching(row, text);
        for (ScreenPartItem* part : static_cast<ScreenItem*>(row)->parts())
            visible += showIfMatching(part, text);
    }
    unselectIfHidden();
    return visible;
}

int MediaList::textFilterOnMedias(const QString& text) {
    deferLayout();
    int visible = 0;
    for (const auto& [cueId, media] : mediaItems_)
        visible += showIfMatching(media, text);
    unselectIfHidden();
    return visible;
}

int MediaList::textFilterOnTextures(const QString& text) {
    deferLayout();
    int visible = 0;
    for (const auto& [cueId, texture] : textureItems_)
        visible += showIfMatching(texture, text);
    unselectIfHidden();
    return visible;
}

void MediaList::filterScreens(bool on) {
    screensOnly_ = on;
    filterScreens();
}

void MediaList::filterScreens() {
    if (screensOnly_)
        hideScreensAndScreenParts();
    else
        showScreensAndScreenParts();
    scrollToSelection();
}

void MediaList::hideScreensAndScreenParts() {
    deferLayout();
    for (Item* row : sortedScreens_) {
        row->hide();
        for (ScreenPartItem* part : static_cast<ScreenItem*>(row)->parts())
            part->hide();
    }
    if (selectedItem_ != nullptr && isScreenOrPart(selectedItem_))
        onSelectedItem(nullptr);
}

void MediaList::showScreensAndScreenParts() {
    deferLayout();
    for (Item* row : sortedScreens_) {
        auto* screen = static_cast<ScreenItem*>(row);
        if (screen->isHandledThroughParts() && !screen->parts().isEmpty())
            screen->showParts();
        else
            screen->show();
        changedRows_.insert(screen); // shown regardless of the text filter
    }
}

// Selection

void MediaList::onSelectedItem(Item* item) {
    if (item == selectedItem_)
        return;
    if (selectedItem_ != nullptr)
        selectedItem_->setActive(false);
    selectedItem_ = item;
    if (item != nullptr)
        item->setActive(true);
    ItemDataEvent request(item != nullptr ? item->dataIndex() : -1);
    EventDispatcher::getInstance()->client().sendEvent(request);
    if (item == selectedItem_) // a connection lost in sendEvent() clears the selection
        emit selectedItem(item);
}

void MediaList::unselectItem() {
    onSelectedItem(nullptr);
}

void MediaList::selectFirstVisibleItem() {
    selectVisible(0, 1);
}

void MediaList::selectNextVisibleItem() {
    selectVisible(rowsLayout_->indexOf(selectedItem_) + 1, 1);
}

void MediaList::selectPreviousVisibleItem() {
    selectVisible(rowsLayout_->indexOf(selectedItem_) - 1, -1);
}

void MediaList::selectVisible(int from, int step) {
    for (int index = from; Item* row = getItemFromLayout(index); index += step) {
        if (!row->isHidden()) {
            onSelectedItem(row);
            break;
        }
    }
    if (selectedItem_ != nullptr)
        scrollToSelection();
}

void MediaList::scrollToSelection() {
    applyLayout();
    if (selectedItem_ != nullptr) {
        scrollArea_->ensureWidgetVisible(selectedItem_, configuration_.listScrollMargins.left(),
                                         configuration_.listScrollMargins.top());
    } else {
        scrollArea_->verticalScrollBar()->setValue(0);
    }
}

void MediaList::onAction(Action action) {
    switch (action) {
    case Action::SELECT_PREVIOUS_SCREEN:
        selectedItem_ != nullptr ? selectPreviousVisibleItem() : selectFirstVisibleItem();
        break;
    case Action::SELECT_NEXT_SCREEN:
        selectedItem_ != nullptr ? selectNextVisibleItem() : selectFirstVisibleItem();
        break;
    case Action::TOGGLE_BLIND:
        if (selectedItem_ != nullptr)
            selectedItem_->onBlind();
        break;
    default:
        break;
    }
}

// Keys

void MediaList::notified(QKeyEvent* keyEvent) {
    switch (keyEvent->key()) {
    case Qt::Key_M:
        onAction(Action::SELECT_NEXT_SCREEN);
        break;
    case Qt::Key_P:
        onAction(Action::SELECT_PREVIOUS_SCREEN);
        break;
    case Qt::Key_Space:
        if (!keyEvent->isAutoRepeat()) // a held key would make the output flicker
            onAction(Action::TOGGLE_BLIND);
        break;
    default:
        return;
    }
    keyEvent->accept();
}

bool MediaList::eventFilter(QObject* watched, QEvent* event) {
    if (watched == scrollArea_->viewport() && event->type() == QEvent::Resize)
        createWidgetsInView();
    if (watched == scrollArea_ && event->type() == QEvent::KeyPress) {
        auto* keyEvent = static_cast<QKeyEvent*>(event);
        if (keyEvent->key() >= Qt::Key_Left && keyEvent->key() <= Qt::Key_Down) {
            emit emitKeyEvent(keyEvent);
            keyEvent->accept();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}
