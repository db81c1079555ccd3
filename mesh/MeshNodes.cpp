#include "mesh/MeshNodes.h"

#include <QPainter>
#include <QQuickWindow>
#include <QSGGeometryNode>
#include <QSGRenderNode>
#include <QSGRendererInterface>
#include <QSGTextureMaterial>
#include <QtMath>

#include <cmath>

namespace {

/// Calls draw(part, centre) for each digit of the number; centres are relative to the point's
/// centre in screen pixels, before rotation.
template <typename Draw>
void forEachDigit(const MeshAtlas& atlas, MeshPoint::State state, int number, Draw draw) {
    std::array<int, 10> values{};
    int digits = 0;
    do {
        values[static_cast<std::size_t>(digits++)] = number % 10;
        number /= 10;
    } while (number > 0);
    const double width = atlas.digit(state, digits, 0).size.width();
    double x = (digits - 1) * width / 2;
    for (int i = 0; i < digits; ++i, x -= width)
        draw(atlas.digit(state, digits, values[static_cast<std::size_t>(i)]), QPointF(x, 0));
}

/// Half a band of that width across a line; null for a line without length.
QPointF halfAcross(const QLineF& line, double width) {
    const double length = std::hypot(line.dx(), line.dy());
    const double half = length > 0 ? width / 2 / length : 0;
    return {-line.dy() * half, line.dx() * half};
}

int digitCount(int number) {
    int digits = 1;
    while (number >= 10) {
        number /= 10;
        ++digits;
    }
    return digits;
}

/// Quads textured with parts of one image; later quads cover earlier ones.
class QuadsNode final : public QSGGeometryNode {
public:
    QuadsNode()
        : geometry_(QSGGeometry::defaultAttributes_TexturedPoint2D(), 0, 0,
                    QSGGeometry::UnsignedIntType) {
        geometry_.setDrawingMode(QSGGeometry::DrawTriangles);
        geometry_.setVertexDataPattern(QSGGeometry::DynamicPattern);
        geometry_.setIndexDataPattern(QSGGeometry::DynamicPattern);
        setGeometry(&geometry_);
        setMaterial(&material_);
        setFlag(OwnedByParent);
    }

    void setTexture(QSGTexture* texture, QSGTexture::Filtering filtering) {
        if (texture == material_.texture() && filtering == material_.filtering())
            return;
        material_.setTexture(texture);
        material_.setFiltering(filtering);
        markDirty(DirtyMaterial);
    }

    /// Followed by `quads` calls of quad().
    void begin(std::size_t quads) {
        if (static_cast<int>(quads) * 4 != geometry_.vertexCount()) {
            geometry_.allocate(static_cast<int>(quads) * 4, static_cast<int>(quads) * 6);
            quint32* index = geometry_.indexDataAsUInt();
            for (quint32 first = 0; first < quads * 4; first += 4)
                for (const quint32 corner : {0U, 1U, 2U, 2U, 1U, 3U})
                    *index++ = first + corner;
        }
        vertex_ = geometry_.vertexDataAsTexturedPoint2D();
        markDirty(DirtyGeometry);
    }

    void quad(const QPointF& topLeft, const QPointF& topRight, const QPointF& bottomLeft,
              const QPointF& bottomRight, const QRectF& texture) {
        const auto corner = [this](const QPointF& position, double u, double v) {
            vertex_++->set(static_cast<float>(position.x()), static_cast<float>(position.y()),
                           static_cast<float>(u), static_cast<float>(v));
        };
        corner(topLeft, texture.left(), texture.top());
        corner(topRight, texture.right(), texture.top());
        corner(bottomLeft, texture.left(), texture.bottom());
        corner(bottomRight, texture.right(), texture.bottom());
    }

private:
    QSGGeometry geometry_;
    QSGTextureMaterial material_;
    QSGGeometry::TexturedPoint2D* vertex_ = nullptr;
};

/// Draws lines, circles and digits as quads.
class MeshGeometryNode final : public QSGNode, public MeshNode {
public:
    explicit MeshGeometryNode(QQuickWindow* window) : window_(window) {
        appendChildNode(lines_);
        appendChildNode(sprites_);
    }

    QSGNode* node() override { return this; }

