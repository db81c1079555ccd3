#include "warp/Item.h"

#include "app/shell/Configuration.h"
#include "warp/OutOfView.h"
#include "warp/WarpLook.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QImageReader>
#include <QPainter>
#include <QPixmapCache>
#include <QStyleOption>

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
    label_->setFixedWidth(WarpLook::kRowLabelWidth);
    blindButton_ = new BlindButton(this);
    blindButton_->setFixedSize(WarpLook::kRowWidth - WarpLook::kRowLabelWidth -
                                   WarpLook::kRowLeftMargin,
                               WarpLook::kRowHeight);
    blindButton_->setToolTip(QLatin1StringView(WarpLook::kBlindToolTip));
    connect(blindButton_, &BlindButton::blindPressed, this, &Item::onBlindPressed);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(WarpLook::kRowLeftMargin, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(label_);
    layout->addWidget(blindButton_, 0, Qt::AlignRight);

    showLabelText();
    showBlindPicture();
    showActive();
    // Shown at once because the row may be painted before the next event-loop iteration.
    label_->show();
    blindButton_->show();
    layout->activate();
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
    label_->setName(labelText_);
    blindButton_->setAccessibleName(QLatin1StringView(WarpLook::kBlindName) + QLatin1Char(' ') +
                                    labelText_);
}

void Item::setBlinded(bool blinded) {
    blinded_ = blinded;
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

void Item::mousePressEvent(QMouseEvent* event) {
    Q_UNUSED(event)
    emit selected(this);
}

bool Item::event(QEvent* event) {
    if (event->type() == QEvent::ScreenChangeInternal)
        showBlindPicture(); // the new screen may have another resolution
    return isRepaintOutOfView(*this, *event) || QWidget::event(event);
}
