#include "tools/demo_producer/WarpRasterizer.h"

#include <algorithm>
#include <cmath>

namespace {

struct Vertex {
    double x, y; ///< pixels of the target
    /// Texels, and what the two are to be divided by at every pixel; linear over the target.
    double u, v, q;
};

/// A value that is linear over the target.
struct Plane {
    double atOrigin, perX, perY;

    [[nodiscard]] double at(double x, double y) const { return atOrigin + perX * x + perY * y; }
};

/// The mean of two pixels, weight 0 to 256 being the share of b.
quint32 mix(quint32 a, quint32 b, quint32 weight) {
    const quint32 rest = 256 - weight;
    const quint32 redBlue = (((a & 0xff00ffu) * rest + (b & 0xff00ffu) * weight) >> 8) & 0xff00ffu;
    const quint32 alphaGreen =
        (((a >> 8) & 0xff00ffu) * rest + ((b >> 8) & 0xff00ffu) * weight) & 0xff00ff00u;
    return redBlue | alphaGreen;
}

quint32 over(quint32 below, quint32 above) {
    const quint32 alpha = above >> 24;
    return alpha == 255 ? above : above + mix(below, 0, alpha + (alpha >> 7));
}

class TriangleFiller {
public:
    TriangleFiller(QImage& target, const QImage& picture, const QRect& part)
        : bits_(reinterpret_cast<quint32*>(target.bits())), width_(target.width()),
          height_(target.height()), stride_(target.bytesPerLine() / 4),
          texels_(reinterpret_cast<const quint32*>(picture.constBits())),
          textureStride_(picture.bytesPerLine() / 4), part_(part) {}

    void fill(Vertex a, Vertex b, Vertex c) {
        if (b.y < a.y)
            std::swap(a, b);
        if (c.y < b.y)
            std::swap(b, c);
        if (b.y < a.y)
            std::swap(a, b);
        const double area = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
        if (!(std::abs(area) > 1e-9))
            return;
        const auto plane = [&](double Vertex::*value) {
            const double ab = b.*value - a.*value;
            const double ac = c.*value - a.*value;
            const double perX = (ab * (c.y - a.y) - ac * (b.y - a.y)) / area;
            const double perY = (ac * (b.x - a.x) - ab * (c.x - a.x)) / area;
            return Plane{a.*value - perX * a.x - perY * a.y, perX, perY};
        };
        u_ = plane(&Vertex::u);
        v_ = plane(&Vertex::v);
        q_ = plane(&Vertex::q);
        // Pixels whose centre is inside; two triangles at an edge compute the same limit for it.
        const int first = firstCentre(a.y, height_);
        const int end = firstCentre(c.y, height_);
        for (int y = first; y < end; ++y) {
            const double centre = y + 0.5;
            const double onLong = crossing(a, c, centre);
            const double onShort = centre < b.y ? crossing(a, b, centre) : crossing(b, c, centre);
            fillSpan(y, firstCentre(std::min(onLong, onShort), width_),
                     firstCentre(std::max(onLong, onShort), width_));
        }
    }

private:
    static int firstCentre(double coordinate, int limit) {
        return int(std::ceil(std::clamp(coordinate - 0.5, 0.0, double(limit))));
    }
    static double crossing(const Vertex& upper, const Vertex& lower, double y) {
        return upper.x + (y - upper.y) * (lower.x - upper.x) / (lower.y - upper.y);
    }

    void fillSpan(int y, int first, int end) {
        const double centre = y + 0.5;
        // In short runs, because texture coordinates change evenly over a short one even where the
        // texture recedes, and because only a run that touches the rim has to look after it.
        constexpr int kRun = 16;
        for (int x = first; x < end;) {
            const int count = std::min(kRun, end - x);
            const double begin = x + 0.5;
            const double last = begin + count - 1;
            const double q = q_.at(begin, centre);
            const double lastQ = q_.at(last, centre);
            fillRun(bits_ + y * stride_ + x, count, u_.at(begin, centre) / q,
                    v_.at(begin, centre) / q, u_.at(last, centre) / lastQ,
                    v_.at(last, centre) / lastQ);
            x += count;
        }
    }

