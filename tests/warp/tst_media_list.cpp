#include "app/shell/Configuration.h"
#include "app/shell/EventDispatcher.h"
#include "app/shell/EventListener.h"
#include "input/key_event_manager.h"
#include "network/events/AddScreenEvent.h"
#include "network/events/AddScreenPartEvent.h"
#include "network/events/BlindEvent.h"
#include "network/events/DeformationModeEvent.h"
#include "network/events/GetResourcesIdEvent.h"
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
#include <QVBoxLayout>

#include <algorithm>
#include <memory>
#include <optional>

using namespace NetworkCompanion;

namespace {

using Mode = LV_NTC_ModeType;

} // namespace

/// The list in a window, fed by a Producer on the loopback and used by mouse and keys.
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

    void existingElementGetsNoSecondRow() {
        QSignalSpy medias(container_, &MediaListContainer::mediaItemAdded);
        QSignalSpy screens(container_, &MediaListContainer::screenItemAdded);
        list_->addScreen(1, 0, 800, 600, 90.0, false, false, "Wall");
        list_->addScreen(2, 0, 800, 600, 0.0, false, false, "Zoo");
        list_->addScreenPart(1, 5, 0, 1, 1, 0.0, false, "Left");
        addMedia(3, "Clip");
        addMedia(3, "Other");
        list_->addScreenPart(1, 5, 0, 1, 1, 0.0, false, "Right");
        list_->addScreenPart(1, 4, 0, 1, 1, 0.0, false, "");
        QCOMPARE(allRows(), QStringList({"Wall", "Wall, Right", "Wall, Part", "Zoo", "Clip"}));
        list_->addScreen(1, 0, 400, 300, 45.0, false, false, "Zoom");
        QCOMPARE(allRows(), QStringList({"Zoo", "Zoom", "Zoom, Left", "Zoom, Part", "Clip"}));
        QCOMPARE(medias.size(), 2);
        QCOMPARE(screens.last(), QVariantList({1, 400, 300, 0.0F, 45.0, "Zoom"}));

        list_->updateMediaBlind(LV_NTC_ElementType::Media, "Yes", 3, true);
        addMedia(4, "No");
        QCOMPARE(allRows().mid(4), QStringList({"No", "Yes"}));
    }

    /// Beside a list that is kept by rebuilding everything, everything that happens to one must
    /// leave the same.
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
                continue; // shown without regard to the filters until the next update
            case 8:
                list_->updateMediaBlind(LV_NTC_ElementType(1 + random.bounded(2)), text,
                                        unsigned(id), true);
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
        QTest::keyClick(focus(), Qt::Key_M); // the last one stays
        QVERIFY(rig_->gets(ItemDataEvent(200), ItemDataEvent(300)));
        QVERIFY(!row("b")->isActive() && row("c")->isActive());
        QCOMPARE(row("c")->styleSheet(), "background-color: #008cf5;");
        list_->onAction(Action::SELECT_PREVIOUS_SCREEN);
        QTest::keyClick(focus(), Qt::Key_P);
        QTest::keyClick(focus(), Qt::Key_P);
        list_->unselectItem();
        list_->onAction(Action::SELECT_PREVIOUS_SCREEN);
        QVERIFY(rig_->gets(ItemDataEvent(200), ItemDataEvent(100), ItemDataEvent(-1),
                           ItemDataEvent(100)));
        QCOMPARE(selected.size(), 6);
        QCOMPARE(selected.last().value(0).value<Item*>(), row("a"));

        // Keys of an empty list are still keys of the list.
        list_->purgeMedia();
        QVERIFY(rig_->gets(ItemDataEvent(-1)));
        for (const int key : {Qt::Key_M, Qt::Key_P, Qt::Key_Space, Qt::Key_T}) {
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
            event.ignore();
            KeyEventManager::getInstance()->notifyListeners(&event);
            QVERIFY(event.isAccepted());
        }
        QVERIFY(rig_->getsNothing());
    }

    void removedRowIsUnselectedFirst() {
        list_->addScreen(1, 10, 1, 1, 0.0, false, false, "Wall");
        list_->addScreenPart(1, 5, 15, 1, 1, 0.0, false, "Left");
        list_->addScreenPart(1, 6, 16, 1, 1, 0.0, false, "Right");
        list_->addTexture(2, 0, 20, 1, 1, 0.0, false, "Sky");
        QStringList heard;
        const auto listen = [&](auto signal, const char* text) {
            connect(container_, signal, this, [&heard, text] { heard << text; });
        };
        listen(&MediaListContainer::removeScreenItem, "screen");
        listen(&MediaListContainer::removeScreenPartItem, "part");
        listen(&MediaListContainer::removeTextureItem, "texture");
        listen(&MediaListContainer::selectedItem, "selected");
        listen(&MediaListContainer::itemRemoved, "removed");
        list_->updateScreenMode(1, Mode::Parts);
        list_->selectFirstVisibleItem();
        send(RemoveScreenEvent(1));
        send(RemoveScreenEvent(1));
        send(RemoveScreenEvent(4000000000));
        send(RemoveScreenPartEvent(1, 5, ""));
        send(RemoveMediaEvent(2, 0, ""));
        QVERIFY(allArrived());
        QCOMPARE(heard, QStringList({"selected", "part", "removed", "part", "selected", "removed",
                                     "screen", "removed"}));
        QVERIFY(rig_->gets(ItemDataEvent(15), ItemDataEvent(-1)));

        list_->selectFirstVisibleItem();
        heard.clear();
        send(RemoveTextureEvent(2, 0, ""));
        QTRY_COMPARE(heard, QStringList({"texture", "selected", "removed"}));
        QCOMPARE(allRows(), QStringList());

        // A new show takes all of them and is asked for.
        addMedia(1, "a", 100);
        list_->addTexture(1, 0, 0, 1, 1, 0.0, false, "b");
        list_->addScreen(3, 0, 1, 1, 0.0, false, false, "c");
        list_->onSelectedItem(row("a"));
        send(MsgEvent("newshow"));
        QVERIFY(allArrived());
        QCOMPARE(allRows().size(), 3);
        send(MsgEvent("newShow"));
        QTRY_COMPARE(allRows(), QStringList());
        QVERIFY(rig_->gets(ItemDataEvent(20), ItemDataEvent(-1), ItemDataEvent(100),
                           ItemDataEvent(-1), MsgEvent("getResources")));
    }

    void screenModeSelectsScreenOrParts() {
        list_->addScreen(1, 10, 1, 1, 0.0, false, false, "Wall");
        list_->addScreenPart(1, 5, 15, 1, 1, 0.0, false, "Left");
        QSignalSpy modes(container_, &MediaListContainer::screenMode);
        list_->selectFirstVisibleItem();
        send(ScreenModeEvent(Mode::Parts, 1, 10, ""));
        QTRY_COMPARE(shownRows(), QStringList({"Wall, Left"}));
        list_->selectFirstVisibleItem();
        send(ScreenModeEvent(Mode::Deformation, 1, 10, ""));
        QTRY_COMPARE(shownRows(), QStringList({"Wall"}));
        QVERIFY(
            rig_->gets(ItemDataEvent(10), ItemDataEvent(-1), ItemDataEvent(15), ItemDataEvent(-1)));
        messages_->expect(QtWarningMsg, "MediaList: Mode 4 of screen 1 ignored");
        send(ScreenModeEvent(Mode(4), 1, 10, ""));
        send(ScreenModeEvent(Mode::Parts, 9, 10, ""));
        QVERIFY(allArrived());
        QCOMPARE(modes.size(), 2);

        // A filter that is on stays on, whatever comes in.
        list_->filterByText("nowhere");
        send(ScreenModeEvent(Mode::Parts, 1, 10, ""));
        QTRY_COMPARE(modes.size(), 3);
        QCOMPARE(shownRows(), QStringList());
        list_->filterByText("");
        QCOMPARE(shownRows(), QStringList({"Wall, Left"}));
    }

    void blindIsRequestedAndShown() {
        using Type = LV_NTC_ElementType;
        list_->addScreen(1, 0, 1, 1, 0.0, true, false, "Wall");
        list_->addScreenPart(1, 5, 0, 1, 1, 0.0, false, "Left");
        list_->addTexture(2, 20, 0, 1, 1, 0.0, false, "Sky");
        list_->addMedia(MediaType::Image, 3, 30, 0, 1, 1, 0.0, false, "Clip");
        for (const char* label : {"Wall", "Wall, Left", "Sky", "Clip"}) {
            row(label)->createWidgets(); // the part's row is not in sight
            QTest::mouseClick(row(label)->findChild<BlindButton*>(), Qt::LeftButton);
        }
        QVERIFY(rig_->gets(BlindEvent(0, 1, "Wall", false),
                           ScreenPartBlindEvent(1, 5, 0, "Left", true),
                           MediaBlindEvent(Type::Texture, 2, 20, 0, "Sky", true),
                           MediaBlindEvent(Type::Media, 3, 30, 0, "Clip", true)));
        QVERIFY(!row("Clip")->isBlinded()); // not before the Producer says so
        QCOMPARE(list_->selection(), nullptr);

        send(BlindEvent(0, 1, "", false));
        send(BlindEvent(0, 8, "", true));
        send(ScreenPartBlindEvent(1, 5, 0, "", true));
        send(MediaBlindEvent(Type::Texture, 2, 20, 0, "Sea", true));
        send(MediaBlindEvent(Type::Screen, 3, 30, 0, "No", true));
        send(MediaBlindEvent(Type::Media, 2, 30, 0, "No", true));
        QVERIFY(allArrived());
        QVERIFY(!row("Wall")->isBlinded() && row("Wall, Left")->isBlinded());
        QVERIFY(row("Sea")->isBlinded() && !row("Clip")->isBlinded());

        list_->onAction(Action::TOGGLE_BLIND);
        QVERIFY(rig_->getsNothing());
        QTest::mouseClick(row("Sea"), Qt::LeftButton);
        QTest::keyClick(focus(), Qt::Key_Space);
        QVERIFY(
            rig_->gets(ItemDataEvent(0), MediaBlindEvent(Type::Texture, 2, 20, 0, "Sea", false)));
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, " ", true);
        list_->notified(&held); // the output does not flicker under a resting thumb
        QVERIFY(held.isAccepted());
        QVERIFY(rig_->getsNothing());
    }

    void buildableDeformationsAreEmitted() {
        using Type = LV_NTC_DeformationType;
        QStringList heard;
        const auto listen = [&](auto signal, const char* name) {
            connect(list_, signal, this, [&heard, name] { heard << name; });
        };
        listen(&MediaList::screenDeformationMode, "screen");
        listen(&MediaList::screenPartDeformationMode, "part");
        listen(&MediaList::mediaDeformationMode, "media");
        list_->addScreen(1, 0, 1, 1, 0.0, false, false, "Wall");
        list_->addScreenPart(1, 5, 0, 1, 1, 0.0, false, "Left");
        addMedia(3, "Clip");
        ItemDataEvent mesh;
        mesh.setMediaDeformationModeEvent(
            {LV_NTC_ElementType::Media, Type::Curve, 3, 0, 0, "", 64, 3, true});
        mesh.setScreenPartDeformationModeEvent({Type::Bezier, 1, 5, 0, "", 4, 7, false});
        mesh.setDeformationModeEvent({Type::Keystone, 1, 0, "", 0, 0, true}); // its size is known
        send(mesh);
        QVERIFY(allArrived());
        QCOMPARE(heard, QStringList({"screen", "part", "media"}));

        // What nobody has is passed over in silence, what cannot be built with a word.
        const char* ignored = "MediaList: Deformation of type %d with %u x %u points ignored";
        messages_->expect(QtWarningMsg, QString::asprintf(ignored, 2, 65U, 3U));
        messages_->expect(QtWarningMsg, QString::asprintf(ignored, 1, 4U, 1U));
        messages_->expect(QtWarningMsg, QString::asprintf(ignored, 3, 4U, 4U));
        send(DeformationModeEvent(Type::Curve, 0xFFFFFFFF, 0, "", 0, 0, false));
        send(DeformationModeEvent(Type::Curve, 1, 0, "", 65, 3, false));
        send(ScreenPartDeformationModeEvent(Type::Bezier, 1, 5, 0, "", 4, 1, false));
        send(MediaDeformationModeEvent(LV_NTC_ElementType::Media, Type(3), 3, 0, 0, "", 4, 4,
                                       false));
        QVERIFY(allArrived());
        QCOMPARE(heard.size(), 3);
    }

    void outOfBoundsEventsAreDroppedWithAWarning() {
        messages_->expect(QtWarningMsg, "MediaList: Screen with number 65536 ignored");
        messages_->expect(QtWarningMsg, "MediaList: Screen with number 4294967295 ignored");
        messages_->expect(QtWarningMsg, "MediaList: Part of screen 65535 ignored, it has too many");
        for (const std::uint32_t id : {65535U, 65536U, 0xFFFFFFFFU})
            send(AddScreenEvent(id, 0, 1, 1, 0, 0.0, "Far", false, false));
        QVERIFY(allArrived());
        auto* screen = static_cast<ScreenItem*>(row("Far"));
        list_->addScreenPart(65535, 1, 0, 1, 1, 0.0, false, "");
        while (screen->parts().size() < Limits::kMaxPartsPerScreen)
            screen->addPart(screen->getPart(1)); // it is only counted
        send(AddScreenPartEvent(65535, 2, 0, 1, 1, 0, 0.0, "", false));
        QVERIFY(allArrived());
        QCOMPARE(allRows(), QStringList({"Far", "Far, Part"}));
    }

    void searchFiltersRowsWithoutShortcuts() {
        list_->addScreen(1, 0, 1, 1, 0.0, false, false, "Wall");
        list_->addScreen(2, 0, 1, 1, 0.0, false, false, "Floor");
        list_->addScreenPart(2, 5, 0, 1, 1, 0.0, false, "MT part");
        list_->updateScreenMode(2, Mode::Parts);
        addMedia(1, "amt", 100);
        addMedia(2, "other", 200);
        QTest::mouseClick(row("other"), Qt::LeftButton);
        auto* box = container_->findChild<QLineEdit*>();
        const QString normal = box->styleSheet();
        box->setFocus();
        QTest::keyClicks(focus(), "mt");
        QTest::keyClick(focus(), Qt::Key_M, Qt::ControlModifier);
        QCOMPARE(shownRows(), QStringList({"Floor, MT part", "amt"}));
        QVERIFY(rig_->gets(ItemDataEvent(200), ItemDataEvent(-1)));
        addMedia(3, "mtx");
        addMedia(4, "nope");
        QCOMPARE(shownRows(), QStringList({"Floor, MT part", "amt", "mtx"}));
        box->setText("floor, FLOOR"); // a part is found by its screen's name twice
        QCOMPARE(shownRows(), QStringList({"Floor, MT part"}));
        QTest::keyClicks(focus(), "?");
        QCOMPARE(shownRows(), QStringList());
        QVERIFY(box->styleSheet().contains("color: red;"));
        addMedia(5, "floor, floor?"); // the sign follows what comes and goes
        QTRY_COMPARE(box->styleSheet(), normal);
        list_->removeMedia(5);
        QTRY_VERIFY(box->styleSheet() != normal);
        auto* clear = box->findChild<QToolButton*>();
        QVERIFY(box->height() >= 40 && clear->height() >= 40 && clear->width() >= 32);
        QTest::mouseClick(clear, Qt::LeftButton);
        QVERIFY(box->hasFocus() && clear->isHidden());
        QCOMPARE(box->styleSheet(), normal);
        QCOMPARE(shownRows().size(), 6);
        // Done with it, the keyboard is at the list again; Esc empties the box first.
        for (const auto key : {Qt::Key_Return, Qt::Key_Down, Qt::Key_Escape}) {
            box->setFocus();
            QTest::keyClick(focus(), Qt::Key_A);
            if (key == Qt::Key_Escape) {
                QTest::keyClick(focus(), key);
                QVERIFY(box->hasFocus() && box->text().isEmpty());
            }
            QTest::keyClick(focus(), key);
            QVERIFY(list_->isAncestorOf(focus()));
            box->clear();
        }
        QVERIFY(rig_->getsNothing());
    }

    void checkBoxHidesScreens() {
        list_->addScreen(1, 10, 1, 1, 0.0, false, false, "Wall");
        addMedia(1, "Clip", 100);
        auto* filter = container_->findChild<QCheckBox*>();
        list_->onSelectedItem(row("Wall"));
        filter->setFocus();
        QTest::keyClick(focus(), Qt::Key_T);
        QVERIFY(filter->isChecked());
        QVERIFY(list_->isAncestorOf(focus()));
        QCOMPARE(shownRows(), QStringList({"Clip"}));
        QVERIFY(rig_->gets(ItemDataEvent(10), ItemDataEvent(-1)));
        container_->findChild<QLineEdit*>()->setText("c");
        QCOMPARE(shownRows(), QStringList({"Clip"}));
        QTest::mouseClick(filter, Qt::LeftButton, {}, {10, filter->height() / 2});
        QVERIFY(!filter->isChecked());
        QCOMPARE(shownRows(), QStringList({"Clip"}));
        container_->findChild<QLineEdit*>()->clear();
        QCOMPARE(shownRows(), QStringList({"Wall", "Clip"}));
    }

    void rowsInViewHaveTheirWidgets() {
        for (int i = 0; i < 200; ++i)
            addMedia(unsigned(i), QString::number(1000 + i));
        auto* bar = container_->findChild<QScrollArea*>()->verticalScrollBar();
        // The first row in sight, once all that are in sight show their names.
        const auto top = [this] {
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
                    return item->labelText() + " is empty";
                first = first.isEmpty() ? item->labelText() : first;
            }
            return first;
        };
        // A row is painted whole, without another turn of the event loop.
        list_->selectFirstVisibleItem();
        QCOMPARE(top(), "1000");
        QCOMPARE(row("1150")->findChild<NameLabel*>(), nullptr); // nobody has looked there
        for (int i = 0; i < 59; ++i)
            list_->selectNextVisibleItem();
        QCOMPARE(list_->selection(), row("1059"));
        QCOMPARE(row("1059")->visibleRegion().boundingRect().height(), row("1059")->height());
        for (int i = 1; i < 200; ++i) {
            const QRect above = list_->getItemFromLayout(i - 1)->geometry();
            QCOMPARE(list_->getItemFromLayout(i)->geometry().top(),
                     above.bottom() + 1 + WarpLook::kRowSpacing);
        }
        bar->setValue(bar->maximum() / 2);
        QVERIFY(!top().endsWith("empty") && top() > "1050");
        rig_->window.resize(260, 900);
        QTRY_VERIFY(!top().endsWith("empty") && list_->height() > 700);
        send(MediaBlindEvent(LV_NTC_ElementType::Media, 190, 0, 0, "1001b", true));
        QVERIFY(allArrived());
        bar->setValue(0);
        for (unsigned int cueId = 0; cueId < 30; ++cueId)
            list_->removeMedia(cueId);
        addMedia(300, "0999");
        list_->selectFirstVisibleItem();
        QTRY_COMPARE(top(), "0999");
        QTRY_COMPARE(list_->getItemFromLayout(1)->labelText(), "1001b");
        QVERIFY(list_->getItemFromLayout(1)->isBlinded() && !top().endsWith("empty"));
        // A search begins with its first hit, and ends where the selected row is.
        bar->setValue(bar->maximum());
        auto* search = container_->findChild<QLineEdit*>();
        search->setText("11");
        QCOMPARE(top(), "1100");
        QTest::mouseClick(row("1105"), Qt::LeftButton);
        search->clear();
        QVERIFY(!top().endsWith("empty") && !row("1105")->visibleRegion().isEmpty());
        bar->setValue(0);
        container_->findChild<QCheckBox*>()->click();
        QVERIFY(!top().endsWith("empty") && !row("1105")->visibleRegion().isEmpty());
    }

    void touchScrollsOrTaps() {
        for (int i = 0; i < 100; ++i)
            addMedia(unsigned(i), QString::number(1000 + i), i);
        QTRY_VERIFY(row("1003")->pos().y() > row("1002")->pos().y());
        std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
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
        QVERIFY(rig_->gets(MediaBlindEvent(LV_NTC_ElementType::Media, 3, 0, 0, "1003", true)));

        const QPoint down = row("1004")->mapTo(&rig_->window, start);
        auto* bar = container_->findChild<QScrollArea*>()->verticalScrollBar();
        finger().press(0, down).commit();
        for (int y = 10; y <= 150; y += 10) {
            QTest::qWait(1); // a finger needs its time
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
        QTRY_COMPARE(label->width(), 135);
        QCOMPARE(row(name)->width(), 175);
    }

private:
    void send(const Event& event) { rig_->producer.send(event); }
    /// Waits until everything that was sent has reached the list.
    bool allArrived() {
        struct Listener : EventListener {
            void receive(Event*) override { hasHeard = true; }
            bool hasHeard = false;
        } listener;
        EventDispatcher* dispatcher = EventDispatcher::getInstance();
        dispatcher->addListener(&listener, LV_NTC_EventType::GetResourcesId);
        send(GetResourcesIdEvent());
        const bool arrived = QTest::qWaitFor([&] { return listener.hasHeard; });
        dispatcher->removeListener(&listener, LV_NTC_EventType::GetResourcesId);
        return arrived;
    }
    void addMedia(unsigned int cueId, const QString& name, int dataIndex = 0) {
        list_->addMedia(MediaType::Image, cueId, 0, dataIndex, 1, 1, 0.0, false, name);
    }

    QList<Item*> rows() const {
        QList<Item*> all;
        for (int i = 0; Item* item = list_->getItemFromLayout(i); ++i)
            all << item;
        return all;
    }
    QStringList allRows() const {
        QStringList labels;
        for (const Item* item : rows())
            labels << item->labelText();
        return labels;
    }
    QStringList shownRows() const {
        QStringList labels;
        for (const Item* item : rows())
            if (item->isVisible())
                labels << item->labelText();
        return labels;
    }
    Item* row(const QString& label) const { return rows().value(allRows().indexOf(label)); }
    static QWidget* focus() { return QApplication::focusWidget(); }

    /// What a list made anew from the elements there are would hold and show.
    void rebuildByHand(const QString& filterText, bool screensOnly, QStringList& all,
                       QStringList& shown) const {
        QMap<int, Item*> screens;
        QMap<std::pair<int, int>, Item*> others; // medias by cue, then textures by cue
        for (Item* item : list_->findChildren<Item*>())
            if (item->elementType() == LV_NTC_ElementType::Screen)
                screens.insert(item->id(), item);
            else if (item->elementType() != LV_NTC_ElementType::ScreenPart)
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
