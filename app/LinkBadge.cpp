#include "app/LinkBadge.h"

#include "app/shell/Configuration.h"

#include <QPainter>
#include <QPainterPath>

namespace {

/// A disc, a triangle with an exclamation mark or a cross, 2 units wide around the origin.
QPainterPath shapeOf(Link::State state) {
    QPainterPath shape;
    switch (state) {
    case Link::State::Connected:
        shape.addEllipse(QPointF(), 1, 1);
        break;
    case Link::State::NotAnswering:
        shape.addPolygon(QPolygonF({{0, -1}, {1.15, 0.95}, {-1.15, 0.95}}));
        shape.closeSubpath();
        shape.addRect(-0.13, -0.35, 0.26, 0.7); // left out by the odd-even rule
        shape.addRect(-0.13, 0.5, 0.26, 0.26);
        break;
    case Link::State::Trying:
        for (const int direction : {-1, 1}) {
            QPolygonF bar({{-1, -0.22}, {1, -0.22}, {1, 0.22}, {-1, 0.22}});
            QPainterPath part;
            part.addPolygon(QTransform().rotate(45 * direction).map(bar));
            part.closeSubpath();
            shape = shape.united(part);
        }
        break;
    }
    return shape;
}

} // namespace

LinkBadge::LinkBadge(const Configuration& configuration, QWidget* parent)
    : QWidget(parent), configuration_(configuration) {
    setFixedSize(configuration_.linkBadgeSize);
    setLink(link_);
}

void LinkBadge::setLink(const Link& link) {
    link_ = link;
    const QString words = withTime(look().toolTip.arg(link_.address));
    setToolTip(words);
    setAccessibleName(words);
    update();
}

const LinkLook& LinkBadge::look() const {
    switch (link_.state) {
    case Link::State::Connected:
        return link_.echoMs ? configuration_.linkEchoes : configuration_.linkConnected;
    case Link::State::NotAnswering:
        return configuration_.linkNotAnswering;
    case Link::State::Trying:
        break;
    }
    return configuration_.linkTrying;
}

QString LinkBadge::withTime(const QString& text) const {
    return link_.state == Link::State::Connected && link_.echoMs ? text.arg(*link_.echoMs) : text;
}

void LinkBadge::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(look().color, configuration_.linkBorderWidth));
    painter.setBrush(configuration_.linkBackground);
    const qreal inset = configuration_.linkBorderWidth / 2.0;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                            configuration_.linkRadius, configuration_.linkRadius);

    painter.save();
    painter.translate(height() / 2.0, height() / 2.0);
    painter.scale(configuration_.linkShapeRadius, configuration_.linkShapeRadius);
    painter.fillPath(shapeOf(link_.state), look().color);
    painter.restore();

    const QRect words = rect().adjusted(height(), configuration_.linkPadding,
                                        -configuration_.linkPadding, -configuration_.linkPadding);
    const auto draw = [&](const QString& text, int pixels, bool bold, Qt::Alignment alignment) {
        QFont font = painter.font();
        font.setPixelSize(pixels);
        font.setBold(bold);
        painter.setFont(font);
        painter.drawText(words, alignment | Qt::AlignLeft,
                         painter.fontMetrics().elidedText(text, Qt::ElideMiddle, words.width()));
    };
    painter.setPen(configuration_.linkTextColor);
    draw(link_.address, configuration_.linkAddressPixels, true, Qt::AlignTop);
    draw(withTime(look().text), configuration_.linkStatePixels, false, Qt::AlignBottom);
}