    /// Pixels whose texture coordinates change evenly, from the first to the last one's.
    void fillRun(quint32* pixels, int count, double u, double v, double lastU, double lastV) {
        const double stepU = count > 1 ? (lastU - u) / (count - 1) : 0.0;
        const double stepV = count > 1 ? (lastV - v) / (count - 1) : 0.0;
        const bool inner = isInner(u, v) && isInner(lastU, lastV);
        if (!inner) {
            for (int i = 0; i < count; ++i)
                draw(pixels[i], texelAt(u + stepU * i, v + stepV * i));
            return;
        }
        // Nearly all runs: no rim to be looked after, so that whole numbers will do.
        constexpr double kOne = 65536;
        int fixedU = int((u - 0.5) * kOne);
        int fixedV = int((v - 0.5) * kOne);
        const int fixedStepU = int(stepU * kOne);
        const int fixedStepV = int(stepV * kOne);
        const quint32* const origin = texels_ + part_.y() * textureStride_ + part_.x();
        for (int i = 0; i < count; ++i, fixedU += fixedStepU, fixedV += fixedStepV) {
            const quint32* const texel = origin + (fixedV >> 16) * textureStride_ + (fixedU >> 16);
            draw(pixels[i],
                 blend(texel[0], texel[1], texel[textureStride_], texel[textureStride_ + 1],
                       quint32(fixedU >> 8) & 255, quint32(fixedV >> 8) & 255));
        }
    }

    static void draw(quint32& pixel, quint32 texel) {
        if ((texel >> 24) == 255)
            pixel = texel;
        else if (texel)
            pixel = over(pixel, texel);
    }

    /// The four texels, weighted by how near the position is to each; across and down are 0 to 255.
    static quint32 blend(quint32 topLeft, quint32 topRight, quint32 bottomLeft, quint32 bottomRight,
                         quint32 across, quint32 down) {
        const quint32 both = (across * down) >> 8; // the weights add up to 256
        const quint64 sum = spread(topLeft) * (256 - across - down + both) +
                            spread(topRight) * (across - both) +
                            spread(bottomLeft) * (down - both) + spread(bottomRight) * both;
        const quint64 mean = (sum >> 8) & kLanes;
        return quint32(mean | (mean >> 24));
    }
    /// The four channels with room for a weight behind each.
    static quint64 spread(quint32 pixel) {
        return (quint64(pixel) | (quint64(pixel) << 24)) & kLanes;
    }
    static constexpr quint64 kLanes = 0x00ff00ff00ff00ff;

    /// Whether all four texels around the position are in the part, with a little to spare for
    /// rounding.
    [[nodiscard]] bool isInner(double u, double v) const {
        return u >= 1 && v >= 1 && u <= part_.width() - 2 && v <= part_.height() - 2;
    }

    /// Bilinear; the part's rim reaches one texel further than the part.
    [[nodiscard]] quint32 texelAt(double u, double v) const {
        // False for a coordinate that is no number, too.
        const bool near = u >= -1 && v >= -1 && u <= part_.width() + 1 && v <= part_.height() + 1;
        if (!near)
            return 0;
        const int right = part_.width() - 1;
        const int bottom = part_.height() - 1;
        const int fixedU = std::clamp(int(u * 256) - 128, 0, right * 256);
        const int fixedV = std::clamp(int(v * 256) - 128, 0, bottom * 256);
        const int x0 = fixedU >> 8;
        const int y0 = fixedV >> 8;
        const int x1 = std::min(x0 + 1, right);
        const int y1 = std::min(y0 + 1, bottom);
        const quint32* const upper = texels_ + (part_.y() + y0) * textureStride_ + part_.x();
        const quint32* const lower = texels_ + (part_.y() + y1) * textureStride_ + part_.x();
        return blend(upper[x0], upper[x1], lower[x0], lower[x1], quint32(fixedU & 255),
                     quint32(fixedV & 255));
    }

