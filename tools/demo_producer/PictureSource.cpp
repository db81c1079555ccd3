#include "tools/demo_producer/PictureSource.h"

#include "tools/demo_producer/ShowNames.h"

#include <QPainter>
#include <QPainterPath>
#include <QRandomGenerator>

#include <cmath>
#include <numbers>
#include <ranges>

using namespace NetworkCompanion;

namespace {

constexpr int kLongSide = 480;
constexpr double kTurn = 2.0 * std::numbers::pi;

using Draw = void (*)(QPainter&, QSizeF, double);

QFont fontOf(double pixels, QFont::Weight weight = QFont::Bold) {
    QFont font;
    font.setPixelSize(std::max(1, int(pixels)));
    font.setWeight(weight);
    return font;
}

QBrush shade(const QPointF& from, const QPointF& to, const QColor& first, const QColor& second) {
    QLinearGradient gradient(from, to);
    gradient.setColorAt(0, first);
    gradient.setColorAt(1, second);
    return gradient;
}

void drawNight(QPainter& painter, QSizeF size, double) {
    painter.fillRect(QRectF({}, size), shade({0, 0}, {0, size.height()}, 0x071a3d, 0x1c6f93));
}

void drawWaves(QPainter& painter, QSizeF size, double seconds) {
    const double w = size.width();
    const double h = size.height();
    painter.setPen(Qt::NoPen);
    const QPointF moon(w * (0.72 + 0.03 * std::sin(seconds * 0.3)), h * 0.24);
    for (int ring = 5; ring >= 0; --ring) {
        painter.setBrush(QColor(255, 244, 214, ring == 0 ? 255 : 18));
        painter.drawEllipse(moon, h * (0.085 + ring * 0.03), h * (0.085 + ring * 0.03));
    }
    constexpr int kLayers = 5;
    for (int layer = 0; layer < kLayers; ++layer) {
        const double depth = double(layer) / (kLayers - 1);
        QPainterPath sea(QPointF(0, h));
        for (int i = 0; i <= 48; ++i) {
            const double x = i / 48.0;
            const double phase = kTurn * (x * (1.5 + layer) + seconds * (0.08 + 0.05 * layer));
            const double crest = std::sin(phase) + 0.4 * std::sin(2.3 * phase + layer);
            sea.lineTo(x * w, h * (0.46 + 0.11 * layer - (0.015 + 0.012 * depth) * crest));
        }
        sea.lineTo(w, h);
        painter.setBrush(
            QColor::fromHsvF(float(0.53 + 0.05 * depth), 0.75f, float(0.75 - 0.5 * depth), 0.75f));
        painter.drawPath(sea);
    }
}

void drawSkyline(QPainter& painter, QSizeF size, double) {
    const double w = size.width();
    const double h = size.height();
    QLinearGradient sky(0, 0, 0, h);
    sky.setColorAt(0, 0x1b1238);
    sky.setColorAt(0.55, 0x9b3a63);
    sky.setColorAt(0.8, 0xf08a4b);
    painter.fillRect(QRectF({}, size), sky);
    QRandomGenerator random(11);
    for (int layer = 0; layer < 3; ++layer) {
        const QColor wall = QColor::fromHsv(255 - 12 * layer, 120, 90 - 28 * layer);
        double x = -random.bounded(w * 0.05);
        while (x < w) {
            const double width = w * (0.05 + random.bounded(0.06));
            const double height = h * (0.16 + random.bounded(0.34)) * (1.15 - 0.27 * layer);
            const QRectF house(x, h - height, width, height);
            painter.fillRect(house, wall);
            const double step = w * 0.016;
            const int floors = int(height / (step * 1.3));
            const int windows = int(width / step - 0.7);
            for (int i = 0; i < floors * windows; ++i) {
                const int floor = i / windows;
                const QPointF at((i % windows + 0.7) * step, (floor * 1.3 + 1) * step);
                if (random.bounded(100) < 28)
                    painter.fillRect(QRectF(house.topLeft() + at, QSizeF(step * 0.5, step * 0.6)),
                                     QColor(255, 214, 130, 110 + random.bounded(140)));
            }
            x += width + w * 0.004;
        }
    }
}

void drawQuay(QPainter& painter, QSizeF size, double) {
    const double w = size.width();
    const double h = size.height();
    painter.fillRect(QRectF({}, size), shade({0, 0}, {w * 0.2, h}, 0x39434a, 0x12171a));
    painter.setPen(QPen(QColor(150, 165, 172), h * 0.02));
    painter.drawLine(QPointF(0, h * 0.16), QPointF(w, h * 0.16));
    painter.fillRect(QRectF(0, h * 0.86, w, h * 0.14), QColor(0x0b0e10));
    painter.setPen(QPen(QColor(255, 255, 255, 150), h * 0.006));
    for (const double x : {0.08, 0.92}) {
        for (const double y : {0.08, 0.92}) {
            const double inX = x < 0.5 ? 0.06 : -0.06;
            const double inY = y < 0.5 ? 0.1 : -0.1;
            painter.drawLine(QPointF(w * x, h * y), QPointF(w * (x + inX), h * y));
            painter.drawLine(QPointF(w * x, h * y), QPointF(w * x, h * (y + inY)));
        }
    }
}

void drawCamera(QPainter& painter, QSizeF size, double seconds) {
    const double w = size.width();
    const double h = size.height();
    const double trolley = w * (0.5 + 0.33 * std::sin(seconds * 0.5));
    const double hook = h * (0.52 + 0.12 * std::sin(seconds * 0.9));
    painter.setPen(QPen(QColor(190, 200, 205), h * 0.008));
    painter.drawLine(QPointF(trolley, h * 0.16), QPointF(trolley, hook));
    painter.setPen(Qt::NoPen);
    painter.fillRect(QRectF(trolley - w * 0.05, h * 0.13, w * 0.1, h * 0.06), QColor(0xd9a441));
    const QRectF box(trolley - w * 0.12, hook, w * 0.24, h * 0.2);
    painter.fillRect(box, QColor(0xb5482f));
    painter.setPen(QPen(QColor(0x7d2f1d), h * 0.008));
    for (int i = 1; i < 8; ++i)
        painter.drawLine(box.topLeft() + QPointF(box.width() * i / 8, 0),
                         box.bottomLeft() + QPointF(box.width() * i / 8, 0));
    painter.setPen(Qt::white);
    painter.setFont(fontOf(h * 0.075));
    const int frame = int(seconds * 25) % 25;
    const int second = int(seconds) % 60;
    const int minute = 14 + int(seconds) / 60;
    painter.drawText(QRectF(w * 0.12, h * 0.87, w * 0.8, h * 0.11), Qt::AlignVCenter,
                     QStringLiteral("CAM 2   20:%1:%2:%3")
                         .arg(minute % 60, 2, 10, QChar(u'0'))
                         .arg(second, 2, 10, QChar(u'0'))
                         .arg(frame, 2, 10, QChar(u'0')));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 59, 48, int(seconds * 2) % 2 ? 90 : 255));
    painter.drawEllipse(QPointF(w * 0.87, h * 0.925), h * 0.03, h * 0.03);
}

