#include "app/DisconnectOverlay.h"
#include "app/GuiCompanion.h"
#include "app/UpdateProducer.h"
#include "input/controller_system.h"
#include "network/AddMediaEvent.h"
#include "network/ItemDataEvent.h"
#include "network/MediaBlindEvent.h"
#include "network/MediaDeformationModeEvent.h"
#include "network/MediaMovePointEvent.h"
#include "resources/CompanionResources.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/MessageGuard.h"
#include "warp/Item.h"
#include "warp/WarpPage.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QQmlContext>
#include <QQmlExpression>
#include <QQuickItem>
#include <QQuickWidget>
#include <QQuickWindow>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <SDL.h>
#include <map>
#include <optional>

using namespace NetworkCompanion;
using MeshpadTest::FakeProducer;

namespace {

constexpr unsigned int kCue = 11;
constexpr int kMediaId = 5;
constexpr int kDataIndex = 77;
constexpr int kSide = 4;
constexpr quint16 kProducerPort = 62330;
constexpr int kSettingsTab = 3;

/// What the built-in mappings leave unbound. This file is there before the program starts.
constexpr char kOwnMappings[] = "XY to UV=Trigger_Left, Back\n"
                                "Horizontal Mirror=Back, Start\n"
                                "Vertical Mirror=Start, Back\n"
                                "H Flip=RightCross_Left\n"
                                "V Flip=RightCross_Left, Start\n"
                                "UV to XY=RightCross_Left, Back\n"
                                "Toggle UV Editing=Trigger_Left, Start\n";

} // namespace

/// A controller that SDL takes for a real one, in the hand of a window that nobody simulates, from
/// its presses to what a Producer receives.
class TestWindowController : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void startsBehindAnotherWindow();
    void sticksMoveSelectionPanAndZoom();
    void actionsReachListAndSceneUnderAnotherPage();
    void restsUnderTheVeilAndWithoutFocus();

private:
    void showItem();
    QVariant evaluate(const QString& expression) const;
    double number(const QString& expression) const { return evaluate(expression).toDouble(); }
    void set(const QString& input, bool held);
    void axis(int index, int value);
    void hold(const QStringList& inputs);
    void letGo();
    QString shape() const;
    QString selection() const;

    QTemporaryDir settings_;
    std::unique_ptr<ControllerSystem> system_; // keeps SDL's joysticks up
    SDL_Joystick* pad_ = nullptr;
    std::optional<MeshpadTest::MessageGuard> messages_;
    std::unique_ptr<FakeProducer> producer_;
    std::unique_ptr<GuiCompanion> window_;
    QQuickWidget* view_ = nullptr;
    QStringList held_;
};

void TestWindowController::initTestCase() {
    QVERIFY(settings_.isValid());
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings_.path());
    initCompanionResources();
    QFile builtIn(":/config/Meshpad.ini");
    QVERIFY(builtIn.open(QIODevice::ReadOnly));
    QByteArray mappings = builtIn.readAll();
    const qsizetype unbound = mappings.indexOf("Horizontal Mirror=");
    QVERIFY(unbound > 0);
    QDir(settings_.path()).mkpath("Orvex");
    QFile own(settings_.filePath("Orvex/Meshpad.ini"));
    QVERIFY(own.open(QIODevice::WriteOnly));
    own.write(mappings.left(unbound) + kOwnMappings);

    system_ = ControllerSystem::create();
    QCOMPARE(system_->open(), ControllerSystem::OpenResult::Ok);
    if (SDL_NumJoysticks() > 0) {
        QSKIP("Unplug the controllers of this machine to test with a virtual one");
    }
    SDL_VirtualJoystickDesc description{};
    description.version = SDL_VIRTUAL_JOYSTICK_DESC_VERSION;
    description.naxes = 5;
    description.nbuttons = 11;
    description.nhats = 1;
    description.name = "Virtual Pad";
    pad_ = SDL_JoystickOpen(SDL_JoystickAttachVirtualEx(&description));
    QVERIFY(pad_ != nullptr);
}

void TestWindowController::init() {
    messages_.emplace();
    UpdateProducer::tickPeriod = std::chrono::milliseconds(5);
    producer_ = std::make_unique<FakeProducer>();
    QVERIFY(producer_->listen(QHostAddress::LocalHost, kProducerPort));
    window_ = std::make_unique<GuiCompanion>(nullptr);
    view_ = window_->findChild<QQuickWidget*>();
}

