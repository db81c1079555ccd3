#include "tests/support/MessageGuard.h"
#include "tools/demo_producer/ShowCatalog.h"
#include "tools/demo_producer/WarpRasterizer.h"

#include <QLineF>
#include <QTest>

#include <cmath>
#include <optional>

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
        warp.xy[i].place = corners[i];
    return warp;
}

const Warp kKeystone = keystone({{{-900, -500}, {700, -300}, {-950, 480}, {820, 300}}});

/// A mesh in which no two points are moved alike.
Warp crumpled(Kind kind, int rows, int columns) {
    Warp warp = Warp::straight(kind, rows, columns, kSize);
    for (std::size_t i = 0; i < warp.xy.size(); ++i)
        warp.xy[i].place += QPointF(40 * std::sin(double(i) * 1.7), 30 * std::cos(double(i) * 2.3));
    return warp;
}

/// A picture whose colour tells the place: red the texel's column, green its row.
QImage map(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x, y, 77));
    }
    return image;
}

} // namespace

class SurfaceTest : public QObject {
    Q_OBJECT

private slots:
    void init() { messages_.emplace(); }
    void cleanup() {
        messages_->verify();
        messages_.reset();
    }

    void keystoneIsProjective() {
        const Surface surface = kKeystone.xySurface();
        QVERIFY(surface.projection());
        for (std::size_t i = 0; i < 4; ++i)
            QVERIFY(distance(surface.at(double(i % 2), double(i / 2)), kKeystone.xy[i].place) <
                    1e-9);
        // Straight lines stay straight, so the middle is where the diagonals cross.
        QPointF crossing;
        QLineF(surface.at(0, 0), surface.at(1, 1))
            .intersects(QLineF(surface.at(1, 0), surface.at(0, 1)), &crossing);
        QVERIFY(distance(surface.at(0.5, 0.5), crossing) < 1e-9);
        // The far half is drawn smaller: the map is not bilinear.
        QVERIFY(distance(surface.at(0.5, 0.5), surface.at(1, 0.5)) <
                0.9 * distance(surface.at(0, 0.5), surface.at(0.5, 0.5)));
        const QLineF line(surface.at(0.1, 0.2), surface.at(0.9, 0.7));
        const QPointF between = surface.at(0.5, 0.45) - line.p1();
        QVERIFY(std::abs(line.dx() * between.y() - line.dy() * between.x()) / line.length() < 1e-9);
    }

    void cornersWithoutProjectionAreStillMet() {
        const auto corners = std::array<QPointF, 4>{{{0, 0}, {-300, 10}, {0, 200}, {400, 200}}};
        const Warp folded = keystone(corners);
        const Surface surface = folded.xySurface();
        QVERIFY(!surface.projection());
        for (std::size_t i = 0; i < 4; ++i)
            QVERIFY(distance(surface.at(double(i % 2), double(i / 2)), corners[i]) < 1e-9);
        const Warp point = keystone({});
        QCOMPARE(point.xySurface().at(0.3, 0.6), QPointF());
    }

    void curvePassesThroughItsPoints_data() {
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("columns");
        QTest::newRow("smallest") << 2 << 2;
        QTest::newRow("3 x 5") << 3 << 5;
        QTest::newRow("largest") << 64 << 64;
    }
    void curvePassesThroughItsPoints() {
        QFETCH(int, rows);
        QFETCH(int, columns);
        const Warp warp = crumpled(Kind::Curve, rows, columns);
        const auto samples =
            warp.xySurface().sample(evenParameters(columns - 1), evenParameters(rows - 1));
        for (std::size_t i = 0; i < samples.size(); ++i)
            QVERIFY(distance(samples[i], warp.xy[i].place) < 1e-9);
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
            point.place.ry() += 1e-4 * point.place.x() * point.place.x();
        const QPointF middle = parabola.xySurface().at(0.15, 0.5);
        QVERIFY(distance(middle, {-672, 1e-4 * 672 * 672}) < 1e-9);
    }

    void bezierFollowsItsControlPoints() {
        const Warp warp = crumpled(Kind::Bezier, 4, 7);
        const Surface surface = warp.xySurface();
        QCOMPARE(surface.patchColumns(), 2);
        for (const int column : {0, 3, 6}) { // on the surface; the handles are not
            QVERIFY(distance(surface.at(column / 6.0, 0), warp.xy[std::size_t(column)].place) <
                    1e-9);
            QVERIFY(distance(surface.at(column / 6.0, 1), warp.xy[std::size_t(21 + column)].place) <
                    1e-9);
        }
        const auto edge = [&warp](std::size_t i) { return warp.xy[i].place; };
        QVERIFY(distance(surface.at(0.25, 0), (edge(0) + 3 * edge(1) + 3 * edge(2) + edge(3)) / 8) <
                1e-9);
    }

