#include "tests/mesh/SceneTest.h"

using namespace MeshpadTest;

/// The dialogs for deformation and rotation, tool tips, and the keyboard focus.
class DialogsTest : public SceneTest {
    Q_OBJECT

private slots:
    void showsDialog_data() {
        const QString dialog = "deformationDialog.visible ? [deformationDialog.curve, "
                               "deformationDialog.columns, deformationDialog.rows] : 'closed'";
        rows(dialog, R"(
        none in simple mode | screen 1 2 2; mode 1; bar 2 | None,2,2
        the smallest curve | media 1 2 2; bar 2; key Down; key Down | Curve,3,3
        the largest curve | media 2 58 64; bar 2; key Down | Curve,16,16
        a mesh beyond its lists again | media 2 58 64; bar 2; key Down; key Up | Bezier,22,20
        nothing of another item | media; bar 2; show screen | closed
        nothing of a removed item | media; bar 2; cppCanvas.removeMediaItem(3000000011) | closed
        the item after Escape | media; bar 2; key Up; key Tab; key Esc; bar 2 | Curve,3,3)");
        rows("[isOpen('Number of columns'), isOpen('Type of curves'), " + dialog + "]", R"(
        no other list | media 3 3 4; bar 2; list Number of columns; list Type of curves | false,false,Curve,4,3
        a dialog behind its list | media 3 3 4; bar 2; list Number of columns; cancel | false,false,Curve,4,3
        an entry of a list | media 3 3 4; bar 2; list Number of columns; entry 3 | false,false,Curve,3,3)");
        rows("[selected, at(4), canvasMedia.x, mediaScaleFactor.toFixed(3)]", R"(
        no mesh for keys, sticks and wheel | media; click 4; bar 2; key Ctrl+A; action 3; stick 1 1; pan 1 1; trigger 1; wheel 1; key Esc | 4,500,300,30,0.407
        the mesh for keys after Esc | media; bar 2; key Esc; key Ctrl+A | 0 1 2 3 4 5 6 7 8,500,300,30,0.407)");
        rows("[rotationDialog.visible, rotationDialog.selectedView, item ? item.viewingRotation : "
             "'-']",
             R"(
        no views without an item | canvas 1 | false,0,-
        the front | screen; key R; canvas 1; view 0 | false,0,0
        the back | screen; canvas 1; view 2 | false,2,180
        the right by key | screen; rotationDialog.selectView(2); canvas 1; key Tab; key Return | false,3,270
        no views of another item | screen; canvas 1; show media | false,0,0)");
    }

    void showsDialog() { check(); }
    void swallowsSecondTapAtItsPlace_data() {
        QTest::addColumn<bool>("isFinger");
        QTest::addColumn<int>("distance");
        QTest::addColumn<QString>("between");
        QTest::addColumn<QList<int>>("selected");
        const QList<int> none;
        QTest::newRow("of a mouse") << false << 4 << "1" << none;
        QTest::newRow("not beside a mouse") << false << 5 << "1" << QList{3};
        QTest::newRow("not later") << false << 0 << "wait" << QList{3};
        QTest::newRow("of a finger") << true << 22 << "1" << none;
        QTest::newRow("not beside a finger") << true << 23 << "1" << QList{3};
    }

    void swallowsSecondTapAtItsPlace() {
        QFETCH(bool, isFinger);
        QFETCH(int, distance);
        QFETCH(QString, between);
        play("media; bar 2");
        const QPoint first = centreOf(itemWith(button("cancel", 0)));
        const QPoint second = first + QPoint(distance, 0);
        const QPointF behind = scene->grid()->mapFromScene(second);
        play(QString("updatePoint(0, 3, %1, %2)").arg(behind.x()).arg(behind.y()));
        const auto tap = [&](QPoint at) {
            if (!isFinger)
                return scene->click(at);
            touch().press(0, at);
            touch().release(0, at);
        };
        tap(first);
        play(between);
        tap(second);
        QTEST(scene->selectedPoints(), "selected");
    }

    void marksFocus_data() {
        rows("ring ? ring.parent.accessibleName || ring.parent.type || 'canvas' : activeFocus", R"(
        the first control | media; bar 2 | Type of curves
        the last control | media; bar 2; key Shift+Backtab | confirmButton
        the control before the last | media; bar 2; key Shift+Backtab; key Shift+Backtab | cancelButton
        nothing after a dialog | media; bar 2; key Shift+Backtab; key Shift+Backtab; key Return | true
        the first control again | media; bar 2; key Shift+Backtab; key Esc; bar 2 | Type of curves
        the canvas after Tab | focus 1 | canvas
        the canvas after Shift+Tab | focus 2 | canvas
        nothing after a press | focus 1; focus 0 | true)");
    }

    void marksFocus() { check(); }
    void showsToolTipAgainWhenPointerMoves() {
        const auto pointerOwnerTip = [this] {
            return valueOf(
                "[find(it => it.containsMouse, warpToolBar), toolTip.owner, toolTip.visible]"
                ".map(it => it ? 1 : 0).join('')");
        };
        play("media");
        const QPoint configuration = centreOf(itemWith(button("warpToolBar", 2)));
        scene->hover(configuration);
        QTRY_COMPARE(pointerOwnerTip(), "111");
        play("bar 2");
        QTRY_COMPARE(pointerOwnerTip(), "000");
        play("key Esc");
        QTRY_COMPARE(pointerOwnerTip(), "100"); // without a movement of the pointer
        scene->hover(configuration + QPoint(1, 0));
        QCOMPARE(pointerOwnerTip(), "110");
    }
};

QTEST_MAIN(DialogsTest)
#include "tst_dialogs.moc"
