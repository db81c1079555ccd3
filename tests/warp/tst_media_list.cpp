#include "network/events/AddScreenEvent.h"
#include "network/events/AddScreenPartEvent.h"
#include "network/events/BlindEvent.h"
#include "network/events/ItemDataEvent.h"
#include "network/events/MediaBlindEvent.h"
#include "network/events/ProtocolLimits.h"
#include "network/events/RemoveScreenEvent.h"
#include "network/events/ScreenModeEvent.h"
#include "network/events/ScreenPartBlindEvent.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/WidgetRig.h"
#include "warp/MediaList.h"
#include "warp/MediaListContainer.h"
#include "warp/ScreenItem.h"
#include "warp/ScreenPartItem.h"
#include "warp/WarpLook.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QMap>
#include <QRandomGenerator>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>
#include <QToolTip>

#include <functional>
#include <memory>
#include <optional>
#include <tuple>

using namespace NetworkCompanion;

using Mode = LV_NTC_ModeType;
using Kind = LV_NTC_ElementType;
using Deformation = LV_NTC_DeformationType;

/// The list in a window, fed by a fake Producer and used by mouse, keys and touch.
class TestMediaList : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void labelsOfPartsFollowTheScreen() {
        list_->addScreen(1, 0, 800, 600, 90.0, false, false, "Wall");
        list_->addScreenPart(1, 5, 0, 1, 1, 0.0, false, "Left");
        list_->addScreenPart(1, 5, 0, 1, 1, 0.0, false, "Right");
        list_->addScreenPart(1, 4, 0, 1, 1, 0.0, false, "");
        QCOMPARE(allRows(), QStringList({"Wall", "Wall, Right", "Wall, Part"}));
        list_->addScreen(1, 0, 400, 300, 45.0, false, false, "Zoom");
        QCOMPARE(allRows(), QStringList({"Zoom", "Zoom, Left", "Zoom, Part"}));
    }

    /// Random operations leave the same rows as a reference list that is rebuilt every time.
    void orderAndVisibilityEqualAReferenceList() {
        QRandomGenerator random(20240607);
        const QStringList names{"a", "B", "ab", "b", "A", "ba, c", "", "Part", "é", "É"};
        QString filterText, text;
        bool screensOnly = false;
        int id = 0;
        const std::function<void()> operations[] = {
            // After the first six, order and visibility are due with the next update.
            [&] { list_->updateScreenMode(id, Mode(random.bounded(4))); },
            [&] { list_->updateMediaBlind(Kind(1 + random.bounded(2)), text, unsigned(id), true); },
            [&] { list_->removeMedia(unsigned(id)), list_->removeTexture(unsigned(id)); },
            [&] { list_->removeScreenPart(id, random.bounded(4)); },
            [&] { list_->removeScreen(id); },
            [&] { random.bounded(3) ? list_->selectNextVisibleItem() : list_->unselectItem(); },
            // The next three may change nothing, which is no update.
            [&] { list_->addScreenPart(id, random.bounded(4), 0, 1, 1, 0.0, false, text); },
            [&] { list_->filterByText(filterText = text); },
            [&] { list_->filterScreens(screensOnly = !screensOnly); },
            [&] { addMedia(unsigned(id), text); },
            [&] { list_->addTexture(unsigned(id), 0, 0, 1, 1, 0.0, false, text); },
            [&] { list_->addScreen(id, 0, 1, 1, 0.0, false, false, text); },
        };
        for (int step = 0; step < 3000; ++step) {
            id = random.bounded(9);
            text = names.at(random.bounded(int(names.size())));
            const int operation = random.bounded(int(std::size(operations)));
            operations[operation]();
            QVERIFY(!list_->selection() || !list_->selection()->isHidden());
            if (operation < 6)
                continue;
            if (operation < 9)
                list_->updateMediaList();
            QCOMPARE(allRows(), reference(false, "", false));
            QCOMPARE(shownRows(), reference(true, filterText, screensOnly));
        }
    }

    void selectionIsSent() {
        for (const unsigned cue : {1U, 2U, 3U})
            addMedia(cue, QString::number(cue), int(100 * cue));
        QTest::mouseClick(row("2"), Qt::LeftButton);
        QTest::keyClicks(focus(), "mm"); // the last row is the end
        list_->onAction(Action::SELECT_PREVIOUS_SCREEN);
        QTest::keyClicks(focus(), "pp");
        list_->unselectItem();
        list_->onAction(Action::SELECT_PREVIOUS_SCREEN);
        QVERIFY(rig_->gets(ItemDataEvent(200), ItemDataEvent(300), ItemDataEvent(200),
                           ItemDataEvent(100), ItemDataEvent(-1), ItemDataEvent(100)));
    }

    void eyeRequestsTheOppositeBlind() {
        addOneOfEachKind();
        for (int i = 0; Item* item = list_->getItemFromLayout(i); ++i) {
            item->createWidgets(); // the part's row is hidden
            QTest::mouseClick(item->findChild<BlindButton*>(), Qt::LeftButton);
        }
        QVERIFY(rig_->gets(BlindEvent(0, 1, "Wall", false),
                           ScreenPartBlindEvent(1, 5, 0, "Left", true),
                           MediaBlindEvent(Kind::Media, 3, 31, 0, "Clip", true),
                           MediaBlindEvent(Kind::Texture, 2, 21, 0, "Sky", true)));
        QVERIFY(!row("Clip")->isBlinded()); // until the Producer reports it
    }

    void blindOfTheProducerIsShown() {
        addOneOfEachKind();
        rig_->deliver(BlindEvent(0, 1, "", false), BlindEvent(0, 8, "", true),
                      ScreenPartBlindEvent(1, 5, 0, "", true),
                      MediaBlindEvent(Kind::Texture, 2, 21, 0, "Sea", true),
                      MediaBlindEvent(Kind::Media, 2, 31, 0, "No", true));
        QVERIFY(!row("Wall")->isBlinded() && row("Wall, Left")->isBlinded());
        QVERIFY(row("Sea")->isBlinded() && !row("Clip")->isBlinded());
    }

    void deformationThatCannotBeBuiltIsIgnored() {
        addOneOfEachKind();
        ItemDataEvent mesh;
        mesh.setMediaDeformationModeEvent(
            {Kind::Media, Deformation::Curve, 3, 31, 30, "", 64, 3, true});
        mesh.setScreenPartDeformationModeEvent({Deformation::Bezier, 1, 5, 15, "", 4, 1, false});
        mesh.setDeformationModeEvent({Deformation::Curve, 0xFFFFFFFF, 10, "", 65, 3, true});
        const char* ignored = "MediaList: Deformation of type %d with %u x %u points ignored";
        messages_->expect(QtWarningMsg, QString::asprintf(ignored, 1, 4U, 1U));
        rig_->deliver(mesh);
        QCOMPARE(row("Clip")->deformation().type, -1); // the whole event is dropped
        mesh.setScreenPartDeformationModeEvent({Deformation::Bezier, 1, 5, 15, "", 4, 4, false});
        rig_->deliver(mesh);
        QCOMPARE(row("Clip")->deformation().rows, 64);
    }

    void outOfBoundsElementsAreDroppedWithAWarning() {
        messages_->expect(QtWarningMsg, "MediaList: Screen with number 65536 ignored");
        messages_->expect(QtWarningMsg, "MediaList: Screen with number 4294967295 ignored");
        messages_->expect(QtWarningMsg, "MediaList: Part of screen 65535 ignored, it has too many");
        for (const std::uint32_t id : {65535U, 65536U, 0xFFFFFFFFU})
            rig_->deliver(AddScreenEvent(id, 0, 1, 1, 0, 0.0, "Far", false, false));
        auto* screen = static_cast<ScreenItem*>(row("Far"));
        list_->addScreenPart(65535, 1, 0, 1, 1, 0.0, false, "");
        while (screen->parts().size() < Limits::kMaxPartsPerScreen)
            screen->addPart(screen->getPart(1)); // the list only counts them
        messages_->expect(QtWarningMsg, "MediaList: Mode 4 of screen 65535 ignored");
        rig_->deliver(AddScreenPartEvent(65535, 2, 0, 1, 1, 0, 0.0, "", false),
                      ScreenModeEvent(Mode(4), 65535, 0, ""));
        QCOMPARE(shownRows(), QStringList({"Far"}));
    }

    void searchBoxFiltersAndShowsWhetherThereIsAHit() {
        addMedia(1, "Clip", 30);
        select("Clip");
        const QString normal = search()->styleSheet();
        search()->setFocus();
        QTest::keyClicks(focus(), "mt"); // not as shortcuts
        QCOMPARE(shownRows(), QStringList());
        QVERIFY(rig_->gets(ItemDataEvent(30), ItemDataEvent(-1)));
        QVERIFY(search()->styleSheet() != normal);
        addMedia(5, "mtx");
        QTRY_COMPARE(search()->styleSheet(), normal);
        list_->removeMedia(5);
        QTRY_VERIFY(search()->styleSheet() != normal);
        QTest::mouseClick(search()->findChild<QToolButton*>(), Qt::LeftButton);
        QVERIFY(search()->hasFocus() && !row("Clip")->isHidden());
        list_->removeMedia(1);
        search()->setText("x");
        search()->clear();
        QCOMPARE(search()->styleSheet(), normal); // an empty list is no failed search
    }

    void searchBoxReturnsTheFocusToTheList() {
        const auto listHasFocusAfter = [&](Qt::Key key) {
            search()->setFocus();
            QTest::keyClick(focus(), key);
            return list_->isAncestorOf(focus());
        };
        search()->setText("a");
        QVERIFY(listHasFocusAfter(Qt::Key_Return) && listHasFocusAfter(Qt::Key_Down));
        QVERIFY(!listHasFocusAfter(Qt::Key_Escape) && listHasFocusAfter(Qt::Key_Escape));
    }

    void checkBoxHidesScreens() {
        addOneOfEachKind();
        auto* filter = container_->findChild<QCheckBox*>();
        filter->setFocus();
        QTest::keyClick(focus(), Qt::Key_T);
        QTest::simulateEvent(focus(), true, Qt::Key_T, {}, {}, true); // a held key repeats
        QVERIFY(filter->isChecked() && list_->isAncestorOf(focus()));
        QCOMPARE(shownRows(), QStringList({"Clip", "Sky"}));
    }

    void rowsInViewHaveTheirWidgets() {
        addNumberedMedias(200);
        list_->selectFirstVisibleItem(); // without an event-loop iteration
        QCOMPARE(firstRowInView(), "1000");
        QCOMPARE(row("1150")->findChild<NameLabel*>(), nullptr); // never in view
        for (int i = 0; i < 59; ++i)
            list_->selectNextVisibleItem();
        QCOMPARE(row("1059")->visibleRegion().boundingRect().height(), row("1059")->height());
        bar()->setValue(bar()->maximum() / 2);
        QVERIFY(firstRowInView() > "1050");
        rig_->window.resize(260, 900);
        QTRY_VERIFY(!firstRowInView().isEmpty() && list_->height() > 700);
        bar()->setValue(0);
        const QString name = "0<b>A name that is far too long for the row it stands in</b>";
        addMedia(300, name);
        QTRY_COMPARE(bar()->value(), 52); // the first row in view keeps its place
        bar()->setValue(0);
        QCOMPARE(firstRowInView(), name);
        QCOMPARE(row(name)->findChild<NameLabel*>()->toolTip(), name.toHtmlEscaped());
    }

    void filtersScrollToTheSelectionOrTheTop() {
        addNumberedMedias(200);
        QTRY_VERIFY(bar()->maximum() > 0);
        bar()->setValue(bar()->maximum());
        search()->setText("11");
        QCOMPARE(firstRowInView(), "1011");
        select("1105");
        search()->clear();
        QVERIFY(!firstRowInView().isEmpty() && !row("1105")->visibleRegion().isEmpty());
    }

    void touchScrollsOrTaps() {
        addNumberedMedias(100);
        QTRY_VERIFY(row("1003")->y() > row("1002")->y());
        search()->setFocus();
        tap(row("1003"));
        QVERIFY(list_->isAncestorOf(focus()));
        tap(eyeOf("1004"));
        QVERIFY(rig_->gets(ItemDataEvent(3), MediaBlindEvent(Kind::Media, 4, 0, 0, "1004", true)));
        for (QWidget* target : {static_cast<QWidget*>(row("1005")), eyeOf("1005")}) {
            QMouseEvent press(QEvent::MouseButtonPress, {5, 5}, {}, {}, Qt::LeftButton,
                              Qt::LeftButton, {}, Qt::MouseEventSynthesizedBySystem);
            QCoreApplication::sendEvent(target, &press); // Windows makes it from a touch
            finger().press(0, {5, 5}, target).commit();
            finger().stationary(0).press(1, {9, 5}, target).commit();
            finger().stationary(0).release(1, {9, 5}, target).commit();
            finger().release(0, {5, 5}, target).commit(); // two fingers tap nothing
        }
        const QPoint down = row("1004")->mapTo(&rig_->window, row("1004")->rect().center());
        finger().press(0, down).commit();
        for (int y = 10; y <= 150; y += 10) {
            QTest::qWait(1); // QScroller computes a velocity from the time between events
            finger().move(0, down - QPoint(0, y)).commit();
        }
        QTRY_VERIFY(bar()->value() > 100);
        finger().release(0, down - QPoint(0, 150)).commit();
        QVERIFY(rig_->getsNothing());
    }

    /// The edits of another companion arrive while a finger is down, and in between.
    void fingerPressesTheRowUnderIt() {
        QRandomGenerator random(12);
        for (int id = 0; id < 20; ++id) {
            list_->addScreen(id, 0, 1, 1, 0.0, false, false, QString("Screen %1").arg(100 + id));
            for (const int part : {0, 1})
                list_->addScreenPart(id, part, 0, 1, 1, 0.0, false, QString::number(part));
        }
        search()->setText("s");
        bar()->setValue(300);
        bar()->setValue(0);
        const auto rowsInView = [&] {
            QCoreApplication::processEvents();
            QList<Item*> rows;
            for (int i = 0; Item* item = list_->getItemFromLayout(i); ++i)
                if (!item->visibleRegion().isEmpty())
                    rows << item;
            return rows;
        };
        const auto placeOf = [&](Item* item) { return item->mapTo(&rig_->window, QPoint(80, 25)); };
        const auto edit = [&](const Item* spared) {
            const auto id = unsigned(random.bounded(20));
            const QString name = QString("Screen %1").arg(100 + id);
            if (spared->labelText().startsWith(name))
                return;
            if (random.bounded(5) == 0)
                rig_->deliver(RemoveScreenEvent(id));
            else
                rig_->deliver(AddScreenEvent(id, 0, 1, 1, 0, 0.0, qUtf8Printable(name), 0, 0),
                              AddScreenPartEvent(id, 0, 0, 1, 1, 0, 0.0, "0", false),
                              AddScreenPartEvent(id, 1, 0, 1, 1, 0, 0.0, "1", false),
                              ScreenModeEvent(Mode(2 + random.bounded(2)), id, 0, ""));
        };
        Item* second = rowsInView().at(1);
        const QPoint secondPlace = placeOf(second);
        rig_->deliver(RemoveScreenEvent(0));
        QCOMPARE(rowsInView().constFirst(), second);
        QCOMPARE(placeOf(second), secondPlace); // although the list cannot scroll further up
        for (int press = 0; press < 50; ++press) {
            bar()->setValue(random.bounded(bar()->maximum() + 1));
            Item* first = rowsInView().constFirst();
            const QPoint firstPlace = placeOf(first);
            edit(first);
            const QList<Item*> rows = rowsInView();
            QCOMPARE(placeOf(first), firstPlace);
            Item* pressed = rows[1 + random.bounded(rows.size() - 2)]; // not cut by the edge
            const QPoint place = placeOf(pressed);
            finger().press(0, place).commit();
            for (int i = 0; i < 3; ++i)
                edit(pressed);
            QCOMPARE(placeOf(pressed), place);
            finger().release(0, place).commit();
            QCOMPARE(list_->selection(), pressed);
        }
    }

    void eyeShowsTheWaitForTheProducer() {
        addMedia(1, "Clip");
        QCoreApplication::processEvents();
        const auto* eye = row("Clip")->findChild<BlindButton*>();
        const QPoint edge = row("Clip")->mapTo(&rig_->window, QPoint(175 - 43, 25));
        QTest::mouseClick(rig_->window.windowHandle(), Qt::LeftButton, {}, edge);
        QCOMPARE(eye->state(), BlindButton::State::Waiting);
        rig_->deliver(MediaBlindEvent(Kind::Media, 1, 0, 0, "Clip", true));
        QCOMPARE(eye->state(), BlindButton::State::Reported);
        row("Clip")->onBlind();
        rig_->deliver(MediaBlindEvent(Kind::Media, 1, 0, 0, "Clip", true)); // refused
        QTRY_COMPARE(eye->state(), BlindButton::State::Refused);
        rig_->deliver(MediaBlindEvent(Kind::Media, 1, 0, 0, "Clip", false)); // late
        QCOMPARE(eye->state(), BlindButton::State::Reported);
    }

    void namesShowInWhatTheyDiffer() {
        const QStringList parts{"Left half of the wall", "Right half of the wall",
                                "Lower half of the wall behind the stage, upper row",
                                "Upper half of the wall behind the stage, upper row"};
        list_->addScreen(1, 0, 1, 1, 0.0, false, false, "Screen 001");
        list_->updateScreenMode(1, Mode::Parts);
        for (int id = 0; id < parts.size(); ++id)
            list_->addScreenPart(1, id, 0, 1, 1, 0.0, false, parts[id]);
        QCoreApplication::processEvents();
        for (const QString& part : parts) {
            const auto* label = row("Screen 001, " + part)->findChild<NameLabel*>();
            QVERIFY2(label->shownText().contains(part.first(4)), qPrintable(label->shownText()));
        }
        Item* last = row("Screen 001, " + parts.last());
        finger().press(0, last->rect().center(), last).commit();
        QTRY_COMPARE(QToolTip::text(), last->labelText()); // a long press shows the whole name
        finger().release(0, last->rect().center(), last).commit();
        QCOMPARE(list_->selection(), last);
    }