    void conversionsKeepTheShape_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("columns");
        QTest::addColumn<double>("tolerance"); // pixels of a screen of 1920 x 1080
        QTest::newRow("bezier of one patch") << int(Kind::Bezier) << 4 << 4 << 8.0;
        QTest::newRow("bezier") << int(Kind::Bezier) << 7 << 10 << 0.5;
        QTest::newRow("curve") << int(Kind::Curve) << 5 << 6 << 6.0;
        QTest::newRow("fine curve") << int(Kind::Curve) << 16 << 16 << 0.4;
    }
    void conversionsKeepTheShape() {
        QFETCH(int, kind);
        QFETCH(int, rows);
        QFETCH(int, columns);
        QFETCH(double, tolerance);
        const Warp warp = kKeystone.rebuilt(Kind(kind), rows, columns, false, kSize);
        const double error = difference(warp.xySurface(), kKeystone.xySurface());
        QVERIFY2(error < tolerance, qPrintable(QString::number(error)));
        // A bezier of as many patches takes over any curve or bezier as it is.
        const Warp same = warp.rebuilt(Kind::Bezier, 3 * warp.xySurface().patchRows() + 1,
                                       3 * warp.xySurface().patchColumns() + 1, false, kSize);
        QVERIFY(difference(same.xySurface(), warp.xySurface()) < 1e-6);
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

    void picturesAreDrawnWhereTheSurfaceIs_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("grid");
        QTest::newRow("keystone") << int(Kind::Keystone) << 2;
        QTest::newRow("bezier") << int(Kind::Bezier) << 7;
        QTest::newRow("curve") << int(Kind::Curve) << 9;
    }
    void picturesAreDrawnWhereTheSurfaceIs() {
        QFETCH(int, kind);
        QFETCH(int, grid);
        const Warp warp = kKeystone.rebuilt(Kind(kind), grid, grid, false, kSize);
        Warp source = Warp::straight(Kind(kind), grid, grid, kSize);
        for (ControlPoint& point : source.uv)
            point.place = {0.1 + 0.8 * point.place.x(), 0.2 + 0.6 * point.place.y()};
        const QImage picture = map({200, 120});
        QImage target(480, 270, QImage::Format_ARGB32_Premultiplied);
        target.fill(Qt::transparent);
        const QTransform toTarget(0.25, 0, 0, 0.25, 240, 135);
        // Of the picture only the right half is the item's.
        WarpRasterizer::draw(target, picture, {0.5, 0, 0.5, 1}, warp.xySurface(),
                             source.uvSurface(), toTarget);
        const Surface surface = warp.xySurface();
        for (int i = 1; i < 40; ++i) {
            for (int j = 1; j < 40; ++j) {
                const double s = i / 40.0;
                const double t = j / 40.0;
                const QRgb pixel = target.pixel(toTarget.map(surface.at(s, t)).toPoint());
                QCOMPARE(qAlpha(pixel), 255); // no hole between the triangles
                QVERIFY(std::abs(qRed(pixel) - (100 + 100 * (0.1 + 0.8 * s))) < 2);
                QVERIFY(std::abs(qGreen(pixel) - 120 * (0.2 + 0.6 * t)) < 2);
            }
        }
        QCOMPARE(target.pixel(toTarget.map(QPointF(-940, -520)).toPoint()), 0u);
        QCOMPARE(target.pixel(toTarget.map(QPointF(800, 0)).toPoint()), 0u);
    }

    void anyMeshIsDrawnWithoutHarm() {
        const QImage picture = map({64, 64});
        QImage target(320, 180, QImage::Format_ARGB32_Premultiplied);
        target.fill(Qt::transparent);
        for (const double far : {0.0, 1e3, 1e7}) {
            Warp warp = crumpled(Kind::Bezier, 4, 4);
            warp.xy[0].place = {-far, far};
            warp.xy[15].place = {far, far / 3};
            warp.uv[5].place = {far, -far};
            WarpRasterizer::draw(target, picture, {0, 0, 1, 1}, warp.xySurface(), warp.uvSurface(),
                                 QTransform(0.2, 0, 0, 0.2, 160, 90));
        }
        QVERIFY(qAlpha(target.pixel(160, 90)) == 255);
    }

private:
    std::optional<MeshpadTest::MessageGuard> messages_;
};

QTEST_GUILESS_MAIN(SurfaceTest)
#include "surface_test.moc"
