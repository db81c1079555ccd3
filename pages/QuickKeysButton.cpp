#include "pages/QuickKeysButton.h"

#include "app/shell/FocusRing.h"
#include "pages/PagesLook.h"

#include <QHelpEvent>
#include <QStyleOptionButton>
#include <QStylePainter>
#include <QToolTip>

#include <algorithm>
#include <cmath>

using namespace PagesLook;

namespace {

/// Whether the text is just a colour name. Checked because text from the network goes into a style
/// sheet.
bool isColor(const QString& text) {
    return QColor::isValidColorName(text) &&
           std::none_of(
               text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
}

/// Contrast ratio of white text on the background, 1 to 21.
double contrastOfWhite(const QColor& background) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    const double luminance = 0.2126 * linear(background.redF()) +
                             0.7152 * linear(background.greenF()) +
                             0.0722 * linear(background.blueF());
    return 1.05 / (luminance + 0.05);
}

} // namespace

QuickKeysButton::QuickKeysButton(const QSize& size, QWidget* parent) : QPushButton(parent) {
    setMaximumSize(size);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    QFont bold = font();
    bold.setPixelSize(kFontSize);
    bold.setWeight(QFont::Bold);
    setFont(bold);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus); // Space must not execute a key because it was touched before
}

void QuickKeysButton::setName(const QString& name) {
    setText(name);
    setShortcut(QKeySequence()); // setText() makes a shortcut of a letter after '&'
    setAccessibleName(name);
}

void QuickKeysButton::setBckgColor(QString color) {
    bckgColor_ = isColor(color) ? std::move(color) : QString::fromLatin1(kIdleColor);
    const QString style =
        QLatin1StringView(kQuickKeyStyleStart) + bckgColor_ + QLatin1StringView(kQuickKeyStyleEnd);
    if (style != styleSheet())
        setStyleSheet(style);
}

QSize QuickKeysButton::sizeHint() const {
    return maximumSize();
}

QSize QuickKeysButton::minimumSizeHint() const {
    return kSmallestQuickKey;
}

bool QuickKeysButton::hitButton(const QPoint& position) const {
    return isDown() || QPushButton::hitButton(position);
}

bool QuickKeysButton::event(QEvent* event) {
    // Each request for a repaint searches all keys of the page, so keys out of view drop theirs;
    // they are painted when they scroll into view.
    if (event->type() == QEvent::UpdateLater &&
        !window()->rect().intersects({mapTo(window(), QPoint()), size()}))
        return true;
    if (event->type() == QEvent::ToolTip) {
        if (name_.isElided()) {
            const QPoint position = static_cast<QHelpEvent*>(event)->globalPos();
            QToolTip::showText(position, Qt::convertFromPlainText(text()), this);
        }
        return true;
    }
    return QPushButton::event(event);
}

void QuickKeysButton::hideEvent(QHideEvent* event) {
    setDown(false);
    QPushButton::hideEvent(event);
}

void QuickKeysButton::paintEvent(QPaintEvent* event) {
    Q_UNUSED(event)
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.text.clear();
    painter.drawControl(QStyle::CE_PushButtonBevel, option); // without the style's focus frame
    painter.setRenderHint(QPainter::Antialiasing);
    if (isEnabled())
        drawOutline(painter);
    drawName(painter);
    if (hasFocus())
        drawFocusRing(painter, rect(), kQuickKeyRadius);
}

void QuickKeysButton::drawOutline(QPainter& painter) const {
    const QRectF line = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QColor(QLatin1StringView(kOutlineColor)));
    painter.drawRoundedRect(line, kQuickKeyRadius, kQuickKeyRadius);
}

void QuickKeysButton::drawName(QPainter& painter) {
    const QRect area =
        rect().adjusted(kQuickKeyPadding, kQuickKeyPadding, -kQuickKeyPadding, -kQuickKeyPadding);
    name_.set(text(), font(), kSmallestQuickKeyFontSize, area.size());
    if (contrastOfWhite(background()) < kReadableContrast) {
        painter.setPen(QColor(QLatin1StringView(kShadowColor)));
        for (const int x : {-1, 0, 1})
            for (const int y : {-1, 0, 1})
                name_.draw(painter, area.translated(x, y));
    }
    painter.setPen(QColor(QLatin1StringView(kTextColor)));
    name_.draw(painter, area);
}

QColor QuickKeysButton::background() const {
    return {isDown() ? QString::fromLatin1(kActiveColor) : bckgColor_};
}