private:
    void setUp() override {
        rig_.emplace(QSize(260, 400));
        container_ = rig_->widget;
        list_ = container_->getMediaList();
        list_->setFocus();
    }
    void tearDown() override { rig_.reset(); }

    void addMedia(unsigned int cueId, const QString& name, int dataIndex = 0) {
        list_->addMedia(MediaType::Image, cueId, 0, dataIndex, 1, 1, 0.0, false, name);
    }
    void addNumberedMedias(int count) {
        for (int i = 0; i < count; ++i)
            addMedia(unsigned(i), QString::number(1000 + i), i);
    }
    void addOneOfEachKind() {
        list_->addScreen(1, 10, 1, 1, 0.0, true, false, "Wall");
        list_->addScreenPart(1, 5, 15, 1, 1, 0.0, false, "Left");
        list_->addTexture(2, 21, 20, 1, 1, 0.0, false, "Sky");
        list_->addMedia(MediaType::Image, 3, 31, 30, 1, 1, 0.0, false, "Clip");
    }

    QStringList allRows(bool shownOnly = false) const {
        QStringList labels;
        for (int i = 0; const Item* item = list_->getItemFromLayout(i); ++i)
            if (!shownOnly || item->isVisible())
                labels << item->labelText();
        return labels;
    }
    QStringList shownRows() const { return allRows(true); }
    Item* row(const QString& label) const {
        return list_->getItemFromLayout(int(allRows().indexOf(label)));
    }
    /// The label of the first row in view; empty if a row in view lacks its plain label, eye or
    /// colour.
    QString firstRowInView() const {
        QStringList labels;
        for (int i = 0; const Item* item = list_->getItemFromLayout(i); ++i) {
            if (item->visibleRegion().isEmpty())
                continue;
            const auto* label = item->findChild<NameLabel*>();
            const auto* eye = item->findChild<BlindButton*>();
            if (!label || label->visibleRegion().isEmpty() ||
                label->textFormat() != Qt::PlainText || item->styleSheet().isEmpty() ||
                eye->visibleRegion().boundingRect().width() != eye->width())
                return {};
            labels << label->text();
        }
        return labels.value(0);
    }
    QWidget* eyeOf(const QString& label) const { return row(label)->findChild<BlindButton*>(); }
    static QWidget* focus() { return QApplication::focusWidget(); }
    void select(const QString& label) { list_->onSelectedItem(row(label)); }
    QLineEdit* search() const { return container_->findChild<QLineEdit*>(); }
    QScrollBar* bar() const { return container_->findChild<QScrollArea*>()->verticalScrollBar(); }
    QTest::QTouchEventWidgetSequence finger() {
        return QTest::touchEvent(&rig_->window, touchScreen_.get(), false);
    }
    /// Touches the widget's centre and moves a little.
    void tap(QWidget* widget) {
        const QPoint centre = widget->rect().center();
        finger().press(0, centre, widget).commit();
        finger().move(0, centre + QPoint(2, 3), widget).commit();
        finger().release(0, centre + QPoint(2, 3), widget).commit();
    }
    /// All or shown rows of a list that is built anew from the present elements.
    QStringList reference(bool shownOnly, const QString& filterText, bool screensHidden) const {
        QMap<std::tuple<bool, QByteArray, int, qsizetype>, QString> labels;
        for (Item* item : list_->findChildren<Item*>()) {
            auto* part = dynamic_cast<ScreenPartItem*>(item);
            const ScreenItem* screen =
                part ? part->screenItem() : dynamic_cast<const ScreenItem*>(item);
            const Item* leader = screen ? screen : item; // a part follows its screen
            const QString text = (part ? screen->labelText() + ", " : "") + item->labelText();
            const bool isOther = screen && (part != nullptr) != (screen->mode() == Mode::Parts);
            if (shownOnly && (isOther || (screen && screensHidden) ||
                              !text.contains(filterText, Qt::CaseInsensitive)))
                continue;
            labels.insert({screen == nullptr, leader->labelText().toUtf8().toLower(),
                           screen ? screen->id() : int(item->elementType()),
                           screen ? screen->parts().indexOf(part) : item->id()},
                          item->labelText());
        }
        return labels.values();
    }

    std::optional<MeshpadTest::WidgetRig<MediaListContainer>> rig_;
    MediaListContainer* container_ = nullptr;
    MediaList* list_ = nullptr;
    std::unique_ptr<QPointingDevice> touchScreen_{QTest::createTouchDevice()};
};

QTEST_MAIN(TestMediaList)
#include "tst_media_list.moc"
