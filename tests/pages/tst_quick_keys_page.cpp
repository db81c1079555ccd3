#include "network/events/AddQuickKeyEvent.h"
#include "network/events/ConfigQuickKeyEvent.h"
#include "network/events/DeleteQuickKeyEvent.h"
#include "network/events/ExecuteQuickKeyEvent.h"
#include "network/events/UpdateQuickKeyEvent.h"
#include "pages/QuickKeysButton.h"
#include "pages/QuickKeysPage.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/WidgetRig.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QSpinBox>
#include <QStackedWidget>

using namespace MeshpadTest;
using namespace NetworkCompanion;

namespace {

constexpr QRgb kNeutral = 0xff323232;

class KeysRig : public WidgetRig<QuickKeysPage> {
public:
    QSpinBox* spinBox() const { return widget->findChild<QSpinBox*>(); }
    QGridLayout* grid() const {
        QCoreApplication::processEvents(); // the buttons follow in the next iteration
        const auto* page = widget->findChild<QStackedWidget*>()->currentWidget();
        return page ? qobject_cast<QGridLayout*>(page->layout()) : nullptr;
    }
    /// The button at that position of the shown grid page.
    QuickKeysButton* at(int row, int column) const {
        return qobject_cast<QuickKeysButton*>(grid()->itemAtPosition(row, column)->widget());
    }
    void add(std::initializer_list<int> ids) const {
        for (const int id : ids)
            widget->addQuickKey(id, QByteArray::number(id).constData(), "#203040");
    }
    /// The names of the enabled keys of all grid pages, "1 -/3 4|5 6/- -" for two pages of 2 x 2.
    QString layout() const {
        const int shown = spinBox()->value();
        QStringList pages;
        for (int page = 1; page <= spinBox()->maximum(); ++page) {
            spinBox()->setValue(page);
            QStringList rows;
            for (int row = 0; grid() && row < grid()->rowCount(); ++row) {
                QStringList names;
                for (int column = 0; column < grid()->columnCount(); ++column)
                    names << (at(row, column)->isEnabled() ? at(row, column)->text() : "-");
                rows << names.join(' ');
            }
            pages << rows.join('/');
        }
        spinBox()->setValue(shown);
        return pages.join('|');
    }
};

QRgb background(QuickKeysButton* button) {
    return button->grab().toImage().pixel(30, 12);
}

/// Whether the name is visible and leaves the border free, so that nothing is cut off.
bool isNameWhole(QuickKeysButton* button) {
    const QImage image = button->grab().toImage();
    const QRgb empty = image.pixel(30, 4);
    const QRect inside = image.rect().adjusted(5, 5, -5, -5);
    int drawn = 0, cut = 0;
    for (int y = 3; y < image.height() - 3; ++y)
        for (int x = 12; x < image.width() - 12; ++x)
            if (image.pixel(x, y) != empty)
                ++(inside.contains(x, y) ? drawn : cut);
    return drawn > 0 && cut == 0;
}

} // namespace

/// The page of quick keys, connected to a Producer.
class TestQuickKeysPage : public GuardedTest {
    Q_OBJECT

private slots:
    void showsKeysOfTheProducer() {
        KeysRig rig;
        QVERIFY(rig.spinBox()->isHidden());
        rig.producer.send(ConfigQuickKeyEvent(2, 3, 0));
        rig.producer.send(AddQuickKeyEvent(1, 0, 0, "first", "#ff0000"));
        rig.producer.send(AddQuickKeyEvent(6, 0, 0, "sixth", "#ff0000"));
        QTRY_COMPARE(rig.layout(), "first - -/- - sixth");
        QTest::mouseClick(rig.at(1, 2), Qt::LeftButton);
        QVERIFY(rig.gets(ExecuteQuickKeyEvent(6)));
        QVERIFY(rig.spinBox()->isHidden());
        rig.producer.send(AddQuickKeyEvent(7, 0, 0, "seventh", "#ff0000"));
        QTRY_COMPARE(rig.layout(), "first - -/- - sixth|seventh - -/- - -");
        QVERIFY(rig.spinBox()->isVisible());

        QTest::keyClick(rig.spinBox(), Qt::Key_Up);
        QCOMPARE(rig.at(0, 0)->id(), 7);
        rig.producer.send(UpdateQuickKeyEvent(7, 0, "renamed", "#00ff00"));
        QTRY_COMPARE(rig.at(0, 0)->text(), "renamed");
        QCOMPARE(background(rig.at(0, 0)), 0xff00ff00);
        rig.producer.send(DeleteQuickKeyEvent(7, 0));
        QTRY_COMPARE(rig.layout(), "first - -/- - sixth");
        QVERIFY(rig.spinBox()->isHidden());
    }

