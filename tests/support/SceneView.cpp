#include "tests/support/SceneView.h"

#include <QQmlContext>
#include <QQmlExpression>
#include <QQuickWindow>
#include <QTest>
#include <QWheelEvent>

#include <tuple>

namespace MeshpadTest {

QVariant SceneView::evaluate(const QString& expression) const {
    QQmlExpression evaluated(qmlContext(root()), root(), expression);
    const QVariant value = evaluated.evaluate();
    if (evaluated.hasError())
        QTest::qFail(qPrintable(evaluated.error().toString()), __FILE__, __LINE__);
    return value;
}

MeshGridItem* SceneView::grid(const QString& index) const {
    return evaluate("getCurrentItem() ? getCurrentItem().deformerGrids[" + index + "] : null")
        .value<MeshGridItem*>();
}

QList<int> SceneView::selectedPoints() const {
    QList<int> points;
    for (int point = 0; point < grid()->pointCount(); ++point)
        if (grid()->point(point)->isSelected())
            points.append(point);
    return points;
}

QString SceneView::faultInPicture(int point) const {
    const bool isSelected = state(point) != "UNSELECTED";
    const QColor inside = isSelected ? "#b3dffe" : "#323232";
    const QColor border = state(point) == "SELECTED" ? "#004c99" : "#0096ff";
    const std::tuple<QString, QPoint, QColor> parts[] = {
        {"inside", {0, 6}, inside},  {"inside", {0, -6}, inside},    {"border", {0, 9}, border},
        {"border", {-9, 0}, border}, {"ground", {6, 13}, "#303030"}, {"line", {16, 0}, "#dddddd"}};
    const QImage image = view->grabFramebuffer();
    const double ratio = double(image.width()) / view->width();
    for (const auto& [name, offset, wanted] : parts) {
        const QPointF position = QPointF(onScreen(point) + offset) * ratio;
        const QColor seen = image.pixelColor(position.toPoint());
        if (qAbs(seen.red() - wanted.red()) + qAbs(seen.green() - wanted.green()) +
                qAbs(seen.blue() - wanted.blue()) >
            60)
            return name + " is " + seen.name();
    }
    return {};
}

void SceneView::press(QPoint at, Qt::KeyboardModifiers modifiers) const {
    QTest::mousePress(view, Qt::LeftButton, modifiers, at);
}

void SceneView::sendMove(QPoint to, Qt::MouseButtons held, Qt::KeyboardModifiers modifiers) const {
    QMouseEvent event(QEvent::MouseMove, to, view->mapToGlobal(QPointF(to)), Qt::NoButton, held,
                      modifiers);
    QCoreApplication::sendEvent(view, &event);
}

void SceneView::release(QPoint at, Qt::KeyboardModifiers modifiers) const {
    QTest::mouseRelease(view, Qt::LeftButton, modifiers, at);
}

void SceneView::click(QPoint at, Qt::KeyboardModifiers modifiers) const {
    QTest::mouseClick(view, Qt::LeftButton, modifiers, at);
}

void SceneView::drag(int point, QPoint by) const {
    const QPoint start = onScreen(point);
    press(start);
    move(start + by);
    release(start + by);
}

void SceneView::key(Qt::Key key, Qt::KeyboardModifiers modifiers) const {
    QTest::keyClick(view, key, modifiers);
}

void SceneView::repeatKey(Qt::Key key, Qt::KeyboardModifiers modifiers) const {
    QKeyEvent event(QEvent::KeyPress, key, modifiers, QString(), true);
    QCoreApplication::sendEvent(view, &event);
}

void SceneView::wheel(int notches, QPointF at) const {
    QWheelEvent event(at, view->mapToGlobal(at), {}, {0, 120 * notches}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view, &event);
}

void SceneView::clear() const {
    view->setSource({});
    QQuickWindow().releaseResources();
    view->grabFramebuffer(); // only a frame releases textures
}

} // namespace MeshpadTest
