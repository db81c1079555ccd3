#include "mesh/MeshOcclusion.h"

#include <QRandomGenerator>
#include <QTest>
#include <QtMath>

#include <algorithm>

/// removeHidden() removes only what other points cover: checked pixel by pixel.
class MeshOcclusionTest : public QObject {
    Q_OBJECT

private slots:
    void removesOnlyHiddenParts() {
        constexpr double kRadius = 10;
        QRandomGenerator random(1709);
        int removed = 0;
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

            const auto covers = [&](const QPointF& centre, const QPointF& position) {
                return QLineF(centre, position).length() * picture.zoom <= kRadius - 1;
            };
            const QLineF right = QLineF::fromPolar(1 / picture.zoom, -rotation);
            const QPointF down(-right.dy(), right.dx());
            for (auto point = picture.points.begin(); point != picture.points.end(); ++point) {
                for (int pixel = 0; pixel < 41 * 41; ++pixel, ++drawn) {
                    const QPointF offset(pixel % 41 / 2.0 - 10, pixel / 41 / 2.0 - 10);
                    if (point->visible.contains(offset))
                        continue;
                    ++removed;
                    const QPointF at =
                        point->position + right.p2() * offset.x() + down * offset.y();
                    QVERIFY(std::any_of(point + 1, picture.points.end(), [&](const auto& above) {
                        return covers(above.position, at);
                    }));
                }
            }
            for (const QLineF& line : lines) {
                if (std::ranges::find(picture.lines, line) != picture.lines.end())
                    continue;
                const QPointF edge = 2 * QPointF(-line.dy(), line.dx()) / line.length();
                for (const double at : {0.25, 0.5, 0.75}) {
                    const QPointF position = line.pointAt(at) + edge / picture.zoom;
                    QVERIFY(covers(line.p1(), position) || covers(line.p2(), position));
                }
            }
        }
        QVERIFY(removed > drawn / 20); // dense meshes were among them
    }
};

QTEST_APPLESS_MAIN(MeshOcclusionTest)
#include "tst_mesh_occlusion.moc"
