#pragma once

#include "mesh/MeshPoint.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QRectF>

#include <array>
#include <memory>

/// How points and lines of a mesh look. Lengths are in device-independent pixels of the screen.
struct MeshStyle {
    struct Colors {
        QColor fill;
        QColor border;
        QColor text;

        friend bool operator==(const Colors&, const Colors&) = default;
    };
    std::array<Colors, 3> states; ///< by MeshPoint::State
    double pointDiameter = 20;
    double pointBorderWidth = 2;
    double lineThickness = 2;
    QColor lineColor;
    QColor markColor;
    QFont font;

    friend bool operator==(const MeshStyle&, const MeshStyle&) = default;
};

/// The image that a mesh is drawn from: a circle for each state of a point, the cross section of a
/// line and the digits of the point numbers, at the resolution of the screen.
class MeshAtlas {
public:
    /// One part of the image: its place (0 to 1, and in pixels) and its size on the screen.
    struct Part {
        QRectF texture; ///< 0 to 1
        QRectF pixels;
        QSizeF size; ///< device-independent pixels
    };

    MeshAtlas() = default;
    MeshAtlas(const MeshStyle& style, double devicePixelRatio);
    /// Meshes with the same style share one atlas, because a show has thousands of meshes. It lives
    /// as long as one of them holds it. Thread-safe.
    static std::shared_ptr<const MeshAtlas> shared(const MeshStyle& style, double devicePixelRatio);

    bool isNull() const { return image_.isNull(); }
    const QImage& image() const { return image_; }
    const Part& circle(MeshPoint::State state) const { return circles_[index(state)]; }
    /// The cross section of a line: as high as the line, with a fading pixel on either side.
    const Part& line() const { return line_; }
    QColor lineColor() const { return lineColor_; }
    /// The ring around a point that has gone back, wider than its circle.
    const Part& mark() const { return mark_; }
    /// One pixel of the colour of the marks.
    const Part& trail() const { return trail_; }
    QColor markColor() const { return markColor_; }
    /// A digit (0 to 9) as drawn in a number of `digits` digits; longer numbers are smaller.
    const Part& digit(MeshPoint::State state, int digits, int value) const;

    static constexpr int kDigitSizes = 3;

private:
    static std::size_t index(MeshPoint::State state) { return static_cast<std::size_t>(state); }

    QImage image_;
    std::array<Part, 3> circles_;
    Part line_;
    Part mark_;
    Part trail_;
    QColor lineColor_;
    QColor markColor_;
    std::array<std::array<std::array<Part, 10>, kDigitSizes>, 3> digits_;
};