void TestWindowController::cleanup() {
    letGo();
    for (const int index : {0, 1, 2, 3, 4}) {
        axis(index, 0);
    }
    window_->onDisconnectFromServer();
    view_->setSource({});
    QQuickWindow().releaseResources(); // pictures that Qt Quick would keep for later scenes
    if (producer_->acceptedCount() > 0) {
        view_->grabFramebuffer(); // and their textures, which only a frame lets go
    }
    window_.reset();
    producer_.reset();
    UpdateProducer::tickPeriod = UpdateProducer::kTickPeriod;
    messages_->verify();
    messages_.reset();
}

void TestWindowController::cleanupTestCase() {
    SDL_JoystickClose(pad_);
}

/// Two media with a curve each, the first one edited, its point 5 selected.
void TestWindowController::showItem() {
    window_->show();
    QVERIFY(QTest::qWaitForWindowActive(window_.get()));
    window_->onConnectToServer(producer_->host());
    QTRY_COMPARE(producer_->connectionCount(), 1);
    for (int i = 0; i < 2; ++i) {
        producer_->send(AddMediaEvent(MediaType::Image, kCue + unsigned(i), kMediaId,
                                      kDataIndex + i, 1920, 1080, 0, 0.0, "Media", false));
        producer_->send(MediaDeformationModeEvent(
            LV_NTC_ElementType::Media, LV_NTC_DeformationType::Curve, kCue + unsigned(i), kMediaId,
            kDataIndex + i, "Media", kSide, kSide, false));
    }
    QTRY_COMPARE(window_->findChildren<Item*>().size(), 2);
    for (Item* item : window_->findChildren<Item*>()) {
        if (item->dataIndex() == kDataIndex) {
            item->selected(item);
        }
    }
    QTRY_COMPARE(number("getCurrentItem().deformerGrids[0].pointsArray.length"), kSide * kSide);
    // A shape that no mirror, flip or copy leaves as it is.
    for (const auto& [point, x] : {std::pair{0, -900.0}, {5, -200.0}}) {
        producer_->send(MediaMovePointEvent(kCue, kMediaId, kDataIndex, "Media", unsigned(point), x,
                                            -300.0, 0, true, false));
    }
    QTRY_COMPARE(number("getCurrentItem().deformerGrids[0].pointsArray[5].x"), -200.0 + 960);
    evaluate("getCurrentItem().itemDeformer.adjustView()");
    evaluate("DeformerActions.selectPoint(canvas, 5)");
    QTRY_COMPARE(selection(), QString("5"));
}

QVariant TestWindowController::evaluate(const QString& expression) const {
    QQuickItem* root = view_->rootObject();
    QQmlExpression evaluated(qmlContext(root), root, expression);
    const QVariant result = evaluated.evaluate();
    if (evaluated.hasError()) {
        qWarning().noquote() << evaluated.error().toString();
    }
    return result;
}

/// Each input on its own, so that the order stays.
void TestWindowController::set(const QString& input, bool held) {
    const std::map<QString, int> buttons{{"RightCross_Bottom", 0},
                                         {"RightCross_Right", 1},
                                         {"RightCross_Left", 2},
                                         {"RightCross_Top", 3},
                                         {"Trigger_Left", 4},
                                         {"Trigger_Right", 5},
                                         {"Back", 6},
                                         {"Start", 7}};
    const std::map<QString, Uint8> hat{{"LeftDPad_Top", SDL_HAT_UP},
                                       {"LeftDPad_Right", SDL_HAT_RIGHT},
                                       {"LeftDPad_Bottom", SDL_HAT_DOWN},
                                       {"LeftDPad_Left", SDL_HAT_LEFT}};
    if (const auto button = buttons.find(input); button != buttons.end()) {
        SDL_JoystickSetVirtualButton(pad_, button->second, held ? SDL_PRESSED : SDL_RELEASED);
    } else {
        SDL_JoystickSetVirtualHat(pad_, 0, held ? hat.at(input) : Uint8(SDL_HAT_CENTERED));
    }
    SDL_JoystickUpdate();
}

