#pragma once

#include "input/key_event_manager.h"
#include "tests/support/Rig.h"

#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

namespace MeshpadTest {

/// Main window of one widget: counts the keys that the widget ignores and passes them to the key
/// listeners, as the program's window does.
class TestWindow : public QWidget {
public:
    int keys = 0;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        ++keys;
        KeyEventManager::getInstance()->notifyListeners(event);
    }
};

/// One page or other widget in an active window, connected to the fake Producer.
template <typename Widget>
class WidgetRig : public Rig {
public:
    explicit WidgetRig(QSize size = {1280, 610}) : widget(new Widget(configuration, &window)) {
        (new QVBoxLayout(&window))->addWidget(widget);
        window.resize(size);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        connect();
    }

    TestWindow window;
    Widget* widget; ///< a child of the window
};

} // namespace MeshpadTest
