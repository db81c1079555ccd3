#include "tools/make_pictures/StrokeFont.h"

#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <QStringList>

#include <algorithm>

namespace {

constexpr double kUnits = 6;     // a capital is six units high, most are four wide
constexpr double kSpacing = 2.2; // between two letters
constexpr double kPen = 1.0;

// Strokes as points "xy", separated by blanks; a bar begins a new stroke.
const QHash<QChar, QString>& glyphs() {
    static const QHash<QChar, QString> table = {
        {'A', "06 02 20 42 46|04 44"},
        {'B', "00 30 41 42 33 03|33 44 45 36 06 00"},
        {'C', "41 30 10 01 05 16 36 45"},
        {'D', "00 30 41 45 36 06 00"},
        {'E', "40 00 06 46|03 33"},
        {'F', "40 00 06|03 33"},
        {'G', "41 30 10 01 05 16 36 45 43 23"},
        {'H', "00 06|40 46|03 43"},
        {'I', "00 06"},
        {'J', "30 35 26 16 05"},
        {'K', "00 06|40 03 46"},
        {'L', "00 06 36"},
        {'M', "06 00 23 40 46"},
        {'N', "06 00 46 40"},
        {'O', "10 30 41 45 36 16 05 01 10"},
        {'P', "06 00 30 41 42 33 03"},
        {'Q', "10 30 41 45 36 16 05 01 10|34 46"},
        {'R', "06 00 30 41 42 33 03|23 46"},
        {'S', "41 30 10 01 02 13 33 44 45 36 16 05"},
        {'T', "00 40|20 26"},
        {'U', "00 05 16 36 45 40"},
        {'V', "00 26 40"},
        {'W', "00 16 23 36 40"},
        {'X', "00 46|40 06"},
        {'Y', "00 23 40|23 26"},
        {'Z', "00 40 06 46"},
        {'0', "10 30 41 45 36 16 05 01 10"},
        {'1', "02 20 26"},
        {'2', "01 10 30 41 42 06 46"},
        {'3', "01 10 30 41 42 33 13|33 44 45 36 16 05"},
        {'4', "36 30 04 44"},
        {'5', "40 00 02 32 43 45 36 16 05"},
        {'6', "41 30 10 01 05 16 36 45 44 33 03"},
        {'7', "00 40 16"},
        {'8', "10 30 41 42 33 13 02 01 10|13 04 05 16 36 45 44 33"},
        {'9', "05 16 36 45 41 30 10 01 02 13 43"},
        {'%', "40 06|00 10 11 01 00|35 45 46 36 35"},
        {'+', "03 43|21 25"},
        {'-', "03 33"},
        {'.', "06 06"},
        {':', "02 02|05 05"},
        {'/', "30 06"},
        {' ', "20"},
    };
    return table;
}

double glyphWidth(QChar letter) {
    int widest = 0;
    const QString strokes = glyphs().value(letter);
    for (int i = 0; i < strokes.size(); i += 3)
        widest = std::max(widest, strokes[i].digitValue());
    return widest;
}

QPainterPath glyphPath(QChar letter) {
    QPainterPath path;
    for (const QString& strokeText : glyphs().value(letter).split('|')) {
        bool down = false;
        for (const QString& pair : strokeText.split(' ', Qt::SkipEmptyParts)) {
            QPointF point(pair[0].digitValue(), pair[1].digitValue());
            if (down) {
                if (point == path.currentPosition())
                    point.rx() += 0.01; // QPainterPath drops a line of length zero
                path.lineTo(point);
            } else {
                path.moveTo(point);
                down = true;
            }
        }
    }
    return path;
}

} // namespace

double StrokeFont::width(const QString& text, double height) {
    double units = kSpacing * std::max(0.0, static_cast<double>(text.size()) - 1);
    for (const QChar letter : text)
        units += glyphWidth(letter);
    return units * height / kUnits;
}

void StrokeFont::draw(QPainter& painter, QPointF centre, const QString& text, double height,
                      const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color, kPen, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.translate(centre.x() - width(text, height) / 2, centre.y() - height / 2);
    painter.scale(height / kUnits, height / kUnits);
    for (const QChar letter : text) {
        painter.drawPath(glyphPath(letter));
        painter.translate(glyphWidth(letter) + kSpacing, 0);
    }
    painter.restore();
}