void TestWindowController::axis(int index, int value) {
    SDL_JoystickSetVirtualAxis(pad_, index, static_cast<Sint16>(value));
}

void TestWindowController::hold(const QStringList& inputs) {
    for (const QString& input : inputs) {
        set(input, true);
        held_ << input;
    }
}

void TestWindowController::letGo() {
    for (const QString& input : std::exchange(held_, {})) {
        set(input, false);
    }
}

/// Which points are selected, as the Producer was told.
QString TestWindowController::selection() const {
    std::map<unsigned int, bool> selected;
    for (const auto* move : producer_->eventsOf<MediaMovePointEvent>()) {
        if (move->cueId() == kCue) {
            selected[move->pointId()] = move->selected();
        }
    }
    QStringList points;
    for (const auto& [point, isSelected] : selected) {
        if (isSelected) {
            points << QString::number(point);
        }
    }
    return points.join(' ');
}

/// Both meshes of the item, and which of them is edited.
QString TestWindowController::shape() const {
    return evaluate("isCurrentGridXy + [0, 1].map(grid => Object.values(getCurrentItem()"
                    ".deformerGrids[grid].pointsArray).map(p => p.x + ',' + p.y)).join(';')")
        .toString();
}

/// Comes first: the application is active from the first window on that was.
void TestWindowController::startsBehindAnotherWindow() {
    QVERIFY(QGuiApplication::applicationState() != Qt::ApplicationActive);
    QSignalSpy actions(window_->findChild<WarpPage*>(), &WarpPage::action);
    hold({"Back"});
    letGo();
    hold({"Start"});
    QVERIFY(!actions.wait(100));
    window_->show();
    QVERIFY(QTest::qWaitForWindowActive(window_.get()));
    QTRY_COMPARE(actions.count(), 1);
    QCOMPARE(actions.first().first().value<Action>(), Action::SELECT_ALL_POINTS);
}

void TestWindowController::sticksMoveSelectionPanAndZoom() {
    showItem();
    if (QTest::currentTestFailed()) {
        return;
    }
    producer_->forget();
    const double zoom = number("zoomSlider.value");
    QSignalSpy polls(window_->findChild<WarpPage*>(), &WarpPage::leftAxisMoved);
    // All the way to the right: twice a pixel of the screen with each poll.
    axis(0, SDL_JOYSTICK_AXIS_MAX);
    const auto moves = [this] { return producer_->eventsOf<MediaMovePointEvent>(); };
    QTRY_VERIFY(moves().size() > 3);
    QVERIFY(evaluate("isMovingPoint").toBool());
    axis(0, 0);
    QTRY_VERIFY(!evaluate("isMovingPoint").toBool());
    // The last one says that the stick is back. On a busy machine a tick may tell of several.
    const double end = -200 + double(polls.count() - 1) * (2 / zoom);
    QTRY_VERIFY2(std::abs(moves().back()->x() - end) < 0.001,
                 qPrintable(QString::number(moves().back()->x() - end)));
    QVERIFY(moves().size() < std::size_t(polls.count()));
    double before = -200;
    for (const auto* move : moves()) {
        const double steps = (move->x() - std::exchange(before, move->x())) * (zoom / 2);
        QCOMPARE(move->pointId(), 5U);
        QVERIFY2(steps > 0.999 && std::abs(steps - std::round(steps)) < 0.001,
                 qPrintable(QString::number(steps)));
        QCOMPARE(move->y(), -300.0);
        QVERIFY(move->selected());
    }

    producer_->forget();
    const double panned = number("canvasMedia.y");
    axis(4, SDL_JOYSTICK_AXIS_MAX);
    QTRY_VERIFY(number("canvasMedia.y") <= panned - 3 * (2 / zoom));
    axis(4, 0);
    axis(2, SDL_JOYSTICK_AXIS_MAX);
    QTRY_VERIFY(number("zoomSlider.value") < zoom - 0.02);
    axis(2, SDL_JOYSTICK_AXIS_MIN);
    QTRY_VERIFY(number("zoomSlider.value") > zoom);
    QVERIFY(producer_->events().empty()); // looking around moves nothing
}

