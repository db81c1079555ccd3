#include "input/action_mapper.h"
#include "tests/support/GuardedTest.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <optional>

using namespace MeshpadTest;
using enum GamepadButton;
using Buttons = QList<GamepadButton>;
using Actions = QList<Action>;

class TestActionMapper : public GuardedTest {
    Q_OBJECT

private slots:
    void emitsActionsOfBuiltInMappings_data() {
        QTest::addColumn<Buttons>("held");
        QTest::addColumn<Buttons>("last");
        QTest::addColumn<QList<int>>("actions");
        const Buttons cross{LeftDPad_Top, LeftDPad_Right, LeftDPad_Bottom, LeftDPad_Left};
        const Buttons others{RightCross_Right, RightCross_Top, RightCross_Bottom, Start, Back};
        QTest::newRow("single button") << Buttons() << others << QList{0, 1, 2, 3, 4};
        QTest::newRow("select") << Buttons() << cross << QList{5, 6, 7, 8};
        QTest::newRow("add") << Buttons{Trigger_Left} << cross << QList{9, 10, 11, 12};
        QTest::newRow("add line") << Buttons{Trigger_Right} << cross << QList{13, 14, 13, 14};
        QTest::newRow("add neighbouring line")
            << Buttons{Trigger_Right, Trigger_Left} << cross << QList{15, 16, 17, 18};
    }

    void emitsActionsOfBuiltInMappings() {
        QFETCH(Buttons, held);
        QFETCH(Buttons, last);
        start();
        QList<int> emitted;
        for (const GamepadButton button : last)
            emitted << int(pressAndRelease(held + Buttons{button}).value(0));
        QTEST(emitted, "actions");
    }

    void requiresExactCombination() {
        start();
        QCOMPARE(press({Trigger_Right, LeftDPad_Top}), Actions{Action::SELECT_ADD_CURRENT_COLUMN});
        QCOMPARE(press({Back, Start}), Actions());
        release({Back, Start, LeftDPad_Top, LeftDPad_Bottom}); // the last one is not held
        QCOMPARE(pressAndRelease({LeftDPad_Left}), Actions{Action::SELECT_ADD_CURRENT_ROW});
        release({Trigger_Right});
        QCOMPARE(press({LeftDPad_Left, Trigger_Left}), Actions{Action::SELECT_NEIGHBOUR_LEFT});
    }

    void acceptsMarkedInputsAnywhere() {
        write("H Flip=Start, ~Back, Trigger_Left\n");
        start();
        QCOMPARE(pressAndRelease({Back, Start, Trigger_Left}), Actions{Action::H_FLIP});
        QCOMPARE(pressAndRelease({Start, Trigger_Left, Back}), Actions{Action::H_FLIP});
        QCOMPARE(pressAndRelease({Trigger_Left, Back, Start}), Actions());
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

    void installsFileAndKeepsEditedOne() {
        start();
        QVERIFY(QFile(fileName()).permissions().testFlag(QFileDevice::WriteOwner));
        QCOMPARE(read(fileName()), read(":/config/Meshpad.ini"));
        write("; mine\nV Flip=Start\nTOGGLE UV EDITING=Back\n");
        mapper_->reloadMappings();
        QCOMPARE(pressAndRelease({Start}), Actions{Action::V_FLIP});
        QCOMPARE(pressAndRelease({Back}), Actions{Action::TOGGLE_EDIT_UV});
        start();
        QVERIFY(read(fileName()).contains("; mine"));
    }

private:
    void setUp() override {
        folder_.emplace();
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder_->path());
    }
    void tearDown() override { mapper_.reset(); }

    QString fileName() const { return folder_->filePath("Orvex/Meshpad.ini"); }
    static QByteArray read(const QString& name) {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : name.toUtf8();
    }
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
        for (const GamepadButton button : buttons)
            mapper_->onButtonPressed(button);
        return std::exchange(actions_, {});
    }
    void release(const Buttons& buttons) {
        for (const GamepadButton button : buttons)
            mapper_->onButtonReleased(button);
    }
    Actions pressAndRelease(const Buttons& buttons) {
        const Actions actions = press(buttons);
        release(buttons);
        return actions;
    }

    std::optional<QTemporaryDir> folder_;
    std::unique_ptr<ActionMapper> mapper_;
    Actions actions_;
};

QTEST_GUILESS_MAIN(TestActionMapper)
#include "tst_action_mapper.moc"
