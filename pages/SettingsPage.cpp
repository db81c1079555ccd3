#include "pages/SettingsPage.h"

#include "app/shell/Configuration.h"
#include "app/shell/EventDispatcher.h"
#include "network/events/UpdateSettingsEvent.h"
#include "pages/PagesLook.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QFontInfo>

using namespace NetworkCompanion;
using namespace PagesLook;

namespace {

/// Code of the shape "None"; the others follow it.
constexpr int kNoShape = 0;

/// A label's text as an accessible name.
QString withoutColon(const QString& label) {
    return label.endsWith(QLatin1Char(':')) ? label.chopped(1) : label;
}

} // namespace

SettingsPage::SettingsPage(const Configuration& configuration, QWidget* parent)
    : ControlPage(parent), configuration_(configuration), layout_(new QVBoxLayout(this)),
      points_(new QWidget(this)), pointsLayout_(new QGridLayout(points_)),
      usePoints_(new QCheckBox(configuration.usePointsText, points_)),
      colorLabel_(new QLabel(configuration.pointsColorText, points_)),
      color_(new QComboBox(points_)),
      shapeLabel_(new QLabel(configuration.pointsShapeText, points_)),
      shape_(new QComboBox(points_)) {
    layout_->setAlignment(Qt::AlignTop);
    layout_->setContentsMargins(kSettingsMargin, kSettingsMargin, kSettingsMargin, kSettingsMargin);
    initPointsElements();
}

void SettingsPage::initPointsElements() {
    points_->setMaximumSize(kSettingsLargest);
    pointsLayout_->setContentsMargins({});
    pointsLayout_->setHorizontalSpacing(kSettingsHorizontalSpacing);
    pointsLayout_->setVerticalSpacing(kSettingsVerticalSpacing);
    layout_->addWidget(points_, 0, Qt::AlignHCenter);

    QFont larger = font();
    larger.setPointSizeF(QFontInfo(larger).pointSizeF() * kSettingsFontScale);
    for (QWidget* text : {static_cast<QWidget*>(colorLabel_), static_cast<QWidget*>(color_),
                          static_cast<QWidget*>(color_->view()), static_cast<QWidget*>(shapeLabel_),
                          static_cast<QWidget*>(shape_), static_cast<QWidget*>(shape_->view())})
        text->setFont(larger);
    QFont bold = larger;
    bold.setWeight(QFont::Bold);
    usePoints_->setFont(bold);
    usePoints_->setLayoutDirection(Qt::RightToLeft);
    pointsLayout_->addWidget(usePoints_, 0, 0, 1, 2, Qt::AlignCenter);

    color_->addItems(configuration_.pointColors.keys());
    pointsLayout_->addWidget(colorLabel_, 1, 0);
    pointsLayout_->addWidget(color_, 1, 1);
    color_->setAccessibleName(withoutColon(configuration_.pointsColorText));

    shape_->addItems(configuration_.pointShapes.mid(kNoShape + 1));
    pointsLayout_->addWidget(shapeLabel_, 2, 0);
    pointsLayout_->addWidget(shape_, 2, 1);
    shape_->setAccessibleName(withoutColon(configuration_.pointsShapeText));

    for (QWidget* control : {static_cast<QWidget*>(colorLabel_), static_cast<QWidget*>(color_),
                             static_cast<QWidget*>(shapeLabel_), static_cast<QWidget*>(shape_)})
        control->hide();

    for (QComboBox* box : {color_, shape_}) {
        box->setFocusPolicy(Qt::StrongFocus);
        box->installEventFilter(this);
    }

    // Connected last, so that filling the boxes sends nothing.
    connect(usePoints_, &QCheckBox::stateChanged, this,
            &SettingsPage::onUsePointsCheckBoxStateChanged);
    connect(color_, &QComboBox::currentIndexChanged, this, &SettingsPage::onPointsColorChanged);
    connect(shape_, &QComboBox::currentIndexChanged, this, &SettingsPage::onPointsShapeChanged);
}

bool SettingsPage::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Show)
        fitPointsToContents();
    return ControlPage::event(event);
}

bool SettingsPage::eventFilter(QObject* watched, QEvent* event) {
    // A wheel that turns over a box by chance must not change what the outputs show.
    if (event->type() == QEvent::Wheel && !static_cast<const QWidget*>(watched)->hasFocus()) {
        event->ignore();
        return true;
    }
    return ControlPage::eventFilter(watched, event);
}

void SettingsPage::fitPointsToContents() {
    points_->setMaximumSize(kSettingsLargest.expandedTo(pointsLayout_->sizeHint()));
}

void SettingsPage::sendNewSettings() const {
    QByteArray color;
    int shape = kNoShape;
    if (usePoints_->isChecked()) {
        color = configuration_.pointColors.value(color_->currentText()).name().toLatin1();
        shape = shape_->currentIndex() + kNoShape + 1;
    }
    UpdateSettingsEvent event(color.constData(), shape);
    EventDispatcher::getInstance()->client().sendEvent(event);
}

void SettingsPage::onUsePointsCheckBoxStateChanged(int state) {
    const bool visible = state != Qt::Unchecked;
    colorLabel_->setVisible(visible);
    color_->setVisible(visible);
    shapeLabel_->setVisible(visible);
    shape_->setVisible(visible);
    sendNewSettings();
}
