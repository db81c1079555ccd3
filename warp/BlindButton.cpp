#include "warp/BlindButton.h"

#include "warp/OutOfView.h"
#include "warp/WarpLook.h"

#include <QMouseEvent>
#include <QPainter>

using namespace WarpLook;

namespace {

QColor color(const char* name) {
    return {QLatin1StringView(name)};
}

QLatin1StringView textOf(BlindButton::State state) {
    switch (state) {
    case BlindButton::State::Waiting:
        return QLatin1StringView(kBlindWaiting);
    case BlindButton::State::Refused:
        return QLatin1StringView(kBlindRefused);
    case BlindButton::State::Reported:
        break;
    }
    return QLatin1StringView(kBlindToolTip);
}

/// Three dots: the answer is on its way.
void drawWaiting(QPainter& painter, const QRectF& picture) {
    painter.setBrush(color(kEyeDotColor));
    for (const int column : {-1, 0, 1}) {
        const QPointF center = picture.center() + QPointF(column * 1.7 * kEyeDotSize, 0);
        painter.drawEllipse(center, kEyeDotSize / 2, kEyeDotSize / 2);
    }
}

/// An exclamation mark in the upper right corner, so that the picture stays visible.
void drawRefused(QPainter& painter, const QRectF& target) {
    const QRectF sign(target.right() - kEyeSignSize, target.top() + 1, kEyeSignSize, kEyeSignSize);
    painter.setBrush(color(kEyeSignColor));
    painter.drawEllipse(sign);
    QFont font = painter.font();
    font.setBold(true);
    font.setPixelSize(qRound(kEyeSignSize * 0.8));
    painter.setFont(font);
    painter.setPen(color(kEyeSignTextColor));
    painter.drawText(sign, Qt::AlignCenter, QStringLiteral("!"));
}

} // namespace

BlindButton::BlindButton(QWidget* parent) : QLabel(parent) {
    setStyleSheet(QLatin1StringView(kEye));
    setState(State::Reported);
}

void BlindButton::setState(State state) {
    state_ = state;
    const QLatin1StringView text = textOf(state);
    setToolTip(text);
    setAccessibleDescription(text);
    update();
}

void BlindButton::setDown(bool isDown) {
    isDown_ = isDown;
    update();
}

void BlindButton::mousePressEvent(QMouseEvent* event) {
    event->accept();
    if (event->source() == Qt::MouseEventSynthesizedBySystem)
        return; // the list handles the touch itself
    setDown(true);
    emit blindPressed();
}

void BlindButton::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    setDown(false);
}

void BlindButton::hideEvent(QHideEvent* event) {
    setDown(false); // no release follows
    QLabel::hideEvent(event);
}

void BlindButton::paintEvent(QPaintEvent* event) {
    Q_UNUSED(event)
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (isDown_) {
        painter.setBrush(color(kEyeDownColor));
        painter.drawRoundedRect(rect().adjusted(1, 3, -1, -3), kEyeRadius, kEyeRadius);
    }
    // The picture stands right of the name although the target covers the end of it.
    QRectF picture(QPointF(), pixmap().deviceIndependentSize());
    const int left = kRowLeftMargin + kRowLabelWidth - (kRowWidth - kEyeWidth);
    picture.moveCenter(QRectF(rect()).adjusted(left, 0, 0, 0).center());
    painter.setOpacity(state_ == State::Waiting ? kEyeWaitingOpacity : 1);
    painter.drawPixmap(picture.topLeft(), pixmap());
    painter.setOpacity(1);
    if (state_ == State::Waiting)
        drawWaiting(painter, picture);
    else if (state_ == State::Refused)
        drawRefused(painter, rect());
}

bool BlindButton::event(QEvent* event) {
    return isRepaintOutOfView(*this, *event) || QLabel::event(event);
}
