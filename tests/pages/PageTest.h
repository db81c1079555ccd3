#pragma once

#include "app/shell/Configuration.h"
#include "app/shell/EventDispatcher.h"
#include "app/shell/ShellLook.h"
#include "resources/CompanionResources.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/MessageGuard.h"

#include <QApplication>
#include <QFile>
#include <QKeyEvent>
#include <QTest>
#include <QVBoxLayout>

/// Stands in for the main window: holds the page under test and counts the keys that reach it,
/// which the real one would hand to the list of items.
class Window : public QWidget {
public:
    Window() { setLayout(new QVBoxLayout); }

    int keys = 0;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        ++keys;
        QWidget::keyPressEvent(event);
    }
};

/// One page in a shown window with the application's style sheet, connected to a Producer on
/// loopback whose log line by line has to be what the test expects.
template <typename PageClass>
class PageTest {
public:
    PageTest() {
        initCompanionResources();
        QFile sheet{QLatin1StringView(ShellLook::kStyleSheetPath)};
        if (sheet.open(QFile::ReadOnly | QFile::Text))
            qApp->setStyleSheet(QString::fromUtf8(sheet.readAll()));
        page = new PageClass(configuration, &window);
        window.layout()->addWidget(page);
        window.resize(1280, 610);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QVERIFY(producer.listen());
        QVERIFY(EventDispatcher::getInstance()->client().connectToServer(producer.host(),
                                                                         producer.port()));
        QTRY_COMPARE(producer.connectionCount(), 1);
    }
    ~PageTest() { EventDispatcher::getInstance()->client().disconnectFromServer(); }
    Q_DISABLE_COPY_MOVE(PageTest)

    MeshpadTest::MessageGuard messages;
    const Configuration configuration = makeConfiguration();
    MeshpadTest::FakeProducer producer;
    Window window;
    PageClass* page = nullptr; ///< a child of the window
};
