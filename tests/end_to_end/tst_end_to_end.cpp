#include "app/graphics/GraphicsProcessor.h"
#include "tests/end_to_end/Desktop.h"
#include "tests/end_to_end/ProducerState.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPolygonF>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Desktop;

namespace {

QString meshpadPath;
QString producerPath;

// The smallest window, at the origin of the screen.
constexpr QPoint kMeshpadAt{0, 0};
constexpr QPoint kProducerAt{640, 480};
constexpr QPoint kAddress{640, 437};
constexpr QPoint kConnect{640, 638};
constexpr QPoint kDisconnect{1221, 55};
constexpr QPoint kFirstEye{164, 233};
constexpr QPoint kTabs[] = {{633, 55}, {783, 55}, {933, 55}, {1083, 55}};
constexpr QPoint kAdjustView{1189, 689};
constexpr QPoint kPatternTile{292, 420};
constexpr QPoint kCanvasCentre{760, 418};
constexpr QSizeF kCanvasSize{1040, 604};
constexpr QRect kOverlayText{560, 330, 160, 90};

const QString kScreen = "screen:1"; // the first row: a keystone, 1920 x 1080

/// How the canvas shows an item after "Adjust view": its mesh in the middle.
struct View {
    QPointF centre; ///< of the mesh, in the item's pixels
    double zoom = 1;

    QPoint onScreen(QPointF place) const {
        return (QPointF(kCanvasCentre) + (place - centre) * zoom).toPoint();
    }
};

bool isOverlayShown() {
    const QImage screen = look().copy(kOverlayText);
    for (int i = 0; i < screen.width() * screen.height(); ++i) {
        const QColor color = screen.pixelColor(i % screen.width(), i / screen.width());
        if (color.red() > 200 && color.green() < 60 && color.blue() < 60)
            return true;
    }
    return false;
}

} // namespace

/// The two programs as an operator has them: Meshpad here, the Producer on a machine of its own at
/// the other end of a cable. One session from start to end; each step stands on the ones before.
class EndToEndTest final : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();

    void findsTheProducerAndConnects();
    void selectsAnItemByKey();
    void selectsPoints();
    void nudgesPointsByKey();
    void dragsPointsWhileTheProducerFollows();
    void blindsAnItem();
    void showsTheOtherPages();
    void noticesAPulledCableAndReconnects();
    void disconnectsForGood();

private:
    void startProducer();
    void selectFirstItem();
    void adjustView();
    QPoint pointOnScreen(int id) const { return view_.onScreen(state_->point(kScreen, id)); }

    QTemporaryDir folder_;
    std::unique_ptr<ProducerState> state_;
    QProcess machine_; ///< holds the Producer's namespace
    QProcess producer_;
    QProcess meshpad_;
    View view_;
    bool hasFailed_ = false;
};

void EndToEndTest::initTestCase() {
    QVERIFY(folder_.isValid());
    state_ = std::make_unique<ProducerState>(folder_.filePath("state.json"));
    startProducer();
    if (QTest::currentTestFailed())
        return;

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_CONFIG_HOME", folder_.filePath("config"));
    meshpad_.setProcessEnvironment(environment);
    meshpad_.setProcessChannelMode(QProcess::MergedChannels);
    meshpad_.start(meshpadPath, QStringList());
    QVERIFY(meshpad_.waitForStarted());
    const QString window = placeWindow("^Meshpad 1[.]7[.]2$", kMeshpadAt);
    act(QString("windowraise %1 windowfocus --sync %1").arg(window));
}

void EndToEndTest::startProducer() {
    machine_.start("unshare", {"--net", "sleep", "infinity"});
    QVERIFY(machine_.waitForStarted());
    const QString id = QString::number(machine_.processId());
    const auto network = [](const QString& process) { // the link leads to no path, but to a name
        return QFile::symLinkTarget("/proc/" + process + "/ns/net").section('/', -1);
    };
    const auto isApart = [&] { return !network(id).isEmpty() && network(id) != network("self"); };
    QTRY_VERIFY(isApart());
    run("ip", {"link", "set", "mesh1", "netns", id});
    const auto there = [&id](const QStringList& command) {
        run("nsenter", QStringList{"--target", id, "--net", "ip"} + command);
    };
    there({"link", "set", "lo", "up"});
    there({"address", "add", "10.77.0.2/24", "broadcast", "10.77.0.255", "dev", "mesh1"});
    there({"link", "set", "mesh1", "up"});

    producer_.setProcessChannelMode(QProcess::MergedChannels);
    producer_.start("nsenter", {"--target", id, "--net", producerPath, "--still", "--state",
                                folder_.filePath("state.json")});
    QVERIFY(producer_.waitForStarted());
    if (placeWindow("Producer", kProducerAt).isEmpty())
        QFAIL(producer_.readAll());
}

