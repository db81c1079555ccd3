#include "tests/support/GuardedTest.h"
#include "tools/demo_producer/ShowCatalog.h"
#include "tools/demo_producer/WarpRasterizer.h"

#include <QLineF>
#include <QTest>

#include <cmath>

using Kind = Warp::Kind;

namespace {

constexpr QSize kSize{1920, 1080};

double distance(const QPointF& a, const QPointF& b) {
    return QLineF(a, b).length();
}

/// The largest distance between two surfaces at the same parameters.
double difference(const Surface& a, const Surface& b) {
    const std::vector<double> parameters = evenParameters(40);
    const auto first = a.sample(parameters, parameters);
    const auto second = b.sample(parameters, parameters);
    double largest = 0;
    for (std::size_t i = 0; i < first.size(); ++i)
        largest = std::max(largest, distance(first[i], second[i]));
    return largest;
}

Warp keystone(const std::array<QPointF, 4>& corners) {
    Warp warp = Warp::straight(Kind::Keystone, 2, 2, kSize);
    for (std::size_t i = 0; i < corners.size(); ++i)
        warp.xy[i].position = corners[i];
    return warp;
}

const Warp kKeystone = keystone({{{-900, -500}, {700, -300}, {-950, 480}, {820, 300}}});

/// A mesh in which no two points are moved alike.
Warp crumpled(Kind kind, int rows, int columns) {
    Warp warp = Warp::straight(kind, rows, columns, kSize);
    for (std::size_t i = 0; i < warp.xy.size(); ++i)
        warp.xy[i].position +=
            QPointF(40 * std::sin(double(i) * 1.7), 30 * std::cos(double(i) * 2.3));
    return warp;
}

/// A picture whose colour tells the position: red the texel's column, green its row.
QImage map(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x, y, 77));
    return image;
}

} // namespace

