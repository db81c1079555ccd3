#include "app/DisconnectOverlay.h"
#include "input/controller_system.h"
#include "network/events/ItemDataEvent.h"
#include "network/events/MediaBlindEvent.h"
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
constexpr int kSettingsTab = 3;

} // namespace

/// A controller that SDL takes for a real one, in the hand of a window that nobody simulates, from
/// its presses to what a Producer receives.
class TestWindowController : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase() { pad_.reset(); }

    void startsBehindAnotherWindow();
    void sticksMoveSelectionPanAndZoom();
    void actionsReachListAndSceneUnderAnotherPage();
    void restsUnderTheVeilAndWithoutFocus();

private:
    void set(const QString& input, bool held);
    void axis(int index, int value) { pad_->axis(index, value); }
    void hold(const QStringList& inputs);
    void releaseHeld();
    QString selection() const;

    std::unique_ptr<ControllerSystem> system_; // keeps SDL's joysticks up
    std::optional<MeshpadTest::VirtualPad> pad_;
    std::optional<WindowRig> editor_;
    QStringList held_;
};

void TestWindowController::initTestCase() {
    system_ = ControllerSystem::create();
    QCOMPARE(system_->open(), ControllerSystem::OpenResult::Ok);
    if (SDL_NumJoysticks() > 0)
        QSKIP("Unplug the controllers of this machine to test with a virtual one");
    pad_.emplace(5);
}

void TestWindowController::cleanup() {
    releaseHeld();
    for (const int index : {0, 1, 2, 3, 4})
        axis(index, 0);
    editor_.reset();
    GuardedTest::cleanup();
}

/// Two media with a curve each, the first one edited, its point 5 selected; but nothing is shown at
/// first.
void TestWindowController::init() {
    GuardedTest::init();
    editor_.emplace();
    if (QByteArray(QTest::currentTestFunction()) == "startsBehindAnotherWindow")
        return;
    editor_->open();
    editor_->sendMedia(kDataIndex + 1, kSide, WindowRig::kCue + 1);
    editor_->sendMedia(kDataIndex, kSide);
    editor_->select(kDataIndex, kSide);
    editor_->evaluate("Selection.selectPoint(canvas, 5)");
    QTRY_COMPARE(selection(), QString("5"));
}

/// Each input on its own, so that the order stays.
void TestWindowController::set(const QString& input, bool held) {
    const QStringList buttons{"RightCross_Bottom",
                              "RightCross_Right",
                              "RightCross_Left",
                              "RightCross_Top",
                              "Trigger_Left",
                              "Trigger_Right",
                              "Back",
                              "Start"};
    const QStringList directions{"LeftDPad_Top", "LeftDPad_Right", "LeftDPad_Bottom",
                                 "LeftDPad_Left"}; // a bit of the hat each
    if (buttons.contains(input))
        pad_->button(int(buttons.indexOf(input)), held);
    else
        pad_->hat(Uint8(held ? 1 << directions.indexOf(input) : 0));
    SDL_JoystickUpdate();
}

void TestWindowController::hold(const QStringList& inputs) {
    for (const QString& input : inputs) {
        set(input, true);
        held_ << input;
    }
}

void TestWindowController::releaseHeld() {
    for (const QString& input : std::exchange(held_, {}))
        set(input, false);
}

/// Which points are selected, as the Producer was told.
QString TestWindowController::selection() const {
    QMap<unsigned int, bool> selected;
    for (const auto* move : editor_->moves())
        if (move->cueId() == WindowRig::kCue)
            selected[move->pointId()] = move->selected();
    QStringList points;
    for (const unsigned int point : selected.keys(true))
        points << QString::number(point);
    return points.join(' ');
}

/// Comes first: the application is active from the first window on that was.
void TestWindowController::startsBehindAnotherWindow() {
    QVERIFY(QGuiApplication::applicationState() != Qt::ApplicationActive);
    QSignalSpy actions(editor_->find<WarpPage>(), &WarpPage::action);
    hold({"Back"});
    releaseHeld();
    hold({"Start"});
    QVERIFY(!actions.wait(100));
    editor_->show();
    QTRY_COMPARE(actions.count(), 1);
    QCOMPARE(actions.first().first().value<Action>(), Action::SELECT_ALL_POINTS);
}

