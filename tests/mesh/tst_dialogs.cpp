#include "tests/mesh/SceneTest.h"

#include <QStyleHints>

#include <algorithm>

using namespace MeshpadTest;

/// The dialogs for deformation and rotation, tool tips, and the keyboard focus.
class DialogsTest : public SceneTest {
    Q_OBJECT

private slots:
    void dialogShows_data();
    void dialogShows() { check(); }
    void dialogTakesFocusAndGivesItBack();
    void secondTapDoesNotReachMesh();
    void listChoosesCount();
    void canvasShowsFocusByTabOnly();
    void toolTipWaitsForPointerAfterDialog();

private:
    QQuickItem* choiceBox(const QString& name) const { return itemWith("accessibleName", name); }
    bool isRinged(QPoint edge) const {
        return scene->view->grabFramebuffer().pixelColor(edge) == Qt::white;
    }
    /// Whether the focus ring is drawn just inside the item's edge.
    bool hasRing(const QQuickItem* item) const {
        scene->view->grabFramebuffer(); // lays out
        return isRinged(item->mapToScene({item->width() / 2, 2}).toPoint());
    }
};

static constexpr auto kDialog = "deformationDialog.visible ? [deformationDialog.curve, "
                                "deformationDialog.columns, deformationDialog.rows] : 'closed'";

void DialogsTest::dialogShows_data() {
    rows(kDialog, R"(
        a keystone | media 1 2 2; bar 2 | Keystone,2,2
        patch corners of a bezier | media 2 7 10; bar 2 | Bezier,4,3
        a curve | part 3 16 15; bar 2 | Curve,15,16
        a mesh beyond its lists | media 2 58 64; bar 2 | Bezier,22,20
        none in simple mode | screen 1 2 2; mode 1; bar 2 | None,2,2
        the smallest bezier | media 1 2 2; bar 2; key Down | Bezier,2,2
        the smallest curve | media 1 2 2; bar 2; key Down; key Down | Curve,3,3
        the largest curve | media 2 58 64; bar 2; key Down | Curve,16,16
        a large mesh again | media 2 58 64; bar 2; key Down; key Up | Bezier,22,20
        nothing after Escape | media; bar 2; key Tab; key Esc | closed
        nothing after Cancel | media; bar 2; dialog cancel | closed
        nothing of another item | media; bar 2; show screen | closed
        nothing of a removed item | media; bar 2; cppCanvas.removeMediaItem(3000000011) | closed
        the item after Escape | media; bar 2; key Up; key Esc; bar 2 | Curve,3,3)");
    rows("deformationDialog.resetXY", "no reset at first | media; bar 2; deformationDialog.resetXY "
                                      "= true; key Esc; bar 2 | false");
    rows("[isOpen('Number of columns'), isOpen('Type of curves'), " + QString(kDialog) + "]", R"(
        an open list | media 3 3 4; bar 2; list Number of columns | true,false,Curve,4,3
        no list after the veil | media 3 3 4; bar 2; list Number of columns; point 20 20 | false,false,Curve,4,3
        no other list | media 3 3 4; bar 2; list Number of columns; list Type of curves | false,false,Curve,4,3
        a dialog behind its list | media 3 3 4; bar 2; list Number of columns; dialog cancel | false,false,Curve,4,3
        no list after its box | media 3 3 4; bar 2; list Number of columns; list Number of columns | false,false,Curve,4,3)");
    rows("[selected, at(4), canvasMedia.x, mediaScaleFactor.toFixed(3)]", R"(
        a mesh out of reach | media; click 4; bar 2; key Ctrl+A; action 3; stick 1 1; pan 1 1; trigger 1; wheel 1; key Esc | 4,500,300,30,0.407
        the mesh again | media; bar 2; key Esc; key Ctrl+A | 0 1 2 3 4 5 6 7 8,500,300,30,0.407)");
    rows("[rotationDialog.visible, rotationDialog.selectedView, item ? item.viewingRotation : '-']",
         R"(
        no views without an item | canvas 1 | false,0,-
        views | screen; canvas 1 | true,0,0
        the front | screen; key R; canvas 1; view 0 | false,0,0
        the left | screen; canvas 1; view 1 | false,1,90
        the back | screen; canvas 1; view 2 | false,2,180
        the right by key | screen; rotationDialog.selectView(2); canvas 1; key Tab; key Return | false,3,270
        no views of another item | screen; canvas 1; show media | false,0,0)");
}

