#include "input/action_mapper.h"
#include "tests/support/GuardedTest.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace MeshpadTest;
using enum GamepadButton;
using Buttons = QList<GamepadButton>;
using Actions = QList<Action>;

class TestActionMapper : public GuardedTest {
    Q_OBJECT

private slots:
    void init() {
        GuardedTest::init();
        folder_.emplace();
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder_->path());
        file_ = folder_->filePath("Orvex/Meshpad.ini");
        actions_.clear();
    }
    void cleanup() {
        mapper_.reset();
        folder_.reset();
        GuardedTest::cleanup();
    }

    void defaultMappings();
    void combinationsHaveToBeExact();
    void freeInputsMayBeAnywhere();
    void alternativesCaseAndWrongEntries();
    void firstStartInstallsAFileThatCanBeEdited();
    void editedFileIsKeptAndReloadedFromDisk();

private:
    void write(const QByteArray& mappings);
    void start();
    Actions press(const Buttons& buttons);
    void release(const Buttons& buttons);
    Actions pressAndRelease(const Buttons& buttons) {
        const Actions actions = press(buttons);
        release(buttons);
        return actions_.isEmpty() ? actions : Actions{};
    }

    std::optional<QTemporaryDir> folder_;
    QString file_;
    std::unique_ptr<ActionMapper> mapper_;
    Actions actions_;
};

void TestActionMapper::write(const QByteArray& mappings) {
    QVERIFY(QFileInfo(file_).absoluteDir().mkpath("."));
    QFile file(file_);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[ActionMappings]\n" + mappings);
}

void TestActionMapper::start() {
    mapper_ = std::make_unique<ActionMapper>();
    connect(mapper_.get(), &ActionMapper::action, this,
            [this](Action action) { actions_ << action; });
}

/// The actions that pressing the buttons one after the other gives.
Actions TestActionMapper::press(const Buttons& buttons) {
    for (const GamepadButton button : buttons)
        mapper_->onButtonPressed(button);
    return std::exchange(actions_, {});
}

void TestActionMapper::release(const Buttons& buttons) {
    for (const GamepadButton button : buttons)
        mapper_->onButtonReleased(button);
}

/// In every order in which the inputs can be pressed.
void TestActionMapper::defaultMappings() {
    const std::pair<Buttons, Action> rows[] = {
        {{RightCross_Right}, Action::TOGGLE_BLIND},
        {{RightCross_Top}, Action::SELECT_PREVIOUS_SCREEN},
        {{RightCross_Bottom}, Action::SELECT_NEXT_SCREEN},
        {{Start}, Action::SELECT_ALL_POINTS},
        {{Back}, Action::UNSELECT_ALL_POINTS},
        {{LeftDPad_Top}, Action::SELECT_NEIGHBOUR_TOP},
        {{LeftDPad_Right}, Action::SELECT_NEIGHBOUR_RIGHT},
        {{LeftDPad_Bottom}, Action::SELECT_NEIGHBOUR_BOTTOM},
        {{LeftDPad_Left}, Action::SELECT_NEIGHBOUR_LEFT},
        {{Trigger_Left, LeftDPad_Top}, Action::SELECT_ADD_NEIGHBOUR_TOP},
        {{Trigger_Left, LeftDPad_Right}, Action::SELECT_ADD_NEIGHBOUR_RIGHT},
        {{Trigger_Left, LeftDPad_Bottom}, Action::SELECT_ADD_NEIGHBOUR_BOTTOM},
        {{Trigger_Left, LeftDPad_Left}, Action::SELECT_ADD_NEIGHBOUR_LEFT},
        {{Trigger_Right, LeftDPad_Top}, Action::SELECT_ADD_CURRENT_COLUMN},
        {{Trigger_Right, LeftDPad_Bottom}, Action::SELECT_ADD_CURRENT_COLUMN},
        {{Trigger_Right, LeftDPad_Left}, Action::SELECT_ADD_CURRENT_ROW},
        {{Trigger_Right, LeftDPad_Right}, Action::SELECT_ADD_CURRENT_ROW},
        {{Trigger_Right, Trigger_Left, LeftDPad_Top}, Action::SELECT_ADD_NEIGHBOUR_COLUMN_TOP},
        {{Trigger_Right, Trigger_Left, LeftDPad_Right}, Action::SELECT_ADD_NEIGHBOUR_COLUMN_RIGHT},
        {{Trigger_Right, Trigger_Left, LeftDPad_Bottom},
         Action::SELECT_ADD_NEIGHBOUR_COLUMN_BOTTOM},
        {{Trigger_Right, Trigger_Left, LeftDPad_Left}, Action::SELECT_ADD_NEIGHBOUR_COLUMN_LEFT}};
    start();
    for (const auto& [buttons, action] : rows) {
        Buttons order = buttons;
        std::sort(order.begin(), order.end());
        do {
            const Actions actions = pressAndRelease(order);
            // Two inputs belong in their order; of three, the triggers may come anywhere.
            const bool right = order == buttons || buttons.size() == 3;
            QVERIFY2(right ? !actions.isEmpty() && actions.last() == action
                           : !actions.contains(action),
                     qPrintable(QString("action %1").arg(int(action))));
        } while (std::next_permutation(order.begin(), order.end()));
    }
}

