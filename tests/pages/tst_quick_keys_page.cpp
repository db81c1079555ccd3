#include "network/events/AddQuickKeyEvent.h"
#include "network/events/ConfigQuickKeyEvent.h"
#include "network/events/DeleteQuickKeyEvent.h"
#include "network/events/UpdateQuickKeyEvent.h"
#include "pages/QuickKeysButton.h"
#include "pages/QuickKeysPage.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/ProtocolBytes.h"
#include "tests/support/ThreadTime.h"
#include "tests/support/WidgetRig.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QMouseEvent>
#include <QSpinBox>
#include <QStackedWidget>

#include <algorithm>

using namespace MeshpadTest;
using namespace NetworkCompanion;

namespace {

constexpr QRgb kNeutral = 0xff323232;

class KeysTest : public WidgetRig<QuickKeysPage> {
public:
    QSpinBox* spinBox() const { return widget->findChild<QSpinBox*>(); }
    QStackedWidget* stack() const { return widget->findChild<QStackedWidget*>(); }
    int pages() const {
        QCoreApplication::processEvents(); // the grid pages follow within a turn
        return stack()->count();
    }
    int shownPage() const {
        QCoreApplication::processEvents();
        return stack()->currentIndex() + 1;
    }

    /// The button at a place of the shown page.
    QuickKeysButton* at(int row, int column) const {
        QCoreApplication::processEvents();
        auto* grid = qobject_cast<QGridLayout*>(stack()->currentWidget()->layout());
        return qobject_cast<QuickKeysButton*>(grid->itemAtPosition(row, column)->widget());
    }
    void add(std::initializer_list<int> ids) const {
        for (const int id : ids)
            widget->addQuickKey(id, QByteArray::number(id).constData(), "#203040");
    }
    /// Names of the keys that can be pressed, page by page: "1 2 3|7".
    QString layout() const {
        const int view = shownPage();
        QStringList names;
        for (int i = 0; i < pages(); ++i) {
            widget->navigateToPage(i + 1);
            QStringList row;
            const QLayout* grid = stack()->currentWidget()->layout();
            for (int place = 0; place < grid->count(); ++place) {
                const auto* key = qobject_cast<QuickKeysButton*>(grid->itemAt(place)->widget());
                row << (key->isEnabled() ? key->text() : QString("-"));
            }
            names << row.join(' ');
        }
        widget->navigateToPage(view);
        return names.join('|');
    }
};

QByteArray executeBytes(int id) {
    return withLength(frame(25, int32(id)));
}

/// Whether nothing but the ground comes near the border, where a name would be cut off, and
/// something stands in the middle.
bool isNameWhole(QuickKeysButton* button, QRgb ground) {
    const QImage image = button->grab().toImage();
    const QRect inside = image.rect().adjusted(5, 5, -5, -5);
    bool something = false;
    for (int y = 3; y < image.height() - 3; ++y) {
        for (int x = 3; x < image.width() - 3; ++x) {
            const bool isCorner =
                (x < 12 || x > image.width() - 13) && (y < 12 || y > image.height() - 13);
            if (isCorner || image.pixel(x, y) == ground)
                continue;
            if (!inside.contains(x, y))
                return false;
            something = true;
        }
    }
    return something;
}

} // namespace