    void setPicture(MeshPicture picture) override {
        if (picture.atlas != atlas_ || !texture_) {
            atlas_ = picture.atlas;
            std::unique_ptr<QSGTexture> texture(window_->createTextureFromImage(
                atlas_->image(), QQuickWindow::TextureHasAlphaChannel));
            lines_->setTexture(texture.get(), QSGTexture::Linear);
            sprites_->setTexture(texture.get(), QSGTexture::Linear);
            texture_ = std::move(texture);
        }
        // An upright sprite maps one to one onto the screen's pixels: nearest is crisp and cheap.
        sprites_->setTexture(texture_.get(),
                             picture.upright ? QSGTexture::Nearest : QSGTexture::Linear);
        drawLines(picture);
        drawSprites(picture);
    }

private:
    void drawLines(const MeshPicture& picture) {
        const MeshAtlas::Part& section = atlas_->line();
        lines_->begin(picture.lines.size() + picture.marks.size());
        for (const QLineF& line : picture.lines) {
            const QPointF across = halfAcross(line, section.size.height() / picture.zoom);
            lines_->quad(line.p1() - across, line.p2() - across, line.p1() + across,
                         line.p2() + across, section.texture);
        }
        const double width = atlas_->circle(MeshPoint::State::Current).size.width() / picture.zoom;
        for (const MeshPicture::Mark& mark : picture.marks) {
            const QPointF across = halfAcross(QLineF(mark.from, mark.position), width);
            lines_->quad(mark.from, mark.from, mark.position - across, mark.position + across,
                         atlas_->trail().texture);
        }
    }

    void drawSprites(const MeshPicture& picture) {
        std::size_t quads = picture.points.size() + picture.marks.size();
        for (const MeshPicture::Point& point : picture.points)
            quads += point.isNumberVisible ? static_cast<std::size_t>(digitCount(point.number)) : 0;
        sprites_->begin(quads);
        const double pixel = 1 / picture.zoom;
        for (const MeshPicture::Point& point : picture.points) {
            const double angle = qDegreesToRadians(point.rotation);
            const QPointF right = QPointF(std::cos(angle), std::sin(angle)) * pixel;
            const QPointF down(-right.y(), right.x());
            // Not exactly between two pixels, where rounding errors decide which one is hit.
            const QPointF position = point.position + (right + down) * kOffMiddle;
            const auto sprite = [&](const MeshAtlas::Part& part, const QPointF& centre) {
                const QPointF middle = position + right * centre.x() + down * centre.y();
                const QPointF x = right * part.size.width() / 2;
                const QPointF y = down * part.size.height() / 2;
                sprites_->quad(middle - x - y, middle + x - y, middle - x + y, middle + x + y,
                               part.texture);
            };
            drawCircle(atlas_->circle(point.state), position, right, down, point.visible);
            if (point.isNumberVisible)
                forEachDigit(*atlas_, point.state, point.number, sprite);
        }
        for (const MeshPicture::Mark& mark : picture.marks) {
            const double angle = qDegreesToRadians(mark.rotation);
            const QPointF right = QPointF(std::cos(angle), std::sin(angle)) * pixel;
            drawCircle(atlas_->mark(), mark.position, right, {-right.y(), right.x()},
                       MeshPicture::kAll);
        }
    }

    /// Draws the visible part of a circle; `right` and `down` are as long as a pixel.
    void drawCircle(const MeshAtlas::Part& circle, const QPointF& centre, const QPointF& right,
                    const QPointF& down, const QRectF& visible) {
        const QSizeF size = circle.size;
        const QRectF square(QPointF(-size.width() / 2, -size.height() / 2), size);
        const QRectF part = visible & square;
        const auto corner = [&](double x, double y) { return centre + right * x + down * y; };
        const double u = circle.texture.width() / size.width();
        const double v = circle.texture.height() / size.height();
        const QRectF texture(circle.texture.x() + (part.x() - square.x()) * u,
                             circle.texture.y() + (part.y() - square.y()) * v, part.width() * u,
                             part.height() * v);
        sprites_->quad(corner(part.left(), part.top()), corner(part.right(), part.top()),
                       corner(part.left(), part.bottom()), corner(part.right(), part.bottom()),
                       texture);
    }

    static constexpr double kOffMiddle = 1.0 / 64;

    QQuickWindow* window_;
    std::shared_ptr<const MeshAtlas> atlas_;
    std::unique_ptr<QSGTexture> texture_;
    QuadsNode* lines_ = new QuadsNode; // owned by this node
    QuadsNode* sprites_ = new QuadsNode;
};

/// Draws a mesh with QPainter for Qt Quick's software renderer, which ignores geometry nodes.
class MeshPainterNode : public QSGRenderNode, public MeshNode {
public:
    explicit MeshPainterNode(QQuickWindow* window) : window_(window) {}

