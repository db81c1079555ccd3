#include "mesh/MeshAtlas.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <mutex>
#include <vector>

namespace {

constexpr double kMargin = 1;           // transparent pixels around each part
constexpr double kShareOfNumber = 0.9;  // of the circle's inside that a number may fill
constexpr double kLargestDigits = 0.55; // height of the digits against the circle
constexpr double kMarkSize = 1.7;       // diameter of the ring against the circle
constexpr double kMarkWidth = 0.15;     // of the ring
constexpr std::array kStates = {MeshPoint::State::Unselected, MeshPoint::State::Selected,
                                MeshPoint::State::Current};

/// The font in which a number of that many digits fits into a circle.
QFont fontFor(const MeshStyle& style, int digits) {
    const double inside = style.pointDiameter - 2 * style.pointBorderWidth;
    QFont font = style.font;
    font.setWeight(QFont::DemiBold);
    font.setHintingPreference(QFont::PreferNoHinting);
    double height = style.pointDiameter * kLargestDigits;
    font.setPixelSize(100); // measured at 100, because pixel sizes are whole numbers
    const double widest = QFontMetricsF(font).horizontalAdvance(QLatin1Char('0')) / 100;
    height = std::min(height, kShareOfNumber * inside / (widest * std::max(digits, 2)));
    font.setPixelSize(std::max(1, static_cast<int>(std::floor(height + 0.25))));
    return font;
}

} // namespace

MeshAtlas::MeshAtlas(const MeshStyle& style, double devicePixelRatio) {
    const double cell = std::ceil(style.pointDiameter) + 2 * kMargin;
    const double rowHeight = std::ceil(style.pointDiameter * kLargestDigits * 1.5) + 2 * kMargin;
    const double width = std::max(4 * cell, 10 * rowHeight);
    const double markCell = std::ceil(style.pointDiameter * kMarkSize) + 2 * kMargin;
    const double digitsEnd = cell + rowHeight * 3 * kDigitSizes;
    const double height = digitsEnd + markCell;
    image_ = QImage(static_cast<int>(std::ceil(width * devicePixelRatio)),
                    static_cast<int>(std::ceil(height * devicePixelRatio)),
                    QImage::Format_ARGB32_Premultiplied);
    image_.fill(Qt::transparent);

    const auto part = [&](const QRectF& place) {
        Part result;
        result.pixels = QRectF(place.topLeft() * devicePixelRatio, place.size() * devicePixelRatio);
        result.texture = QRectF(
            result.pixels.x() / image_.width(), result.pixels.y() / image_.height(),
            result.pixels.width() / image_.width(), result.pixels.height() / image_.height());
        result.size = place.size();
        return result;
    };

    QPainter painter(&image_);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(devicePixelRatio, devicePixelRatio);
    for (const MeshPoint::State state : kStates) {
        const MeshStyle::Colors& colors = style.states[index(state)];
        const QRectF place(static_cast<double>(index(state)) * cell, 0, cell, cell);
        const double inset = (cell - style.pointDiameter + style.pointBorderWidth) / 2;
        painter.setPen(QPen(colors.border, style.pointBorderWidth));
        painter.setBrush(colors.fill);
        painter.drawEllipse(place.adjusted(inset, inset, -inset, -inset));
        circles_[index(state)] = part(place);
    }

    const QRectF section(3 * cell + kMargin, kMargin, cell - 2 * kMargin, style.lineThickness + 2);
    painter.fillRect(section.adjusted(-1, 1, 1, -1), style.lineColor);
    lineColor_ = style.lineColor;
    line_ = part(section);
    line_.texture =
        QRectF(line_.texture.center().x(), line_.texture.y(), 0, line_.texture.height());

    markColor_ = style.markColor;
    const QRectF ring(0, digitsEnd, markCell, markCell);
    const double ringWidth = style.pointDiameter * kMarkWidth;
    const double ringInset = kMargin + ringWidth / 2;
    painter.setPen(QPen(markColor_, ringWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(ring.adjusted(ringInset, ringInset, -ringInset, -ringInset));
    mark_ = part(ring);
    const QRectF dot(markCell + kMargin, digitsEnd + kMargin, 3, 3);
    painter.fillRect(dot, markColor_);
    trail_ = part(dot);
    trail_.texture = QRectF(trail_.texture.center(), QSizeF(0, 0));

    double top = cell;
    for (int digits = 2; digits < 2 + kDigitSizes; ++digits) {
        painter.setFont(fontFor(style, digits));
        const QFontMetricsF metrics(painter.font());
        const double digitWidth = metrics.horizontalAdvance(QLatin1Char('0'));
        const double capHeight = metrics.capHeight();
        for (const MeshPoint::State state : kStates) {
            painter.setPen(style.states[index(state)].text);
            for (int value = 0; value < 10; ++value) {
                // One pixel around the digit, so that the part's centre is the digit's centre.
                const QRectF place(value * rowHeight + kMargin, top + kMargin, digitWidth,
                                   std::ceil(capHeight) + 2);
                painter.drawText(QPointF(place.x(), place.center().y() + capHeight / 2),
                                 QString::number(value));
                digits_[index(state)][static_cast<std::size_t>(digits - 2)]
                       [static_cast<std::size_t>(value)] = part(place);
            }
            top += rowHeight;
        }
    }
}

std::shared_ptr<const MeshAtlas> MeshAtlas::shared(const MeshStyle& style,
                                                   double devicePixelRatio) {
    struct Known {
        MeshStyle style;
        double devicePixelRatio;
        std::weak_ptr<const MeshAtlas> atlas;
    };
    static std::mutex mutex;
    static std::vector<Known> known;
    const std::scoped_lock lock(mutex);
    std::erase_if(known, [](const Known& each) { return each.atlas.expired(); });
    for (const Known& each : known) {
        if (each.style == style && each.devicePixelRatio == devicePixelRatio) {
            if (auto atlas = each.atlas.lock())
                return atlas;
        }
    }
    auto atlas = std::make_shared<const MeshAtlas>(style, devicePixelRatio);
    known.push_back({style, devicePixelRatio, atlas});
    return atlas;
}

const MeshAtlas::Part& MeshAtlas::digit(MeshPoint::State state, int digits, int value) const {
    const int size = std::clamp(digits - 2, 0, kDigitSizes - 1);
    return digits_[index(state)][static_cast<std::size_t>(size)][static_cast<std::size_t>(value)];
}