void TestWindowController::actionsReachListAndSceneUnderAnotherPage() {
    showItem();
    if (QTest::currentTestFailed()) {
        return;
    }
    window_->goToPageFromMenu(kSettingsTab);
    QVERIFY(!view_->isVisible());
    const QString before = shape();
    const std::pair<QString, QString> selecting[] = {
        {"Start", "0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15"},
        {"Back", ""},
        {"LeftDPad_Top", "1"},
        {"LeftDPad_Right", "6"},
        {"LeftDPad_Bottom", "9"},
        {"LeftDPad_Left", "4"},
        {"Trigger_Left LeftDPad_Top", "1 5"},
        {"Trigger_Left LeftDPad_Right", "5 6"},
        {"Trigger_Left LeftDPad_Bottom", "5 9"},
        {"Trigger_Left LeftDPad_Left", "4 5"},
        {"Trigger_Right LeftDPad_Top", "1 5 9 13"},
        {"Trigger_Right LeftDPad_Bottom", "1 5 9 13"},
        {"Trigger_Right LeftDPad_Left", "4 5 6 7"},
        {"Trigger_Right LeftDPad_Right", "4 5 6 7"},
        {"Trigger_Left Trigger_Right LeftDPad_Top", "0 1 2 3 5"},
        {"Trigger_Right Trigger_Left LeftDPad_Right", "2 5 6 10 14"},
        {"Trigger_Left Trigger_Right LeftDPad_Bottom", "5 8 9 10 11"},
        {"Trigger_Right Trigger_Left LeftDPad_Left", "0 4 5 8 12"}};
    for (const auto& [inputs, selected] : selecting) {
        evaluate("DeformerActions.selectPoint(canvas, 5)");
        QTRY_COMPARE(selection(), QString("5"));
        hold(inputs.split(' '));
        QTRY_COMPARE(inputs + ": " + selection(), inputs + ": " + selected);
        letGo();
    }
    QCOMPARE(shape(), before);

    for (const QByteArray& line : QByteArray(kOwnMappings).trimmed().split('\n')) {
        const QString unchanged = shape();
        hold(QString(line.mid(line.indexOf('=') + 1)).split(", "));
        QTRY_VERIFY2(shape() != unchanged, line.constData());
        letGo();
    }

    producer_->forget();
    hold({"RightCross_Right"});
    QTRY_COMPARE(producer_->eventsOf<MediaBlindEvent>().size(), std::size_t(1));
    letGo();
    hold({"RightCross_Bottom"});
    letGo();
    hold({"RightCross_Top"});
    QTRY_COMPARE(producer_->eventsOf<ItemDataEvent>().size(), std::size_t(2));
    QCOMPARE(producer_->eventsOf<ItemDataEvent>().front()->callerId(), kDataIndex + 1);
    QCOMPARE(producer_->eventsOf<ItemDataEvent>().back()->callerId(), kDataIndex);
}

void TestWindowController::restsUnderTheVeilAndWithoutFocus() {
    showItem();
    if (QTest::currentTestFailed()) {
        return;
    }
    auto* page = window_->findChild<WarpPage*>();
    QSignalSpy sticks(page, &WarpPage::leftAxisMoved);
    QSignalSpy actions(page, &WarpPage::action);
    for (const bool veil : {false, true}) {
        axis(0, SDL_JOYSTICK_AXIS_MAX);
        QTRY_VERIFY(!sticks.isEmpty());
        if (veil) {
            producer_->abortConnections();
            QTRY_VERIFY(window_->findChild<DisconnectOverlay*>() != nullptr);
        } else {
            emit qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
        }
        QCOMPARE(sticks.last(), QVariantList({0.0F, 0.0F}));
        QVERIFY(!evaluate("isMovingPoint").toBool());
        sticks.clear();
        hold({"Start"});
        letGo();
        QVERIFY(!sticks.wait(100));
        if (veil) {
            window_->onServerAvailableAgain();
        } else {
            emit qGuiApp->applicationStateChanged(Qt::ApplicationActive);
        }
        QTRY_VERIFY(!sticks.isEmpty()); // it is still held
        QVERIFY(actions.isEmpty());
        axis(0, 0);
        QTRY_COMPARE(sticks.last(), QVariantList({0.0F, 0.0F}));
        sticks.clear();
    }
}

QTEST_MAIN(TestWindowController)
#include "tst_window_controller_linux.moc"
