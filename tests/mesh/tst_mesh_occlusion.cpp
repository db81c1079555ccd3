#include "mesh/MeshOcclusion.h"

#include <QRandomGenerator>
#include <QTest>
#include <QtMath>

#include <cmath>

/// What is left out of the picture of a mesh is hidden: checked pixel by pixel.
class MeshOcclusionTest : public QObject {
    Q_OBJECT

private slots:
    void onlyHiddenPartsAreLeftOut() {
        constexpr double kRadius = 10;
        QRandomGenerator random(1709);
        int left = 0;
        int drawn = 0;
        for (int mesh = 0; mesh < 40; ++mesh) {
            MeshPicture picture;
            picture.zoom = 0.2 + random.generateDouble();
            const double rotation = 90 * random.bounded(4) + random.bounded(2) * random.bounded(90);
            const double step = (4 + random.bounded(30)) / picture.zoom; // to the next point
            for (int id = 0; id < 12 * 12; ++id) {
                const QPointF jitter(random.bounded(step / 2), random.bounded(step / 2));
                picture.points.push_back({QPointF(id % 12, id / 12) * step + jitter, rotation, id,
                                          true, MeshPoint::State::Unselected, MeshPicture::kAll});
                if (id % 12 > 0)
                    picture.lines.emplace_back(picture.points[std::size_t(id) - 1].position,
                                               picture.points.back().position);
            }
            const std::vector<QLineF> lines = picture.lines;
            removeHidden(picture, 2 * kRadius);

            const auto covers = [&](const QPointF& centre, const QPointF& place) {
                return QLineF(centre, place).length() * picture.zoom <= kRadius - 1;
            };
            const QLineF right = QLineF::fromPolar(1 / picture.zoom, -rotation);
            const QPointF down(-right.dy(), right.dx());
            for (std::size_t i = 0; i < picture.points.size(); ++i) {
                for (int pixel = 0; pixel < 41 * 41; ++pixel, ++drawn) {
                    const double x = pixel % 41 / 2.0 - 10;
                    const double y = pixel / 41 / 2.0 - 10;
                    if (picture.points[i].visible.contains(x, y))
                        continue;
                    ++left;
                    const QPointF place = picture.points[i].position + right.p2() * x + down * y;
                    QVERIFY(std::any_of(
                        picture.points.begin() + std::ptrdiff_t(i) + 1, picture.points.end(),
                        [&](const auto& above) { return covers(above.position, place); }));
                }
            }
            for (const QLineF& line : lines) {
                const QPointF across =
                    QPointF(-line.dy(), line.dx()) / line.length() / picture.zoom;
                if (std::find(picture.lines.begin(), picture.lines.end(), line) ==
                    picture.lines.end())
                    for (const double at : {0.25, 0.5, 0.75})
                        QVERIFY(covers(line.p1(), line.pointAt(at) + 2 * across) ||
                                covers(line.p2(), line.pointAt(at) + 2 * across));
            }
        }
        QVERIFY(left > drawn / 20); // dense meshes were among them
    }
};

QTEST_APPLESS_MAIN(MeshOcclusionTest)
#include "tst_mesh_occlusion.moc"