/// The page of quick keys between an operator and a Producer.
class TestQuickKeysPage : public GuardedTest {
    Q_OBJECT

private slots:
    void keysOfTheProducerFillPagesAndAreExecuted() {
        KeysTest test;
        QVERIFY(test.spinBox()->isHidden());
        test.producer.send(ConfigQuickKeyEvent(2, 3, 0));
        test.producer.send(AddQuickKeyEvent(1, 0, 0, "first", "#ff0000"));
        test.producer.send(AddQuickKeyEvent(6, 0, 0, "sixth", "#ff0000"));
        QTRY_COMPARE(test.layout(), "first - - - - sixth");
        QVERIFY(test.spinBox()->isHidden());
        test.producer.send(AddQuickKeyEvent(7, 0, 0, "seventh", "#ff0000"));
        QTRY_COMPARE(test.layout(), "first - - - - sixth|seventh - - - - -");
        QVERIFY(test.spinBox()->isVisible());
        QCOMPARE(test.spinBox()->minimum(), 1);
        QCOMPARE(test.spinBox()->maximum(), 2);
        QCOMPARE(test.shownPage(), 1);

        // One press, though the finger slides off the key and back.
        QuickKeysButton* sixth = test.at(1, 2);
        QTest::mousePress(sixth, Qt::LeftButton);
        for (const QPoint place : {QPoint(-20, 9), QPoint(9, 9), QPoint(9, -20), QPoint(9, 9)}) {
            QMouseEvent move(QEvent::MouseMove, place, sixth->mapToGlobal(QPointF(place)),
                             Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(sixth, &move);
        }
        QTest::mouseRelease(sixth, Qt::LeftButton);
        QTest::mouseClick(test.at(0, 1), Qt::LeftButton); // no key there
        QTest::keyClick(test.spinBox(), Qt::Key_Up);
        QCOMPARE(test.shownPage(), 2);
        QCOMPARE(test.at(0, 0)->id(), 7);
        QTest::mouseClick(test.at(0, 0), Qt::LeftButton);
        test.producer.send(UpdateQuickKeyEvent(7, 0, "renamed", "#00ff00"));
        QTRY_COMPARE(test.at(0, 0)->text(), "renamed");
        QCOMPARE(test.at(0, 0)->grab().toImage().pixel(30, 12), 0xff00ff00);
        const QByteArray expected = executeBytes(6) + executeBytes(7);
        QTRY_COMPARE(test.producer.bytes(), expected);

        test.producer.send(DeleteQuickKeyEvent(7, 0));
        QTRY_COMPARE(test.layout(), "first - - - - sixth");
        QVERIFY(test.spinBox()->isHidden());
        QCOMPARE(test.shownPage(), 1);
    }

    void deletingTheHighestKeyTakesEmptyPagesAway() {
        const std::pair<QList<int>, QString> rows[] = {
            {{2}, "1 -|- -|- 6|- 8"},
            {{8}, "1 2|- -|- 6"}, // the last place of a page
            {{8, 6}, "1 2"},      // over a gap
            {{8, 6, 2, 1}, "- -"},
            {{1, 2, 6, 8}, "- -|- -|- -|- -"}, // the highest last
            {{3, 9, 10000}, "1 2|- -|- 6|- 8"}};
        for (const auto& [deleted, left] : rows) {
            const KeysTest test;
            test.widget->configQuickKey(1, 2);
            test.add({1, 2, 6, 8});
            for (const int id : deleted)
                test.widget->deleteQuickKey(id);
            QCOMPARE(test.layout(), left);
            QCOMPARE(test.spinBox()->maximum(), test.pages());
            QCOMPARE(test.spinBox()->isVisible(), test.pages() > 1);
            QCOMPARE(test.shownPage(), test.spinBox()->value());
            test.add({3}); // the pages can grow again
            QVERIFY(test.layout().startsWith(left.left(3) + "|3 -"));
        }
    }

    void anotherGridKeepsTheKeysAndTheView() {
        struct Grid {
            int rows, columns;
            QString layout;
            int shown;
        };
        for (const Grid& grid :
             {Grid{1, 9, "1 2 3 - 5 6 7 - -", 1}, Grid{2, 1, "1 2|3 -|5 6|7 -", 3},
              Grid{1, 1, "1|2|3|-|5|6|7|-", 5}, Grid{2, 2, "1 2 3 -|5 6 7 -", 2},
              Grid{1, 7, "1 2 3 - 5 6 7|- - - - - - -", 1}}) { // filled by the highest
            const KeysTest test;
            test.widget->configQuickKey(2, 2);
            test.add({1, 2, 3, 5, 6, 7});
            test.spinBox()->setValue(2); // on key 5
            test.widget->configQuickKey(grid.rows, grid.columns);
            QCOMPARE(test.layout(), grid.layout);
            QCOMPARE(test.spinBox()->value(), grid.shown);
            QCOMPARE(test.shownPage(), grid.shown);
            QCOMPARE(test.spinBox()->maximum(), test.pages());

            // Each button still executes its own key, the new ones as well.
            test.add({8});
            QByteArray expected;
            const int places = grid.rows * grid.columns;
            for (int id = 1; id <= 8; ++id) {
                test.spinBox()->setValue((id - 1) / places + 1);
                const int place = (id - 1) % places;
                QTest::mouseClick(test.at(place / grid.columns, place % grid.columns),
                                  Qt::LeftButton);
                expected += id == 4 ? QByteArray() : executeBytes(id);
            }
            QTRY_COMPARE(test.producer.bytes(), expected);
        }
    }

    void earlyAndHostileEventsChangeNothing() {
        KeysTest test;
        auto& producer = test.producer;
        producer.send(AddQuickKeyEvent(1, 0, 0, "early", "#ff0000"));
        producer.send(UpdateQuickKeyEvent(1, 0, "early", "#ff0000"));
        producer.send(DeleteQuickKeyEvent(1, 0));
        producer.send(ConfigQuickKeyEvent(1, 2, 0));
        producer.send(AddQuickKeyEvent(1, 0, 0, "one", "#ff0000"));
        QTRY_COMPARE(test.layout(), "one -");

        for (const std::uint32_t id : {0U, 10'001U, 0x7fffffffU, 0x80000000U, 0xffffffffU}) {
            producer.send(AddQuickKeyEvent(id, 0, 0, "hostile", "#00ff00"));
            producer.send(UpdateQuickKeyEvent(id, 0, "hostile", "#00ff00"));
            producer.send(DeleteQuickKeyEvent(id, 0));
            messages_->expect(QtWarningMsg,
                              QString("Quick keys: id %1 is not in 1 to 10000").arg(int(id)), 3);
        }
        for (const auto& [rows, columns] :
             {std::pair{0U, 1U}, {1U, 0U}, {65U, 1U}, {1U, 0xffffffffU}, {0x10000U, 0x10000U}}) {
            producer.send(ConfigQuickKeyEvent(rows, columns, 0));
            messages_->expect(QtWarningMsg,
                              QString("Quick keys: a grid of %1 x %2 is not in 1 to 64")
                                  .arg(int(rows))
                                  .arg(int(columns)));
        }
        producer.send(UpdateQuickKeyEvent(2, 0, "unknown", "#00ff00"));
        producer.send(AddQuickKeyEvent(2, 0, 0, "two", "#ff0000"));
        QTRY_COMPARE(test.layout(), "one two");
    }

    void colorsOfTheProducerAreShown() {
        const std::pair<const char*, QRgb> colors[] = {
            {"#a0B1c2", 0xffa0b1c2}, {"green", 0xff008000}, {"", kNeutral},
            {"}*{x:y}", kNeutral}, // a rule of its own
            {"red;/*", kNeutral},    {"\"", kNeutral},      {"re d", kNeutral}};
        const KeysTest test;
        test.widget->configQuickKey(1, 1);
        for (const auto& [color, seen] : colors) {
            test.widget->addQuickKey(1, "key", color);
            auto* key = test.at(0, 0);
            QVERIFY2(key->grab().toImage().pixel(30, 12) == seen, color);
            QTest::mousePress(key, Qt::LeftButton);
            QVERIFY2(key->grab().toImage().pixel(30, 12) == 0xff0096ff, color);
            QTest::mouseRelease(key, Qt::LeftButton);
            test.widget->deleteQuickKey(1);
            QCOMPARE(key->styleSheet(), QString());
            QVERIFY2(key->grab().toImage().pixel(30, 12) != seen || seen == kNeutral, color);
        }
    }

    void namesAreShownWhole() {
        const QString names[] = {
            "R&B && &Soul",
            "Opening titles, the long version with many words",
            "backgroundvideo_final_final_v3.mov",
            "Έναρξη Начало представления",
            "مرحبا بالجمهور שלום",
            "红色警戒场景 とても長いキーの名前がここに入ります",
            QString::fromUtf8("🎉👩‍👩‍👧‍👦").repeated(4),
            "one\ntwo\r\nthree\u2028four",
            QString("word ").repeated(51),
            QString::fromUtf8(QByteArray("é").repeated(128).left(255)), // cut within a letter
            QString(255, 'W')};
        for (const QString& name : names) {
            const KeysTest test;
            test.widget->configQuickKey(3, 5);
            test.widget->addQuickKey(1, name.toUtf8().constData(), "#0000ff");
            auto* key = test.at(0, 0);
            QCOMPARE(key->text(), name);
            QCOMPARE(key->accessibleName(), name);
            QVERIFY(key->shortcut().isEmpty());
            QVERIFY2(isNameWhole(key, 0xff0000ff), qPrintable(name));
            QCOMPARE(key->isNameElided(), name.startsWith("WW"));
            test.widget->configQuickKey(9, 14); // the smallest keys
            QVERIFY2(isNameWhole(test.at(0, 0), 0xff0000ff), qPrintable(name));
        }
    }

    void theKeyboardNeverLandsOnAnotherKey() {
        KeysTest test;
        test.widget->configQuickKey(1, 2);
        test.add({1, 2, 3});
        test.at(0, 0)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        test.widget->deleteQuickKey(1);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        test.at(0, 1)->setFocus();
        test.widget->navigateToPage(2);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        test.at(0, 0)->setFocus();
        test.widget->configQuickKey(1, 3);
        QCOMPARE(test.pages(), 2);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        QCOMPARE(test.window.keys, 3); // what no key takes goes on to the window
        QTRY_COMPARE(test.producer.bytes(), executeBytes(1));

        test.add({4});
        test.spinBox()->setFocus();
        test.widget->lockPage();
        QVERIFY(!test.spinBox()->hasFocus());
    }

    void anArrowLeavesTheKeyboardWhereItIs() {
        const KeysTest test;
        test.widget->configQuickKey(1, 1);
        test.add({12});
        auto* number = test.spinBox()->findChild<QLineEdit*>();
        const auto touchArrow = [&test](int x) {
            QTest::mouseClick(test.spinBox(), Qt::LeftButton, {}, {x, 17});
        };
        const auto isAtThePage = [&] {
            return test.widget->hasFocus() && !number->hasSelectedText();
        };
        touchArrow(110);
        touchArrow(110);
        touchArrow(10);
        QCOMPARE(test.spinBox()->value(), 2);
        QVERIFY(isAtThePage());

        for (const bool byArrow : {false, true}) {
            QTest::mouseClick(number, Qt::LeftButton);
            QTest::keyClicks(QApplication::focusWidget(), "11");
            QCOMPARE(test.shownPage(), 11);
            if (byArrow)
                touchArrow(10);
            else
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            QVERIFY(isAtThePage());
            QCOMPARE(test.shownPage(), byArrow ? 10 : 11);
        }
    }

    void spinBoxAndPageAlwaysAgree() {
        const KeysTest test;
        test.widget->configQuickKey(1, 2);
        test.add({5});
        for (const auto& [asked, shown] :
             {std::pair{2, 2}, {3, 3}, {4, 3}, {0, 3}, {-1, 3}, {1, 1}}) {
            test.widget->navigateToPage(asked);
            QCOMPARE(test.stack()->currentIndex() + 1, shown);
            QCOMPARE(test.spinBox()->value(), shown);
        }
        // An arrow without a way to go looks it.
        const auto arrows = [&test] { return test.spinBox()->grab().toImage(); };
        const QImage first = arrows();
        test.spinBox()->setValue(2);
        const QImage middle = arrows();
        test.spinBox()->setValue(3);
        const QImage last = arrows();
        const QRect left(0, 0, 30, 35);
        const QRect right(90, 0, 30, 35);
        QVERIFY(first.copy(left) != middle.copy(left));
        QCOMPARE(first.copy(right), middle.copy(right));
        QCOMPARE(last.copy(left), middle.copy(left));
        QVERIFY(last.copy(right) != middle.copy(right));
    }

    void aFloodOfGridsAndKeysLeavesTheWindowFree() {
        KeysTest test;
        // Grids of the largest size, and pages by the thousand, in turns.
        const auto flood = [&test] {
            for (int i = 0; i < 20; ++i) {
                test.producer.send(ConfigQuickKeyEvent(64, 64, 0));
                test.producer.send(AddQuickKeyEvent(10'000, 0, 0, "last", "#00ff00"));
                test.producer.send(ConfigQuickKeyEvent(1, 1, 0));
                test.producer.send(DeleteQuickKeyEvent(10'000, 0));
            }
            test.producer.send(ConfigQuickKeyEvent(64, 64, 0));
        };
        test.widget->configQuickKey(1, 1);
        test.add({1});
        QTRY_VERIFY(test.at(0, 0)->isVisible()); // what is loaded with the first key is
        for (std::uint32_t id = 1; id < 4096; ++id)
            test.producer.send(AddQuickKeyEvent(id, 0, 0, "key", "#203040"));
        // The longest time in which the operator could have done nothing.
        ThreadTime turn;
        std::chrono::milliseconds longest{};
        QTimer pulse;
        connect(&pulse, &QTimer::timeout, this,
                [&] { longest = std::max(longest, turn.restart()); });
        pulse.start(0);
        for (int i = 0; i < 10; ++i) {
            flood();
            turn.restart(); // what the test does is not the window's work
            QTest::qWait(10);
        }
        const ThreadTime all;
        flood();
        for (std::uint32_t id = 1; id < 4096; ++id)
            test.producer.send(AddQuickKeyEvent(id, 0, 0, "key", "#203040"));
        test.producer.send(AddQuickKeyEvent(4096, 0, 0, "end", "#203040"));
        turn.restart();
        const auto keys = [&] { return test.widget->findChildren<QuickKeysButton*>(); };
        QuickKeysButton* last = nullptr; // shown, and laid out in a turn of its own
        const auto everythingCame = [&] {
            const auto buttons = keys();
            const auto found = std::ranges::find_if(buttons, [](auto* key) {
                return key->text() == "end" && key->isVisible() && key->height() > 0;
            });
            last = found == buttons.end() ? nullptr : *found;
            return last != nullptr;
        };
        QTRY_VERIFY_WITH_TIMEOUT(everythingCame(), 60'000);
        QCOMPARE(keys().size(), 4096);
        // A page made in one turn would be most of it.
        const auto work = all.elapsed();
        qInfo("the longest turn took %d of %d ms", int(longest.count()), int(work.count()));
        QVERIFY(longest * 2 < work);
        QTest::mouseClick(last, Qt::LeftButton);
        QTRY_COMPARE(test.producer.bytes(), executeBytes(4096));
    }
};

QTEST_MAIN(TestQuickKeysPage)
#include "tst_quick_keys_page.moc"