void drawScope(QPainter& painter, QSizeF size, double) {
    const double w = size.width();
    const double h = size.height();
    const double radius = 0.46 * std::min(w, h);
    painter.fillRect(QRectF({}, size), QColor(0x041512));
    painter.setPen(QPen(QColor(60, 200, 150, 90), radius * 0.012));
    for (int i = 0; i <= 8; ++i) {
        painter.drawLine(QPointF(w * i / 8, 0), QPointF(w * i / 8, h));
        painter.drawLine(QPointF(0, h * i / 8), QPointF(w, h * i / 8));
    }
    painter.setPen(QPen(QColor(120, 255, 200, 220), radius * 0.02));
    for (int ring = 1; ring <= 4; ++ring)
        painter.drawEllipse(QPointF(w / 2, h / 2), radius * ring / 4, radius * ring / 4);
}

void drawRadar(QPainter& painter, QSizeF size, double seconds) {
    const double w = size.width();
    const double h = size.height();
    const double radius = 0.46 * std::min(w, h);
    const QPointF centre(w / 2, h / 2);
    painter.setPen(Qt::NoPen);
    constexpr int kSlices = 12; // of the fading beam
    for (int slice = 0; slice < kSlices; ++slice) {
        painter.setBrush(QColor(80, 255, 190, 190 - 190 * slice / kSlices));
        painter.drawPie(QRectF(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius),
                        int((-seconds * 40 + slice * 8) * 16), 8 * 16);
    }
    painter.setBrush(QColor(220, 255, 235, 230));
    for (int echo = 0; echo < 7; ++echo) {
        const double angle = echo * 2.1 + seconds * 0.03;
        const double distance = radius * (0.3 + 0.09 * echo);
        painter.drawEllipse(centre + distance * QPointF(std::cos(angle), std::sin(angle)),
                            radius * 0.03, radius * 0.03);
    }
}

