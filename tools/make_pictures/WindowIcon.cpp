#include "tools/make_pictures/WindowIcon.h"

#include <QBuffer>
#include <QDataStream>
#include <QPainter>
#include <QPainterPath>
#include <QtMath>

#include <array>
#include <cmath>

namespace {

constexpr std::array kSizes{16, 20, 24, 32, 40, 48, 64, 128, 256};
constexpr int kSmallestBent = 24;
constexpr int kSmallestPng = 128; // smaller ones are bitmaps, which every reader understands

const QColor kTile(0x0b, 0x3a, 0x5e);
const QColor kInnerLine(0x9c, 0xb4, 0xc8);
const QColor kPulledPoint(0x00, 0x96, 0xff);

/// The position of the point (u, v) of the deformed mesh, 0 to 1.
QPointF positionOnMesh(double u, double v) {
    const QPointF topLeft(0.17, 0.25);
    const QPointF topRight(0.81, 0.19);
    const QPointF bottomLeft(0.21, 0.83);
    const QPointF bottomRight(0.79, 0.85);
    const QPointF flat =
        (topLeft * (1 - u) + topRight * u) * (1 - v) + (bottomLeft * (1 - u) + bottomRight * u) * v;
    const double waveU = std::sin(M_PI * u);
    const double waveV = std::sin(M_PI * v);
    return flat + QPointF(0.07 * waveV * (1 - 1.6 * u), 0.12 * waveU * (1 - v) - 0.06 * waveU * v);
}

QPainterPath meshLine(bool horizontal, double position, int size) {
    constexpr int kPieces = 24;
    QPainterPath path;
    for (int i = 0; i <= kPieces; ++i) {
        const double t = static_cast<double>(i) / kPieces;
        const QPointF point =
            (horizontal ? positionOnMesh(t, position) : positionOnMesh(position, t)) * size;
        i == 0 ? path.moveTo(point) : path.lineTo(point);
    }
    return path;
}

void drawBentMesh(QPainter& painter, int size) {
    const int cells = size < 32 ? 2 : 3;
    const double edge = size < 40 ? 2 : size / 20.0;
    const double inner = size < 40 ? 1 : size / 32.0;
    const double point = size < 40 ? size / 8.0 : size / 10.0;

    const auto lines = [&](const QColor& color, double width, bool border) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        for (int i = 0; i <= cells; ++i) {
            if ((i == 0 || i == cells) == border) {
                const double position = static_cast<double>(i) / cells;
                painter.drawPath(meshLine(true, position, size));
                painter.drawPath(meshLine(false, position, size));
            }
        }
    };
    lines(kInnerLine, inner, false);
    lines(Qt::white, edge, true);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    for (const QPointF corner : {QPointF(0, 0), QPointF(0, 1), QPointF(1, 1)})
        painter.drawEllipse(positionOnMesh(corner.x(), corner.y()) * size, edge * 1.1, edge * 1.1);
    painter.setPen(QPen(Qt::white, edge * 0.8));
    painter.setBrush(kPulledPoint);
    painter.drawEllipse(positionOnMesh(1, 0) * size, point, point);
}

/// For sizes at which curves blur: straight lines on whole pixels, and the moved corner.
void drawStraightMesh(QPainter& painter, int size) {
    const int cell = size / 4 + 1;
    const double low = size - 2.5;
    const double left = 2.5;
    const double high = low - 2 * cell;
    const double right = left + 2 * cell;
    painter.setPen(QPen(kInnerLine, 1));
    painter.drawLine(QLineF(left + cell, high, left + cell, low));
    painter.drawLine(QLineF(left, high + cell, right, high + cell));
    painter.setPen(QPen(Qt::white, 1));
    painter.drawPolyline(QPolygonF{QPointF(right, high), QPointF(left, high), QPointF(left, low),
                                   QPointF(right, low), QPointF(right, high)});
    const double point = size / 8.0;
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(right, high), point + 1, point + 1);
    painter.setBrush(kPulledPoint);
    painter.drawEllipse(QPointF(right, high), point, point);
}

void appendBitmap(QDataStream& out, const QImage& image) {
    const auto size = static_cast<quint32>(image.width());
    const quint32 maskRow = (size + 31) / 32 * 4;
    out << quint32(40) << size << size * 2 << quint16(1) << quint16(32) << quint32(0)
        << size * size * 4 + maskRow * size << quint32(0) << quint32(0) << quint32(0) << quint32(0);
    for (int y = image.height() - 1; y >= 0; --y)
        for (int x = 0; x < image.width(); ++x)
            out << quint32(image.pixel(x, y));      // little endian: blue, green, red, alpha
    for (int y = image.height() - 1; y >= 0; --y) { // one bit a pixel: 1 where nothing is drawn
        QByteArray row(static_cast<qsizetype>(maskRow), '\0');
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) == 0)
                row[x / 8] = static_cast<char>(row[x / 8] | (0x80 >> (x % 8)));
        out.writeRawData(row.constData(), static_cast<int>(row.size()));
    }
}

QByteArray encoded(const QImage& image) {
    QByteArray bytes;
    if (image.width() >= kSmallestPng) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG", 0);
    } else {
        QDataStream out(&bytes, QIODevice::WriteOnly);
        out.setByteOrder(QDataStream::LittleEndian);
        appendBitmap(out, image);
    }
    return bytes;
}

} // namespace

QImage drawWindowIcon(int size) {
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kTile);
    const double corner = size / 6.0;
    painter.drawRoundedRect(QRectF(0, 0, size, size), corner, corner);
    if (size < kSmallestBent)
        drawStraightMesh(painter, size);
    else
        drawBentMesh(painter, size);
    return image;
}

QByteArray windowIconFile() {
    QByteArray file;
    QDataStream out(&file, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out << quint16(0) << quint16(1) << static_cast<quint16>(kSizes.size());
    QByteArray pictures;
    constexpr quint32 kEntry = 16;
    const quint32 firstPicture = 6 + kEntry * static_cast<quint32>(kSizes.size());
    for (const int size : kSizes) {
        const QByteArray picture = encoded(drawWindowIcon(size));
        const auto shortSize = static_cast<quint8>(size % 256); // 0 stands for 256
        out << shortSize << shortSize << quint8(0) << quint8(0) << quint16(1) << quint16(32)
            << static_cast<quint32>(picture.size())
            << firstPicture + static_cast<quint32>(pictures.size());
        pictures += picture;
    }
    return file + pictures;
}