    quint32* bits_;
    int width_, height_;
    qsizetype stride_;
    const quint32* texels_;
    qsizetype textureStride_;
    QRect part_; ///< texels
    Plane u_{}, v_{}, q_{};
};

/// Fills the cell below and to the right of a vertex of a mesh.
template <typename VertexAt>
void fillCell(TriangleFiller& filler, VertexAt vertexAt, int row, int column) {
    const Vertex topLeft = vertexAt(row, column);
    const Vertex topRight = vertexAt(row, column + 1);
    const Vertex bottomLeft = vertexAt(row + 1, column);
    const Vertex bottomRight = vertexAt(row + 1, column + 1);
    filler.fill(topLeft, topRight, bottomRight);
    filler.fill(topLeft, bottomRight, bottomLeft);
}

} // namespace

QImage WarpRasterizer::halved(const QImage& image) {
    QImage result(image.size() / 2, QImage::Format_ARGB32_Premultiplied);
    constexpr quint32 kEven = 0x00ff00ff;
    for (int y = 0; y < result.height(); ++y) {
        const auto* upper = reinterpret_cast<const quint32*>(image.constScanLine(2 * y));
        const auto* lower = reinterpret_cast<const quint32*>(image.constScanLine(2 * y + 1));
        auto* const line = reinterpret_cast<quint32*>(result.scanLine(y));
        for (int x = 0; x < result.width(); ++x, upper += 2, lower += 2) {
            const auto sum = [&](int shift) {
                return ((upper[0] >> shift) & kEven) + ((upper[1] >> shift) & kEven) +
                       ((lower[0] >> shift) & kEven) + ((lower[1] >> shift) & kEven);
            };
            line[x] = ((sum(0) >> 2) & kEven) | ((sum(8) << 6) & ~kEven);
        }
    }
    return result;
}

int WarpRasterizer::steps(int patches) {
    int perPatch = 2;
    if (patches <= 1)
        perPatch = 14;
    else if (patches <= 3)
        perPatch = 8;
    else if (patches <= 8)
        perPatch = 4;
    return patches * perPatch;
}

void WarpRasterizer::draw(QImage& target, const QImage& picture, const QRectF& part,
                          const Surface& xy, const Surface& uv, const QTransform& toTarget) {
    const QSize size = picture.size();
    const QRect texels = QRectF(part.x() * size.width(), part.y() * size.height(),
                                part.width() * size.width(), part.height() * size.height())
                             .toRect() &
                         picture.rect();
    if (texels.isEmpty() || target.isNull())
        return;
    TriangleFiller filler(target, picture, texels);

    if (xy.projection() && uv.projection()) {
        // Texture coordinates over w are linear over the target, which makes the picture exact.
        const auto corner = [&](int row, int column) {
            const auto [x, y, w] = xy.projection()->homogeneousAt(column, row);
            const auto [u, v, uvW] = uv.projection()->homogeneousAt(column, row);
            const QPointF position = toTarget.map(QPointF(x / w, y / w));
            return Vertex{position.x(), position.y(), u / w * texels.width(),
                          v / w * texels.height(), uvW / w};
        };
        fillCell(filler, corner, 0, 0);
        return;
    }

    const int columns = steps(std::max(xy.patchColumns(), uv.patchColumns()));
    const int rows = steps(std::max(xy.patchRows(), uv.patchRows()));
    const std::vector<double> s = evenParameters(columns);
    const std::vector<double> t = evenParameters(rows);
    const std::vector<QPointF> positions = xy.sample(s, t);
    const std::vector<QPointF> coordinates = uv.sample(s, t);
    const auto vertexAt = [&](int row, int column) {
        const std::size_t index = std::size_t(row) * s.size() + std::size_t(column);
        const QPointF position = toTarget.map(positions[index]);
        return Vertex{position.x(), position.y(), coordinates[index].x() * texels.width(),
                      coordinates[index].y() * texels.height(), 1.0};
    };
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            fillCell(filler, vertexAt, row, column);
}
