#pragma once

#include "tests/support/GuardedTest.h"
#include "tests/support/SceneRig.h"

#include "network/events/ScreenMovePointEvent.h"

#include <QHash>
#include <QPointingDevice>
#include <QRegularExpression>
#include <QStyleHints>
#include <QTest>

#include <functional>
#include <memory>
#include <utility>

namespace MeshpadTest {

/// A scene for each test function, and rows of real events on it.
class SceneTest : public GuardedTest {
    Q_OBJECT

protected slots:
    void initTestCase() { finger_.reset(QTest::createTouchDevice()); }
    void cleanupTestCase() {
        scene.reset();
        finger_.reset();
    }

protected:
    void setUp() override {
        if (!scene)
            scene = std::make_unique<SceneRig>();
        scene->canvas->onSelectedItem(nullptr);
        scene->evaluate("isCurrentGridXy = true; warpToolBar.mapButtonPushed = false;"
                        "rotationDialog.selectedView = 0; width = 1060; height = 610");
    }
    void tearDown() override {
        if (!std::exchange(isReusable_, false) || QTest::currentTestFailed())
            scene.reset();
    }
    auto touch() const { return QTest::touchEvent(scene->view, finger_.get()); }
    /// Rows for check(), one a line: name | steps | text of the expression after them.
    static void rows(const QString& expression, const QString& table) {
        static QByteArray function;
        if (std::exchange(function, QTest::currentTestFunction()) != QTest::currentTestFunction())
            for (const char* column : {"steps", "expression", "expected"})
                QTest::addColumn<QString>(column);
        for (const QString& line : table.trimmed().split('\n')) {
            const QStringList cells = (line.trimmed() + ' ').split(" | ");
            QTest::newRow(qPrintable(cells[0])) << cells[1] << expression << cells[2].trimmed();
        }
    }
    /// Plays the row; also compares the scene with what the Producer received.
    void check() {
        QFETCH(QString, steps);
        QFETCH(QString, expression);
        play(steps);
        QTEST(valueOf(expression), "expected");
        for (const bool xy : {true, false})
            if (scene->grid())
                compareWithProducer(xy);
        // Changed items, a held button and taps ignored after a dialog would last into the next
        // row.
        static const QRegularExpression lasting("cppCanvas|press|cancel|confirm|view|focus");
        isReusable_ = !steps.contains(lasting);
    }
    /// Real events, separated by "; ", see the verbs. Other steps are expressions.
    void play(const QString& steps) {
        SceneRig& s = *scene;
        QStringList words;
        const auto number = [&](int word, int usual = 0) {
            return word < words.size() ? words[word].toInt() : usual;
        };
        const auto real = [&](int word) { return words[word].toFloat(); };
        const auto at = [&](int word) { return QPoint(number(word), number(word + 1)); };
        const auto key = [&] { return QKeySequence(words[1])[0]; };
        const auto rest = [&] { return words.mid(1).join(' '); };
        const QHash<QString, Item*> items{
            {"screen", &s.screen}, {"part", &s.part}, {"media", &s.media}, {"texture", &s.texture}};
        const auto start = [&] { return s.onScreen(number(1)); };
        const auto swipe = [&](QPoint from, QPoint by) {
            touch().press(0, from);
            touch().move(0, from + by);
            QTest::qWait(50); // touch moves arrive with the next frame
            touch().release(0, from + by);
        };
        const auto forget = [&s] {
            s.settle();
            s.producer.forget();
        };
        const auto clickItem = [&](const QString& test) {
            s.view->grabFramebuffer(); // lays out
            QQuickItem* pressed = itemWith(test);
            QVERIFY2(pressed && pressed->isVisible(), qPrintable(words.join(' ')));
            s.click(centreOf(pressed));
        };
        const QHash<QString, std::function<void()>> verbs{
            {"forget", forget},
            {"show", [&] { s.canvas->onSelectedItem(items.value(words[1])), forget(); }},
            {"deform",
             [&] { s.deform(*items[words[1]], number(2), number(3), number(4)), forget(); }},
            {"click", [&] { s.click(start()); }},
            {"add", [&] { s.click(start(), Qt::ControlModifier); }},
            {"list", [&] { clickItem("it.accessibleName === '" + rest() + "'"); }},
            {"entry", [&] { clickItem("it.modelData === " + rest()); }},
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
            {"mode", [&] { s.evaluate("cppCanvas.screenMode(3, " + words[1] + ')'); }},
            {"focus", [&] { s.view->clearFocus(), s.view->setFocus(Qt::FocusReason(number(1))); }},
            {"wait",
             [] { QTest::qWait(QGuiApplication::styleHints()->mouseDoubleClickInterval()); }},
            {"log", [&] { messages_->expect(QtDebugMsg, rest()); }},
            {"warning", [&] { messages_->expect(QtWarningMsg, rest()); }},
        };
        const QHash<QString, QString> buttons{
            {"select", "selectWarpTool"}, {"tool", "deformWarpTool"}, {"bar", "warpToolBar"},
            {"canvas", "canvas"},         {"view", "rotation"},       {"cancel", "cancel"},
            {"confirm", "confirm"}};
        for (const QString& step : steps.split("; ")) {
            words = step.split(' ');
            const QString verb = words[0];
            if (Item* item = items.value(verb)) {
                s.select(*item, number(1, 3), number(2, 3), number(3, 3));
                forget();
            } else if (verbs.contains(verb)) {
                verbs[verb]();
            } else if (buttons.contains(verb)) {
                s.evaluate(QString("toolTabs.currentTab = %1").arg(verb == "tool"));
                clickItem(button(buttons[verb], number(1)));
            } else {
                s.evaluate(step);
            }
        }
    }
    /// An expression that also knows `sent` (the Producer's events as text), `item`, `grid`,
    /// `selected`, `current`, at(point) and moved(point), in pixels of the screen from its place in
    /// an even mesh.
    QString valueOf(const QString& expression) const {
        scene->settle();
        return scene->string(QString(R"((() => {
            const sent = `%3`;
            const item = getCurrentItem();
            const grid = item ? item.deformerGrids[getCurrentGridId()] : null;
            const current = item ? grid.currentSelectedPointId : -1;
            const selected = item ? grid.selectedNumbers().join(" ") : "";
            const find = %1;
            const tool = (type, id) => find(it => it.type === type && it.buttonId === id, toolTabs).opacity;
            const tools = [tool("selectWarpToolButton", 0), tool("deformWarpToolButton", 1),
                           tool("deformWarpToolButton", 6)].map(opacity => opacity === 1 ? 1 : 0).join("");
            const isOpen = name => find(it => it.accessibleName === name, deformationDialog).isOpen;
            const ring = find(it => String(it).startsWith("FocusRing") && it.visible, canvas);
            const at = id => [grid.pointsArray[id].x, grid.pointsArray[id].y].map(v => Number(v.toFixed(3)));
            const moved = id => {
                const columns = item.deformerColsNumber, rows = item.deformerRowsNumber;
                const x = id % columns * item.sourceWidth / (columns - 1);
                const y = Math.floor(id / columns) * item.sourceHeight / (rows - 1);
                return [at(id)[0] - x, at(id)[1] - y].map(v => Math.round(v * mediaScaleFactor));
            };
            return String(%2);
        })())")
                                 .arg(kFind, expression, scene->producer.lines().join("; ")));
    }
    void compareWithProducer(bool xy) const {
        scene->settle();
        MeshGridItem* grid = xy ? scene->xyGrid() : scene->uvGrid();
        const auto sent = scene->sentPoints(xy);
        for (auto it = sent.cbegin(); it != sent.cend(); ++it) {
            const MeshPoint* point = grid->point(it.key());
            QVERIFY2(point && point->x() == it->x && point->y() == it->y &&
                         point->isSelected() == it->selected,
                     qPrintable(QString("point %1").arg(it.key())));
        }
    }

    /// The first item for which the expression of `it` is true.
    QQuickItem* itemWith(const QString& test) const {
        return scene->evaluate(QString("(%1)(it => %2, canvas) || null").arg(kFind, test))
            .value<QQuickItem*>();
    }
    static QString button(const QString& type, int id) {
        return QString("it.type === '%1Button' && (it.buttonId || 0) === %2").arg(type).arg(id);
    }
    QPoint centreOf(const QQuickItem* item) const {
        return item->mapToScene(QRectF(QPointF(), item->size()).center()).toPoint();
    }
    static NetworkCompanion::ScreenMovePointEvent screenMove(unsigned int point, double x, double y,
                                                             bool xy = true) {
        return {SceneRig::kScreen, 100, "Screen", point, x, y, 0, xy, true};
    }

    std::unique_ptr<SceneRig> scene;

private:
    static constexpr auto kFind =
        "(function find(test, parent) { return Array.from(parent.children, it => test(it) ? it :"
        " find(test, it)).find(it => it); })";

    bool isReusable_ = false; // a scene that only a row has used; a new one takes a while
    QPoint pressed_;
    std::unique_ptr<QPointingDevice> finger_;
};

} // namespace MeshpadTest
