#include "warp/MediaList.h"

#include "app/shell/Configuration.h"
#include "app/shell/EventDispatcher.h"
#include "network/events/AddMediaEvent.h"
#include "network/events/AddScreenEvent.h"
#include "network/events/AddScreenPartEvent.h"
#include "network/events/AddTextureEvent.h"
#include "network/events/BlindEvent.h"
#include "network/events/DeformationBounds.h"
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

#include <QDebug>
#include <QKeyEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolTip>
#include <QVBoxLayout>

#include <array>
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

/// Whether the text filter shows the row. False for a screen in mode `Parts`, and for the parts of
/// any other screen.
bool matches(const Item* row, const QString& text) {
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

QString partLabel(const ScreenItem& screen, const QString& partName) {
    return screen.labelText() + kLabelSeparator +
           (partName.isEmpty() ? QString(QLatin1StringView(WarpLook::kUnnamedPart)) : partName);
}

/// The row that contains the widget, or null.
Item* rowOf(QWidget* widget) {
    while (widget != nullptr && qobject_cast<Item*>(widget) == nullptr)
        widget = widget->parentWidget();
    return static_cast<Item*>(widget);
}

/// Whether the scene can build the deformation; warns otherwise.
template <class DeformationEvent>
bool isBuildable(const DeformationEvent& event) {
    if (isInBounds(event))
        return true;
    qWarning("MediaList: Deformation of type %d with %u x %u points ignored",
             static_cast<int>(event.deformationType()), event.rows(), event.columns());
    return false;
}

} // namespace

MediaList::MediaList(const Configuration& configuration, QWidget* parent)
    : QWidget(parent), configuration_(configuration), scrollArea_(new QScrollArea(this)),
      rows_(std::make_unique<RowLayout>(items_, scrollArea_)), keys_(this),
      events_(this, kEventTypes) {
    initMediaList();
}

MediaList::~MediaList() = default;

void MediaList::initMediaList() {
    scrollArea_->setStyleSheet(QLatin1StringView(WarpLook::kListArea));
    scrollArea_->verticalScrollBar()->setStyleSheet(QLatin1StringView(WarpLook::kListScrollBar));
    scrollArea_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea_->setAccessibleName(QLatin1StringView(WarpLook::kListName));
    scrollArea_->installEventFilter(this);
    setFocusProxy(scrollArea_);
    initTouch();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scrollArea_);
}