    QSGNode* node() override { return this; }

    void setPicture(MeshPicture picture) override {
        if (picture.atlas != picture_.atlas)
            pixmap_ = QPixmap::fromImage(picture.atlas->image());
        picture_ = std::move(picture);
        QRectF bounds;
        for (const MeshPicture::Point& point : picture_.points)
            bounds |= QRectF(point.position, QSizeF(1e-6, 1e-6));
        for (const MeshPicture::Mark& mark : picture_.marks)
            bounds |= QRectF(mark.from, QSizeF(1e-6, 1e-6));
        const double margin = picture_.atlas->mark().size.width() / picture_.zoom;
        bounds_ = bounds.adjusted(-margin, -margin, margin, margin);
        markDirty(DirtyMaterial | DirtyGeometry);
    }

    RenderingFlags flags() const override { return BoundedRectRendering; }
    StateFlags changedStates() const override { return {}; }
    QRectF rect() const override { return bounds_; }

    void render(const RenderState* state) override {
        auto* painter = static_cast<QPainter*>(window_->rendererInterface()->getResource(
            window_, QSGRendererInterface::PainterResource));
        if (!painter)
            return;
        const QRegion* clip = state->clipRegion();
        if (clip && !clip->isEmpty())
            painter->setClipRegion(*clip, Qt::ReplaceClip);
        const QTransform toWindow = matrix()->toTransform();
        painter->setTransform(toWindow);
        painter->setOpacity(inheritedOpacity());
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setRenderHint(QPainter::SmoothPixmapTransform);

        const MeshAtlas& atlas = *picture_.atlas;
        QPen pen(atlas.lineColor(), (atlas.line().size.height() - 2) / picture_.zoom);
        pen.setCapStyle(Qt::FlatCap);
        painter->setPen(pen);
        painter->drawLines(picture_.lines.data(), static_cast<int>(picture_.lines.size()));
        const double trail = atlas.circle(MeshPoint::State::Current).size.width() / picture_.zoom;
        painter->setPen(Qt::NoPen);
        painter->setBrush(atlas.markColor());
        for (const MeshPicture::Mark& mark : picture_.marks) {
            const QPointF across = halfAcross(QLineF(mark.from, mark.position), trail);
            painter->drawConvexPolygon(
                QPolygonF{mark.from, mark.position - across, mark.position + across});
        }

        // Circles and digits are not scaled, so that their pixels stay sharp.
        const double turn = qRadiansToDegrees(std::atan2(toWindow.m12(), toWindow.m11()));
        painter->setTransform(QTransform());
        const double scale = window_->effectiveDevicePixelRatio();
        for (const MeshPicture::Point& point : picture_.points) {
            QPointF centre = toWindow.map(point.position);
            const bool upright = picture_.upright;
            if (upright) {
                centre =
                    QPointF(std::round(centre.x() * scale), std::round(centre.y() * scale)) / scale;
            } else {
                painter->translate(centre);
                painter->rotate(turn + point.rotation);
            }
            const QPointF origin = upright ? centre : QPointF();
            const auto sprite = [&](const MeshAtlas::Part& part, const QPointF& offset) {
                const QRectF target(origin + offset -
                                        QPointF(part.size.width(), part.size.height()) / 2,
                                    part.size);
                painter->drawPixmap(target, pixmap_, part.pixels);
            };
            sprite(atlas.circle(point.state), QPointF());
            if (point.isNumberVisible)
                forEachDigit(atlas, point.state, point.number, sprite);
            if (!upright)
                painter->setTransform(QTransform());
        }
        const QRectF ring(QPointF(), atlas.mark().size);
        for (const MeshPicture::Mark& mark : picture_.marks)
            painter->drawPixmap(ring.translated(toWindow.map(mark.position) - ring.center()),
                                pixmap_, atlas.mark().pixels);
    }

private:
    QQuickWindow* window_;
    MeshPicture picture_;
    QPixmap pixmap_;
    QRectF bounds_;
};

} // namespace

MeshNode* MeshNode::create(QQuickWindow* window) {
    if (window->rendererInterface()->graphicsApi() == QSGRendererInterface::Software)
        return new MeshPainterNode(window);
    return new MeshGeometryNode(window);
}

MeshNode* MeshNode::from(QSGNode* node) {
    return dynamic_cast<MeshNode*>(node);
}