void drawPolarNight(QPainter& painter, QSizeF size, double) {
    painter.fillRect(QRectF({}, size), shade({0, 0}, {0, size.height()}, 0x03081c, 0x0b2a3a));
}

void drawAurora(QPainter& painter, QSizeF size, double seconds) {
    const double w = size.width();
    const double h = size.height();
    painter.setPen(Qt::NoPen);
    for (int band = 0; band < 4; ++band) {
        QPainterPath curtain;
        std::vector<QPointF> lower;
        for (int i = 0; i <= 40; ++i) {
            const double x = i / 40.0;
            const double phase = kTurn * (x * (0.8 + 0.3 * band) + seconds * 0.05 + band * 0.27);
            const double y = 0.5 + 0.1 * band - 0.14 * std::sin(phase) - 0.05 * std::sin(3 * phase);
            const QPointF top(x * w, (y - 0.42) * h);
            if (i == 0)
                curtain.moveTo(top);
            else
                curtain.lineTo(top);
            lower.emplace_back(x * w, y * h);
        }
        for (const QPointF& point : std::views::reverse(lower))
            curtain.lineTo(point);
        const QColor colour = QColor::fromHsvF(float(0.34 + 0.14 * band), 0.7f, 1.0f);
        QLinearGradient fade(0, h * 0.0, 0, h * (0.65 + 0.08 * band));
        fade.setColorAt(0, QColor(colour.red(), colour.green(), colour.blue(), 0));
        fade.setColorAt(1, QColor(colour.red(), colour.green(), colour.blue(), 150));
        painter.setBrush(fade);
        painter.drawPath(curtain);
    }
}

void drawBricks(QPainter& painter, QSizeF size, double) {
    const double w = size.width();
    const double h = size.height();
    constexpr int kRows = 12;
    constexpr int kColumns = 6;
    painter.fillRect(QRectF({}, size), QColor(0x3a322e));
    QRandomGenerator random(5);
    painter.setPen(Qt::NoPen);
    for (int row = 0; row < kRows; ++row) {
        for (int column = -1; column < kColumns; ++column) {
            const double x = (column + (row % 2 ? 0.5 : 0.0)) * w / kColumns;
            const QRectF brick(x, row * h / kRows, w / kColumns, h / kRows);
            painter.setBrush(QColor::fromHsv(12 + random.bounded(10), 120 + random.bounded(50),
                                             105 + random.bounded(60)));
            const double gap = h / kRows * 0.09;
            painter.drawRoundedRect(brick.adjusted(gap, gap, -gap, -gap), gap, gap);
        }
    }
}

void drawEmblem(QPainter& painter, QSizeF size, double) {
    const double w = size.width();
    const double h = size.height();
    const double unit = std::min(w, h);
    painter.setPen(QPen(QColor(0xf2c14e), unit * 0.025));
    painter.setBrush(QColor(9, 28, 48, 225));
    painter.drawRoundedRect(QRectF(unit * 0.04, unit * 0.04, w - unit * 0.08, h - unit * 0.08),
                            unit * 0.16, unit * 0.16);
    painter.translate(w / 2, h / 2);
    painter.scale(unit, unit);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0xf6e7c1), 0.055, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawEllipse(QPointF(0, -0.27), 0.07, 0.07);
    painter.drawLine(QPointF(0, -0.2), QPointF(0, 0.33));
    painter.drawLine(QPointF(-0.16, -0.09), QPointF(0.16, -0.09));
    QPainterPath flukes(QPointF(-0.29, 0.06));
    flukes.quadTo({-0.25, 0.33}, {0, 0.33});
    flukes.quadTo({0.25, 0.33}, {0.29, 0.06});
    painter.drawPath(flukes);
    for (const double side : {-1.0, 1.0}) {
        painter.drawLine(QPointF(side * 0.29, 0.06), QPointF(side * 0.21, 0.13));
        painter.drawLine(QPointF(side * 0.29, 0.06), QPointF(side * 0.34, 0.15));
    }
}

struct Generated {
    const char* name;
    Draw still;  ///< drawn once
    Draw moving; ///< drawn over it for every frame; null if nothing moves
};

constexpr std::array<Generated, 7> kPictures{{{"waves", drawNight, drawWaves},
                                              {"skyline", drawSkyline, nullptr},
                                              {"camera", drawQuay, drawCamera},
                                              {"radar", drawScope, drawRadar},
                                              {"aurora", drawPolarNight, drawAurora},
                                              {"bricks", drawBricks, nullptr},
                                              {"emblem", drawEmblem, nullptr}}};

