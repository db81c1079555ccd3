#include "tools/make_pictures/TestPatterns.h"

#include "tools/make_pictures/StrokeFont.h"

#include <QPainter>
#include <QPainterPath>
#include <QtMath>

#include <array>
#include <cmath>
#include <functional>

namespace {

constexpr int kWidth = 1760;
constexpr int kHeight = 1056;
const QRectF kArea(0, 0, kWidth, kHeight);
const QPointF kMiddle(kWidth / 2.0, kHeight / 2.0);
const QColor kAccent(0x00, 0x96, 0xff);

QImage paint(const std::function<void(QPainter&)>& draw) {
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    draw(painter);
    return image;
}

QColor grey(double percent) {
    const int level = qRound(percent * 255 / 100);
    return {level, level, level};
}

/// Red, green and blue in percent of the full level.
QColor levels(double red, double green, double blue) {
    return {qRound(red * 2.55), qRound(green * 2.55), qRound(blue * 2.55)};
}

/// A label that can be read on a patch of that level.
QColor readableOn(double percent) {
    return percent < 50 ? grey(percent + 40) : grey(percent - 50);
}

QPointF onCircle(QPointF centre, double radius, double turns) {
    const double angle = 2 * M_PI * (turns - 0.25); // clockwise, from the top
    return centre + QPointF(radius * std::cos(angle), radius * std::sin(angle));
}

// --- geometry ------------------------------------------------------------------------------------

void drawGeometry(QPainter& painter) {
    constexpr int kCell = 88; // 20 by 12 squares, so that lines cross in the centre
    const auto lines = [&painter](int step, const QColor& color, int width) {
        for (int x = step; x < kWidth; x += step)
            painter.fillRect(x - width / 2, 0, width, kHeight, color);
        for (int y = step; y < kHeight; y += step)
            painter.fillRect(0, y - width / 2, kWidth, width, color);
    };
    lines(kCell / 4, grey(22), 2);
    lines(kCell, grey(70), 4);

    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kAccent, 6));
    painter.drawLine(kArea.topLeft(), kArea.bottomRight());
    painter.drawLine(kArea.topRight(), kArea.bottomLeft());
    painter.setPen(QPen(Qt::white, 8));
    painter.drawEllipse(kMiddle, kHeight / 2.0 - 8, kHeight / 2.0 - 8);
    painter.drawEllipse(kMiddle, 2.0 * kCell, 2.0 * kCell);
    for (const double x : {2.0 * kCell, kWidth - 2.0 * kCell})
        for (const double y : {2.0 * kCell, kHeight - 2.0 * kCell})
            painter.drawEllipse(QPointF(x, y), 1.5 * kCell, 1.5 * kCell);
    painter.drawLine(QLineF(kMiddle.x(), 0, kMiddle.x(), kHeight));
    painter.drawLine(QLineF(0, kMiddle.y(), kWidth, kMiddle.y()));
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(Qt::white, 8, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(kArea.adjusted(4, 4, -4, -4)); // wholly inside, so that a crop is visible
}

void drawTiles(QPainter& painter) {
    constexpr int kTile = 176;
    for (int row = 0; row < kHeight / kTile; ++row) {
        for (int column = 0; column < kWidth / kTile; ++column) {
            const QRect tile(column * kTile, row * kTile, kTile, kTile);
            const bool dark = (row + column) % 2 == 0;
            painter.fillRect(tile, QColor::fromHsv(column * 36, dark ? 150 : 110, dark ? 84 : 176));
            painter.fillRect(tile.x(), tile.y(), kTile, 4, Qt::white);
            painter.fillRect(tile.x(), tile.y(), 4, kTile, Qt::white);
            const QString name = QChar('A' + row) + QString::number(column + 1);
            StrokeFont::draw(painter, QRectF(tile).center(), name, 56,
                             dark ? Qt::white : Qt::black);
        }
    }
    painter.fillRect(kWidth - 4, 0, 4, kHeight, Qt::white);
    painter.fillRect(0, kHeight - 4, kWidth, 4, Qt::white);
}

// --- levels --------------------------------------------------------------------------------------

