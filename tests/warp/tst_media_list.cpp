#include "network/events/AddScreenEvent.h"
#include "network/events/AddScreenPartEvent.h"
#include "network/events/BlindEvent.h"
#include "network/events/DeformationModeEvent.h"
#include "network/events/ItemDataEvent.h"
#include "network/events/MediaBlindEvent.h"
#include "network/events/MediaDeformationModeEvent.h"
#include "network/events/MsgEvent.h"
#include "network/events/ProtocolLimits.h"
#include "network/events/RemoveMediaEvent.h"
#include "network/events/RemoveScreenEvent.h"
#include "network/events/RemoveScreenPartEvent.h"
#include "network/events/RemoveTextureEvent.h"
#include "network/events/ScreenModeEvent.h"
#include "network/events/ScreenPartBlindEvent.h"
#include "network/events/ScreenPartDeformationModeEvent.h"
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
#include <QRandomGenerator>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <algorithm>
#include <memory>
#include <optional>

using namespace NetworkCompanion;

using Mode = LV_NTC_ModeType;
using Kind = LV_NTC_ElementType;
using Deformation = LV_NTC_DeformationType;

/// The list in a window, fed by a fake Producer and used by mouse, keys and touch.
class TestMediaList : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void init() {
        GuardedTest::init();
        rig_.emplace(QSize(260, 400));
        container_ = rig_->widget;
        list_ = container_->getMediaList();
        list_->setFocus();
    }
    void cleanup() {
        rig_.reset();
        GuardedTest::cleanup();
    }

    void labelsOfPartsFollowTheScreen() {
        list_->addScreen(1, 0, 800, 600, 90.0, false, false, "Wall");
        list_->addScreen(2, 0, 800, 600, 0.0, false, false, "Zoo");
        list_->addScreenPart(1, 5, 0, 1, 1, 0.0, false, "Left");
        list_->addScreenPart(1, 5, 0, 1, 1, 0.0, false, "Right");
        list_->addScreenPart(1, 4, 0, 1, 1, 0.0, false, "");
        QCOMPARE(allRows(), QStringList({"Wall", "Wall, Right", "Wall, Part", "Zoo"}));
        list_->addScreen(1, 0, 400, 300, 45.0, false, false, "Zoom");
        QCOMPARE(allRows(), QStringList({"Zoo", "Zoom", "Zoom, Left", "Zoom, Part"}));
    }

    /// Random operations leave the same rows as a reference list that is rebuilt every time.
    void orderAndVisibilityEqualAReferenceList() {
        QRandomGenerator random(20240607);
        const auto name = [&random] {
            const QStringList names{"a", "B", "ab", "b", "A", "ba, c", "", "Part", "é", "É"};
            return names.at(random.bounded(int(names.size())));
        };
        QString filterText;
        bool screensOnly = false;
        for (int step = 0; step < 3000; ++step) {
            const int id = random.bounded(9);
            const QString text = name();
            switch (random.bounded(14)) {
            case 0:
            case 1:
                addMedia(unsigned(id), text);
                break;
            case 2:
                list_->addTexture(unsigned(id), 0, 0, 1, 1, 0.0, false, text);
                break;
            case 3:
            case 4:
                list_->addScreen(id, 0, 1, 1, 0.0, false, false, text);
                break;
            case 5:
            case 6:
                list_->addScreenPart(id, random.bounded(4), 0, 1, 1, 0.0, false, text);
                list_->updateMediaList(); // there may be no such screen
                break;
            case 7:
                list_->updateScreenMode(id, Mode(random.bounded(4)));
                continue; // order and visibility are due with the next update
            case 8:
                list_->updateMediaBlind(Kind(1 + random.bounded(2)), text, unsigned(id), true);
                continue;
            case 9:
                list_->removeMedia(unsigned(id));
                list_->removeTexture(unsigned(id));
                continue;
            case 10:
                list_->removeScreenPart(id, random.bounded(4));
                list_->removeScreen(random.bounded(9));
                continue;
            case 11:
                filterText = text;
                list_->filterByText(text);
                list_->updateMediaList();
                break;
            case 12:
                screensOnly = !screensOnly;
                list_->filterScreens(screensOnly);
                list_->updateMediaList();
                break;
            default:
                list_->selectNextVisibleItem();
                continue;
            }
            QVERIFY(!list_->selection() || !list_->selection()->isHidden());
            QStringList all, shown;
            rebuildByHand(filterText, screensOnly, all, shown);
            QCOMPARE(allRows(), all);
            QCOMPARE(shownRows(), shown);
        }
        rig_->producer.forget();
    }

    void selectionIsSentAndEmitted() {
        addMedia(1, "a", 100);
        addMedia(2, "b", 200);
        addMedia(3, "c", 300);
        QSignalSpy selected(container_, &MediaListContainer::selectedItem);
        QTest::mouseClick(row("b"), Qt::RightButton);
        QTest::mouseClick(row("b"), Qt::LeftButton);
        QVERIFY(row("b")->isActive());
        QTest::keyClick(focus(), Qt::Key_M);
        QTest::keyClick(focus(), Qt::Key_M); // already the last row
        QVERIFY(rig_->gets(ItemDataEvent(200), ItemDataEvent(300)));
        QVERIFY(!row("b")->isActive() && row("c")->isActive());
        list_->onAction(Action::SELECT_PREVIOUS_SCREEN);
        QTest::keyClick(focus(), Qt::Key_P);
        QTest::keyClick(focus(), Qt::Key_P);
        list_->unselectItem();
        list_->onAction(Action::SELECT_PREVIOUS_SCREEN);
        const ItemDataEvent first(100);
        QVERIFY(rig_->gets(ItemDataEvent(200), first, ItemDataEvent(-1), first));
        QCOMPARE(selected.size(), 6);
        QCOMPARE(selected.last().value(0).value<Item*>(), row("a"));
    }

    void keysAreAcceptedByAnEmptyList() {
        const auto isAccepted = [](int key) {
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
            event.ignore();
            KeyEventManager::getInstance()->notifyListeners(&event);
            return event.isAccepted();
        };
        QVERIFY(isAccepted(Qt::Key_M) && isAccepted(Qt::Key_P) && isAccepted(Qt::Key_Space));
        QVERIFY(isAccepted(Qt::Key_T) && !isAccepted(Qt::Key_X));
        QVERIFY(rig_->getsNothing());
    }

    void removedRowIsUnselectedFirst() {
        addOneOfEachKind();
        QStringList signalNames;
        const auto record = [&](auto signal, const char* name) {
            connect(container_, signal, this, [&signalNames, name] { signalNames << name; });
        };
        record(&MediaListContainer::removeScreenItem, "screen");
        record(&MediaListContainer::removeScreenPartItem, "part");
        record(&MediaListContainer::removeTextureItem, "texture");
        record(&MediaListContainer::removeMediaItem, "media");
        record(&MediaListContainer::selectedItem, "selected");
        record(&MediaListContainer::itemRemoved, "removed");
        list_->updateScreenMode(1, Mode::Parts);
        list_->selectFirstVisibleItem();
        list_->addScreenPart(1, 6, 16, 1, 1, 0.0, false, "Right");
        list_->addScreenPart(1, 7, 17, 1, 1, 0.0, false, "Roof");
        rig_->deliver(RemoveScreenPartEvent(1, 7, ""), RemoveScreenEvent(1), RemoveScreenEvent(1),
                      RemoveScreenEvent(4000000000), RemoveScreenPartEvent(1, 5, ""),
                      RemoveMediaEvent(2, 0, ""));
        QCOMPARE(signalNames, QStringList({"selected", "part", "removed", "part", "removed", "part",
                                           "selected", "removed", "screen", "removed"}));
        QVERIFY(rig_->gets(ItemDataEvent(15), ItemDataEvent(-1)));

        list_->onSelectedItem(row("Sky"));
        signalNames.clear();
        rig_->deliver(RemoveTextureEvent(2, 0, ""), RemoveMediaEvent(3, 0, ""));
        QCOMPARE(signalNames, QStringList({"texture", "selected", "removed", "media", "removed"}));
        QCOMPARE(allRows(), QStringList());
        QVERIFY(rig_->gets(ItemDataEvent(20), ItemDataEvent(-1)));
    }

    void newShowClearsTheListAndRequestsResources() {
        addOneOfEachKind();
        list_->onSelectedItem(row("Clip"));
        rig_->deliver(MsgEvent("newshow"));
        QCOMPARE(allRows().size(), 4);
        rig_->deliver(MsgEvent("newShow"));
        QCOMPARE(allRows(), QStringList());
        QVERIFY(rig_->gets(ItemDataEvent(30), ItemDataEvent(-1), MsgEvent("getResources")));
    }

    void screenModeSelectsScreenOrParts() {
        addOneOfEachKind();
        list_->filterByText("wall");
        QSignalSpy modes(container_, &MediaListContainer::screenMode);
        list_->selectFirstVisibleItem();
        rig_->deliver(ScreenModeEvent(Mode::Parts, 1, 10, ""));
        QCOMPARE(shownRows(), QStringList({"Wall, Left"}));
        list_->selectFirstVisibleItem();
        rig_->deliver(ScreenModeEvent(Mode::Deformation, 1, 10, ""));
        QCOMPARE(shownRows(), QStringList({"Wall"}));
        QVERIFY(
            rig_->gets(ItemDataEvent(10), ItemDataEvent(-1), ItemDataEvent(15), ItemDataEvent(-1)));
        messages_->expect(QtWarningMsg, "MediaList: Mode 4 of screen 1 ignored");
        rig_->deliver(ScreenModeEvent(Mode(4), 1, 10, ""), ScreenModeEvent(Mode::Parts, 9, 10, ""));
        QCOMPARE(modes.size(), 2);
        list_->filterByText("nowhere"); // the filter holds through a change of mode
        rig_->deliver(ScreenModeEvent(Mode::Parts, 1, 10, ""));
        QCOMPARE(modes.size(), 3);
        QCOMPARE(shownRows(), QStringList());
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
        QCOMPARE(list_->selection(), nullptr);
    }

    void blindOfTheProducerIsShown() {
        addOneOfEachKind();
        rig_->deliver(BlindEvent(0, 1, "", false), BlindEvent(0, 8, "", true),
                      ScreenPartBlindEvent(1, 5, 0, "", true),
                      MediaBlindEvent(Kind::Texture, 2, 21, 0, "Sea", true),
                      MediaBlindEvent(Kind::Screen, 3, 31, 0, "No", true),
                      MediaBlindEvent(Kind::Media, 2, 31, 0, "No", true));
        QVERIFY(!row("Wall")->isBlinded() && row("Wall, Left")->isBlinded());
        QVERIFY(row("Sea")->isBlinded() && !row("Clip")->isBlinded());
    }

    void spaceRequestsTheBlindOfTheSelection() {
        addOneOfEachKind();
        QTest::mouseClick(row("Clip"), Qt::LeftButton);
        QTest::keyClick(focus(), Qt::Key_Space);
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, " ", true);
        list_->notified(&held); // would make the output flicker
        QVERIFY(
            rig_->gets(ItemDataEvent(30), MediaBlindEvent(Kind::Media, 3, 31, 0, "Clip", true)));
    }

    void meshEmitsItsThreeDeformationsInOrder() {
        addOneOfEachKind();
        QStringList signalNames;
        connect(
            list_, &MediaList::screenDeformationMode, this, [&] { signalNames << "screen"; });
        connect(
            list_, &MediaList::screenPartDeformationMode, this, [&] { signalNames << "part"; });
        connect(list_, &MediaList::mediaDeformationMode, this, [&] { signalNames << "media"; });
        ItemDataEvent mesh;
        mesh.setMediaDeformationModeEvent(
            {Kind::Media, Deformation::Curve, 3, 31, 30, "", 64, 3, true});
        mesh.setScreenPartDeformationModeEvent({Deformation::Bezier, 1, 5, 15, "", 4, 7, false});
        mesh.setDeformationModeEvent({Deformation::Keystone, 1, 10, "", 0, 0, true});
        rig_->deliver(mesh);
        QCOMPARE(signalNames, QStringList({"screen", "part", "media"}));
        const char* ignored = "MediaList: Deformation of type %d with %u x %u points ignored";
        messages_->expect(QtWarningMsg, QString::asprintf(ignored, 2, 65U, 3U));
        messages_->expect(QtWarningMsg, QString::asprintf(ignored, 1, 4U, 1U));
        messages_->expect(QtWarningMsg, QString::asprintf(ignored, 3, 4U, 4U));
        rig_->deliver(
            DeformationModeEvent(Deformation::Curve, 0xFFFFFFFF, 0, "", 0, 0, false),
            DeformationModeEvent(Deformation::Curve, 1, 0, "", 65, 3, false),
            ScreenPartDeformationModeEvent(Deformation::Bezier, 1, 5, 0, "", 4, 1, false),
            MediaDeformationModeEvent(Kind::Media, Deformation(3), 3, 0, 0, "", 4, 4, false));
        QCOMPARE(signalNames.size(), 3);
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
        rig_->deliver(AddScreenPartEvent(65535, 2, 0, 1, 1, 0, 0.0, "", false));
        QCOMPARE(allRows(), QStringList({"Far", "Far, Part"}));
    }

    void searchFiltersRowsWithoutShortcuts() {
        addOneOfEachKind();
        list_->updateScreenMode(1, Mode::Parts);
        QTest::mouseClick(row("Clip"), Qt::LeftButton);
        auto* box = container_->findChild<QLineEdit*>();
        box->setFocus();
        QTest::keyClicks(focus(), "mt");
        QTest::keyClick(focus(), Qt::Key_M, Qt::ControlModifier);
        QCOMPARE(shownRows(), QStringList());
        QVERIFY(rig_->gets(ItemDataEvent(30), ItemDataEvent(-1)));
        addMedia(4, "mtx");
        QCOMPARE(shownRows(), QStringList({"mtx"}));
        box->setText("wall, WALL"); // a part's label contains the screen's name a second time
        QCOMPARE(shownRows(), QStringList({"Wall, Left"}));
        QVERIFY(rig_->getsNothing());
    }

    void searchBoxShowsWhetherThereIsAHit() {
        auto* box = container_->findChild<QLineEdit*>();
        const QString normal = box->styleSheet();
        addMedia(1, "Clip");
        box->setText("floor?");
        QVERIFY(box->styleSheet().contains("color: red;"));
        addMedia(5, "floor?");
        QTRY_COMPARE(box->styleSheet(), normal);
        list_->removeMedia(5);
        QTRY_VERIFY(box->styleSheet() != normal);
        auto* clear = box->findChild<QToolButton*>();
        box->setFocus();
        QTest::mouseClick(clear, Qt::LeftButton);
        QVERIFY(box->hasFocus() && clear->isHidden());
        QCOMPARE(box->styleSheet(), normal);
    }

    void searchBoxReturnsTheFocusToTheList() {
        auto* box = container_->findChild<QLineEdit*>();
        const auto listHasFocusAfter = [&](Qt::Key key) {
            box->setFocus();
            QTest::keyClick(box, key);
            return list_->isAncestorOf(focus());
        };
        box->setText("a");
        QVERIFY(listHasFocusAfter(Qt::Key_Return) && listHasFocusAfter(Qt::Key_Down));
        QVERIFY(!listHasFocusAfter(Qt::Key_Escape) && box->text().isEmpty());
        QVERIFY(listHasFocusAfter(Qt::Key_Escape));
    }

    void checkBoxHidesScreens() {
        addOneOfEachKind();
        auto* filter = container_->findChild<QCheckBox*>();
        auto* box = container_->findChild<QLineEdit*>();
        list_->onSelectedItem(row("Wall"));
        filter->setFocus();
        QTest::keyClick(focus(), Qt::Key_T);
        QVERIFY(filter->isChecked());
        QVERIFY(list_->isAncestorOf(focus()));
        QCOMPARE(shownRows(), QStringList({"Clip", "Sky"}));
        QVERIFY(rig_->gets(ItemDataEvent(10), ItemDataEvent(-1)));
        box->setText("c");
        QTest::mouseClick(filter, Qt::LeftButton, {}, {10, filter->height() / 2});
        QVERIFY(!filter->isChecked());
        QCOMPARE(shownRows(), QStringList({"Clip"})); // the text filter holds
        box->clear();
        QCOMPARE(shownRows(), QStringList({"Wall", "Clip", "Sky"}));
    }

    void rowsInViewHaveTheirWidgets() {
        addNumberedMedias(200);
        auto* bar = container_->findChild<QScrollArea*>()->verticalScrollBar();
        list_->selectFirstVisibleItem(); // without an event-loop iteration
        QCOMPARE(firstRowInView(), "1000");
        QCOMPARE(row("1150")->findChild<NameLabel*>(), nullptr); // never in view
        for (int i = 0; i < 59; ++i)
            list_->selectNextVisibleItem();
        QCOMPARE(list_->selection(), row("1059"));
        QCOMPARE(row("1059")->visibleRegion().boundingRect().height(), row("1059")->height());
        QCOMPARE(row("1059")->y() - row("1058")->y(),
                 row("1058")->height() + WarpLook::kRowSpacing);
        bar->setValue(bar->maximum() / 2);
        QVERIFY(firstRowInView() > "1050");
        rig_->window.resize(260, 900);
        QTRY_VERIFY(!firstRowInView().isEmpty() && list_->height() > 700);
        bar->setValue(0);
        list_->removeMedia(0);
        addMedia(300, "0999");
        QTRY_COMPARE(firstRowInView(), "0999");
    }

    void filtersScrollToTheSelectionOrTheTop() {
        addNumberedMedias(200);
        auto* bar = container_->findChild<QScrollArea*>()->verticalScrollBar();
        QTRY_VERIFY(bar->maximum() > 0);
        bar->setValue(bar->maximum());
        auto* search = container_->findChild<QLineEdit*>();
        search->setText("11");
        QCOMPARE(firstRowInView(), "1011");
        QTest::mouseClick(row("1105"), Qt::LeftButton);
        search->clear();
        QVERIFY(!firstRowInView().isEmpty() && !row("1105")->visibleRegion().isEmpty());
        bar->setValue(0);
        container_->findChild<QCheckBox*>()->click();
        QVERIFY(!firstRowInView().isEmpty() && !row("1105")->visibleRegion().isEmpty());
    }

    void touchScrollsOrTaps() {
        addNumberedMedias(100);
        QTRY_VERIFY(row("1003")->y() > row("1002")->y());
        const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
        Item* touched = row("1003");
        container_->findChild<QLineEdit*>()->setFocus();
        const auto finger = [&] { return QTest::touchEvent(&rig_->window, screen.get(), false); };
        const QPoint start = touched->rect().center();
        finger().press(0, start, touched).commit();
        finger().move(0, start + QPoint(2, 3), touched).commit();
        QVERIFY(rig_->getsNothing());
        finger().release(0, start + QPoint(2, 3), touched).commit();
        QVERIFY(rig_->gets(ItemDataEvent(3)));
        QVERIFY(list_->isAncestorOf(focus()));

        auto* eye = touched->findChild<BlindButton*>();
        finger().press(0, eye->rect().center(), eye).commit();
        finger().release(0, eye->rect().center(), eye).commit();
        QVERIFY(rig_->gets(MediaBlindEvent(Kind::Media, 3, 0, 0, "1003", true)));

        const QPoint down = row("1004")->mapTo(&rig_->window, start);
        auto* bar = container_->findChild<QScrollArea*>()->verticalScrollBar();
        finger().press(0, down).commit();
        for (int y = 10; y <= 150; y += 10) {
            QTest::qWait(1); // QScroller computes a velocity from the time between events
            finger().move(0, down - QPoint(0, y)).commit();
        }
        QTRY_VERIFY(bar->value() > 100);
        finger().release(0, down - QPoint(0, 150)).commit();
        QVERIFY(rig_->getsNothing());
        QCOMPARE(list_->selection(), touched);
    }

    void longNameIsElidedAndShownAsPlainText() {
        const QString name = "<b>A name that is far too long for the row it stands in</b>";
        addMedia(1, name);
        QTRY_VERIFY(row(name)->findChild<NameLabel*>());
        auto* label = row(name)->findChild<NameLabel*>();
        QCOMPARE(label->text(), name);
        QCOMPARE(label->textFormat(), Qt::PlainText);
        QCOMPARE(label->toolTip(), name.toHtmlEscaped());
        QCOMPARE(row(name)->width(), 175);
    }