void TestWindowController::sticksMoveSelectionPanAndZoom() {
    editor_->producer.forget();
    const double zoom = editor_->number("zoomSlider.value");
    QSignalSpy polls(editor_->find<WarpPage>(), &WarpPage::leftAxisMoved);
    // All the way to the right: twice a pixel of the screen with each poll.
    axis(0, SDL_JOYSTICK_AXIS_MAX);
    const auto moves = [this] { return editor_->moves(); };
    QTRY_VERIFY(moves().size() > 3);
    QVERIFY(editor_->isTrue("isMovingPoint"));
    axis(0, 0);
    QTRY_VERIFY(!editor_->isTrue("isMovingPoint"));
    // The last one says that the stick is back. On a busy machine a tick may tell of several.
    const double end = -320 + double(polls.count() - 1) * (2 / zoom);
    QTRY_VERIFY2(std::abs(moves().back()->x() - end) < 0.001,
                 qPrintable(QString::number(moves().back()->x() - end)));
    QVERIFY(moves().size() < std::size_t(polls.count()));
    double before = -320;
    for (const auto* move : moves()) {
        const double steps = (move->x() - std::exchange(before, move->x())) * (zoom / 2);
        QCOMPARE(move->pointId(), 5U);
        QVERIFY2(steps > 0.999 && std::abs(steps - std::round(steps)) < 0.001,
                 qPrintable(QString::number(steps)));
        QCOMPARE(move->y(), -180.0);
        QVERIFY(move->selected());
    }

    editor_->producer.forget();
    const double panned = editor_->number("canvasMedia.y");
    axis(4, SDL_JOYSTICK_AXIS_MAX);
    QTRY_VERIFY(editor_->number("canvasMedia.y") <= panned - 3 * (2 / zoom));
    axis(4, 0);
    axis(2, SDL_JOYSTICK_AXIS_MAX);
    QTRY_VERIFY(editor_->number("zoomSlider.value") < zoom - 0.02);
    axis(2, SDL_JOYSTICK_AXIS_MIN);
    QTRY_VERIFY(editor_->number("zoomSlider.value") > zoom);
    QVERIFY(editor_->producer.events().empty()); // looking around moves nothing
}

void TestWindowController::actionsReachListAndSceneUnderAnotherPage() {
    auto& producer = editor_->producer;
    editor_->window->goToPageFromMenu(kSettingsTab);
    QVERIFY(!editor_->view->isVisible());
    const std::pair<QString, QString> selecting[] = {
        {"Start", "0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15"},
        {"Back", ""},
        {"LeftDPad_Right", "6"},
        {"Trigger_Left LeftDPad_Top", "1 5"},
        {"Trigger_Right LeftDPad_Left", "4 5 6 7"},
        {"Trigger_Right Trigger_Left LeftDPad_Bottom", "5 8 9 10 11"}};
    for (const auto& [inputs, selected] : selecting) {
        editor_->evaluate("Selection.selectPoint(canvas, 5)");
        QTRY_COMPARE(selection(), QString("5"));
        hold(inputs.split(' '));
        QTRY_COMPARE(inputs + ": " + selection(), inputs + ": " + selected);
        releaseHeld();
    }

    producer.forget();
    hold({"RightCross_Right"});
    QTRY_COMPARE(producer.eventsOf<MediaBlindEvent>().size(), std::size_t(1));
    releaseHeld();
    hold({"RightCross_Bottom"});
    releaseHeld();
    hold({"RightCross_Top"});
    QTRY_COMPARE(producer.eventsOf<ItemDataEvent>().size(), std::size_t(2));
    QCOMPARE(producer.eventsOf<ItemDataEvent>().front()->callerId(), kDataIndex + 1);
    QCOMPARE(producer.eventsOf<ItemDataEvent>().back()->callerId(), kDataIndex);
}

void TestWindowController::restsUnderTheVeilAndWithoutFocus() {
    auto* page = editor_->find<WarpPage>();
    QSignalSpy sticks(page, &WarpPage::leftAxisMoved);
    QSignalSpy actions(page, &WarpPage::action);
    for (const bool veil : {false, true}) {
        axis(0, SDL_JOYSTICK_AXIS_MAX);
        QTRY_VERIFY(!sticks.isEmpty());
        if (veil) {
            editor_->producer.abortConnections();
            QTRY_VERIFY(editor_->find<DisconnectOverlay>() != nullptr);
        } else {
            emit qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
        }
        QCOMPARE(sticks.last(), QVariantList({0.0F, 0.0F}));
        QVERIFY(!editor_->isTrue("isMovingPoint"));
        sticks.clear();
        hold({"Start"});
        releaseHeld();
        QVERIFY(!sticks.wait(100));
        if (veil)
            editor_->window->onServerAvailableAgain();
        else
            emit qGuiApp->applicationStateChanged(Qt::ApplicationActive);
        QTRY_VERIFY(!sticks.isEmpty()); // it is still held
        QVERIFY(actions.isEmpty());
        axis(0, 0);
        QTRY_COMPARE(sticks.last(), QVariantList({0.0F, 0.0F}));
        sticks.clear();
    }
}

QTEST_MAIN(TestWindowController)
#include "tst_window_controller_linux.moc"