    void executesAKeyOnceWhenTheFingerSlides() {
        KeysRig rig;
        rig.widget->configQuickKey(1, 1);
        rig.add({1});
        QuickKeysButton* key = rig.at(0, 0);
        QTest::mousePress(key, Qt::LeftButton);
        for (const QPoint position : {QPoint(-20, 9), QPoint(9, 9)}) {
            QMouseEvent slide(QEvent::MouseMove, position, key->mapToGlobal(QPointF(position)),
                              Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(key, &slide);
        }
        QVERIFY(rig.gets(ExecuteQuickKeyEvent(1))); // before the release
    }

    void removesEmptyPagesWhenHighestKeyIsDeleted_data() {
        QTest::addColumn<QList<int>>("deleted");
        QTest::addColumn<QString>("left");
        QTest::newRow("lower key") << QList{2} << "1 -|- -|- 6|- 8";
        QTest::newRow("keys above a gap") << QList{8, 6} << "1 2";
        QTest::newRow("all, highest last") << QList{1, 2, 6, 8} << "- -|- -|- -|- -";
        QTest::newRow("unknown keys") << QList{3, 9, 10000} << "1 2|- -|- 6|- 8";
    }
    void removesEmptyPagesWhenHighestKeyIsDeleted() {
        QFETCH(QList<int>, deleted);
        QFETCH(QString, left);
        const KeysRig rig;
        rig.widget->configQuickKey(1, 2);
        rig.add({1, 2, 6, 8});
        rig.spinBox()->setValue(4);
        for (const int id : deleted)
            rig.widget->deleteQuickKey(id);
        QCOMPARE(rig.layout(), left);
        QCOMPARE(rig.spinBox()->value(), rig.spinBox()->maximum()); // the last page
        rig.add({3});                                               // the pages grow again
        QVERIFY(rig.layout().startsWith(left.left(3) + "|3 -"));
    }

    void keepsPageNumberWhenGridChanges_data() {
        QTest::addColumn<QSize>("grid");
        QTest::addColumn<QString>("layout");
        QTest::addColumn<int>("shown");
        QTest::newRow("one page") << QSize(9, 1) << "1 2 3 - 5 6 7 - -" << 1;
        QTest::newRow("filled page") << QSize(7, 1) << "1 2 3 - 5 6 7" << 1;
        QTest::newRow("column") << QSize(1, 2) << "1/2|3/-|5/6|7/-" << 2;
        QTest::newRow("one key a page") << QSize(1, 1) << "1|2|3|-|5|6|7" << 2;
    }
    void keepsPageNumberWhenGridChanges() {
        QFETCH(QSize, grid);
        QFETCH(QString, layout);
        const KeysRig rig;
        rig.widget->configQuickKey(2, 2);
        rig.add({1, 2, 3, 5, 6, 7});
        rig.spinBox()->setValue(2); // key 5
        rig.widget->configQuickKey(grid.height(), grid.width());
        QTEST(rig.spinBox()->value(), "shown");
        QCOMPARE(rig.layout(), layout);
    }

    void ignoresEarlyUnknownAndHostileEvents() {
        KeysRig rig;
        rig.producer.send(AddQuickKeyEvent(1, 0, 0, "before the grid", "#ff0000"));
        rig.producer.send(DeleteQuickKeyEvent(1, 0));
        rig.producer.send(ConfigQuickKeyEvent(1, 2, 0));
        rig.producer.send(UpdateQuickKeyEvent(2, 0, "unknown", "#00ff00"));
        for (const std::uint32_t id : {0U, 10'001U, 0xffffffffU}) {
            rig.producer.send(AddQuickKeyEvent(id, 0, 0, "hostile", "#00ff00"));
            rig.producer.send(UpdateQuickKeyEvent(id, 0, "hostile", "#00ff00"));
            rig.producer.send(DeleteQuickKeyEvent(id, 0));
            messages_->expect(QtWarningMsg,
                              QString("Quick keys: id %1 is not in 1 to 10000").arg(int(id)), 3);
        }
        for (const auto& [rows, columns] : {std::pair{0, 1}, {1, 0}, {65, 1}, {1, -1}}) {
            rig.producer.send(ConfigQuickKeyEvent(std::uint32_t(rows), std::uint32_t(columns), 0));
            const QString warning("Quick keys: a grid of %1 x %2 is not in 1 to 64");
            messages_->expect(QtWarningMsg, warning.arg(rows).arg(columns));
        }
        rig.producer.send(AddQuickKeyEvent(1, 0, 0, "one", "#ff0000"));
        QTRY_COMPARE(rig.layout(), "one -");
    }

    void showsColorsOfTheProducer_data() {
        QTest::addColumn<QByteArray>("color");
        QTest::addColumn<QRgb>("shown");
        QTest::newRow("number") << QByteArray("#a0B1c2") << 0xffa0b1c2;
        QTest::newRow("name") << QByteArray("green") << 0xff008000;
        QTest::newRow("style rule") << QByteArray("}*{x:y}") << kNeutral;
    }
    void showsColorsOfTheProducer() {
        QFETCH(QByteArray, color);
        QFETCH(QRgb, shown);
        const KeysRig rig;
        rig.widget->configQuickKey(1, 1);
        rig.widget->addQuickKey(1, "key", color.constData());
        QuickKeysButton* key = rig.at(0, 0);
        QCOMPARE(background(key), shown);
        rig.widget->deleteQuickKey(1);
        QCOMPARE(key->styleSheet(), QString());
    }

    void fitsNames_data() {
        QTest::addColumn<QString>("name");
        QTest::newRow("ampersands") << "R&B && &Soul";
        QTest::newRow("ideograms") << "红色警戒场景 とても長いキーの名前がここに入ります";
        QTest::newRow("graphemes")
            << QString::fromUtf8("🎉👩‍👩‍👧‍👦").repeated(4);
        QTest::newRow("long") << QString("word ").repeated(51);
        QTest::newRow("elided") << QString(255, 'W');
    }
    void fitsNames() {
        QFETCH(QString, name);
        const KeysRig rig;
        rig.widget->configQuickKey(3, 5);
        rig.widget->addQuickKey(1, name.toUtf8().constData(), "#0000ff");
        QuickKeysButton* key = rig.at(0, 0);
        QCOMPARE(key->accessibleName(), name);
        QVERIFY(isNameWhole(key));
        QCOMPARE(key->isNameElided(), name.startsWith("WW"));
        rig.widget->configQuickKey(9, 14); // the smallest buttons
        QVERIFY(isNameWhole(rig.at(0, 0)));
    }

    void focusNeverMovesToAnotherKey() {
        KeysRig rig;
        rig.widget->configQuickKey(1, 2);
        rig.add({1, 2, 3});
        const auto pressSpace = [] {
            QCoreApplication::processEvents();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        };
        rig.at(0, 0)->setFocus();
        pressSpace();
        QVERIFY(rig.gets(ExecuteQuickKeyEvent(1)));
        rig.widget->deleteQuickKey(1);
        pressSpace();
        rig.at(0, 1)->setFocus();
        for (const int page : {2, -1, 0, 3}) // the last three do not exist
            rig.widget->navigateToPage(page);
        QCOMPARE(rig.at(0, 0)->id(), 3);
        pressSpace();
        rig.at(0, 0)->setFocus();
        rig.widget->configQuickKey(1, 3);
        pressSpace();
        QCOMPARE(rig.window.keys, 3); // an unused key reaches the window
        QVERIFY(rig.getsNothing());
    }

    void spinBoxReturnsTheFocus() {
        const KeysRig rig;
        rig.widget->configQuickKey(1, 1);
        rig.add({12});
        QTest::mouseClick(rig.spinBox(), Qt::LeftButton, {}, {110, 17}); // an arrow
        QCOMPARE(rig.spinBox()->value(), 2);
        QVERIFY(rig.widget->hasFocus());
        const auto buttons = rig.widget->findChildren<QPushButton*>();
        const auto next = std::ranges::find(buttons, "Next page", &QWidget::accessibleName);
        QTest::mouseClick(*next, Qt::LeftButton);
        const auto labels = rig.widget->findChildren<QLabel*>();
        QVERIFY(std::ranges::any_of(labels, [](auto* label) { return label->text() == "3 / 12"; }));

        auto* number = rig.spinBox()->findChild<QLineEdit*>();
        QVERIFY(!number->hasSelectedText());
        const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
        QTest::touchEvent(number, screen.get()).press(0, number->rect().center());
        QTest::touchEvent(number, screen.get()).release(0, number->rect().center());
        QVERIFY(rig.widget->hasFocus());
        QTest::mouseClick(number, Qt::LeftButton);
        QTest::keyClicks(QApplication::focusWidget(), "11");
        QCOMPARE(rig.spinBox()->value(), 11);
        QVERIFY(!rig.widget->hasFocus());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QVERIFY(rig.widget->hasFocus());
        rig.spinBox()->setFocus();
        rig.widget->lockPage();
        QVERIFY(!rig.spinBox()->hasFocus());
    }
};

QTEST_MAIN(TestQuickKeysPage)
#include "tst_quick_keys_page.moc"
