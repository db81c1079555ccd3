#include "warp/WarpPage.h"

#include "warp/Canvas.h"
#include "warp/Item.h"
#include "warp/MediaList.h"
#include "warp/MediaListContainer.h"
#include "warp/WarpLook.h"

#include <QKeyEvent>
#include <QStyle>

WarpPage::WarpPage(const Configuration& configuration, QWidget* parent, const Timing& timing)
    : IPage(parent), configuration_(configuration), layout_(new QHBoxLayout(this)) {
    layout_->setContentsMargins(0, 0, 0, 0);
    initMediaList();
    initCanvas(timing);

    connect(mediaListContainer_, &MediaListContainer::emitKeyEvent, canvas_, &Canvas::onKeyEvent);
    connect(canvas_, &Canvas::keyEvent, mediaListContainer_, &MediaListContainer::onKeyEvent);
    connect(this, &WarpPage::leftAxisMoved, canvas_, &Canvas::onLeftAxisMoved);
    connect(this, &WarpPage::rightAxisMoved, canvas_, &Canvas::onRightAxisMoved);
    connect(this, &WarpPage::pressure, canvas_, &Canvas::onPressure);
    connect(this, &WarpPage::action, canvas_, &Canvas::onAction);
    connect(this, &WarpPage::action, this, [this](Action value) {
        if (!canvas_->isDialogOpen()) // a dialog is about the item that the list would leave
            mediaListContainer_->onAction(value);
    });
}

void WarpPage::initMediaList() {
    mediaListContainer_ = new MediaListContainer(configuration_, this);
    mediaListContainer_->setFixedWidth(WarpLook::kListWidth +
                                       style()->pixelMetric(QStyle::PM_ScrollBarExtent));
    layout_->addWidget(mediaListContainer_);
}

void WarpPage::initCanvas(const Timing& timing) {
    canvas_ = new Canvas(configuration_, this, timing);
    layout_->addWidget(canvas_);

    using List = MediaListContainer;
    const List* list = mediaListContainer_;
    connect(list, &List::selectedItem, canvas_, &Canvas::onSelectedItem);
    connect(list, &List::screenMode, canvas_, &Canvas::onScreenMode);
    connect(list, &List::mediaDeformationMode, canvas_, &Canvas::onMediaDeformationMode);
    connect(list, &List::screenDeformationMode, canvas_, &Canvas::onScreenDeformationMode);
    connect(list, &List::screenPartDeformationMode, canvas_, &Canvas::onScreenPartDeformationMode);
    connect(list, &List::textureDeformationMode, canvas_, &Canvas::onTextureDeformationMode);
    connect(list, &List::mediaItemAdded, canvas_, &Canvas::onMediaItemAdded);
    connect(list, &List::removeMediaItem, canvas_, &Canvas::onRemoveMediaItem);
    connect(list, &List::screenItemAdded, canvas_, &Canvas::onScreenItemAdded);
    connect(list, &List::removeScreenItem, canvas_, &Canvas::onRemoveScreenItem);
    connect(list, &List::screenPartItemAdded, canvas_, &Canvas::onScreenPartItemAdded);
    connect(list, &List::removeScreenPartItem, canvas_, &Canvas::onRemoveScreenPartItem);
    connect(list, &List::textureItemAdded, canvas_, &Canvas::onTextureItemAdded);
    connect(list, &List::removeTextureItem, canvas_, &Canvas::onRemoveTextureItem);
}

void WarpPage::lockPage() {
    mediaListContainer_->getMediaList()->unselectItem();
}

void WarpPage::purgeMedia() {
    mediaListContainer_->getMediaList()->purgeMedia();
}

void WarpPage::giveFocusToCanvas() {
    canvas_->setFocus(Qt::MouseFocusReason);
}