class SurfaceTest : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void keystoneIsProjective() {
        const Surface surface = kKeystone.xySurface();
        QVERIFY(surface.projection());
        // Straight lines stay straight, so the middle is where the diagonals cross.
        QPointF crossing;
        QLineF(surface.at(0, 0), surface.at(1, 1))
            .intersects(QLineF(surface.at(1, 0), surface.at(0, 1)), &crossing);
        QVERIFY(distance(surface.at(0.5, 0.5), crossing) < 1e-9);
        // The far half is drawn smaller: the map is not bilinear.
        QVERIFY(distance(surface.at(0.5, 0.5), surface.at(1, 0.5)) <
                0.9 * distance(surface.at(0, 0.5), surface.at(0.5, 0.5)));
    }

    /// Of a bezier, the corners of its patches; its handles lie beside it.
    void meshesPassThroughTheirPoints() {
        const Warp folded = keystone({{{0, 0}, {-300, 10}, {0, 200}, {400, 200}}});
        QVERIFY(!folded.xySurface().projection());
        const Warp bezier = crumpled(Kind::Bezier, 4, 7);
        for (const Warp& warp : {kKeystone, folded, bezier, crumpled(Kind::Curve, 2, 2),
                                 crumpled(Kind::Curve, 3, 5), crumpled(Kind::Curve, 64, 64)}) {
            const auto samples = warp.xySurface().sample(evenParameters(warp.columns - 1),
                                                         evenParameters(warp.rows - 1));
            const auto columns = std::size_t(warp.columns);
            const std::size_t step = warp.kind == Kind::Bezier ? 3 : 1;
            for (std::size_t i = 0; i < samples.size(); ++i)
                if (i % columns % step == 0 && i / columns % step == 0)
                    QVERIFY(distance(samples[i], warp.xy[i].position) < 1e-9);
        }
        const auto position = [&bezier](std::size_t i) { return bezier.xy[i].position; };
        const QPointF middle = (position(0) + 3 * position(1) + 3 * position(2) + position(3)) / 8;
        QVERIFY(distance(bezier.xySurface().at(0.25, 0), middle) < 1e-9);
        const Warp point = keystone({});
        QCOMPARE(point.xySurface().at(0.3, 0.6), QPointF());
    }

    void curveIsSmoothAndParabolasAreExact() {
        const Surface surface = crumpled(Kind::Curve, 4, 6).xySurface();
        constexpr double kStep = 1e-6;
        for (int knot = 1; knot < 5; ++knot) {
            const QPointF before =
                surface.at(knot / 5.0, 0.4) - surface.at(knot / 5.0 - kStep, 0.4);
            const QPointF after = surface.at(knot / 5.0 + kStep, 0.4) - surface.at(knot / 5.0, 0.4);
            QVERIFY(distance(before, after) / kStep < 0.5); // of about 2,000 pixels a unit
        }
        Warp parabola = Warp::straight(Kind::Curve, 3, 4, kSize);
        for (ControlPoint& point : parabola.xy)
            point.position.ry() += 1e-4 * point.position.x() * point.position.x();
        const QPointF middle = parabola.xySurface().at(0.15, 0.5);
        QVERIFY(distance(middle, {-672, 1e-4 * 672 * 672}) < 1e-9);
    }

    void conversionsKeepTheShape() {
        // Rows, columns, and pixels of a screen of 1920 x 1080 that it may be off.
        for (const auto& [kind, rows, columns, tolerance] : {std::tuple(Kind::Bezier, 4, 4, 8.0),
                                                             {Kind::Bezier, 7, 10, 0.5},
                                                             {Kind::Curve, 5, 6, 6.0},
                                                             {Kind::Curve, 16, 16, 0.4}}) {
            const Warp warp = kKeystone.rebuilt(kind, rows, columns, false, kSize);
            const double error = difference(warp.xySurface(), kKeystone.xySurface());
            QVERIFY2(error < tolerance, qPrintable(QString("%1 of %2").arg(error).arg(tolerance)));
            // A bezier of as many patches takes over any curve or bezier as it is.
            const Warp same = warp.rebuilt(Kind::Bezier, 3 * warp.xySurface().patchRows() + 1,
                                           3 * warp.xySurface().patchColumns() + 1, false, kSize);
            QVERIFY(difference(same.xySurface(), warp.xySurface()) < 1e-6);
        }
    }

    void aLongWayOfConversionsKeepsTheShape() {
        const Show harbour = ShowCatalog::harbour();
        for (const ShowItem& item : harbour.items()) {
            const Warp there = item.warp.rebuilt(Kind::Bezier, 10, 10, false, item.size)
                                   .rebuilt(Kind::Curve, 13, 10, false, item.size)
                                   .rebuilt(Kind::Bezier, 13, 19, false, item.size);
            const double error = difference(there.xySurface(), item.warp.xySurface());
            QVERIFY2(error < 2.0, qPrintable(item.name + QString::number(error)));
        }
        Warp straight = Warp::straight(Kind::None, 2, 2, kSize);
        for (const auto& [kind, rows, columns] :
             {std::tuple(Kind::Keystone, 2, 2), {Kind::Bezier, 4, 7}, {Kind::Curve, 3, 8}}) {
            straight = straight.rebuilt(kind, rows, columns, false, kSize);
            QVERIFY(difference(straight.xySurface(),
                               Warp::straight(kind, rows, columns, kSize).xySurface()) < 1e-9);
        }
    }

    void resetForgetsTheOutputHalfOnly() {
        Warp warp = crumpled(Kind::Curve, 3, 3);
        warp.uv[4] = {{0.7, 0.4}, true};
        const Warp kept = warp.rebuilt(Kind::Curve, 5, 5, true, kSize);
        QCOMPARE(kept.xy, Warp::straight(Kind::Curve, 5, 5, kSize).xy);
        QCOMPARE(kept.uv[12], (ControlPoint{{0.7, 0.4}, false}));
        QCOMPARE(warp.rebuilt(Kind::None, 2, 2, false, kSize),
                 Warp::straight(Kind::None, 2, 2, kSize));
    }

    void picturesAreDrawnWhereTheSurfaceIs() {
        const QImage picture = map({200, 120});
        const QTransform toTarget(0.25, 0, 0, 0.25, 240, 135);
        for (const auto& [kind, grid] :
             {std::pair(Kind::Keystone, 2), {Kind::Bezier, 7}, {Kind::Curve, 9}}) {
            const Surface surface = kKeystone.rebuilt(kind, grid, grid, false, kSize).xySurface();
            Warp source = Warp::straight(kind, grid, grid, kSize);
            for (ControlPoint& point : source.uv)
                point.position = {0.1 + 0.8 * point.position.x(), 0.2 + 0.6 * point.position.y()};
            QImage target(480, 270, QImage::Format_ARGB32_Premultiplied);
            target.fill(Qt::transparent);
            // Of the picture only the right half is the item's.
            WarpRasterizer::draw(target, picture, {0.5, 0, 0.5, 1}, surface, source.uvSurface(),
                                 toTarget);
            for (int i = 1; i < 1600; ++i) {
                const double s = i % 40 / 40.0, t = i / 40 / 40.0;
                if (s == 0 || t == 0)
                    continue;
                const QRgb pixel = target.pixel(toTarget.map(surface.at(s, t)).toPoint());
                QCOMPARE(qAlpha(pixel), 255); // no hole between the triangles
                QVERIFY(std::abs(qRed(pixel) - (100 + 100 * (0.1 + 0.8 * s))) < 2);
                QVERIFY(std::abs(qGreen(pixel) - 120 * (0.2 + 0.6 * t)) < 2);
            }
            for (const QPointF outside : {QPointF(-940, -520), QPointF(800, 0)})
                QCOMPARE(target.pixel(toTarget.map(outside).toPoint()), 0u);
        }
    }

    void anyMeshIsDrawnWithoutHarm() {
        const QImage picture = map({64, 64});
        QImage target(320, 180, QImage::Format_ARGB32_Premultiplied);
        target.fill(Qt::transparent);
        for (const double far : {0.0, 1e3, 1e7}) {
            Warp warp = crumpled(Kind::Bezier, 4, 4);
            warp.xy[0].position = {-far, far};
            warp.xy[15].position = {far, far / 3};
            warp.uv[5].position = {far, -far};
            WarpRasterizer::draw(target, picture, {0, 0, 1, 1}, warp.xySurface(), warp.uvSurface(),
                                 QTransform(0.2, 0, 0, 0.2, 160, 90));
        }
        QVERIFY(qAlpha(target.pixel(160, 90)) == 255);
    }
};

QTEST_GUILESS_MAIN(SurfaceTest)
#include "tst_surface.moc"
