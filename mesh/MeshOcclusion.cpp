#include "mesh/MeshOcclusion.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kFading = 1.5;     // width of the fading edge of a circle in pixels
constexpr double kTile = 3;         // side of a tile in pixels; circles hide whole tiles
constexpr QSizeF kNumber(0.7, 0.5); // area of the number, in diameters of the circle
constexpr double kMostTiles = 1 << 20;

struct Tiles {
    int left, top, right, bottom; // inclusive
};

/// Which tiles of the screen around the points are hidden.
class Screen {
public:
    Screen(const QRectF& area)
        : origin_(area.topLeft()), width_(static_cast<int>(area.width() / kTile) + 2),
          hidden_(static_cast<std::size_t>(width_) *
                  static_cast<std::size_t>(area.height() / kTile + 2)) {}

    Tiles touchedBy(const QRectF& rect) const {
        return {column(rect.left()), row(rect.top()), column(rect.right()), row(rect.bottom())};
    }
    bool isAnyHidden(const Tiles& tiles) const {
        for (int y = tiles.top; y <= tiles.bottom; ++y) {
            const char* row = line(y);
            if (std::find(row + tiles.left, row + tiles.right + 1, true) != row + tiles.right + 1)
                return true;
        }
        return false;
    }
    /// Hides the tiles under a circle. Returns the bounds of the touched tiles that were visible.
    Tiles hide(const Tiles& touched, const QPointF& centre, double radius) {
        Tiles seen{touched.right + 1, touched.bottom + 1, touched.left - 1, touched.top - 1};
        const QPointF middle = place(touched).topLeft() - centre + QPointF(kTile, kTile) / 2;
        for (int y = touched.top; y <= touched.bottom; ++y) {
            // Half the width of the whole tiles that the circle hides in this row.
            const double farthest = std::abs(middle.y() + (y - touched.top) * kTile) + kTile / 2;
            const double square = radius * radius - farthest * farthest;
            const double reach = square > 0 ? std::sqrt(square) - kTile / 2 : -1;
            char* hidden = line(y);
            for (int x = touched.left; x <= touched.right; ++x) {
                if (hidden[x])
                    continue;
                seen = {std::min(seen.left, x), std::min(seen.top, y), std::max(seen.right, x),
                        std::max(seen.bottom, y)};
                hidden[x] = std::abs(middle.x() + (x - touched.left) * kTile) < reach;
            }
        }
        return seen;
    }
    QRectF place(const Tiles& tiles) const {
        return {origin_.x() + tiles.left * kTile, origin_.y() + tiles.top * kTile,
                (tiles.right - tiles.left + 1) * kTile, (tiles.bottom - tiles.top + 1) * kTile};
    }

private:
    const char* line(int y) const {
        return hidden_.data() + static_cast<std::ptrdiff_t>(y) * width_;
    }
    char* line(int y) { return hidden_.data() + static_cast<std::ptrdiff_t>(y) * width_; }
    int column(double x) const { return static_cast<int>((x - origin_.x()) / kTile); }
    int row(double y) const { return static_cast<int>((y - origin_.y()) / kTile); }

    QPointF origin_;
    int width_;
    std::vector<char> hidden_;
};

} // namespace

void removeHidden(MeshPicture& picture, double diameter) {
    const double opaque = diameter / 2 - kFading;
    std::erase_if(picture.lines, [&](const QLineF& line) {
        return line.length() * picture.zoom < 2 * opaque - kFading;
    });

    // Rotate to the coordinates of the points, in which their squares are axis-aligned.
    const double turn = -qDegreesToRadians(picture.points.front().rotation);
    const double cosine = std::cos(turn) * picture.zoom;
    const double sine = std::sin(turn) * picture.zoom;
    const double half = diameter / 2 + 1;
    std::vector<QPointF> centres;
    centres.reserve(picture.points.size());
    QRectF area;
    for (const MeshPicture::Point& point : picture.points) {
        if (point.rotation != picture.points.front().rotation)
            return;
        const QPointF& at = point.position;
        centres.emplace_back(cosine * at.x() - sine * at.y(), sine * at.x() + cosine * at.y());
        const QRectF square(centres.back() - QPointF(half, half), QSizeF(2 * half, 2 * half));
        area = area.isNull() ? square : area.united(square);
    }
    // Distant points hide nothing.
    if (!(area.width() * area.height() < kMostTiles * kTile * kTile))
        return;

    Screen screen(area);
    const QRectF number(-kNumber.width() / 2 * diameter, -kNumber.height() / 2 * diameter,
                        kNumber.width() * diameter, kNumber.height() * diameter);
    for (std::size_t i = picture.points.size(); i-- > 0;) {
        MeshPicture::Point& point = picture.points[i];
        const QPointF& centre = centres[i];
        point.isNumberVisible = !screen.isAnyHidden(screen.touchedBy(number.translated(centre)));
        const QRectF square(centre - QPointF(half, half), QSizeF(2 * half, 2 * half));
        const Tiles seen = screen.hide(screen.touchedBy(square), centre, opaque);
        point.visible =
            seen.left > seen.right ? QRectF() : (screen.place(seen) & square).translated(-centre);
    }
}
