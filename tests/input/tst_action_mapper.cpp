#include "input/action_mapper.h"
#include "tests/support/GuardedTest.h"

#include <QDir>
#include <QFile>
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
        actions_.clear();
    }
    void cleanup() {
        mapper_.reset();
        folder_.reset();
        GuardedTest::cleanup();
    }

    void emitsActionsOfBuiltInMappings_data() {
        QTest::addColumn<Buttons>("buttons");
        QTest::addColumn<int>("action");
        const auto row = [](const char* name, int action, const Buttons& buttons) {
            QTest::newRow(name) << buttons << action;
        };
        row("toggle blind", 0, {RightCross_Right});
        row("select previous screen", 1, {RightCross_Top});
        row("select next screen", 2, {RightCross_Bottom});
        row("select all points", 3, {Start});
        row("unselect all points", 4, {Back});
        row("select top neighbour", 5, {LeftDPad_Top});
        row("select right neighbour", 6, {LeftDPad_Right});
        row("select bottom neighbour", 7, {LeftDPad_Bottom});
        row("select left neighbour", 8, {LeftDPad_Left});
        row("add top neighbour", 9, {Trigger_Left, LeftDPad_Top});
        row("add right neighbour", 10, {Trigger_Left, LeftDPad_Right});
        row("add bottom neighbour", 11, {Trigger_Left, LeftDPad_Bottom});
        row("add left neighbour", 12, {Trigger_Left, LeftDPad_Left});
        row("add current column by top", 13, {Trigger_Right, LeftDPad_Top});
        row("add current column by bottom", 13, {Trigger_Right, LeftDPad_Bottom});
        row("add current row by left", 14, {Trigger_Right, LeftDPad_Left});
        row("add current row by right", 14, {Trigger_Right, LeftDPad_Right});
        row("add top neighbour column", 15, {Trigger_Right, Trigger_Left, LeftDPad_Top});
        row("add right neighbour column", 16, {Trigger_Right, Trigger_Left, LeftDPad_Right});
        row("add bottom neighbour column", 17, {Trigger_Right, Trigger_Left, LeftDPad_Bottom});
        row("add left neighbour column", 18, {Trigger_Right, Trigger_Left, LeftDPad_Left});
    }

    /// Presses the inputs in every order: of three, the triggers may stand anywhere.
    void emitsActionsOfBuiltInMappings() {
        QFETCH(Buttons, buttons);
        QFETCH(int, action);
        start();
        Buttons order = buttons;
        std::ranges::sort(order);
        do {
            const Actions actions = pressAndRelease(order);
            const bool isMapped = order == buttons || buttons.size() == 3;
            QCOMPARE(!actions.isEmpty() && actions.last() == Action(action), isMapped);
        } while (std::ranges::next_permutation(order).found);
    }

    void requiresExactCombination() {
        start();
        QCOMPARE(press({Trigger_Right, LeftDPad_Top}), Actions{Action::SELECT_ADD_CURRENT_COLUMN});
        QCOMPARE(press({Back, Start}), Actions());
        release({Back, Start, LeftDPad_Top, LeftDPad_Bottom}); // the last one is not held
        for (int i = 0; i < 2; ++i)
            QCOMPARE(pressAndRelease({LeftDPad_Left}), Actions{Action::SELECT_ADD_CURRENT_ROW});
        release({Trigger_Right});
        QCOMPARE(press({LeftDPad_Left}), Actions{Action::SELECT_NEIGHBOUR_LEFT});
    }

    void acceptsMarkedInputsAnywhere() {
        write("H Flip=Start, ~Back, Trigger_Left\n");
        start();
        QCOMPARE(pressAndRelease({Back, Start, Trigger_Left}), Actions{Action::H_FLIP});
        QCOMPARE(pressAndRelease({Start, Back, Trigger_Left}), Actions{Action::H_FLIP});
        QCOMPARE(pressAndRelease({Start, Trigger_Left, Back}), Actions{Action::H_FLIP});
        QCOMPARE(pressAndRelease({Trigger_Left, Back, Start}), Actions());
        QCOMPARE(pressAndRelease({Back, Back, Back}), Actions());
        QCOMPARE(pressAndRelease({Start, Back, Back, Trigger_Left}), Actions());
    }

    void skipsInvalidEntries() {
        write("TOGGLE blind=rightcross_RIGHT\ntoggle blind#7=START\nV Flip#1=\n"
              "V Flip#2=~back,trigger_left\nUV to XY=Start\nMake Coffee#1=RightCross_Top\n"
              "H Flip=RightCross_Top, ~Lever\nXY to UV=~Back, Lever\n");
        messages_->expect(QtWarningMsg, "Skipping unknown mapping action 'Make Coffee#1'");
        messages_->expect(QtWarningMsg, "Skipping mapping 'H Flip' due to unknown input '~Lever'");
        messages_->expect(QtWarningMsg, "Skipping mapping 'XY to UV' due to unknown input 'Lever'");
        start();
        QCOMPARE(pressAndRelease({RightCross_Right}), Actions{Action::TOGGLE_BLIND});
        QCOMPARE(pressAndRelease({Trigger_Left, Back}), Actions{Action::V_FLIP});
        QCOMPARE(pressAndRelease({Start}).size(), 1); // of two mappings
        QCOMPARE(pressAndRelease({RightCross_Top}), Actions());
        QCOMPARE(pressAndRelease({Back}), Actions());
    }

    void installsWritableFile() {
        start();
        QFile installed(fileName());
        QVERIFY(installed.open(QIODevice::ReadWrite));
        QVERIFY(installed.permissions().testFlag(QFileDevice::WriteOwner));
        QCOMPARE(QSettings(fileName(), QSettings::IniFormat).allKeys().size(),
                 28);    // unbound ones, too
        mapper_.reset(); // does not write the file
        QFile builtIn(":/config/Meshpad.ini");
        QVERIFY(builtIn.open(QIODevice::ReadOnly));
        QCOMPARE(installed.readAll(), builtIn.readAll());
    }

    void keepsAndReloadsEditedFile() {
        write("; mine\nH Flip=Start\n");
        start();
        QCOMPARE(pressAndRelease({Start}), Actions{Action::H_FLIP});
        QCOMPARE(pressAndRelease({Back}), Actions());
        write("; mine\nV Flip=Start\nTOGGLE UV EDITING=Back\n");
        mapper_->reloadMappings();
        QCOMPARE(pressAndRelease({Start}), Actions{Action::V_FLIP});
        QCOMPARE(pressAndRelease({Back}), Actions{Action::TOGGLE_EDIT_UV});
        QFile file(fileName());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("; mine"));
    }

private:
    QString fileName() const { return folder_->filePath("Orvex/Meshpad.ini"); }
    void write(const QByteArray& mappings) {
        QVERIFY(QDir(folder_->path()).mkpath("Orvex"));
        QFile file(fileName());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[ActionMappings]\n" + mappings);
    }

    void start() {
        mapper_ = std::make_unique<ActionMapper>();
        connect(mapper_.get(), &ActionMapper::action, this, [this](Action a) { actions_ << a; });
    }

    /// The actions of pressing the buttons one after the other.
    Actions press(const Buttons& buttons) {
        std::ranges::for_each(buttons, [this](auto button) { mapper_->onButtonPressed(button); });
        return std::exchange(actions_, {});
    }
    void release(const Buttons& buttons) {
        std::ranges::for_each(
            buttons, [this](auto button) { mapper_->onButtonReleased(button); });
    }
    Actions pressAndRelease(const Buttons& buttons) {
        Actions actions = press(buttons);
        release(buttons);
        return actions + std::exchange(actions_, {});
    }

    std::optional<QTemporaryDir> folder_;
    std::unique_ptr<ActionMapper> mapper_;
    Actions actions_;
};

QTEST_GUILESS_MAIN(TestActionMapper)
#include "tst_action_mapper.moc"
