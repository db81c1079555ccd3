#include "resources/CompanionResources.h"
#include "tests/support/MessageGuard.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QTest>

#include <memory>
#include <optional>

/// The rules of the mesh, without a window: libraries and plain objects in place of the scene.
class MeshRulesTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { messages_.emplace(); }
    void cleanup() {
        messages_->verify();
        messages_.reset();
    }

    void neighboursAreMutual();
    void linesOfAMesh();
    void directionsFollowTheView();
    void clampingKeepsShapeAndBounds();
    void positionsSurviveTheWayToTheProducerAndBack();
    void mirrorsOfAMeshThatIsNotSquare();
    void toolTipsNameKeys();

private:
    /// The value of a function's body, in which Rules, Deformer and Tools are the libraries.
    QVariant run(const QString& body);

    QQmlEngine engine_;
    std::unique_ptr<QObject> libraries_;
    std::optional<MeshpadTest::MessageGuard> messages_;
};

void MeshRulesTest::initTestCase() {
    initCompanionResources();
    QQmlComponent component(&engine_);
    component.setData(R"QML(
        import QtQuick
        import "qrc:/js/meshRules.js" as Rules
        import "qrc:/js/deformerActions.js" as Deformer
        import "qrc:/js/warpToolButtonsActions.js" as Tools
        QtObject {
            // A mesh with points like those of the scene, and a bridge that takes down what it is told.
            function makeScene(rows, columns, width, height) {
                const makeGrid = () => {
                    const grid = { currentSelectedPointId: -1, lastSelectedPointId: -1, pointsArray: [] };
                    for (let id = 0; id < rows * columns; ++id)
                        grid.pointsArray.push({ pointNum: id, state: "UNSELECTED", selected: false,
                                                x: id % columns * width / (columns - 1),
                                                y: Math.floor(id / columns) * height / (rows - 1) });
                    grid.placePoint = (id, x, y) => {
                        const point = grid.pointsArray[id];
                        point.x = point.previousX = x;
                        point.y = point.previousY = y;
                    };
                    return grid;
                };
                const item = { sourceWidth: width, sourceHeight: height, deformerColsNumber: columns,
                               deformerRowsNumber: rows, deformerGrids: [makeGrid(), makeGrid()],
                               getFullRotation: () => 0 };
                const told = [];
                return {
                    told: told, item: item,
                    bridge: { moveScreenPoint: (id, name, point, x, y) => told.push([point, x, y]) },
                    canvasCurrentItemType: 3, canvasCurrentItemId: 0, isCurrentGridXy: true,
                    canvasScreenItemArray: [{ item: item, screenId: 0, screenName: "", screenModeType: 2 }],
                    pointerArea: { endGesture: () => {} }, movers: 0,
                    currentPointText: { clear: () => {}, show: () => {} }
                };
            }
            function run(body) { return eval("(() => {" + body + "})()");
}
}
    )QML",
                      QUrl("qrc:/libraries.qml"));
    libraries_.reset(component.create());
    QVERIFY2(libraries_, qPrintable(component.errorString()));
}

QVariant MeshRulesTest::run(const QString& body) {
    QVariant result;
    QMetaObject::invokeMethod(libraries_.get(), "run", Q_RETURN_ARG(QVariant, result),
                              Q_ARG(QVariant, body));
    return result;
}

void MeshRulesTest::neighboursAreMutual() {
    QCOMPARE(run(R"(
        const opposite = { top: "bottom", bottom: "top", left: "right", right: "left" };
        const rows = 4, columns = 5;
        let pairs = 0;
        for (let p = 0; p < rows * columns; ++p) {
            for (const direction in opposite) {
                const next = Rules.neighbour(direction, p, columns, rows * columns);
                if (next < 0)
                    continue;
                ++pairs;
                if (Rules.neighbour(opposite[direction], next, columns, rows * columns) !== p)
                    return direction + " of " + p;
                const sameLine = Rules.isVertical(direction) ? next % columns === p % columns
                                                             : Math.floor(next / columns) === Math.floor(p / columns);
                if (!sameLine)
                    return direction + " of " + p + " is in another line";
            }
        }
        return pairs; // each inner edge both ways, none around the rim
    )"),
             QVariant(2 * (4 * 4 + 3 * 5)));
}

void MeshRulesTest::linesOfAMesh() {
    const auto count = [this](int rows, int columns, bool patches) {
        return run(QString("return Rules.lineEnds(%1, %2, %3).length / 2")
                       .arg(rows)
                       .arg(columns)
                       .arg(patches ? "true" : "false"))
            .toInt();
    };
    QCOMPARE(count(2, 2, false), 4);
    QCOMPARE(count(3, 3, false), 12);
    QCOMPARE(count(4, 4, true), 12);
    QCOMPARE(count(4, 7, true), 2 * 6 + 3 * 3); // two patches side by side
    QCOMPARE(run("return Rules.pointsOfLine('bottomRow', 5, 3, 5).join()"),
             QVariant("10,11,12,13,14"));
    QCOMPARE(run("return Rules.pointsOfLine('rightColumn', 8, 3, 5).join()"), QVariant("4,9,14"));
    QCOMPARE(run("return Rules.pointsOfLine('currentColumn', 7, 3, 5).join()"), QVariant("2,7,12"));
    QCOMPARE(run("return Rules.pointsOfLine('topRow', 4, 3, 5).length"), 0);
    QCOMPARE(run("return Rules.pointsOfLine('leftColumn', 5, 3, 5).length"), 0);
}

