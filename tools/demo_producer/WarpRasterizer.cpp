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
            const double ab = b.*value - a.*value, ac = c.*value - a.*value;
            const double perX = (ab * (c.y - a.y) - ac * (b.y - a.y)) / area;
            const double perY = (ac * (b.x - a.x) - ab * (c.x - a.x)) / area;
            return Plane{a.*value - perX * a.x - perY * a.y, perX, perY};
        };
        u_ = plane(&Vertex::u);
        v_ = plane(&Vertex::v);
        q_ = plane(&Vertex::q);
        // Pixels whose centre is inside; two triangles at an edge compute the same limit for it.
        const int first = firstCentre(a.y, height_), end = firstCentre(c.y, height_);
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
        quint32* const line = bits_ + y * stride_;
        const bool affine = std::abs(q_.perX) + std::abs(q_.perY) < 1e-12;
        const double divisor = affine ? 1.0 / q_.atOrigin : 0.0;
        double u = u_.at(first + 0.5, y + 0.5), v = v_.at(first + 0.5, y + 0.5);
        double q = q_.at(first + 0.5, y + 0.5);
        for (int x = first; x < end; ++x, u += u_.perX, v += v_.perX, q += q_.perX) {
            const double scale = affine ? divisor : 1.0 / q;
            if (const quint32 texel = texelAt(u * scale, v * scale))
                line[x] = over(line[x], texel);
        }
    }

    /// Bilinear; the part's rim reaches one texel further than the part.
    [[nodiscard]] quint32 texelAt(double u, double v) const {
        if (!(u >= -1 && v >= -1 && u <= part_.width() + 1 && v <= part_.height() + 1))
            return 0;
        const int right = part_.width() - 1, bottom = part_.height() - 1;
        const int fixedU = int(std::clamp(u - 0.5, 0.0, double(right)) * 256);
        const int fixedV = int(std::clamp(v - 0.5, 0.0, double(bottom)) * 256);
        const int x0 = fixedU >> 8, y0 = fixedV >> 8;
        const int x1 = std::min(x0 + 1, right), y1 = std::min(y0 + 1, bottom);
        const quint32* const upper = texels_ + (part_.y() + y0) * textureStride_ + part_.x();
        const quint32* const lower = texels_ + (part_.y() + y1) * textureStride_ + part_.x();
        const quint32 across = quint32(fixedU & 255);
        return mix(mix(upper[x0], upper[x1], across), mix(lower[x0], lower[x1], across),
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
    const Vertex topLeft = vertexAt(row, column), topRight = vertexAt(row, column + 1);
    const Vertex bottomLeft = vertexAt(row + 1, column);
    const Vertex bottomRight = vertexAt(row + 1, column + 1);
    filler.fill(topLeft, topRight, bottomRight);
    filler.fill(topLeft, bottomRight, bottomLeft);
}

} // namespace

int WarpRasterizer::steps(int patches) {
    return patches * (patches <= 1    ? 24
                      : patches <= 3  ? 12
                      : patches <= 8  ? 6
                      : patches <= 24 ? 4
                                      : 2);
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
            const QPointF place = toTarget.map(QPointF(x / w, y / w));
            return Vertex{place.x(), place.y(), u / w * texels.width(), v / w * texels.height(),
                          uvW / w};
        };
        fillCell(filler, corner, 0, 0);
        return;
    }

    const int columns = steps(std::max(xy.patchColumns(), uv.patchColumns()));
    const int rows = steps(std::max(xy.patchRows(), uv.patchRows()));
    const std::vector<double> s = evenParameters(columns), t = evenParameters(rows);
    const std::vector<QPointF> places = xy.sample(s, t), coordinates = uv.sample(s, t);
    const auto vertexAt = [&](int row, int column) {
        const std::size_t index = std::size_t(row) * s.size() + std::size_t(column);
        const QPointF place = toTarget.map(places[index]);
        return Vertex{place.x(), place.y(), coordinates[index].x() * texels.width(),
                      coordinates[index].y() * texels.height(), 1.0};
    };
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column)
            fillCell(filler, vertexAt, row, column);
    }
}
