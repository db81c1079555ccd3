#include "tests/mesh/SceneTest.h"

#include <QHash>
#include <QRegularExpression>

#include <functional>
#include <utility>

using namespace NetworkCompanion;

namespace MeshpadTest {

void SceneTest::init() {
    GuardedTest::init();
    if (!scene) {
        scene = std::make_unique<SceneRig>();
        return;
    }
    scene->canvas->onSelectedItem(nullptr);
    scene->evaluate("isCurrentGridXy = true; warpToolBar.mapButtonPushed = false;"
                    "rotationDialog.selectedView = 0; width = 1060; height = 610");
}

void SceneTest::cleanup() {
    if (!std::exchange(isReusable_, false) || QTest::currentTestFailed())
        scene.reset();
    GuardedTest::cleanup();
}

void SceneTest::rows(const QString& expression, const QString& table) {
    static QByteArray function;
    if (std::exchange(function, QTest::currentTestFunction()) != QTest::currentTestFunction())
        for (const char* column : {"steps", "expression", "expected"})
            QTest::addColumn<QString>(column);
    for (const QString& line : table.trimmed().split('\n')) {
        const QStringList cells = (line.trimmed() + ' ').split(" | ");
        QTest::newRow(qPrintable(cells[0])) << cells[1] << expression << cells[2].trimmed();
    }
}

void SceneTest::check() {
    QFETCH(QString, steps);
    QFETCH(QString, expression);
    play(steps);
    QTEST(valueOf(expression), "expected");
    for (const bool xy : {true, false})
        if (scene->grid())
            compareWithProducer(xy);
    // Changed items, a held button and taps ignored after a dialog would last into the next row.
    static const QRegularExpression lasting("cppCanvas|press|dialog|view");
    isReusable_ = !steps.contains(lasting);
}

void SceneTest::play(const QString& steps) {
    SceneRig& s = *scene;
    QString step;
    QStringList words;
    const auto number = [&](int word, int usual = 0) {
        return word < words.size() ? words[word].toInt() : usual;
    };
    const auto real = [&](int word) { return words[word].toFloat(); };
    const auto at = [&](int word) { return QPoint(number(word), number(word + 1)); };
    const auto key = [&] { return QKeySequence(words[1])[0]; };
    const QHash<QString, Item*> items{
        {"screen", &s.screen}, {"part", &s.part}, {"media", &s.media}, {"texture", &s.texture}};
    const auto item = [&](int word) { return items.value(words[word]); };
    const auto start = [&] { return s.onScreen(number(1)); };
    const auto swipe = [&](QPoint from, QPoint by) {
        touch().press(0, from);
        touch().move(0, from + by);
        QTest::qWait(50); // touch moves arrive with the next frame
        touch().release(0, from + by);
    };
    const auto forgetPoints = [&s] {
        s.settle();
        s.producer.forget();
    };
    const auto clickList = [&] {
        s.view->grabFramebuffer(); // lays out the dialog
        s.click(centreOf(itemWith("accessibleName", step.section(' ', 1))));
    };
    const QHash<QString, std::function<void()>> verbs{
        {"forget", forgetPoints},
        {"show", [&] { s.canvas->onSelectedItem(item(1)); }},
        {"deform", [&] { s.deform(*item(1), number(2), number(3), number(4)); }},
        {"click", [&] { s.click(start()); }},
        {"add", [&] { s.click(start(), Qt::ControlModifier); }},
        {"point", [&] { s.click(at(1)); }},
        {"list", clickList},
        {"press", [&] { s.press(pressed_ = start()); }},
        {"move", [&] { s.move(pressed_ + at(1)); }},
        {"lift", [&] { s.release(pressed_); }},
        {"drag", [&] { s.drag(number(1), at(2)); }},
        {"tap", [&] { swipe(start() + at(2), QPoint(2, 1)); }},
        {"swipe", [&] { swipe(start(), at(2)); }},
        {"finger", [&] { swipe(at(1), at(3)); }},
        {"key", [&] { s.key(key().key(), key().keyboardModifiers()); }},
        {"repeat", [&] { s.repeatKey(key().key()); }},
        {"release", [&] { QTest::keyRelease(s.view, key().key()); }},
        {"action", [&] { s.canvas->onAction(Action(number(1))); }},
        {"stick", [&] { s.canvas->onLeftAxisMoved(real(1), real(2)); }},
        {"pan", [&] { s.canvas->onRightAxisMoved(real(1), real(2)); }},
        {"trigger", [&] { s.canvas->onPressure(real(1)); }},
        {"wheel", [&] { s.wheel(number(1)); }},
        {"mode", [&] { s.canvas->onScreenMode(SceneRig::kScreen, LV_NTC_ModeType(number(1))); }},
    };
    const QHash<QString, QString> buttons{
        {"select", "selectWarpToolButton"}, {"tool", "deformWarpToolButton"},
        {"bar", "warpToolBarButton"},       {"canvas", "canvasButton"},
        {"view", "rotationButton"},         {"dialog", "Button"}};
    for (const QString& next : steps.split("; ")) {
        step = next;
        words = step.split(' ');
        const QString verb = words[0];
        if (item(0)) {
            s.select(*item(0), number(1, 3), number(2, 3), number(3, 3));
        } else if (verbs.contains(verb)) {
            verbs[verb]();
        } else if (const QString type = buttons.value(verb); !type.isEmpty()) {
            s.evaluate(QString("toolTabs.currentTab = %1").arg(verb == "tool"));
            QQuickItem* pressed =
                verb == "dialog" ? button(words[1] + type) : button(type, number(1));
            QVERIFY2(pressed && pressed->isVisible(), qPrintable(step));
            s.click(centreOf(pressed));
        } else {
            s.evaluate(step);
        }
        if (item(0) || verb == "show" || verb == "deform")
            forgetPoints(); // of another item or mesh
    }
}

QString SceneTest::valueOf(const QString& expression) const {
    scene->settle();
    return scene->string(QString(R"((() => {
        const sent = `%2`;
        const item = getCurrentItem();
        const grid = item ? item.deformerGrids[getCurrentGridId()] : null;
        const current = item ? grid.currentSelectedPointId : -1;
        const selected = item ? grid.selectedNumbers().join(" ") : "";
        const find = (test, parent) =>
            Array.from(parent.children, it => test(it) ? it : find(test, it)).find(it => it);
        const tool = (type, id) => find(it => it.type === type && it.buttonId === id, toolTabs).opacity;
        const tools = [tool("selectWarpToolButton", 0), tool("deformWarpToolButton", 1),
                       tool("deformWarpToolButton", 6)].map(opacity => opacity === 1 ? 1 : 0).join("");
        const isOpen = name => find(it => it.accessibleName === name, deformationDialog).isOpen;
        const at = id => [grid.pointsArray[id].x, grid.pointsArray[id].y].map(v => Number(v.toFixed(3)));
        const moved = id => {
            const columns = item.deformerColsNumber, rows = item.deformerRowsNumber;
            const x = id % columns * item.sourceWidth / (columns - 1);
            const y = Math.floor(id / columns) * item.sourceHeight / (rows - 1);
            return [at(id)[0] - x, at(id)[1] - y].map(v => Math.round(v * mediaScaleFactor));
        };
        return String(%1);
    })())")
                             .replace("%2", scene->producer.lines().join("; "))
                             .replace("%1", expression));
}

void SceneTest::compareWithProducer(bool xy) const {
    scene->settle();
    MeshGridItem* grid = xy ? scene->xyGrid() : scene->uvGrid();
    const auto sent = scene->sentPoints(xy);
    for (auto it = sent.cbegin(); it != sent.cend(); ++it) {
        const MeshPoint* point = grid->point(it.key());
        QVERIFY2(
            point && point->x() == it->x && point->y() == it->y &&
                point->isSelected() == it->selected,
            qPrintable(QString("point %1, sent at %2, %3").arg(it.key()).arg(it->x).arg(it->y)));
    }
}

QQuickItem* SceneTest::itemWith(const char* name, const QVariant& value, int buttonId) const {
    QList<QQuickItem*> items{scene->root()};
    while (!items.isEmpty()) {
        QQuickItem* item = items.takeLast();
        if (item->property(name) == value &&
            (buttonId < 0 || item->property("buttonId").toInt() == buttonId))
            return item;
        items += item->childItems();
    }
    return nullptr;
}

} // namespace MeshpadTest
