#include "tests/scene/SceneUnderTest.h"
#include "tests/support/MessageGuard.h"

#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QTest>

#include <cmath>
#include <optional>

using MeshpadTest::SceneUnderTest;

/// What the operator sees, drawn with OpenGL. With MESHPAD_SHOTS set to a folder, the pictures are
/// left there.
class SceneDisplayTest : public QObject {
    Q_OBJECT

private slots:
    void init() { messages_.emplace(); }
    void cleanup() {
        messages_->verify();
        messages_.reset();
    }

    void pictures_data();
    void pictures();

private:
    static QImage shot(SceneUnderTest& s, const QString& name);

    std::optional<MeshpadTest::MessageGuard> messages_;
};

QImage SceneDisplayTest::shot(SceneUnderTest& s, const QString& name) {
    const QImage image = s.view->grabFramebuffer();
    const QString folder = qEnvironmentVariable("MESHPAD_SHOTS");
    if (!folder.isEmpty())
        image.save(
            QString("%1/%2-%3x%4.png").arg(folder, name).arg(image.width()).arg(image.height()));
    return image;
}

void SceneDisplayTest::pictures_data() {
    QTest::addColumn<QSize>("size");
    QTest::newRow("1280x720 window") << QSize(1030, 610);
    QTest::newRow("1920x1200 window") << QSize(1670, 1090);
}

void SceneDisplayTest::pictures() {
    QFETCH(QSize, size);
    SceneUnderTest s(size);
    QCOMPARE(s.view->quickWindow()->rendererInterface()->graphicsApi(),
             QSGRendererInterface::OpenGL);
    shot(s, "empty");

    s.selectScreen(1, 2, 2);
    s.click(s.onScreen(3));
    shot(s, "keystone");

    s.selectMedia(2, 7, 7);
    s.click(s.onScreen(24));
    for (const double zoom : {0.4, 0.8}) {
        s.evaluate(QString("zoomSlider.value = %1").arg(zoom));
        QCOMPARE(s.faultInPicture(24), QString());
        QCOMPARE(s.faultInPicture(22), QString());
        QVERIFY(s.faultInPicture(16).startsWith("line")); // a handle in a patch has none
    }

    s.selectMedia(2, 13, 13);
    const auto wave = [&s](double height) {
        for (int id = 0; id < s.grid()->pointCount(); ++id) {
            const QPointF at = s.position(id);
            const double x = at.x() + height * std::sin(at.y() / 120.0);
            const double y = at.y() + height * std::sin(at.x() / 150.0);
            s.evaluate(
                QString("updatePoint(getCurrentGridId(), %1, %2, %3)").arg(id).arg(x).arg(y));
        }
    };
    wave(30);
    s.evaluate("getCurrentItem().itemDeformer.adjustView()");
    s.click(s.onScreen(42));
    s.key(Qt::Key_Right, Qt::ControlModifier | Qt::AltModifier);
    shot(s, "bezier");
    s.evaluate("zoomSlider.value = 1.2");
    shot(s, "bezier-zoomed");

    s.selectScreen(3, 16, 16);
    wave(40);
    s.evaluate("getCurrentItem().itemDeformer.adjustView()");
    s.click(s.onScreen(120));
    s.key(Qt::Key_Up, Qt::ControlModifier | Qt::AltModifier);
    shot(s, "curve");
    s.key(Qt::Key_R);
    shot(s, "curve-rotated");
    s.key(Qt::Key_R, Qt::ControlModifier);

    s.selectTexture(2, 4, 4);
    s.evaluate("bridge.action(25)");
    s.evaluate("toolTabs.currentTab = 1");
    shot(s, "uv");
    s.evaluate("toolTabs.currentTab = 0");

    s.selectScreen(3, 46, 46);
    s.key(Qt::Key_A, Qt::ControlModifier);
    shot(s, "dense");

    s.selectMedia(2, 7, 10);
    s.evaluate("deformationDialog.open(2, 4, 3)");
    shot(s, "configuration");
    s.evaluate("deformationDialog.close()");
    s.evaluate("rotationDialog.open()");
    shot(s, "rotation");
    s.evaluate("rotationDialog.close()");
}

QTEST_MAIN(SceneDisplayTest)
#include "tst_scene_display.moc"
