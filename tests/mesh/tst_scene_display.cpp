#include "tests/support/MessageGuard.h"
#include "tests/support/SceneRig.h"

#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QTest>

using MeshpadTest::SceneRig;

/// What the operator sees, drawn with OpenGL.
class SceneDisplayTest : public QObject {
    Q_OBJECT

private slots:
    void pointsAndLinesOfEachSize() {
        MeshpadTest::MessageGuard messages;
        for (const QSize size : {QSize(1030, 610), QSize(1670, 1090)}) {
            SceneRig s(size);
            QCOMPARE(s.view->quickWindow()->rendererInterface()->graphicsApi(),
                     QSGRendererInterface::OpenGL);
            s.view->grabFramebuffer(); // empty
            s.select(s.media, 2, 7, 7);
            s.click(s.onScreen(24));
            for (const double zoom : {0.4, 0.8}) {
                s.evaluate(QString("zoomSlider.value = %1").arg(zoom));
                QCOMPARE(s.faultInPicture(24), QString());
                QCOMPARE(s.faultInPicture(22), QString());
                QVERIFY(s.faultInPicture(16).startsWith("line")); // a handle in a patch has none
            }
            s.grid()->markReturn(24, s.position(24).x() + 200, s.position(24).y());
            const QImage image = s.view->grabFramebuffer();
            for (const QPoint part : {QPoint(0, 15), QPoint(22, 4)}) // ring, trail
                QCOMPARE(
                    image.pixelColor((s.onScreen(24) + part) * image.width() / s.view->width()),
                    QColor("#ffb000"));
        }
    }
};

QTEST_MAIN(SceneDisplayTest)
#include "tst_scene_display.moc"