/// Bands that lie next to each other across `area`: a smooth ramp, eleven steps of 10 % and eleven
/// steps of 1 % near black. `along` is the direction in which the level grows.
void drawLevels(QPainter& painter, Qt::Orientation along) {
    const bool horizontal = along == Qt::Horizontal;
    const int length = horizontal ? kWidth : kHeight;
    const int depth = horizontal ? kHeight : kWidth;
    const int band = depth / 3;
    const auto patch = [&](int start, int size, int from, int thickness) {
        return horizontal ? QRect(start, from, size, thickness)
                          : QRect(from, start, thickness, size);
    };
    for (int i = 0; i < length; ++i)
        painter.fillRect(patch(i, 1, 0, band), grey(100.0 * i / (length - 1)));
    constexpr int kSteps = 11;
    const int step = length / kSteps;
    for (int i = 0; i < kSteps; ++i) {
        for (const auto& [from, percent] : {std::pair(band, i * 10), std::pair(2 * band, i)}) {
            const QRect area = patch(i * step, step, from, depth - from);
            painter.fillRect(area, grey(percent));
            const QRectF labelled = patch(i * step, step, from, band);
            StrokeFont::draw(painter, labelled.center(), QString::number(percent), 48,
                             readableOn(percent));
        }
    }
}

/// Colour bars as SMPTE RP 219 lays them out (white in the one free field of the second band, black
/// in that of the third), in full-range levels, where what is below black is black. Drawn for an
/// area of 1 x 1.
void drawColorBars(QPainter& painter) {
    constexpr double kSide = 1.0 / 8;    // the grey fields left and right
    constexpr double kBar = 3.0 / 4 / 7; // the seven bars between them
    struct Field {
        double width;
        QColor color;
    };
    double y = 0;
    const auto band = [&painter, &y](double height, const QList<Field>& fields) {
        double x = 0;
        for (const Field& field : fields) {
            painter.fillRect(QRectF(x, y, field.width, height), field.color);
            x += field.width;
        }
        y += height;
    };
    const QColor black = grey(0);
    const QColor white = grey(100);
    band(7.0 / 12, {{kSide, grey(40)},
                    {kBar, grey(75)},
                    {kBar, levels(75, 75, 0)},
                    {kBar, levels(0, 75, 75)},
                    {kBar, levels(0, 75, 0)},
                    {kBar, levels(75, 0, 75)},
                    {kBar, levels(75, 0, 0)},
                    {kBar, levels(0, 0, 75)},
                    {kSide, grey(40)}});
    band(1.0 / 12, {{kSide, levels(0, 100, 100)},
                    {kBar, white},
                    {6 * kBar, grey(75)},
                    {kSide, levels(0, 0, 100)}});
    const double rampTop = y;
    band(1.0 / 12, {{kSide, levels(100, 100, 0)},
                    {kBar, black},
                    {5 * kBar, black},
                    {kBar, white},
                    {kSide, levels(100, 0, 0)}});
    constexpr int kLevels = 256;
    const double rampLeft = kSide + kBar;
    for (int i = 0; i < kLevels; ++i) {
        painter.fillRect(
            QRectF(rampLeft + 5 * kBar * i / kLevels, rampTop, 5 * kBar / kLevels, 1.0 / 12),
            QColor(i, i, i));
    }
    band(3.0 / 12, {{kSide, grey(15)},
                    {1.5 * kBar, black},
                    {2 * kBar, white},
                    {5 * kBar / 6, black},
                    {kBar / 3, black}, // 2 % below black
                    {kBar / 3, black},
                    {kBar / 3, grey(2)},
                    {kBar / 3, black},
                    {kBar / 3, grey(4)},
                    {kBar, black},
                    {kSide, grey(15)}});
}

// --- marks ---------------------------------------------------------------------------------------

void drawLogo(QPainter& painter) {
    painter.setRenderHint(QPainter::Antialiasing);
    // a vane of eight blades of light
    const QPointF hub(kMiddle.x(), 384);
    constexpr int kBlades = 8;
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < kBlades; ++i) {
        const double turns = static_cast<double>(i) / kBlades;
        QPainterPath blade(onCircle(hub, 100, turns - 0.03));
        blade.lineTo(onCircle(hub, i % 2 == 0 ? 280 : 224, turns + 0.045));
        blade.lineTo(onCircle(hub, 100, turns + 0.045));
        blade.closeSubpath();
        painter.setBrush(i % 2 == 0 ? QColor(Qt::white) : kAccent);
        painter.drawPath(blade);
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, 16));
    painter.drawEllipse(hub, 64, 64);
    StrokeFont::draw(painter, QPointF(kMiddle.x(), 836), "LUMIVANE", 128, Qt::white);
}

