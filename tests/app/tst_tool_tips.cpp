#include "app/ToolTipFilter.h"
#include "resources/CompanionResources.h"

#include <QApplication>
#include <QFile>
#include <QHelpEvent>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QToolTip>

/// The tip over a widget that styles itself, with the application's style sheet.
class TestToolTips : public QObject {
    Q_OBJECT

private slots:
    void aTipHasTheLookOfTheApplication() {
        initCompanionResources();
        QFile sheet(QStringLiteral(":/qss/styleSheet.qss"));
        QVERIFY(sheet.open(QFile::ReadOnly | QFile::Text));
        qApp->setStyleSheet(QString::fromUtf8(sheet.readAll()));
        ToolTipFilter filter(nullptr);
        qApp->installEventFilter(&filter);

        QWidget window;
        auto* button = new QPushButton(QStringLiteral("button"), &window);
        button->setStyleSheet(QStringLiteral("background-color: #ff0000; border: none;"));
        button->setToolTip(QStringLiteral("What it does"));
        auto* part = new QLabel(QStringLiteral("without a tip of its own"), button);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        for (QWidget* under : {static_cast<QWidget*>(button), static_cast<QWidget*>(part)}) {
            QHelpEvent rest(QEvent::ToolTip, QPoint(2, 2), under->mapToGlobal(QPoint(2, 2)));
            QApplication::sendEvent(under, &rest);
            QCOMPARE(QToolTip::text(), button->toolTip());
            QWidget* tip = shownTip();
            QVERIFY(tip != nullptr);
            const QImage image = tip->grab().toImage();
            QCOMPARE(image.pixelColor(0, image.height() / 2), QColor(0xa0a0a0));
            QCOMPARE(image.pixelColor(4, image.height() / 2), QColor(0x1e1e1e));
            QToolTip::hideText();
            QTRY_VERIFY(shownTip() == nullptr);
        }
    }

private:
    static QWidget* shownTip() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->windowType() == Qt::ToolTip && widget->isVisible()) {
                return widget;
            }
        }
        return nullptr;
    }
};

QTEST_MAIN(TestToolTips)
#include "tst_tool_tips.moc"
