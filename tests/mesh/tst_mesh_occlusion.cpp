#include "mesh/MeshOcclusion.h"

#include <QRandomGenerator>
#include <QTest>
#include <QtMath>

#include <cmath>

/// What is left out of a picture of a mesh is hidden: looked at pixel by pixel.
class MeshOcclusionTest : public QObject {
    Q_OBJECT

private slots:
    void nothingThatIsSeenIsLeftOut();
};

void MeshOcclusionTest::nothingThatIsSeenIsLeftOut() {
    constexpr double kRadius = 10;
    QRandomGenerator random(1709);
    double left = 0;
    double drawn = 0;
    for (int mesh = 0; mesh < 40; ++mesh) {
        MeshPicture picture;
        picture.zoom = 0.2 + random.generateDouble();
        const double rotation = 90 * random.bounded(4) + random.bounded(2) * random.bounded(90);
        const double step = (4 + random.bounded(30)) / picture.zoom; // to the next point
        for (int id = 0; id < 12 * 12; ++id) {
            const QPointF trembling(random.bounded(step / 2), random.bounded(step / 2));
            picture.points.push_back({QPointF(id % 12, id / 12) * step + trembling, rotation, id,
                                      true, MeshPoint::State::Unselected, MeshPicture::kAll});
            if (id % 12 > 0)
                picture.lines.emplace_back(picture.points[std::size_t(id) - 1].position,
                                           picture.points.back().position);
        }
        const std::vector<QLineF> lines = picture.lines;
        leaveOutHidden(picture, 2 * kRadius);

        const auto distance = [&](const QPointF& a, const QPointF& b) {
            return std::hypot(a.x() - b.x(), a.y() - b.y()) * picture.zoom;
        };
        const double angle = qDegreesToRadians(rotation);
        const QPointF right = QPointF(std::cos(angle), std::sin(angle)) / picture.zoom;
        const QPointF down(-right.y(), right.x());
        for (std::size_t i = 0; i < picture.points.size(); ++i) {
            for (double x = -10; x <= 10; x += 0.5) {
                for (double y = -10; y <= 10; y += 0.5) {
                    ++drawn;
                    if (picture.points[i].seen.contains(x, y))
                        continue;
                    ++left;
                    const QPointF place = picture.points[i].position + right * x + down * y;
                    bool hidden = false;
                    for (std::size_t j = i + 1; j < picture.points.size() && !hidden; ++j)
                        hidden = distance(picture.points[j].position, place) <= kRadius - 1;
                    QVERIFY(hidden);
                }
            }
        }
        for (const QLineF& line : lines) {
            if (std::find(picture.lines.begin(), picture.lines.end(), line) != picture.lines.end())
                continue;
            const QPointF across = QPointF(-line.dy(), line.dx()) / line.length() / picture.zoom;
            for (const double at : {0.25, 0.5, 0.75}) {
                const QPointF edge = line.pointAt(at) + 2 * across;
                QVERIFY(distance(edge, line.p1()) < kRadius - 1 ||
                        distance(edge, line.p2()) < kRadius - 1);
            }
        }
    }
    QVERIFY(left > drawn / 20); // dense meshes were among them
}

QTEST_APPLESS_MAIN(MeshOcclusionTest)
#include "tst_mesh_occlusion.moc"
