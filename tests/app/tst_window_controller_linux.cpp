#include "app/GuiCompanion.h"
#include "input/controller_system.h"
#include "resources/CompanionResources.h"
#include "tests/support/MessageGuard.h"
#include "warp/WarpPage.h"

#include <QGuiApplication>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <SDL.h>
#include <optional>

/// A controller that SDL takes for a real one, in the hand of a window that nobody simulates.
class TestWindowController : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        QVERIFY(settings_.isValid());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings_.path());
        initCompanionResources();
        messages_.emplace();
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
        window_ = std::make_unique<GuiCompanion>(nullptr);
        window_->show();
        QVERIFY(QTest::qWaitForWindowActive(window_.get()));
    }

    void cleanupTestCase() {
        window_.reset();
        SDL_JoystickClose(pad_);
        messages_->verify();
        messages_.reset();
    }

    void sticksAndActionsReachTheWarpPageWhileFocused() {
        auto* page = window_->findChild<WarpPage*>();
        QSignalSpy sticks(page, &WarpPage::leftAxisMoved);
        QSignalSpy actions(page, &WarpPage::action);
        SDL_JoystickSetVirtualButton(pad_, 7, SDL_PRESSED);
        QTRY_COMPARE(actions.count(), 1);
        QCOMPARE(actions.first().first().value<Action>(), Action::SELECT_ALL_POINTS);
        SDL_JoystickSetVirtualButton(pad_, 7, SDL_RELEASED);
        SDL_JoystickSetVirtualAxis(pad_, 0, SDL_JOYSTICK_AXIS_MAX);
        QTRY_VERIFY(!sticks.isEmpty()); // and again with every poll
        QCOMPARE(sticks.first(), QVariantList({1.0F, 0.0F}));

        for (int round = 0; round < 2; ++round) {
            emit qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
            sticks.clear();
            QVERIFY(!sticks.wait(200));
            emit qGuiApp->applicationStateChanged(Qt::ApplicationActive);
            QVERIFY(sticks.wait());
        }
    }

private:
    QTemporaryDir settings_;
    std::optional<MeshpadTest::MessageGuard> messages_;
    std::unique_ptr<ControllerSystem> system_; // keeps SDL's joysticks up
    SDL_Joystick* pad_ = nullptr;
    std::unique_ptr<GuiCompanion> window_;
};

QTEST_MAIN(TestWindowController)
#include "tst_window_controller_linux.moc"