void EndToEndTest::init() {
    if (hasFailed_)
        QSKIP("stands on a step that failed");
}

void EndToEndTest::cleanup() {
    if (QTest::currentTestFailed()) {
        hasFailed_ = true;
        qInfo().noquote() << "Producer:\n" << producer_.readAll();
        qInfo().noquote() << "State:\n" << state_->companions();
        keepPicture(QString("failed-") + QTest::currentTestFunction());
    }
}

void EndToEndTest::cleanupTestCase() {
    for (QProcess* process : {&meshpad_, &producer_, &machine_}) {
        process->terminate();
        if (!process->waitForFinished(10'000)) {
            process->kill();
            process->waitForFinished();
        }
    }
    // Nothing of a whole session is worth a line in the log.
    const QString log = QString::fromUtf8(meshpad_.readAll());
    QVERIFY2(log.isEmpty(), qPrintable(log));
}

void EndToEndTest::findsTheProducerAndConnects() {
    QElapsedTimer waited;
    waited.start();
    const auto isConnected = [this] { return !state_->companions().isEmpty(); };
    while (!isConnected() && waited.elapsed() < 60'000) {
        click(kAddress); // shown as soon as the Producer has answered
        keepPicture("1-connect-page");
        click(kConnect);
        static_cast<void>(QTest::qWaitFor(isConnected, 2'000));
    }
    QCOMPARE(state_->companions().size(), 1);
    QCOMPARE(state_->companion()["address"].toString(), "10.77.0.1");
}

void EndToEndTest::selectsAnItemByKey() {
    selectFirstItem();
    QCOMPARE(state_->editedItem(), kScreen);
    act("key m");
    QTRY_COMPARE(state_->editedItem(), "part:2/0");
    act("key p");
    QTRY_COMPARE(state_->editedItem(), kScreen);

    if (hasGraphicsProcessor())
        return;
    // The scene is drawn, and not through an OpenGL that only a compiler of shaders makes possible.
    QFile loaded(QString("/proc/%1/maps").arg(meshpad_.processId()));
    QVERIFY(loaded.open(QIODevice::ReadOnly));
    const QByteArray libraries = loaded.readAll();
    QVERIFY(libraries.contains("libQt6Quick") && !libraries.contains("libLLVM"));
}

/// As soon as the list has one: when the show has come only the window knows.
void EndToEndTest::selectFirstItem() {
    const auto isSelected = [this] { return !state_->editedItem().isEmpty(); };
    for (int attempt = 0; attempt < 6 && !isSelected(); ++attempt) {
        act("key m");
        static_cast<void>(QTest::qWaitFor(isSelected, 10'000));
    }
}

void EndToEndTest::adjustView() {
    // The mesh is there as soon as its points can be selected.
    const auto isThere = [this] { return state_->selection(kScreen) == "0 1 2 3"; };
    for (int attempt = 0; attempt < 6 && !isThere(); ++attempt) {
        act("key ctrl+a");
        static_cast<void>(QTest::qWaitFor(isThere, 5'000));
    }
    act("key Escape");
    QTRY_COMPARE(state_->selection(kScreen), QString());
    click(kAdjustView);
    QPolygonF mesh;
    for (int id = 0; id < 4; ++id)
        mesh.append(state_->point(kScreen, id));
    const QRectF box = mesh.boundingRect();
    view_.centre = box.center();
    view_.zoom = qMin(kCanvasSize.width() / box.width(), kCanvasSize.height() / box.height()) / 2.5;
}

void EndToEndTest::selectsPoints() {
    adjustView();
    const QString first = at(pointOnScreen(0)) + " click 1";
    const QString last = at(pointOnScreen(3)) + " click 1";
    const std::pair<QString, const char*> rows[] = {
        {first, "0"},
        {"keydown ctrl " + last + " keyup ctrl", "0 3"},
        {"key Escape", ""},
        {"key ctrl+a", "0 1 2 3"},
        {"key Escape", ""},
        {"key alt+Right", "0"}, // without a current point, point 0 becomes it
        {"key alt+Right", "1"},
        {"key ctrl+alt+Down", "1 3"}, // its column
        {"key Escape", ""}};
    for (const auto& [words, selected] : rows) {
        act(words);
        QTRY_COMPARE(state_->selection(kScreen), selected);
    }
}

void EndToEndTest::nudgesPointsByKey() {
    act("key alt+Right key alt+Right");
    QTRY_COMPARE(state_->selection(kScreen), "1");
    const QPointF before = state_->point(kScreen, 1);
    for (const auto& [key, moved] : {std::pair("Right", QPointF(1, 0)),
                                     {"ctrl+Down", QPointF(1, 10)},
                                     {"shift+Left", QPointF(0.8, 10)}}) {
        act(QString("key %1").arg(key));
        QTRY_COMPARE(state_->point(kScreen, 1), before + moved);
    }
    act("key Escape");
}

void EndToEndTest::dragsPointsWhileTheProducerFollows() {
    const QPointF first = state_->point(kScreen, 0);
    const QPointF last = state_->point(kScreen, 3);
    const QPointF untouched = state_->point(kScreen, 2);
    click(pointOnScreen(3));
    act("keydown ctrl");
    click(pointOnScreen(0));
    act("keyup ctrl");
    QTRY_COMPARE(state_->selection(kScreen), "0 3");

    const QPoint start = pointOnScreen(0);
    act(at(start) + " mousedown 1");
    for (int step = 1; step <= 10; ++step)
        act(at(start + QPoint(6, 4) * step));
    // The Producer follows before the finger is up.
    const QPointF moved = QPointF(60, 40) / view_.zoom;
    const auto isNear = [](QPointF a, QPointF b) { return (a - b).manhattanLength() < 12; };
    QTRY_VERIFY(isNear(state_->point(kScreen, 0), first + moved));
    keepPicture("2-dragging");
    act("mouseup 1");
    QTRY_VERIFY(isNear(state_->point(kScreen, 0), first + moved));
    // The whole selection by the same distance, nothing else at all.
    const QPointF difference = state_->point(kScreen, 3) - last;
    const QPointF same = state_->point(kScreen, 0) - first;
    QVERIFY2((difference - same).manhattanLength() < 1e-6, "the selection lost its shape");
    QCOMPARE(state_->point(kScreen, 2), untouched);
    act("key Escape");
    QTRY_COMPARE(state_->selection(kScreen), QString());
}

void EndToEndTest::blindsAnItem() {
    click(kFirstEye);
    QTRY_VERIFY(state_->item(kScreen)["blinded"].toBool());
    keepPicture("3-blinded");
    // The selected row's blind: once, however long the key is held.
    const auto blinds = [this] {
        return state_->all()["receivedEvents"].toObject()["Blind"].toInt();
    };
    const int before = blinds();
    act("keydown space");
    QTest::qWait(1'200); // several repetitions
    act("keyup space");
    QTRY_VERIFY(!state_->item(kScreen)["blinded"].toBool());
    QCOMPARE(blinds(), before + 1);
}

void EndToEndTest::showsTheOtherPages() {
    click(kTabs[1]);
    keepPicture("4-quick-keys");
    click({300, 300});
    QTRY_COMPARE(state_->all()["executedQuickKeys"].toArray().size(), 1);
    click(kTabs[2]);
    keepPicture("5-test-patterns");
    click(kPatternTile);
    QTRY_COMPARE(state_->all()["pattern"].toString(), "tile");
    click(kTabs[3]);
    keepPicture("6-settings");
    click(kTabs[0]);
    act("key m");
    QTRY_COMPARE(state_->editedItem(), "part:2/0");
    keepPicture("7-warp-page");
}

void EndToEndTest::noticesAPulledCableAndReconnects() {
    const int first = state_->companion()["id"].toInt();
    run("ip", {"link", "set", "mesh0", "down"});
    // It takes less than 5 s, and to look at the screen as long again where much else is going on;
    // left to the system it would be minutes.
    QTRY_VERIFY_WITH_TIMEOUT(isOverlayShown(), 20'000);
    keepPicture("8-disconnected");

    run("ip", {"link", "set", "mesh0", "up"});
    const auto isBack = [&] {
        const QJsonObject companion = state_->companion();
        return !companion.isEmpty() && companion["id"].toInt() != first && !isOverlayShown();
    };
    QTRY_VERIFY_WITH_TIMEOUT(isBack(), 30'000);
    // The show is there again, and what was bent still is.
    selectFirstItem();
    QCOMPARE(state_->editedItem(), kScreen);
    keepPicture("9-reconnected");
}

void EndToEndTest::disconnectsForGood() {
    click(kDisconnect);
    QTRY_COMPARE(state_->companions().size(), 0);
    // The watcher would look every second; the Producer stays in reach.
    QTest::qWait(2'500);
    QCOMPARE(state_->companions().size(), 0);
    QVERIFY(!isOverlayShown());
    keepPicture("10-connect-page-again");
}

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    if (argc < 3) {
        qCritical("usage: end_to_end MESHPAD PRODUCER [Qt Test options]");
        return 2;
    }
    meshpadPath = QString::fromLocal8Bit(argv[1]);
    producerPath = QString::fromLocal8Bit(argv[2]);
    argv[2] = argv[0];
    EndToEndTest test;
    return QTest::qExec(&test, argc - 2, argv + 2);
}

#include "tst_end_to_end.moc"
