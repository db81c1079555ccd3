#include "tests/mesh/SceneTest.h"

using namespace MeshpadTest;

/// Selecting, moving, deforming and showing items by pointer, keys, buttons, actions and sticks.
class EditingTest : public SceneTest {
    Q_OBJECT

private slots:
    void selectsPoints_data() {
        rows("grid.pointsArray.map(it => it.state[0]).join('') + [current, "
             "grid.lastSelectedPointId]",
             R"(
        another point | screen; click 5; add 6; click 0 | CUUUUUUUU0,-1
        several points | screen; click 5; add 6; add 8 | UUUUUSSUC8,6
        a selected point once more | screen; click 5; add 6; add 8; add 6 | UUUUUSCUS6,8
        the current point once more | screen; click 5; add 6; add 6 | UUUUUSCUU6,5
        one of several | screen; click 5; add 6; add 8; click 5 | UUUUUCSUS5,8
        the nearest of covering circles | screen; click 0; updatePoint(0, 1, 20, 0); click 1 | UCUUUUUUU1,-1
        the current point below another | screen; click 0; updatePoint(0, 1, 0, 0); click 0 | CUUUUUUUU0,-1
        a tapped point within reach | screen; tap 4 14 8 | UUUUCUUUU4,-1
        nothing by finger behind a dialog | screen; bar 2; tap 0 0 0; tap 8 0 0 | UUUUUUUUU-1,-1)");
        rows("selected", R"(
        nothing above or to the right | screen 3 2 4; click 3; key Alt+Up; key Ctrl+Shift+Alt+Up; key Alt+Right; key Ctrl+Shift+Alt+Right | 3
        nothing below or to the left | screen 3 4 3; click 9; key Alt+Down; key Ctrl+Shift+Alt+Down; key Shift+Alt+Left; key Ctrl+Shift+Alt+Left | 9
        no line without a current point | screen; key Up; key Ctrl+Alt+Up; key Ctrl+Shift+Alt+Up |
        the first point | screen; key Alt+Down | 0
        the first point when adding | screen; key Shift+Alt+Up | 0
        a neighbour in a turned view | screen 3 3 4; key R; click 5; key Alt+Up | 4
        a row in a turned view | screen 3 3 4; key R; click 5; key Ctrl+Alt+Left | 1 5 9
        a neighbour when turned back | screen 3 3 4; key Ctrl+R; click 5; key Alt+Up | 6
        nothing hidden | screen; click 4; mode 1; key Left; key Ctrl+A; key Esc; action 3 | 4)");
    }