void DialogsTest::dialogTakesFocusAndGivesItBack() {
    play("media; bar 2");
    QQuickItem* ok = button("confirmButton");
    QQuickItem* cancel = button("cancelButton");
    QVERIFY(hasRing(choiceBox("Type of curves")) && !hasRing(ok));
    play("key Shift+Backtab"); // from the first control to the last
    QVERIFY(hasRing(ok) && !hasRing(cancel));
    play("key Shift+Backtab");
    QVERIFY(hasRing(cancel) && !hasRing(ok));
    play("key Return");
    QVERIFY(scene->root()->hasActiveFocus());
    play("bar 2");
    QVERIFY(hasRing(choiceBox("Type of curves")));
    QVERIFY(scene->getsNothing());
}

void DialogsTest::secondTapDoesNotReachMesh() {
    play("media; bar 2");
    const QPoint at = centreOf(button("cancelButton"));
    const QPointF behind = scene->grid()->mapFromScene(at);
    scene->evaluate(QString("updatePoint(0, 3, %1, %2)").arg(behind.x()).arg(behind.y()));
    scene->click(at);
    scene->click(at);
    QCOMPARE(valueOf("[deformationDialog.visible, selected]"), "false,");
    QTest::qWait(QGuiApplication::styleHints()->mouseDoubleClickInterval());
    play("click 3");
    QCOMPARE(valueOf("selected"), "3");
}

void DialogsTest::listChoosesCount() {
    play("media 3 3 4; bar 2; list Number of columns");
    scene->view->grabFramebuffer(); // creates the entries
    const QQuickItem* box = choiceBox("Number of columns");
    scene->click(centreOf(box) + QPoint(0, int(box->height()))); // the first entry
    QCOMPARE(valueOf("[isOpen('Number of columns'), " + QString(kDialog) + "]"), "false,Curve,3,3");
    scene->wheel(-1, centreOf(box));
    QCOMPARE(valueOf(kDialog), "Curve,3,3");
}

void DialogsTest::canvasShowsFocusByTabOnly() {
    const auto showsFocus = [this](Qt::FocusReason reason) {
        scene->view->clearFocus();
        scene->view->setFocus(reason);
        return isRinged({142, 200});
    };
    QVERIFY(showsFocus(Qt::TabFocusReason));
    QVERIFY(!showsFocus(Qt::MouseFocusReason));
    QVERIFY(showsFocus(Qt::BacktabFocusReason));
    scene->view->clearFocus();
    QVERIFY(!isRinged({142, 200}));
}

void DialogsTest::toolTipWaitsForPointerAfterDialog() {
    play("media");
    QQuickItem* configuration = button("warpToolBarButton", 2);
    const auto isUnderPointer = [&] {
        const auto areas = configuration->findChildren<QQuickItem*>();
        return std::ranges::any_of(
            areas, [](auto* area) { return area->property("containsMouse").toBool(); });
    };
    const auto isExplained = [&] {
        return scene->evaluate("toolTip.owner").value<QQuickItem*>() == configuration;
    };
    scene->hover(centreOf(configuration));
    QVERIFY(isExplained());
    QTRY_VERIFY(scene->isTrue("toolTip.visible"));
    play("bar 2");
    QTRY_VERIFY(!isUnderPointer() && !isExplained());
    play("key Esc");
    QTRY_VERIFY(isUnderPointer()); // without a movement of the pointer
    QVERIFY(!isExplained());
    scene->hover(centreOf(configuration) + QPoint(1, 0));
    QVERIFY(isExplained());
}

QTEST_MAIN(DialogsTest)
#include "tst_dialogs.moc"