void TestActionMapper::combinationsHaveToBeExact() {
    start();
    QCOMPARE(press({Trigger_Right, LeftDPad_Top}), Actions{Action::SELECT_ADD_CURRENT_COLUMN});
    // With something else held nothing fires, until only the combination is held again.
    QCOMPARE(press({Back, Start}), Actions());
    release({Back, Start, LeftDPad_Top});
    release({LeftDPad_Bottom}); // never pressed
    QCOMPARE(pressAndRelease({LeftDPad_Left}), Actions{Action::SELECT_ADD_CURRENT_ROW});
    // Again and again while the other one is held.
    QCOMPARE(pressAndRelease({LeftDPad_Left}), Actions{Action::SELECT_ADD_CURRENT_ROW});
    release({Trigger_Right});
    QCOMPARE(press({LeftDPad_Left}), Actions{Action::SELECT_NEIGHBOUR_LEFT});
}

void TestActionMapper::freeInputsMayBeAnywhere() {
    write("H Flip=Start, ~Back, Trigger_Left\n");
    start();
    for (const Buttons& order : {Buttons{Back, Start, Trigger_Left},
                                 {Start, Back, Trigger_Left},
                                 {Start, Trigger_Left, Back}})
        QCOMPARE(pressAndRelease(order), Actions{Action::H_FLIP});
    QCOMPARE(pressAndRelease({Trigger_Left, Back, Start}), Actions());
    // No input counts twice.
    QCOMPARE(pressAndRelease({Back, Back, Back}), Actions());
    QCOMPARE(pressAndRelease({Start, Back, Back, Trigger_Left}), Actions());
}

void TestActionMapper::alternativesCaseAndWrongEntries() {
    write("TOGGLE blind=rightcross_RIGHT\n"
          "toggle blind#7=START\n"
          "V Flip#1=\n"
          "V Flip#2=~back,trigger_left\n"
          "UV to XY=Start\n"
          "Make Coffee#1=RightCross_Top\n"
          "H Flip=RightCross_Top, ~Lever\n"
          "XY to UV=~Back, Lever\n");
    messages_->expect(QtWarningMsg, "Skipping unknown mapping action 'Make Coffee#1'");
    messages_->expect(QtWarningMsg, "Skipping mapping 'H Flip' due to unknown input '~Lever'");
    messages_->expect(QtWarningMsg, "Skipping mapping 'XY to UV' due to unknown input 'Lever'");
    start();
    QCOMPARE(pressAndRelease({RightCross_Right}), Actions{Action::TOGGLE_BLIND});
    QCOMPARE(pressAndRelease({Trigger_Left, Back}), Actions{Action::V_FLIP});
    // Two mappings for the same press: only one action happens.
    QCOMPARE(pressAndRelease({Start}).size(), 1);
    QCOMPARE(pressAndRelease({RightCross_Top}), Actions());
    QCOMPARE(pressAndRelease({Back}), Actions());
}

void TestActionMapper::firstStartInstallsAFileThatCanBeEdited() {
    start();
    QFile installed(file_);
    QVERIFY(installed.open(QIODevice::ReadWrite));
    QVERIFY(installed.permissions().testFlag(QFileDevice::WriteOwner));
    QFile builtIn(":/config/Meshpad.ini");
    QVERIFY(builtIn.open(QIODevice::ReadOnly));
    const QByteArray text = builtIn.readAll();
    // Every action can be found in the file, the unbound ones too.
    QCOMPARE(QSettings(file_, QSettings::IniFormat).allKeys().size(), 28);
    // Nothing writes it back, so that the notes for the user stay.
    mapper_.reset();
    QCOMPARE(installed.readAll(), text);
}

void TestActionMapper::editedFileIsKeptAndReloadedFromDisk() {
    write("; mine\nH Flip=Start\n");
    start();
    QCOMPARE(pressAndRelease({Start}), Actions{Action::H_FLIP});
    QCOMPARE(pressAndRelease({Back}), Actions());
    write("; mine\nV Flip=Start\nTOGGLE UV EDITING=Back\n");
    mapper_->reloadMappings();
    QCOMPARE(pressAndRelease({Start}), Actions{Action::V_FLIP});
    QCOMPARE(pressAndRelease({Back}), Actions{Action::TOGGLE_EDIT_UV});
    QFile file(file_);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("; mine"));
}

QTEST_GUILESS_MAIN(TestActionMapper)
#include "tst_action_mapper.moc"