    void selectsPoints() { check(); }
    void selectsPointsByTool_data() {
        const QString tools = R"(
        Ctrl+A | 3 | 0 | 0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19, 19
        Esc | 4 | 1 | , -1
        Alt+Up | 5 | 5 | 2, 2
        Alt+Right | 6 | 2 | 8, 8
        Alt+Down | 7 | 4 | 12, 12
        Alt+Left | 8 | 3 | 6, 6
        Shift+Alt+Up | 9 | 7 | 2 7, 2
        Shift+Alt+Right | 10 | 9 | 7 8, 8
        Shift+Alt+Down | 11 | 8 | 7 12, 12
        Shift+Alt+Left | 12 | 6 | 6 7, 6
        Ctrl+Alt+Up | 13 | 10 | 2 7 12 17, 17
        Ctrl+Alt+Down | 13 | 10 | 2 7 12 17, 17
        Ctrl+Alt+Left | 14 | 11 | 5 6 7 8 9, 9
        Ctrl+Alt+Right | 14 | 11 | 5 6 7 8 9, 9
        Ctrl+Shift+Alt+Up | 15 | 13 | 0 1 2 3 4 7, 4
        Ctrl+Shift+Alt+Right | 16 | 15 | 3 7 8 13 18, 18
        Ctrl+Shift+Alt+Down | 17 | 14 | 7 10 11 12 13 14, 14
        Ctrl+Shift+Alt+Left | 18 | 12 | 1 6 7 11 16, 16)";
        for (const QString& tool : tools.trimmed().split('\n')) {
            const QStringList cells = tool.trimmed().split(" | ");
            int cell = 0;
            for (const char* way : {"key", "action", "select"})
                rows("selected + ', ' + current",
                     QString("%1 by %2 | media 3 4 5; click 7; %2 %3 | %4")
                         .arg(cells[0], way, cells[cell++], cells[3]));
        }
    }

    void selectsPointsByTool() { check(); }
    void movesPoints_data() {
        // From (500, 300), (1000, 600) and (0, 0).
        rows("[at(4), at(8), at(0), isMovingPoint]", R"(
        left | media; click 4; add 8; key Left | 499,300,999,600,0,0,false
        up by a fine step | media; click 4; key Shift+Up | 500,299.8,1000,600,0,0,false
        down by a coarse step | media; click 4; key Ctrl+Down | 500,310,1000,600,0,0,false
        up in a turned view | media; key R; click 4; key Ctrl+Up | 490,300,1000,600,0,0,false
        by repeated key | media; click 4; repeat Left; repeat Left; release Left | 498,300,1000,600,0,0,false
        by stick | media; zoomSlider.value = 0.5; click 4; stick 0.5 0; stick 0 0 | 500.5,300,1000,600,0,0,false
        by hidden stick | screen; click 4; mode 1; stick 1 0 | 960,540,1920,1080,0,0,false)");
        rows("[moved(4), moved(0), moved(8), isMovingPoint]", R"(
        by mouse | screen; click 0; add 4; press 4; move 9 9; move 20 10; lift | 20,10,20,10,0,0,false
        by mouse twice | screen; drag 4 9 9; drag 4 20 10 | 29,19,0,0,0,0,false
        in a view that turns | screen; press 4; move 20 0; key R; move 20 0; move 20 30; lift | 50,0,0,0,0,0,false
        not when unselected | screen; press 4; key Esc; move 60 60; lift | 0,0,0,0,0,0,false
        by finger beyond the first six pixels | screen; swipe 4 36 48 | 32,43,0,0,0,0,false
        not by a finger that rolls | screen; swipe 4 3 4 | 0,0,0,0,0,0,false)");
    }

    void movesPoints() { check(); }
    void deformsMeshByTool_data() {
        const QString deformations = R"(
        horizontal mirror | 0 | 1 | 970:3 980:2 990:1 1000:0 930:7 940:6 950:5 960:4 890:11 900:10 910:9 920:8
        vertical mirror | 0 | 2 | 80:592 90:591 100:590 110:589 40:596 50:595 60:594 70:593 0:600 10:599 20:598 30:597
        horizontal flip | 0 | 3 | 1000:0 990:1 980:2 970:3 960:4 950:5 940:6 930:7 920:8 910:9 900:10 890:11
        vertical flip | 0 | 4 | 0:600 10:599 20:598 30:597 40:596 50:595 60:594 70:593 80:592 90:591 100:590 110:589
        UV to XY | 1 | 5 | 0:0 10:1 20:2 30:3 40:4 50:5 60:6 70:7 80:8 90:9 100:10 110:11
        XY to UV | 0 | 6 | 0:0 10:1 20:2 30:3 40:4 50:5 60:6 70:7 80:8 90:9 100:10 110:11)";
        for (const QString& line : deformations.trimmed().split('\n')) {
            const QStringList cells = line.trimmed().split(" | ");
            const int tool = cells[2].toInt();
            // Point n of the source stands at (10 n, n) before.
            const QString steps = "media 3 3 4; [...Array(12).keys()].forEach(n => updatePoint(" +
                                  cells[1] + ", n, 10 * n, n)); " +
                                  (tool == 6 ? "entry 'UV'; " : "");
            for (const QString& way :
                 {QString("tool %1").arg(tool), QString("action %1").arg(tool + 18)})
                rows("grid.pointsArray.map(p => Math.round(p.x) + ':' + Math.round(p.y)).join(' ')",
                     cells[0] + " by " + way + " | " + steps + way + " | " + cells[3]);
        }
        rows("[at(0)[0], at(9)[0]]", R"(
        only as many rows as columns in a mirror | media 3 4 3; updatePoint(0, 2, 990, 0); action 19 | 10,0)");
    }

    void deformsMeshByTool() { check(); }
    void keepsLockedPoints_data() {
        // From (640, 360) and (1280, 360) of 1920 x 1080.
        rows("[at(5), at(6)]", R"(
        in the zone by mouse | screen 3 4 4; bar 0; click 5; add 6; drag 6 -900 -500 | 0,0,640,0
        in the zone by finger | screen 3 4 4; bar 0; click 5; add 6; swipe 6 900 0 | 1280,360,1920,360
        in the zone by key | screen 3 4 4; bar 0; click 6; updatePoint(0, 6, 1915, 5); key Ctrl+Right | 640,360,1920,5
        in the zone by stick | screen 3 4 4; bar 0; click 6; updatePoint(0, 6, 5, 5); stick -1 0; stick 0 0 | 640,360,0,5
        in the zone of a new size | screen 3 4 4; bar 0; cppCanvas.screenItemAdded(3, 1285, 9, 0, 0, ''); click 6; key Ctrl+Right | 640,360,1285,9)");
        rows("grid.pointsArray[0].x < 0 && grid.pointsArray[0].y < 0", R"(
        in no zone when released | screen; bar 0; bar 0; drag 0 -30 -30 | true
        in no zone of another item | screen; bar 0; media; screen; drag 0 -30 -30 | true)");
        rows("[at(0)[0] > 0, at(0)[1], warpToolBar.zoneLockerButtonPushed]", R"(
        in the zone as UV of a texture | texture; entry 'UV'; bar 0; drag 0 80 -80 | true,0,true
        in no zone as XY of a texture | texture; entry 'UV'; entry 'XY' | false,0,false)");
        rows("[moved(4), selected, Math.round((canvasMedia.x + 430) * mediaScaleFactor), "
             "warpToolBar.moveLockerButtonPushed]",
             R"(
        in place while the canvas moves | screen; bar 1; drag 4 40 0 | 0,0,,40,true
        in place until released | screen; bar 1; bar 1; click 4 | 0,0,4,0,false
        not in place on another item | screen; bar 1; media; screen; click 4 | 0,0,4,0,false
        not in place on another mesh | media; bar 1; entry 'UV'; entry 'XY'; click 4 | 0,0,4,187,false)");
    }

    void keepsLockedPoints() { check(); }
    void showsItem_data() {
        // The screen fills 1 / 2.5 of the width of 1060 px.
        rows("(mediaScaleFactor - 1060 / 1920 / 2.5).toFixed(3) + ' ' + zoomSlider.enabled", R"(
        zoom by wheel | screen; wheel 2; wheel -1 | 0.050 true
        the smallest zoom | screen; wheel -20 | -0.121 true
        the largest zoom | screen; wheel 40 | 1.279 true
        zoom by trigger | screen; trigger 1 | -0.010 true
        no zoom without an item | wheel 1; screen; show nothing; wheel 1 | -0.121 false)");
        rows("[canvasMedia.x + 430, canvasMedia.y + 235].map(v => Math.round(v * 20 * "
             "mediaScaleFactor))",
             R"(
        the canvas by stick | screen; pan 0.5 -0.5 | -10,10
        the canvas by finger | screen; finger 600 30 40 0 | 800,0
        the canvas by finger between close points | screen 3 12 21; finger 541 305 40 0 | 800,0
        the centre in another size | screen; width += 200; height += 100 | 442,221)");
        rows("[mediaScaleFactor, canvasMedia.x, canvasMedia.y].map(v => v.toFixed(3))",
             "a mesh beyond the item | screen; updatePoint(0, 0, -1920, 0); canvas 0 | "
             "0.110,530.000,-235.000");
        rows("[item.viewingRotation, rotationDialog.selectedView, "
             "grid.pointsArray[0].viewingRotation]",
             R"(
        the right side | screen; key Ctrl+R | -90,3,90
        the front again | screen; key R; key R; key R; key R | 0,0,0
        the next item from there | screen; key Ctrl+R; media | 270,3,-270
        the item's rotation | media; cppCanvas.mediaItemAdded(1, 3000000011, 5, 1, 1, 30, '') | 0,0,-30)");
        rows("[grid.pointsArray.length, grid.linesArray.length, "
             "item.deformerGrids[1].linesArray.length, "
             "current, currentPointText.text.slice(15)]",
             R"(
        no mesh | screen; click 4; deform screen 0 2 2 | 0,0,0,-1,--     X: -- px     Y: -- px
        a keystone | screen; click 4; deform screen 1 5 5 | 4,4,4,-1,--     X: -- px     Y: -- px
        two bezier patches | screen; click 4; deform screen 2 4 7 | 28,21,21,-1,--     X: -- px     Y: -- px
        no selection after another item | media; click 4; show texture; show media | 9,12,12,-1,--     X: -- px     Y: -- px
        no selection of UV either | media; entry 'UV'; click 4; show texture; show media | 9,12,12,-1,--     X: -- px     Y: -- px)");
        rows("[at(0), at(6), at(11)]", R"(
        points as they were left | screen 3 3 4; updatePoint(0, 6, 7, 8); media; show screen | 0,0,7,8,1920,1080)");
        rows("[isMovingPoint, selected]", "no drag of a new mesh | screen; press 4; deform screen "
                                          "3 4 4; move 50 50; lift | false,");
        rows(
            "[0, 1].map(id => item.deformerGrids[id].visible && item.itemDeformer.visible) + ' ' + "
            "warpToolBar.mapButtonPushed + warpToolBar.zoneLockerButtonPushed",
            R"(
        only XY of a screen | screen; action 25 | true,false falsefalse
        only XY of a part | part; action 25 | true,false falsefalse
        UV of a texture | texture; action 25 | false,true truetrue
        UV pressed twice | texture; entry 'UV'; entry 'UV' | false,true truetrue
        UV under a sliding finger | texture; finger 300 580 50 0 | false,true truetrue
        UV of the next media | texture; entry 'UV'; media | false,true truefalse
        XY of the next screen | media; entry 'UV'; screen | true,false falsefalse
        nothing in simple mode | screen; mode 1 | false,false falsefalse
        the mesh after simple mode | screen; mode 1; mode 2 | true,false falsefalse)");
        rows("tools", R"(
        no tools without an item | show nothing | 000
        tools of a screen | screen | 110
        no tools in simple mode | screen; mode 1 | 000
        tools of a media | media | 111
        no tools without a mesh | media; deform media 0 2 2 | 000
        tools of a new mesh | media; deform media 0 2 2; deform media 1 2 2 | 111
        no tools of a removed item | media; cppCanvas.removeMediaItem(3000000011) | 000)");
        rows("[item.sourceWidth, item.sourceHeight, item.getFullRotation(), item.name]", R"(
        a media's new rotation | media; cppCanvas.mediaItemAdded(1, 3000000011, 5, 7, 6, 90, 'New') | 1000,600,90,Media
        a new part | part; cppCanvas.screenPartItemAdded(3, 7, 70, 60, 90, 'New') | 70,60,90,New)");
        rows("[item ? current : 'none', currentPointText.text[15], pointerArea.grid === null, "
             "Array.from(canvasMedia.children).filter(it => it.visible).length]",
             R"(
        an unknown deformation | screen; click 4; log updateDeformationMode: Undefined mode; deform screen 4 3 3 | 4,4,false,1
        no line without a current point | screen; log selectLine: currentPointId value is -1 (null); select 10 | -1,-,false,1
        no media | media; click 4; cppCanvas.removeMediaItem(3000000011); log Unable to remove media item; cppCanvas.removeMediaItem(3000000011) | none,-,true,0
        no texture | texture; click 4; cppCanvas.removeTextureItem(12); log Unable to remove texture item; cppCanvas.removeTextureItem(12) | none,-,true,0
        no screen | screen; click 4; cppCanvas.removeScreenItem(3); log Unable to remove screen item; cppCanvas.removeScreenItem(3) | none,-,true,0
        no part | part; click 4; cppCanvas.removeScreenPartItem(3, 7); log Unable to remove screen part item; cppCanvas.removeScreenPartItem(3, 7) | none,-,true,0)");
    }

    void showsItem() { check(); }
    void sendsRequests_data() {
        rows("sent", R"(
        nothing for the heading | media; tool 0 |
        nothing for copies of a screen | screen; action 23; action 24 |
        nothing for copies of a part | part; action 23; action 24 |
        nothing without an item | show nothing; action 3; stick 1 1; stick 0 0 |
        nothing for the current point | media; click 4; forget; click 4 |)");
        rows("sent.match(/xy=[a-z]+, selected=false/g)", R"(
        unselecting in both meshes | media; click 4; entry 'UV'; click 8; forget; cppCanvas.currentItemChanged(2, 12, 0); cppCanvas.currentItemChanged(1, -1294967285, 0) | xy=true, selected=false,xy=false, selected=false)");
        // From a curve of 4 rows and 5 columns; "None" resets nothing.
        rows("sent.replace(/.*::/, '').replace(/[a-zA-Z]+=/g, '') + deformationDialog.visible", R"(
        a curve | screen 3 4 5; bar 2; deformationDialog.resetXY = true; key Return | Curve, 3, 100, "Screen", 4, 5, true)false
        a bezier | screen 3 4 5; bar 2; key Up; deformationDialog.resetXY = true; confirm | Bezier, 3, 100, "Screen", 10, 13, true)false
        a keystone | screen 3 4 5; bar 2; key Up; key Up; confirm | Keystone, 3, 100, "Screen", 2, 2, false)false
        no deformation | screen 3 4 5; bar 2; deformationDialog.resetXY = true; key Up; key Up; key Up; confirm | None, 3, 100, "Screen", 2, 2, false)false
        a plain keystone for a part | part 3 4 5; bar 2; key Up; key Up; key Up; confirm | Keystone, 3, 7, 101, "Part", 2, 2, false)false
        a bezier of a media | media 3 4 5; bar 2; key Up; confirm | Bezier, 3000000011, 5, 102, "Media", 10, 13, false)false
        a large bezier | texture 2 58 64; bar 2; confirm | Bezier, 12, 6, 103, "Texture", 58, 64, false)false)");
    }

    void sendsRequests() { check(); }
    void clampedSelectionKeepsShapeAndBounds() {
        QCOMPARE(valueOf(R"((() => {
        let seed = 7;
        const random = () => (seed = (seed * 16807) % 2147483647) / 2147483647;
        for (let round = 0; round < 3000; ++round) {
            const width = 1 + Math.floor(random() * 4000), height = 1 + Math.floor(random() * 4000);
            const outside = round % 4 === 0; // one of the points
            const points = [1, 2, 3, 4].map(() => ({ x: random() * width, y: random() * height }));
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
            if (points.every(p => p.x + dx >= 0 && p.x + dx <= width) && delta.dx !== dx)
                return "round " + round + ": clamped without need";
        }
        return "kept";
    })())"),
                 "kept");
    }
};

QTEST_MAIN(EditingTest)
#include "tst_editing.moc"
