#pragma once

#include "tests/support/GuardedTest.h"
#include "tests/support/SceneRig.h"

#include "network/events/ScreenMovePointEvent.h"

#include <QPointingDevice>
#include <QTest>

#include <memory>

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
    void init();
    void cleanup();

protected:
    /// Rows for check(), one a line: name | steps | text of the expression after them.
    static void rows(const QString& expression, const QString& table);
    /// Plays the row; also compares the scene with what the Producer received.
    void check();
    /// Real events, separated by "; ", see the verbs in the source. Other steps are expressions.
    void play(const QString& steps);
    /// An expression that also knows `sent` (the Producer's events as text), `item`, `grid`,
    /// `selected`, `current`, at(point) and moved(point), in pixels of the screen from its place in
    /// an even mesh.
    QString valueOf(const QString& expression) const;
    void compareWithProducer(bool xy) const;

    auto touch() const { return QTest::touchEvent(scene->view, finger_.get()); }
    QQuickItem* itemWith(const char* name, const QVariant& value, int buttonId = -1) const;
    QQuickItem* button(const QString& type, int id = -1) const {
        return itemWith("type", type, id);
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
    bool isReusable_ = false; // a scene that only a row has used; a new one takes a while
    QPoint pressed_;
    std::unique_ptr<QPointingDevice> finger_;
};

} // namespace MeshpadTest