private:
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

    QStringList rows(bool shownOnly) const {
        QStringList labels;
        for (int i = 0; const Item* item = list_->getItemFromLayout(i); ++i)
            if (!shownOnly || item->isVisible())
                labels << item->labelText();
        return labels;
    }
    QStringList allRows() const { return rows(false); }
    QStringList shownRows() const { return rows(true); }
    Item* row(const QString& label) const {
        return list_->getItemFromLayout(int(allRows().indexOf(label)));
    }
    /// The label of the first row in view; empty if a row in view lacks its label, eye or colour.
    QString firstRowInView() const {
        QString first;
        for (int i = 0; const Item* item = list_->getItemFromLayout(i); ++i) {
            if (item->visibleRegion().isEmpty())
                continue;
            const auto* label = item->findChild<NameLabel*>();
            const auto* eye = item->findChild<BlindButton*>();
            if (label == nullptr || label->text() != item->labelText() ||
                item->styleSheet().isEmpty() || label->visibleRegion().isEmpty() ||
                eye->visibleRegion().boundingRect().width() != eye->width() ||
                label->geometry().right() >= eye->geometry().left())
                return {};
            first = first.isEmpty() ? item->labelText() : first;
        }
        return first;
    }
    static QWidget* focus() { return QApplication::focusWidget(); }

    /// All and shown rows of a list that is built anew from the present elements.
    void rebuildByHand(const QString& filterText, bool screensOnly, QStringList& all,
                       QStringList& shown) const {
        QMap<int, Item*> screens;
        QMap<std::pair<int, int>, Item*> others; // medias by cue, then textures by cue
        for (Item* item : list_->findChildren<Item*>())
            if (item->elementType() == Kind::Screen)
                screens.insert(item->id(), item);
            else if (item->elementType() != Kind::ScreenPart)
                others.insert({int(item->elementType()), item->id()}, item);
        const auto add = [&](const Item* item, bool isShown, const QString& text) {
            all << item->labelText();
            if (isShown && text.contains(filterText, Qt::CaseInsensitive))
                shown << item->labelText();
        };
        for (Item* item : sorted(screens.values())) {
            const auto* screen = static_cast<ScreenItem*>(item);
            const bool throughParts = screen->mode() == Mode::Parts;
            add(screen, !screensOnly && !throughParts, screen->labelText());
            for (const Item* part : screen->parts()) {
                add(part, !screensOnly && throughParts,
                    screen->labelText() + ", " + part->labelText());
            }
        }
        for (const Item* item : sorted(others.values()))
            add(item, true, item->labelText());
    }
    static QList<Item*> sorted(QList<Item*> items) {
        const auto key = [](Item* item) { return item->labelText().toUtf8().toLower(); };
        std::ranges::stable_sort(items, {}, key);
        return items;
    }

    std::optional<MeshpadTest::WidgetRig<MediaListContainer>> rig_;
    MediaListContainer* container_ = nullptr;
    MediaList* list_ = nullptr;
};

QTEST_MAIN(TestMediaList)
#include "tst_media_list.moc"
