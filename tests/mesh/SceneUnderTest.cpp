#include "tests/mesh/SceneUnderTest.h"

#include "app/shell/EventDispatcher.h"
#include "network/events/MediaMovePointEvent.h"
#include "network/events/MsgEvent.h"
#include "network/events/ScreenMovePointEvent.h"
#include "network/events/ScreenPartMovePointEvent.h"
#include "network/events/TextureMovePointEvent.h"
#include "resources/CompanionResources.h"

#include <QQmlContext>
#include <QQmlExpression>
#include <QQuickWindow>
#include <QTest>
#include <QWheelEvent>

using namespace NetworkCompanion;

namespace MeshpadTest {

SceneUnderTest::SceneUnderTest(QSize size)
    : screen(kScreen, 100, kScreenSize.width(), kScreenSize.height(), false, "Screen",
             configuration, nullptr),
      part(kPart, 101, kScreenSize.width(), kScreenSize.height(), false, "Part", configuration,
           nullptr),
      media(MediaType::Image, kMediaCue, 5, 102, kMediaSize.width(), kMediaSize.height(), false,
            "Media", configuration, nullptr),
      texture(kTextureCue, 6, 103, kMediaSize.width(), kMediaSize.height(), false, "Texture",
              configuration, nullptr) {
    initCompanionResources();
    screen.addPart(&part);
    producer.listen();
    EventDispatcher::getInstance()->client().connectToServer(producer.host(), producer.port());
    canvas = std::make_unique<Canvas>(configuration, nullptr);
    view = canvas->findChild<QQuickWidget*>();
    canvas->resize(size);
    canvas->show();
    canvas->activateWindow();
    QTRY_VERIFY(canvas->isActiveWindow());
    view->setFocus();
    canvas->onScreenItemAdded(kScreen, kScreenSize.width(), kScreenSize.height(), 0, 0, "Screen");
    canvas->onScreenPartItemAdded(kScreen, kPart, kScreenSize.width(), kScreenSize.height(), 0,
                                  "Part");
    canvas->onMediaItemAdded(1, kMediaCue, 5, kMediaSize.width(), kMediaSize.height(), 0, "Media");
    canvas->onTextureItemAdded(kTextureCue, 6, kMediaSize.width(), kMediaSize.height(), 0,
                               "Texture");
}

SceneUnderTest::~SceneUnderTest() {
    canvas->onSelectedItem(nullptr);
    view->setSource({});
    QQuickWindow().releaseResources(); // pictures that Qt Quick would keep for later scenes
    view->grabFramebuffer();           // and their textures, which only a frame lets go
    canvas.reset();
    EventDispatcher::getInstance()->client().disconnectFromServer();
}

void SceneUnderTest::deform(const Item& item, int deformation, int rows, int columns) {
    const auto type = LV_NTC_DeformationType(deformation - 1);
    switch (item.elementType()) {
    case LV_NTC_ElementType::Screen:
        canvas->onScreenDeformationMode(type, kScreen, "Screen", rows, columns, false);
        break;
    case LV_NTC_ElementType::ScreenPart:
        canvas->onScreenPartDeformationMode(type, kScreen, kPart, "Part", rows, columns, false);
        break;
    case LV_NTC_ElementType::Texture:
        canvas->onTextureDeformationMode(item.elementType(), type, kTextureCue, 6, "Texture", rows,
                                         columns, false);
        break;
    default:
        canvas->onMediaDeformationMode(item.elementType(), type, kMediaCue, 5, "Media", rows,
                                       columns, false);
    }
}

void SceneUnderTest::select(Item& item, int deformation, int rows, int columns) {
    canvas->onSelectedItem(&item);
    deform(item, deformation, rows, columns);
    evaluate("getCurrentItem().itemDeformer.adjustView()");
}

QVariant SceneUnderTest::evaluate(const QString& expression) const {
    QQmlExpression evaluated(qmlContext(root()), root(), expression);
    const QVariant value = evaluated.evaluate();
    if (evaluated.hasError())
        QTest::qFail(qPrintable(evaluated.error().toString()), __FILE__, __LINE__);
    return value;
}

MeshGridItem* SceneUnderTest::grid() const {
    return evaluate("getCurrentItem().deformerGrids[getCurrentGridId()]").value<MeshGridItem*>();
}

QPointF SceneUnderTest::position(int point) const {
    return {grid()->point(point)->x(), grid()->point(point)->y()};
}

QString SceneUnderTest::state(int point) const {
    return grid()->point(point)->state();
}

QPoint SceneUnderTest::onScreen(int point) const {
    return grid()->mapToScene(position(point)).toPoint();
}

QList<int> SceneUnderTest::selectedPoints() const {
    QList<int> points;
    for (int point = 0; point < grid()->pointCount(); ++point)
        if (grid()->point(point)->isSelected())
            points.append(point);
    return points;
}

QString SceneUnderTest::faultInPicture(int point) const {
    const QImage image = view->grabFramebuffer();
    const double ratio = double(image.width()) / view->width();
    const QPoint centre = onScreen(point);
    const QMap<QString, QList<QColor>> colors{{"UNSELECTED", {"#323232", "#0096ff"}},
                                              {"SELECTED", {"#b3dffe", "#004c99"}},
                                              {"CURRENT", {"#b3dffe", "#0096ff"}}};
    const auto differs = [&](QPoint offset, const QColor& expected, const char* what) {
        const QColor seen = image.pixelColor((QPointF(centre + offset) * ratio).toPoint());
        const int distance = std::abs(seen.red() - expected.red()) +
                             std::abs(seen.green() - expected.green()) +
                             std::abs(seen.blue() - expected.blue());
        return distance > 60 ? QString("%1 of point %2 is %3 instead of %4")
                                   .arg(what)
                                   .arg(point)
                                   .arg(seen.name(), expected.name())
                             : QString();
    };
    const QList<QColor> expected = colors[state(point)];
    for (const QString& fault :
         {differs({0, 6}, expected[0], "inside"), differs({0, -6}, expected[0], "inside"),
          differs({0, 9}, expected[1], "border"), differs({-9, 0}, expected[1], "border"),
          differs({6, 13}, "#303030", "what is beside"), differs({16, 0}, "#dddddd", "line")})
        if (!fault.isEmpty())
            return fault;
    return {};
}

void SceneUnderTest::press(QPoint at, Qt::KeyboardModifiers modifiers) const {
    QTest::mousePress(view, Qt::LeftButton, modifiers, at);
}

void SceneUnderTest::move(QPoint to, Qt::KeyboardModifiers modifiers) const {
    QMouseEvent event(QEvent::MouseMove, to, view->mapToGlobal(QPointF(to)), Qt::NoButton,
                      Qt::LeftButton, modifiers);
    QCoreApplication::sendEvent(view, &event);
}

void SceneUnderTest::release(QPoint at, Qt::KeyboardModifiers modifiers) const {
    QTest::mouseRelease(view, Qt::LeftButton, modifiers, at);
}

void SceneUnderTest::click(QPoint at, Qt::KeyboardModifiers modifiers) const {
    QTest::mouseClick(view, Qt::LeftButton, modifiers, at);
}

void SceneUnderTest::key(Qt::Key key, Qt::KeyboardModifiers modifiers) const {
    QTest::keyClick(view, key, modifiers);
}

void SceneUnderTest::hover(QPoint at) const {
    QMouseEvent event(QEvent::MouseMove, at, view->mapToGlobal(QPointF(at)), Qt::NoButton,
                      Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view, &event);
}

void SceneUnderTest::wheel(int notches, QPointF at) const {
    QWheelEvent event(at, view->mapToGlobal(at), {}, {0, 120 * notches}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view, &event);
}

void SceneUnderTest::settle() {
    static int mark = 0;
    const QByteArray text = "mark " + QByteArray::number(++mark);
    QCoreApplication::processEvents(); // a tick that is under way
    MsgEvent event(text.constData());
    EventDispatcher::getInstance()->client().sendEvent(event);
    QTRY_VERIFY(!producer.events().empty() && producer.events().back() &&
                producer.events().back()->type() == LV_NTC_EventType::Msg &&
                static_cast<MsgEvent&>(*producer.events().back()).message() ==
                    QString::fromLatin1(text));
}

QMap<int, SceneUnderTest::Told> SceneUnderTest::told(bool xy) const {
    QMap<int, Told> points;
    const QSizeF size(evaluate("getCurrentItem().sourceWidth").toDouble(),
                      evaluate("getCurrentItem().sourceHeight").toDouble());
    const auto take = [&](const auto& events) {
        for (const auto* event : events) {
            if (event->xy() == xy)
                points.insert(static_cast<int>(event->pointId()),
                              {xy ? event->x() + size.width() / 2 : event->x() * size.width(),
                               xy ? event->y() + size.height() / 2 : event->y() * size.height(),
                               event->selected()});
        }
    };
    take(producer.eventsOf<ScreenMovePointEvent>());
    take(producer.eventsOf<ScreenPartMovePointEvent>());
    take(producer.eventsOf<MediaMovePointEvent>());
    take(producer.eventsOf<TextureMovePointEvent>());
    return points;
}

} // namespace MeshpadTest