const Generated& generatedFor(const ShowItem& item) {
    for (const Generated& picture : kPictures)
        if (item.picture == QLatin1String(picture.name))
            return picture;
    return kPictures[item.key.id % kPictures.size()];
}

constexpr std::array<const char*, 12> kPatternFiles{
    "NoneBlack", "mire_small_pattern", "mire_horizontal_black_level", "mire_vertical_black_level",
    "mire_tile", "mire_lumivane_logo", "mire_smpte_hor_color_bar",    "mire_smpte_ver_color_bar",
    "mire_osd",  "mire_framerate",     "mire_gpu_framerate",          "mire_white"};

/// Replaces a missing picture of a pattern.
void drawPlainPattern(QPainter& painter, QSizeF size, LV_NTC_PictureType pattern) {
    const double w = size.width();
    const double h = size.height();
    painter.fillRect(QRectF({}, size),
                     pattern == LV_NTC_PictureType::White ? Qt::white : QColor(0x202020));
    if (pattern == LV_NTC_PictureType::White)
        return;
    painter.setPen(QPen(Qt::white, h * 0.006));
    for (int i = 0; i <= 8; ++i) {
        painter.drawLine(QPointF(w * i / 8, 0), QPointF(w * i / 8, h));
        painter.drawLine(QPointF(0, h * i / 8), QPointF(w, h * i / 8));
    }
    painter.drawLine(QPointF(0, 0), QPointF(w, h));
    painter.drawLine(QPointF(w, 0), QPointF(0, h));
    painter.drawEllipse(QPointF(w / 2, h / 2), h * 0.45, h * 0.45);
    painter.setFont(fontOf(h * 0.12));
    painter.fillRect(QRectF(w * 0.2, h * 0.42, w * 0.6, h * 0.16), Qt::black);
    painter.drawText(QRectF({}, size), Qt::AlignCenter, nameOf(pattern));
}

/// Draws a bar that crosses the picture every two seconds; dropped frames make it jump.
void drawSweep(QPainter& painter, QSizeF size, double seconds, const QColor& color) {
    const double at = std::fmod(seconds, 2.0) / 2.0 * size.width();
    painter.fillRect(QRectF(at - 0.01 * size.width(), 0, 0.02 * size.width(), size.height()),
                     color);
}

QImage blank(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

} // namespace

QImage& PictureSource::still(const QString& name) {
    constexpr qsizetype kMostStills = 48;
    if (stills_.size() >= kMostStills && !stills_.contains(name))
        stills_.clear();
    return stills_[name];
}

QImage PictureSource::picture(const ShowItem& item, double seconds) {
    const Generated& generated = generatedFor(item);
    const QSize size =
        item.size.scaled(kLongSide, kLongSide, Qt::KeepAspectRatio).expandedTo(QSize(8, 8));
    const QString key = QStringLiteral("%1 %2x%3")
                            .arg(QLatin1String(generated.name))
                            .arg(size.width())
                            .arg(size.height());
    QImage& image = still(key);
    if (image.isNull()) {
        image = blank(size);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        generated.still(painter, size, 0);
    }
    if (!generated.moving)
        return image;
    QImage moved = image;
    QPainter painter(&moved);
    painter.setRenderHint(QPainter::Antialiasing);
    generated.moving(painter, size, seconds);
    return moved;
}

QImage PictureSource::pattern(LV_NTC_PictureType pattern, QSize size, double seconds) {
    const auto code = std::size_t(pattern);
    const QString key =
        QStringLiteral("pattern %1 %2x%3").arg(code).arg(size.width()).arg(size.height());
    QImage& image = still(key);
    if (image.isNull()) {
        image = blank(size);
        QPainter painter(&image);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        const QImage file(
            QStringLiteral(":/patterns/%1.png").arg(QLatin1String(kPatternFiles[code])));
        if (file.isNull())
            drawPlainPattern(painter, size, pattern);
        else
            painter.drawImage(image.rect(),
                              file.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
    const bool byProcessor = pattern == LV_NTC_PictureType::FramerateCpu;
    if (!byProcessor && pattern != LV_NTC_PictureType::FramerateGpu)
        return image;
    QImage moving = image;
    QPainter painter(&moving);
    drawSweep(painter, size, seconds,
              byProcessor ? QColor(0x00, 0x96, 0xff) : QColor(0x3d, 0xdc, 0x84));
    return moving;
}
