#include "input/action_mapper.h"
#include "input/gamepad_input_manager.h"
#include "tests/input/FakeController.h"
#include "tests/support/MessageGuard.h"

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

class TestActionMapper : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void defaultMappings_data();
    void defaultMappings();
    void combinationsHaveToBeExact();
    void repeatedPressesWhileAnotherInputIsHeld();
    void freeInputsMayBeAnywhere();
    void alternativesCaseAndEmptyEntries();
    void wrongEntriesAreSkippedAndNamed();
    void firstStartInstallsAFileThatCanBeEdited();
    void editedFileIsKeptAndReloadedFromDisk();

private:
    void write(const QByteArray& mappings);
    void start();
    Actions press(const Buttons& buttons);
    Actions pressAndRelease(const Buttons& buttons);

    std::optional<QTemporaryDir> folder_;
    QString file_;
    std::unique_ptr<ActionMapper> mapper_;
    Actions actions_;
    std::optional<MessageGuard> messages_;
};

void TestActionMapper::init() {
    messages_.emplace();
    folder_.emplace();
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder_->path());
    file_ = folder_->filePath("Orvex/Meshpad.ini");
    actions_.clear();
}

void TestActionMapper::cleanup() {
    mapper_.reset();
    folder_.reset();
    messages_->verify();
    messages_.reset();
}

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

Actions TestActionMapper::pressAndRelease(const Buttons& buttons) {
    const Actions actions = press(buttons);
    for (const GamepadButton button : buttons)
        mapper_->onButtonReleased(button);
    return actions_.isEmpty() ? actions : Actions{};
}

void TestActionMapper::defaultMappings_data() {
    QTest::addColumn<Buttons>("buttons");
    QTest::addColumn<Action>("action");
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
    for (const auto& [buttons, action] : rows)
        QTest::addRow("%d by %d inputs ending with %d", int(action), int(buttons.size()),
                      int(buttons.last()))
            << buttons << action;
}

/// From presses on the controller to the action, in every order in which the inputs can be pressed.
void TestActionMapper::defaultMappings() {
    QFETCH(const Buttons, buttons);
    QFETCH(const Action, action);
    start();
    FakePads pads;
    const auto pad = pads.plugIn();
    GamepadInputManager manager(makeFakeSystem(pads));
    connect(&manager, &GamepadInputManager::buttonPressed, mapper_.get(),
            &ActionMapper::onButtonPressed);
    connect(&manager, &GamepadInputManager::buttonReleased, mapper_.get(),
            &ActionMapper::onButtonReleased);
    const std::map<GamepadButton, ControllerRecord> presses{{RightCross_Bottom, {48, 0x80}},
                                                            {RightCross_Right, {49, 0x80}},
                                                            {RightCross_Left, {50, 0x80}},
                                                            {RightCross_Top, {51, 0x80}},
                                                            {Trigger_Left, {52, 0x80}},
                                                            {Trigger_Right, {53, 0x80}},
                                                            {Back, {54, 0x80}},
                                                            {Start, {55, 0x80}},
                                                            {LeftDPad_Top, {32, 0}},
                                                            {LeftDPad_Right, {32, 9000}},
                                                            {LeftDPad_Bottom, {32, 18000}},
                                                            {LeftDPad_Left, {32, 27000}}};

    Buttons order = buttons;
    std::sort(order.begin(), order.end());
    do {
        for (const GamepadButton button : std::as_const(order))
            pad->records.push_back(presses.at(button));
        QTRY_VERIFY(pad->records.empty());
        // Two inputs belong in their order; of three, the triggers are free and may come anywhere.
        const bool right = order == buttons || buttons.size() == 3;
        QCOMPARE(!actions_.isEmpty() && actions_.last() == action, right);
        QVERIFY(right || !actions_.contains(action));
        for (const GamepadButton button : std::as_const(order))
            pad->records.push_back(
                {presses.at(button).offset, presses.at(button).offset == 32 ? 0xFFFF : 0U});
        QTRY_VERIFY(pad->records.empty());
        actions_.clear();
    } while (std::next_permutation(order.begin(), order.end()));
}

void TestActionMapper::combinationsHaveToBeExact() {
    start();
    QCOMPARE(press({Trigger_Right, LeftDPad_Top}), Actions{Action::SELECT_ADD_CURRENT_COLUMN});
    // With something else held nothing fires, until only the combination is held again.
    QCOMPARE(press({Back, Start}), Actions());
    mapper_->onButtonReleased(Back);
    mapper_->onButtonReleased(Start);
    mapper_->onButtonReleased(LeftDPad_Top);
    mapper_->onButtonReleased(LeftDPad_Bottom); // never pressed
    QCOMPARE(press({LeftDPad_Left}), Actions{Action::SELECT_ADD_CURRENT_ROW});
}

void TestActionMapper::repeatedPressesWhileAnotherInputIsHeld() {
    start();
    press({Trigger_Left});
    for (int i = 0; i < 2; ++i)
        QCOMPARE(pressAndRelease({LeftDPad_Top}), Actions{Action::SELECT_ADD_NEIGHBOUR_TOP});
    mapper_->onButtonReleased(Trigger_Left);
    QCOMPARE(press({LeftDPad_Top}), Actions{Action::SELECT_NEIGHBOUR_TOP});
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

void TestActionMapper::alternativesCaseAndEmptyEntries() {
    write("TOGGLE blind=rightcross_RIGHT\n"
          "toggle blind#7=START\n"
          "V Flip#1=\n"
          "V Flip#2=~back,trigger_left\n"
          "UV to XY=Start\n");
    start();
    QCOMPARE(pressAndRelease({RightCross_Right}), Actions{Action::TOGGLE_BLIND});
    QCOMPARE(pressAndRelease({Trigger_Left, Back}), Actions{Action::V_FLIP});
    // Two mappings for the same press: only one action happens.
    QCOMPARE(pressAndRelease({Start}).size(), 1);
}

void TestActionMapper::wrongEntriesAreSkippedAndNamed() {
    write("Make Coffee#1=Start\n"
          "H Flip=Start, ~Lever\n"
          "V Flip=~Back, Lever\n"
          "UV to XY=Back\n");
    messages_->expect(QtWarningMsg, "Skipping unknown mapping action 'Make Coffee#1'");
    messages_->expect(QtWarningMsg, "Skipping mapping 'H Flip' due to unknown input '~Lever'");
    messages_->expect(QtWarningMsg, "Skipping mapping 'V Flip' due to unknown input 'Lever'");
    start();
    QCOMPARE(pressAndRelease({Start}), Actions());
    QCOMPARE(pressAndRelease({Back}), Actions{Action::UV_TO_XY});
}

void TestActionMapper::firstStartInstallsAFileThatCanBeEdited() {
    start();
    QFile installed(file_);
    QVERIFY(installed.open(QIODevice::ReadWrite));
    QVERIFY(installed.permissions().testFlag(QFileDevice::WriteOwner));
    QFile builtIn(":/config/Meshpad.ini");
    QVERIFY(builtIn.open(QIODevice::ReadOnly));
    const QByteArray text = builtIn.readAll();
    QCOMPARE(installed.readAll(), text);
    // Every action can be found in the file, the unbound ones too.
    QCOMPARE(QSettings(file_, QSettings::IniFormat).allKeys().size(), 28);
    // Nothing writes it back, so that the notes for the user stay.
    mapper_.reset();
    QVERIFY(installed.seek(0));
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
