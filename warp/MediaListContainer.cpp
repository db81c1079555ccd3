#include "warp/MediaListContainer.h"

#include "warp/Item.h"
#include "warp/MediaList.h"
#include "warp/SearchBox.h"
#include "warp/WarpLook.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QVBoxLayout>

using namespace NetworkCompanion;

MediaListContainer::MediaListContainer(const Configuration& configuration, QWidget* parent)
    : QWidget(parent), configuration_(configuration), searchBox_(new SearchBox(this)),
      screenCheckBox_(new QCheckBox(QLatin1StringView(WarpLook::kFilterScreensText), this)),
      mediaList_(new MediaList(configuration, this)), keys_(this) {
    initControls();
    initMediaList();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(WarpLook::kListMargins);
    layout->addWidget(searchBox_);
    layout->addWidget(screenCheckBox_);
    layout->addWidget(mediaList_);
}

MediaListContainer::~MediaListContainer() = default;

void MediaListContainer::initControls() {
    searchBox_->setStyleSheet(QLatin1StringView(WarpLook::kSearchBox));
    searchBox_->setFixedHeight(WarpLook::kSearchHeight);
    searchBox_->setPlaceholderText(QLatin1StringView(WarpLook::kSearchName));
    searchBox_->setAccessibleName(QLatin1StringView(WarpLook::kSearchName));
    screenCheckBox_->setMinimumHeight(WarpLook::kSearchHeight);
    connect(searchBox_, &QLineEdit::textChanged, this, &MediaListContainer::onSearchTextChanged);
    connect(searchBox_, &SearchBox::focusReleased, mediaList_,
            [list = mediaList_] { list->setFocus(Qt::OtherFocusReason); });
    connect(screenCheckBox_, &QCheckBox::stateChanged, this,
            &MediaListContainer::onScreenCheckBoxStateChanged);
}

void MediaListContainer::initMediaList() {
    using Container = MediaListContainer;
    const MediaList* list = mediaList_;
    connect(list, &MediaList::selectedItem, this, &Container::onSelectedItem);
    connect(list, &MediaList::screenMode, this, &Container::onScreenMode);
    connect(list, &MediaList::mediaDeformationMode, this, &Container::onMediaDeformationMode);
    connect(list, &MediaList::screenDeformationMode, this, &Container::onScreenDeformationMode);
    connect(list, &MediaList::screenPartDeformationMode, this,
            &Container::onScreenPartDeformationMode);
    connect(list, &MediaList::textureDeformationMode, this, &Container::onTextureDeformationMode);
    connect(list, &MediaList::mediaItemAdded, this, &Container::onMediaItemAdded);
    connect(list, &MediaList::removeMediaItem, this, &Container::onRemoveMediaItem);
    connect(list, &MediaList::screenItemAdded, this, &Container::onScreenItemAdded);
    connect(list, &MediaList::removeScreenItem, this, &Container::onRemoveScreenItem);
    connect(list, &MediaList::screenPartItemAdded, this, &Container::onScreenPartItemAdded);
    connect(list, &MediaList::removeScreenPartItem, this, &Container::onRemoveScreenPartItem);
    connect(list, &MediaList::textureItemAdded, this, &Container::onTextureItemAdded);
    connect(list, &MediaList::removeTextureItem, this, &Container::onRemoveTextureItem);
    connect(list, &MediaList::itemRemoved, this, &Container::onItemRemoved);
    connect(list, &MediaList::emitKeyEvent, this, &Container::onEmitKeyEvent);
    connect(this, &Container::keyEvent, mediaList_, &MediaList::notified);
    connect(this, &Container::action, mediaList_, &MediaList::onAction);

    connect(list, &MediaList::mediaItemAdded, this, &Container::scheduleSearch);
    connect(list, &MediaList::textureItemAdded, this, &Container::scheduleSearch);
    connect(list, &MediaList::screenItemAdded, this, &Container::scheduleSearch);
    connect(list, &MediaList::screenPartItemAdded, this, &Container::scheduleSearch);
    connect(list, &MediaList::screenMode, this, &Container::scheduleSearch);
    connect(list, &MediaList::itemRemoved, this, &Container::scheduleSearch);
}

void MediaListContainer::scheduleSearch() {
    if (isSearchScheduled_ || searchBox_->text().isEmpty())
        return;
    isSearchScheduled_ = true;
    const auto search = [this] {
        isSearchScheduled_ = false;
        showResult(mediaList_->filterByText()); // does not scroll
    };
    QMetaObject::invokeMethod(this, search, Qt::QueuedConnection);
}

void MediaListContainer::notified(QKeyEvent* keyEvent) {
    if (keyEvent->key() == Qt::Key_T) {
        if (!keyEvent->isAutoRepeat()) // a held key would make the list flicker
            screenCheckBox_->toggle();
        keyEvent->accept();
    }
}

void MediaListContainer::onScreenCheckBoxStateChanged(int state) {
    mediaList_->filterScreens(state == Qt::Checked);
    mediaList_->setFocus(Qt::OtherFocusReason);
    emit searchBox_->textChanged(searchBox_->text()); // filters the rows that are shown again
}

void MediaListContainer::onSearchTextChanged(const QString& text) {
    showResult(mediaList_->filterByText(text));
}

void MediaListContainer::showResult(int visible) {
    // Without a text the list is empty because nothing has arrived, which is no failed search.
    const bool isFound = visible > 0 || searchBox_->text().isEmpty();
    const QString style =
        QLatin1StringView(isFound ? WarpLook::kSearchBox : WarpLook::kSearchBoxNothingFound);
    if (style != searchBox_->styleSheet())
        searchBox_->setStyleSheet(style);
}
