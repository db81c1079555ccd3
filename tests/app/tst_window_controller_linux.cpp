#include "app/DisconnectOverlay.h"
#include "input/controller_system.h"
#include "network/events/ItemDataEvent.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/VirtualPad.h"
#include "tests/support/WindowRig.h"
#include "warp/WarpPage.h"

#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>

#include <optional>

using namespace NetworkCompanion;
using MeshpadTest::WindowRig;

namespace {

constexpr int kDataIndex = 77;
constexpr int kSide = 4;

enum Button { kBottom = 0, kTop = 3, kRightTrigger = 5, kStart = 7 };

} // namespace

/// A virtual pad of SDL, from its inputs through the whole window to the Producer: two media with
/// a mesh each, the first one edited, its point 5 selected.
class TestWindowController : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void initTestCase() {
        system_ = ControllerSystem::create();
        QCOMPARE(system_->open(), ControllerSystem::OpenResult::Ok);
        if (SDL_NumJoysticks() > 0)
            QSKIP("Unplug the controllers of this machine to test with a virtual one");
        pad_.emplace(5);
    }

    void cleanupTestCase() { pad_.reset(); }

    void stickMovesSelection() {
        rig_->producer.forget();
        pad_->axis(0, SDL_JOYSTICK_AXIS_MAX);
        QTRY_VERIFY(rig_->moves().size() > 3);
        QVERIFY(rig_->isTrue("isMovingPoint"));
        pad_->axis(0, 0);
        QTRY_VERIFY(!rig_->isTrue("isMovingPoint"));
        rig_->settle();
        QCOMPARE(rig_->moves().back()->x() + 1920 / 2, rig_->position(5).x());
    }

    void actionsWorkUnderAnotherPage() {
        rig_->window->goToPageFromMenu(3); // the settings
        button(kRightTrigger, true);
        pad_->hat(SDL_HAT_LEFT);
        QTRY_COMPARE(selection(), QList<int>({4, 5, 6, 7}));
        pad_->hat(0);
        button(kRightTrigger, false);
        rig_->producer.forget();
        press(kBottom);
        press(kTop);
        const auto requests = [this] { return rig_->producer.eventsOf<ItemDataEvent>(); };
        QTRY_COMPARE(requests().size(), std::size_t(2));
        QCOMPARE(requests().front()->callerId(), kDataIndex + 1);
        QCOMPARE(requests().back()->callerId(), kDataIndex);
    }

    void listIgnoresActionsUnderDialog() {
        QSignalSpy actions(rig_->find<WarpPage>(), &WarpPage::action);
        rig_->evaluate("rotationDialog.open()");
        rig_->producer.forget();
        press(kBottom);
        QTRY_COMPARE(actions.size(), 1);
        rig_->settle();
        QVERIFY(rig_->producer.eventsOf<ItemDataEvent>().empty());
    }

    void controllerPauses_data() {
        QTest::addColumn<bool>("lost");
        QTest::newRow("inactive window") << false;
        QTest::newRow("lost connection") << true;
    }
    void controllerPauses() {
        QFETCH(bool, lost);
        QSignalSpy sticks(rig_->find<WarpPage>(), &WarpPage::leftAxisMoved);
        QSignalSpy actions(rig_->find<WarpPage>(), &WarpPage::action);
        pad_->axis(0, SDL_JOYSTICK_AXIS_MAX);
        QTRY_VERIFY(!sticks.isEmpty());
        if (lost) {
            rig_->producer.abortConnections();
            QTRY_VERIFY(rig_->find<DisconnectOverlay>());
        } else {
            emit qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
        }
        QCOMPARE(sticks.last(), QVariantList({0.0F, 0.0F}));
        QVERIFY(!rig_->isTrue("isMovingPoint"));
        sticks.clear();
        press(kStart);
        QVERIFY(!sticks.wait(100));
        if (lost)
            rig_->window->onServerAvailableAgain();
        else
            emit qGuiApp->applicationStateChanged(Qt::ApplicationActive);
        QTRY_VERIFY(!sticks.isEmpty()); // it is still held
        QVERIFY(actions.isEmpty());
    }

private:
    void setUp() override {
        rig_.emplace();
        rig_->open();
        rig_->sendMedia(kDataIndex + 1, kSide, WindowRig::kCue + 1);
        rig_->sendMedia(kDataIndex, kSide);
        rig_->select(kDataIndex, kSide);
        rig_->evaluate("Selection.selectPoint(canvas, 5)");
        QTRY_COMPARE(selection(), QList<int>{5});
    }

    void tearDown() override {
        pad_->axis(0, 0);
        rig_.reset();
    }

    /// Updates SDL after each input, so that their order stays.
    void button(Button button, bool down) {
        pad_->button(button, down);
        SDL_JoystickUpdate();
    }
    void press(Button which) {
        button(which, true);
        button(which, false);
    }

    /// The selected points of the edited media, by the moves that the Producer has received.
    QList<int> selection() const {
        QMap<int, bool> selected;
        for (const auto* move : rig_->moves())
            if (move->cueId() == WindowRig::kCue)
                selected[int(move->pointId())] = move->selected();
        return selected.keys(true);
    }

    std::unique_ptr<ControllerSystem> system_; // keeps SDL's joysticks up
    std::optional<MeshpadTest::VirtualPad> pad_;
    std::optional<WindowRig> rig_;
};

QTEST_MAIN(TestWindowController)
#include "tst_window_controller_linux.moc"