void MediaList::initTouch() {
    const auto* touch = new TouchScroller(scrollArea_);
    connect(touch, &TouchScroller::held, this, [this](bool isHeld) { rows_->hold(isHeld); });
    connect(touch, &TouchScroller::pressed, this, [](QWidget* target, bool isPressed) {
        if (auto* eye = qobject_cast<BlindButton*>(target))
            eye->setDown(isPressed);
        if (!isPressed)
            QToolTip::hideText();
    });
    connect(touch, &TouchScroller::longPressed, this, [](QWidget* target) {
        if (qobject_cast<BlindButton*>(target) != nullptr)
            return; // lifting the finger will press the eye, so the name would mislead
        if (const Item* row = rowOf(target))
            row->showWholeName();
    });
    connect(touch, &TouchScroller::tapped, this, [this](QWidget* target) {
        scrollArea_->setFocus(Qt::MouseFocusReason);
        if (auto* eye = qobject_cast<BlindButton*>(target))
            emit eye->blindPressed();
        else if (Item* row = rowOf(target))
            emit row->selected(row);
    });
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
        if (!acceptsDeformations(mesh, [](const auto& mode) { return isBuildable(mode); }))
            break;
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

void MediaList::initRow(Item* row) {
    row->setFixedHeight(WarpLook::kRowHeight);
    row->move(0, -WarpLook::kRowHeight); // above the visible area until the layout positions it
    connect(row, &Item::selected, this, &MediaList::onSelectedItem);
    items_.add(row);
    rows_->requestSort();
    applyFilters(row);
}

void MediaList::removeParts(int screenId) {
    // Found anew each time because a connection lost during a removal removes the screen.
    while (const ScreenItem* screen = items_.findScreen(screenId)) {
        if (screen->parts().isEmpty())
            break;
        removeRow(screen->parts().constLast()->key());
    }
}

void MediaList::removeRow(const ItemKey& key) {
    if (key.type == LV_NTC_ElementType::Screen)
        removeParts(static_cast<int>(key.id));
    Item* row = items_.find(key);
    if (row == nullptr)
        return;
    items_.remove(row);
    if (key.type == LV_NTC_ElementType::ScreenPart)
        static_cast<ScreenPartItem*>(row)->screenItem()->removePart(row->id());
    rows_->remove(row);
    switch (key.type) {
    case LV_NTC_ElementType::Media:
        emit removeMediaItem(key.id);
        break;
    case LV_NTC_ElementType::Texture:
        emit removeTextureItem(key.id);
        break;
    case LV_NTC_ElementType::Screen:
        emit removeScreenItem(static_cast<int>(key.id));
        break;
    case LV_NTC_ElementType::ScreenPart:
        emit removeScreenPartItem(static_cast<int>(key.id), static_cast<int>(key.subId));
        break;
    case LV_NTC_ElementType::None:
        break;
    }
    if (row == selectedItem_)
        onSelectedItem(nullptr);
    delete row;
    emit itemRemoved();
}

void MediaList::purgeMedia() {
    while (!items_.isEmpty())
        removeRow(items_.firstKey());
    selectedItem_ = nullptr;
}

void MediaList::relabel(Item* row, const QString& text) {
    if (row->labelText() == text)
        return;
    rows_->sortIfRequested(); // a new label moves no row before updateMediaList()
    rows_->forgetPlace(row);
    row->setLabelText(text);
    needsUpdate_ = true;
}

void MediaList::addMedia(MediaType::Enum type, unsigned int cueId, int mediaId, int dataIndex,
                         int sourceWidth, int sourceHeight, double sourceRotation, bool flag,
                         const QString& name) {
    if (items_.find(ItemKey::media(cueId)) == nullptr) {
        initRow(new MediaItem(type, cueId, mediaId, dataIndex, sourceWidth, sourceHeight, flag,
                              name, configuration_, rows_->content()));
    }
    emit mediaItemAdded(type, cueId, mediaId, sourceWidth, sourceHeight, sourceRotation, name);
    updateMediaList();
}

void MediaList::addTexture(unsigned int cueId, int textureId, int dataIndex, int sourceWidth,
                           int sourceHeight, double sourceRotation, bool flag,
                           const QString& name) {
    if (items_.find(ItemKey::texture(cueId)) == nullptr) {
        initRow(new TextureItem(cueId, textureId, dataIndex, sourceWidth, sourceHeight, flag, name,
                                configuration_, rows_->content()));
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
    if (ScreenItem* screen = items_.findScreen(screenId)) {
        screen->setName(name);
        relabel(screen, name);
        for (ScreenPartItem* part : screen->parts())
            relabel(part, partLabel(*screen, part->name()));
    } else {
        initRow(new ScreenItem(screenId, dataIndex, sourceWidth, sourceHeight, blinded, name,
                               configuration_, rows_->content()));
    }
    emit screenItemAdded(screenId, sourceWidth, sourceHeight, 0.0F, sourceDeformerRotation, name);
    updateMediaList();
}

void MediaList::addScreenPart(int screenId, int partId, int dataIndex, int sourceWidth,
                              int sourceHeight, double sourceDeformerRotation, bool blinded,
                              const QString& name) {
    ScreenItem* screen = items_.findScreen(screenId);
    if (screen == nullptr)
        return;
    if (ScreenPartItem* part = screen->getPart(partId)) {
        relabel(part, partLabel(*screen, name));
    } else {
        if (screen->parts().size() >= Limits::kMaxPartsPerScreen) {
            qWarning("MediaList: Part of screen %d ignored, it has too many", screenId);
            return;
        }
        part = new ScreenPartItem(partId, dataIndex, sourceWidth, sourceHeight, blinded, name,
                                  configuration_, rows_->content());
        part->setLabelText(partLabel(*screen, name));
        screen->addPart(part);
        initRow(part);
    }
    emit screenPartItemAdded(screenId, partId, sourceWidth, sourceHeight, sourceDeformerRotation,
                             name);
    updateMediaList();
}

// State of elements

void MediaList::updateScreenMode(int screenId, LV_NTC_ModeType mode) {
    ScreenItem* screen = items_.findScreen(screenId);
    if (screen == nullptr)
        return;
    if (mode < LV_NTC_ModeType::Unset || mode > LV_NTC_ModeType::Parts) {
        qWarning("MediaList: Mode %d of screen %d ignored", static_cast<int>(mode), screenId);
        return;
    }
    screen->setMode(mode);
    rows_->defer();
    applyFilters(screen);
    for (ScreenPartItem* part : screen->parts())
        applyFilters(part);
    unselectIfHidden();
    emit screenMode(screenId, mode);
}

void MediaList::setBlinded(const ItemKey& key, bool blinded) {
    if (Item* row = items_.find(key))
        row->setBlinded(blinded);
}

void MediaList::updateMediaBlind(LV_NTC_ElementType elementType, const QString& name,
                                 unsigned int cueId, bool blinded) {
    if (Item* row = items_.find(ItemKey::mediaOrTexture(elementType, cueId))) {
        row->setName(name);
        relabel(row, name);
        row->setBlinded(blinded);
    }
}

void MediaList::setDeformation(const ItemKey& key, const Item::Deformation& deformation) {
    if (Item* row = items_.find(key))
        row->setDeformation(deformation);
}

void MediaList::receiveAndUpdateDeformationMode(const DeformationModeEvent& event) {
    receiveAndUpdate(ItemKey::screen(event.screenId()), event);
}

void MediaList::receiveAndUpdateScreenPartDeformationMode(
    const ScreenPartDeformationModeEvent& event) {
    receiveAndUpdate(ItemKey::screenPart(event.screenId(), event.screenPartId()), event);
}

void MediaList::receiveAndUpdateMediaDeformationMode(const MediaDeformationModeEvent& event) {
    receiveAndUpdate(ItemKey::mediaOrTexture(event.elementType(), event.cueId(), event.elementId()),
                     event);
}

template <class DeformationEvent>
void MediaList::receiveAndUpdate(const ItemKey& key, const DeformationEvent& event) {
    Item* row = items_.find(key);
    if (row == nullptr || !isBuildable(event))
        return;
    const LV_NTC_DeformationType type = event.deformationType();
    const auto id = static_cast<int>(key.id);
    const auto subId = static_cast<int>(key.subId);
    const auto rows = static_cast<int>(event.rows());
    const auto columns = static_cast<int>(event.columns());
    const bool reset = event.reset();
    switch (key.type) {
    case LV_NTC_ElementType::Media:
        emit mediaDeformationMode(key.type, type, key.id, subId, event.name(), rows, columns,
                                  reset);
        break;
    case LV_NTC_ElementType::Texture:
        emit textureDeformationMode(key.type, type, key.id, subId, event.name(), rows, columns,
                                    reset);
        break;
    case LV_NTC_ElementType::Screen:
        emit screenDeformationMode(type, id, event.name(), rows, columns, reset);
        break;
    case LV_NTC_ElementType::ScreenPart:
        emit screenPartDeformationMode(type, id, subId, event.name(), rows, columns, reset);
        break;
    case LV_NTC_ElementType::None:
        break;
    }
    row->setDeformation({static_cast<int>(type), rows, columns, reset});
}

// Filters

void MediaList::updateMediaList() {
    if (std::exchange(needsUpdate_, false)) {
        rows_->requestSort();
        for (Item* row : items_.rows())
            applyFilters(row);
    }
    unselectIfHidden();
}

void MediaList::applyFilters(Item* row) {
    row->setVisible(!(screensOnly_ && isScreenOrPart(row)) && matches(row, filterText_));
}

int MediaList::filterRows(LV_NTC_ElementType type, const QString& text) {
    rows_->defer();
    int visible = 0;
    for (Item* row : items_.rows(type)) {
        const bool isMatching = matches(row, text);
        row->setVisible(isMatching);
        visible += isMatching ? 1 : 0;
    }
    unselectIfHidden();
    return visible;
}

void MediaList::unselectIfHidden() {
    if (selectedItem_ != nullptr && selectedItem_->isHidden())
        onSelectedItem(nullptr);
}

int MediaList::filterByText(const QString& text) {
    filterText_ = text;
    const int visible = filterByText();
    rows_->applyAnew();
    scrollToSelection();
    return visible;
}

int MediaList::filterByText() {
    int visible = screensOnly_ ? 0 : textFilterOnScreensAndScreenParts(filterText_);
    visible += textFilterOnMedias(filterText_);
    visible += textFilterOnTextures(filterText_);
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
    rows_->applyAnew();
    scrollToSelection();
}

void MediaList::hideScreensAndScreenParts() {
    rows_->defer();
    for (const LV_NTC_ElementType type :
         {LV_NTC_ElementType::Screen, LV_NTC_ElementType::ScreenPart})
        for (Item* row : items_.rows(type))
            row->hide();
    unselectIfHidden();
}

void MediaList::showScreensAndScreenParts() {
    rows_->defer();
    for (Item* row : items_.rows(LV_NTC_ElementType::Screen)) {
        auto* screen = static_cast<ScreenItem*>(row);
        if (screen->isHandledThroughParts() && !screen->parts().isEmpty())
            screen->showParts();
        else
            screen->show();
    }
    needsUpdate_ = true; // because the text filter was not applied
}

// Selection

void MediaList::onSelectedItem(Item* item) {
    if (item == selectedItem_)
        return;
    if (selectedItem_ != nullptr)
        selectedItem_->setActive(false);
    selectedItem_ = item;
    if (item != nullptr) {
        item->setActive(true);
        rows_->endFilling();
    }
    ItemDataEvent request(item != nullptr ? item->dataIndex() : -1);
    EventDispatcher::getInstance()->client().sendEvent(request);
    if (item == selectedItem_) // a connection lost in sendEvent() clears the selection
        emit selectedItem(item);
}

void MediaList::selectNextVisibleItem() {
    selectVisible(rows_->indexOf(selectedItem_) + 1, 1);
}

void MediaList::selectPreviousVisibleItem() {
    selectVisible(rows_->indexOf(selectedItem_) - 1, -1);
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
    rows_->apply();
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