void MeshRulesTest::directionsFollowTheView() {
    // What the operator sees at the top is, in a mesh turned clockwise by 90 degrees, the
    // mesh's left.
    const QString turn = R"(
        const rotate = (p, degrees) => {
            const a = degrees * Math.PI / 180;
            return Qt.point(p.x * Math.cos(a) - p.y * Math.sin(a), p.x * Math.sin(a) + p.y * Math.cos(a));
        };
    )";
    QCOMPARE(run(turn + "return ['top', 'right', 'bottom', 'left'].map(d => "
                        "Rules.turnedDirection(d, -90, rotate)).join()"),
             QVariant("left,top,right,bottom"));
    QCOMPARE(run(turn + "return ['topRow', 'rightColumn', 'bottomRow', 'leftColumn', 'currentRow', "
                        "'currentColumn'].map(l => Rules.turnedLine(l, -90, rotate)).join()"),
             QVariant("leftColumn,topRow,rightColumn,bottomRow,currentColumn,currentRow"));
    QCOMPARE(run(turn + "return ['currentRow', 'currentColumn', 'topRow'].map(l => "
                        "Rules.turnedLine(l, 180, rotate)).join()"),
             QVariant("currentRow,currentColumn,bottomRow"));
}

void MeshRulesTest::clampingKeepsShapeAndBounds() {
    QCOMPARE(run(R"(
        let seed = 7;
        const random = () => (seed = (seed * 16807) % 2147483647) / 2147483647;
        for (let round = 0; round < 3000; ++round) {
            const width = 1 + Math.floor(random() * 4000), height = 1 + Math.floor(random() * 4000);
            const outside = round % 4 === 0; // one of the points
            const points = [];
            for (let i = 0; i < 4; ++i)
                points.push({ x: random() * width, y: random() * height });
            if (outside)
                points[round % 3].x = -random() * width;
            const dx = (random() - 0.5) * 4 * width, dy = (random() - 0.5) * 4 * height;
            const delta = Rules.clampedDelta(points, width, height, dx, dy);
            for (const p of points) {
                const wasInside = p.x >= 0 && p.x <= width;
                const x = p.x + delta.dx, y = p.y + delta.dy;
                if (wasInside && (x < 0 || x > width) || y < 0 || y > height)
                    return "round " + round + ": " + p.x + " -> " + x + " of " + width;
            }
            if (!outside && (Math.abs(delta.dx) > Math.abs(dx) || delta.dx * dx < 0))
                return "round " + round + ": further than asked";
            const free = points.every(p => p.x + dx >= 0 && p.x + dx <= width);
            if (free && delta.dx !== dx)
                return "round " + round + ": clamped for nothing";
        }
        return "kept";
    )"),
             QVariant("kept"));
}

void MeshRulesTest::positionsSurviveTheWayToTheProducerAndBack() {
    QCOMPARE(run(R"(
        let seed = 11;
        const random = () => (seed = (seed * 16807) % 2147483647) / 2147483647;
        for (let round = 0; round < 8000; ++round) {
            const size = 1 + Math.floor(random() * 16384);
            const x = (random() - 0.3) * size * Math.pow(10, Math.floor(random() * 6) - 3);
            for (const isXy of [true, false]) {
                const told = Rules.toProducer(x, size, isXy);
                const kept = Rules.fromProducer(told, size, isXy);
                if (Math.abs(kept - x) > 1e-9 * (Math.abs(x) + size))
                    return x + " became " + kept;
                // What is told once more, unmoved, is the same to the last bit, and so is its echo.
                const again = Rules.toProducer(kept, size, isXy);
                if (Rules.fromProducer(again, size, isXy) !== kept)
                    return x + " of " + size + " wanders";
                if (isXy && again !== told)
                    return x + " of " + size + " is told as " + told + " and " + again;
            }
        }
        return "agreed";
    )"),
             QVariant("agreed"));
}

void MeshRulesTest::mirrorsOfAMeshThatIsNotSquare() {
    // As many rows are mirrored horizontally as there are columns; there may be fewer rows, or
    // more.
    const QString mirror = R"(
        const scene = makeScene(%1, %2, 300, 200);
        const before = scene.item.deformerGrids[0].pointsArray.map(p => [p.x, p.y]);
        scene.item.deformerGrids[0].placePoint(0, 17, 5);
        Deformer.horizontalMirror(scene);
        const after = scene.item.deformerGrids[0].pointsArray;
        return [scene.told.length, after[%2 - 1].x, after[%2 - 1].y, after[0].x].join();
    )";
    QCOMPARE(run(mirror.arg(4).arg(2)), QVariant("4,283,5,0"));
    QCOMPARE(run(mirror.arg(2).arg(4)), QVariant("8,283,5,0"));
    QCOMPARE(run(R"(
        const scene = makeScene(3, 2, 300, 200);
        scene.item.deformerGrids[0].placePoint(5, 250, 190);
        Deformer.verticalMirror(scene);
        Deformer.verticalFlip(scene);
        Deformer.horizontalFlip(scene);
        const p = scene.item.deformerGrids[0].pointsArray;
        return [p[1].x, p[1].y, p[5].x, p[5].y].join();
    )"),
             QVariant("50,190,0,0"));
}

void MeshRulesTest::toolTipsNameKeys() {
    QCOMPARE(run("return Tools.selectToolTip('(Alt + %1)', 3)"), QVariant("(Alt + Left)"));
    QCOMPARE(run("return Tools.selectToolTip('(%1 or %2)', 10)"), QVariant("(Up or Down)"));
    QCOMPARE(run("return Tools.selectToolTip('All (Ctrl + A)', 0)"), QVariant("All (Ctrl + A)"));
}

QTEST_GUILESS_MAIN(MeshRulesTest)
#include "tst_mesh_rules.moc"