void drawArrow(QPainter& painter, QPointF from, QPointF to) {
    const QPointF along = (to - from) / std::hypot(to.x() - from.x(), to.y() - from.y());
    const QPointF across(-along.y(), along.x());
    constexpr double kHead = 44;
    painter.drawLine(from, to);
    painter.drawPolyline(
        QPolygonF{to - (along + across) * kHead, to, to - (along - across) * kHead});
}

void drawOnScreenDisplay(QPainter& painter) {
    const QColor background(0x10, 0x18, 0x20);
    painter.fillRect(kArea, background);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto frame = [&painter, background](double percent, const QColor& color,
                                              Qt::PenStyle style, double labelAt) {
        const double margin = (100 - percent) / 200;
        const QRectF area =
            kArea.adjusted(margin * kWidth, margin * kHeight, -margin * kWidth, -margin * kHeight);
        painter.setPen(QPen(color, 6, style, Qt::FlatCap, Qt::MiterJoin));
        painter.drawRect(area);
        const QPointF label(labelAt, area.bottom());
        painter.fillRect(QRectF(label - QPointF(76, 24), label + QPointF(76, 24)), background);
        StrokeFont::draw(painter, label, QString::number(percent) + '%', 36, color);
    };
    frame(90, grey(75), Qt::SolidLine, 1376);
    frame(80, grey(50), Qt::DashLine, 1168);

    painter.setPen(QPen(Qt::white, 16, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    constexpr double kCorner = 152;
    constexpr double kInset = 8;
    for (const bool left : {true, false}) {
        for (const bool top : {true, false}) {
            const double x = left ? kInset : kWidth - kInset;
            const double y = top ? kInset : kHeight - kInset;
            painter.drawPolyline(QPolygonF{QPointF(x + (left ? kCorner : -kCorner), y),
                                           QPointF(x, y),
                                           QPointF(x, y + (top ? kCorner : -kCorner))});
        }
    }
    painter.setPen(QPen(Qt::white, 12, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    drawArrow(painter, QPointF(kMiddle.x(), 300), QPointF(kMiddle.x(), 40));
    drawArrow(painter, QPointF(kMiddle.x(), 756), QPointF(kMiddle.x(), kHeight - 40));
    drawArrow(painter, QPointF(512, kMiddle.y()), QPointF(40, kMiddle.y()));
    drawArrow(painter, QPointF(1248, kMiddle.y()), QPointF(kWidth - 40, kMiddle.y()));
    const double beside = 232;
    StrokeFont::draw(painter, {kMiddle.x() + beside, 164}, "TOP", 64, Qt::white);
    StrokeFont::draw(painter, {kMiddle.x() - beside - 72, 892}, "BOTTOM", 64, Qt::white);
    StrokeFont::draw(painter, {336, kMiddle.y() - 96}, "LEFT", 64, Qt::white);
    StrokeFont::draw(painter, {1424, kMiddle.y() - 96}, "RIGHT", 64, Qt::white);

    const QRectF panel(kMiddle.x() - 336, kMiddle.y() - 196, 672, 392);
    painter.setPen(QPen(kAccent, 8));
    painter.setBrush(QColor(0x1e, 0x1e, 0x1e));
    painter.drawRoundedRect(panel, 24, 24);
    StrokeFont::draw(painter, kMiddle - QPointF(0, 40), "OSD", 176, Qt::white);
    StrokeFont::draw(painter, kMiddle + QPointF(0, 124), "ON-SCREEN DISPLAY", 36, grey(75));
}

// --- frame rates ---------------------------------------------------------------------------------

constexpr std::array kFrameRates{24, 25, 30, 50, 60};

/// A row of fields for each frame rate, one field a frame over one second; fields of the same time
/// are aligned.
void drawFrameRateLines(QPainter& painter) {
    constexpr int kTop = 176;
    constexpr int kLeft = 240;
    constexpr int kRow = (kHeight - kTop) / static_cast<int>(kFrameRates.size());
    StrokeFont::draw(painter, QPointF(kMiddle.x(), kTop / 2.0), "CPU FRAMES / S", 80, Qt::white);
    int y = kTop;
    for (const int rate : kFrameRates) {
        const double field = static_cast<double>(kWidth - kLeft) / rate;
        const int current = rate * 5 / 12;
        for (int frame = 0; frame < rate; ++frame) {
            const QColor plain = grey(frame % 2 == 0 ? 85 : 15);
            const QColor color = frame == current ? kAccent : plain;
            const double left = std::round(kLeft + frame * field);
            const double right = std::round(kLeft + (frame + 1) * field);
            painter.fillRect(QRectF(left, y, right - left, kRow - 24), color);
        }
        StrokeFont::draw(painter, QPointF(kLeft / 2.0, y + (kRow - 24) / 2.0),
                         QString::number(rate), 88, Qt::white);
        y += kRow;
    }
}

/// One second as a dial: sixty fields in the outer ring, the newest the brightest, fifty and
/// twenty-four in the inner rings.
void drawFrameRateDial(QPainter& painter) {
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF hub(1168, kMiddle.y());
    const auto ring = [&painter, hub](int rate, double outer, double inner) {
        const double now = 1.0 / 8;
        for (int frame = 0; frame < rate; ++frame) {
            const double start = now - static_cast<double>(frame + 1) / rate;
            const double sweep = 0.86 / rate;
            QPainterPath field;
            const QRectF outside(hub - QPointF(outer, outer), hub + QPointF(outer, outer));
            const QRectF inside(hub - QPointF(inner, inner), hub + QPointF(inner, inner));
            field.arcMoveTo(outside, 90 - start * 360);
            field.arcTo(outside, 90 - start * 360, -sweep * 360);
            field.arcTo(inside, 90 - (start + sweep) * 360, sweep * 360);
            field.closeSubpath();
            const double age = static_cast<double>(frame) / rate;
            painter.fillPath(field, frame == 0 ? kAccent : grey(90 - 78 * age));
        }
    };
    ring(60, 488, 344);
    ring(50, 320, 200);
    ring(24, 176, 72);
    painter.setPen(QPen(kAccent, 12, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(hub, onCircle(hub, 488, 1.0 / 8));
    painter.setBrush(Qt::white);
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(hub, 28, 28);

    StrokeFont::draw(painter, QPointF(320, 216), "GPU", 176, Qt::white);
    StrokeFont::draw(painter, QPointF(320, 392), "FRAMES / S", 56, grey(75));
    double y = 592;
    for (const int rate : {60, 50, 24}) {
        StrokeFont::draw(painter, QPointF(320, y), QString::number(rate), 96, Qt::white);
        y += 152;
    }
}

} // namespace

QList<TestPattern> drawTestPatterns() {
    const auto bars = [](Qt::Orientation along) {
        return paint([along](QPainter& painter) {
            if (along == Qt::Horizontal)
                painter.scale(kWidth, kHeight);
            else
                painter.setTransform(QTransform(0, kHeight, kWidth, 0, 0, 0)); // x and y swapped
            drawColorBars(painter);
        });
    };
    return {
        {"NoneBlack.png", paint([](QPainter&) {})},
        {"mire_small_pattern.png", paint(drawGeometry)},
        {"mire_horizontal_black_level.png",
         paint([](QPainter& painter) { drawLevels(painter, Qt::Horizontal); })},
        {"mire_vertical_black_level.png",
         paint([](QPainter& painter) { drawLevels(painter, Qt::Vertical); })},
        {"mire_tile.png", paint(drawTiles)},
        {"mire_lumivane_logo.png", paint(drawLogo)},
        {"mire_smpte_hor_color_bar.png", bars(Qt::Horizontal)},
        {"mire_smpte_ver_color_bar.png", bars(Qt::Vertical)},
        {"mire_osd.png", paint(drawOnScreenDisplay)},
        {"mire_framerate.png", paint(drawFrameRateLines)},
        {"mire_gpu_framerate.png", paint(drawFrameRateDial)},
        {"mire_white.png", paint([](QPainter& painter) { painter.fillRect(kArea, Qt::white); })},
    };
}
