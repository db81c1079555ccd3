#include "warp/Item.h"

#include "app/shell/Configuration.h"
#include "app/shell/EventDispatcher.h"
#include "warp/OutOfView.h"
#include "warp/WarpLook.h"

#include <QEvent>
#include <QImageReader>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmapCache>
#include <QPointer>
#include <QStyleOption>
#include <QTimerEvent>
#include <QToolTip>

using namespace NetworkCompanion;

namespace {

/// The picture in the resolution of the screen; rendered once and shared by all rows.
QPixmap scaledPicture(const QString& path, qreal devicePixelRatio) {
    const QString key = QStringLiteral("%1@%2").arg(path).arg(devicePixelRatio);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        QImageReader reader(path);
        reader.setScaledSize((QSizeF(reader.size()) * devicePixelRatio).toSize());
        pixmap = QPixmap::fromImageReader(&reader);
        pixmap.setDevicePixelRatio(devicePixelRatio);
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

} // namespace

Item::Item(LV_NTC_ElementType elementType, int id, int dataIndex, int sourceWidth, int sourceHeight,
           const QString& name, const Configuration& configuration, QWidget* parent)
    : QWidget(parent), elementType_(elementType), dataIndex_(dataIndex), sourceWidth_(sourceWidth),
      sourceHeight_(sourceHeight), configuration_(&configuration) {
    setFixedWidth(WarpLook::kRowWidth);
    initDeformer(elementType, id, name);
    setLabelText(name);
    setCursor(Qt::PointingHandCursor);
}

void Item::initDeformer(LV_NTC_ElementType elementType, int id, const QString& name) {
    elementType_ = elementType;
    id_ = id;
    name_ = name;
    deformation_ = Deformation();
}

void Item::createWidgets() {
    if (label_ != nullptr)
        return;
    label_ = new NameLabel(this);
    QFont larger = label_->font();
    larger.setPixelSize(WarpLook::kNameFontSize);
    label_->setFont(larger);
    label_->setGeometry(WarpLook::kRowLeftMargin, 0, WarpLook::kRowLabelWidth,
                        WarpLook::kRowHeight);
    blindButton_ = new BlindButton(this); // above the end of the label
    blindButton_->setGeometry(WarpLook::kRowWidth - WarpLook::kEyeWidth, 0, WarpLook::kEyeWidth,
                              WarpLook::kRowHeight);
    connect(blindButton_, &BlindButton::blindPressed, this, &Item::onBlindPressed);

    showLabelText();
    showBlindPicture();
    blindButton_->setState(blindState_);
    showActive();
    // Shown at once because the row may be painted before the next event-loop iteration.
    label_->show();
    blindButton_->show();
}

void Item::setLabelText(const QString& text) {
    labelText_ = text;
    sortKey_ = text.toUtf8().toLower(); // lowers ASCII only
    setAccessibleName(text);
    showLabelText();
}

void Item::showLabelText() {
    if (label_ == nullptr)
        return;
    label_->setName(labelText_, common_);
    blindButton_->setAccessibleName(QLatin1StringView(WarpLook::kBlindName) + QLatin1Char(' ') +
                                    labelText_);
}

void Item::showDifference(qsizetype common) {
    common_ = common;
    if (label_ != nullptr)
        label_->setName(labelText_, common_);
}

void Item::showWholeName() const {
    QToolTip::showText(mapToGlobal(rect().topRight()), NameLabel::toolTipOf(labelText_), window());
}

void Item::sendBlind(Event& request) {
    const QPointer<Item> row = this; // a connection lost while sending may remove it
    requestedBlind_ = !blinded_;
    const bool isSent = EventDispatcher::getInstance()->client().sendEvent(request);
    if (row != nullptr)
        setBlindState(isSent ? BlindButton::State::Waiting : BlindButton::State::Refused);
}

void Item::setBlindState(BlindButton::State state) {
    blindState_ = state;
    if (state == BlindButton::State::Reported)
        blindTimer_.stop();
    else
        blindTimer_.start(state == BlindButton::State::Waiting ? WarpLook::kConfirmMs
                                                               : WarpLook::kRefusedMs,
                          this);
    if (blindButton_ != nullptr)
        blindButton_->setState(state);
}

void Item::timerEvent(QTimerEvent* event) {
    if (event->timerId() == blindTimer_.timerId())
        setBlindState(blindState_ == BlindButton::State::Waiting ? BlindButton::State::Refused
                                                                 : BlindButton::State::Reported);
}

void Item::setBlinded(bool blinded) {
    blinded_ = blinded;
    if (blindState_ != BlindButton::State::Reported && blinded == requestedBlind_)
        setBlindState(BlindButton::State::Reported);
    showBlindPicture();
}

void Item::showBlindPicture() {
    if (blindButton_ == nullptr)
        return;
    const QString path = configuration_->visibilityImagesPath.value(blinded_ ? 0 : 1);
    blindButton_->setPixmap(scaledPicture(path, devicePixelRatioF()));
}

void Item::setActive(bool active) {
    active_ = active;
    showActive();
}

void Item::showActive() {
    if (label_ == nullptr)
        return;
    const QString color =
        active_ ? QString(QLatin1StringView(WarpLook::kActiveLabelColor)) : labelColor_.name();
    label_->setStyleSheet(QStringLiteral("color: ") + color + QLatin1Char(';'));
    setStyleSheet(
        QLatin1StringView(active_ ? WarpLook::kActiveRowBackground : WarpLook::kRowBackground));
}

void Item::onBlindPressed() {
    onBlind();
}

void Item::paintEvent(QPaintEvent* event) {
    Q_UNUSED(event)
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
}

void Item::hideEvent(QHideEvent* event) {
    // The layout positions only visible rows, so one that is shown again must not stand between
    // them until then.
    if (isHidden())
        move(0, -height());
    QWidget::hideEvent(event);
}

void Item::mousePressEvent(QMouseEvent* event) {
    event->accept();
    if (event->source() == Qt::MouseEventSynthesizedBySystem)
        return; // the list handles the touch itself
    emit selected(this);
}

bool Item::event(QEvent* event) {
    if (event->type() == QEvent::ScreenChangeInternal)
        showBlindPicture(); // the new screen may have another resolution
    return isRepaintOutOfView(*this, *event) || QWidget::event(event);
}
