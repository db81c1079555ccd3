#include "network/NetworkUtils.h"
#include "resources/CompanionResources.h"
#include "tools/demo_producer/Commands.h"
#include "tools/demo_producer/DemoEdits.h"
#include "tools/demo_producer/ProducerWindow.h"
#include "tools/demo_producer/ShowCatalog.h"
#include "tools/demo_producer/ShowFile.h"
#include "tools/demo_producer/ShutdownSignals.h"
#include "tools/demo_producer/StateFile.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QNetworkInterface>
#include <QTextStream>
#include <QTime>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace {

constexpr quint16 kTcpPort = 62330;
constexpr unsigned int kDiscoveryPort = 62330;
constexpr unsigned int kCompanionDiscoveryPort = 62331;
constexpr int kMostItems = 50'000;

const QString kHeadless = QStringLiteral("headless");
const QString kShow = QStringLiteral("show");
const QString kItems = QStringLiteral("items");
const QString kGrid = QStringLiteral("grid");
const QString kWriteShow = QStringLiteral("write-show");
const QString kState = QStringLiteral("state");
const QString kAddress = QStringLiteral("address");
const QString kPort = QStringLiteral("port");
const QString kNoDiscovery = QStringLiteral("no-discovery");
const QString kLabel = QStringLiteral("label"); // Qt keeps "name" and "title" for itself
const QString kScript = QStringLiteral("script");
const QString kControl = QStringLiteral("control");
const QString kDemoEdits = QStringLiteral("demo-edits");
const QString kSeed = QStringLiteral("seed");
const QString kStill = QStringLiteral("still");
const QString kMeshes = QStringLiteral("meshes");
const QString kQuiet = QStringLiteral("quiet");

void addOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        QStringLiteral("A Producer to run Meshpad against: plays a show, answers discovery, and "
                       "shows every edit of a companion on its outputs."));
    parser.addHelpOption();
    parser.addOptions({
        {kHeadless, QStringLiteral("Runs without a window; needs no display.")},
        {kShow, QStringLiteral("Plays the show of a JSON file."), QStringLiteral("file")},
        {kItems, QStringLiteral("Plays a show of that many items."), QStringLiteral("count")},
        {kGrid,
         QStringLiteral("Gives the first screen a mesh of that many control points, such as "
                        "46x46: bezier when both numbers are 3n + 1, curve otherwise."),
         QStringLiteral("rows>x<columns")},
        {kWriteShow, QStringLiteral("Writes the show to a file and exits."),
         QStringLiteral("file")},
        {kState, QStringLiteral("Keeps the whole state in a JSON file."), QStringLiteral("file")},
        {kAddress, QStringLiteral("Accepts companions at this address only."),
         QStringLiteral("address"), QStringLiteral("0.0.0.0")},
        {kPort, QStringLiteral("TCP port; 0 takes a free one, which is logged."),
         QStringLiteral("number"), QString::number(kTcpPort)},
        {kNoDiscovery, QStringLiteral("Does not answer companions that look for Producers.")},
        {kLabel, QStringLiteral("The name in window and log."), QStringLiteral("text"),
         QStringLiteral("Demo Producer")},
        {kScript,
         QStringLiteral("Runs the commands of a file, each after its time in seconds: "
                        "\"2.5 pattern tile\"."),
         QStringLiteral("file")},
        {kControl,
         QStringLiteral("Takes commands, one a line, on this port of 127.0.0.1; 0 takes a free "
                        "one."),
         QStringLiteral("port")},
        {kDemoEdits, QStringLiteral("Edits the show by itself, that many times a second."),
         QStringLiteral("rate")},
        {kSeed, QStringLiteral("Chooses the edits and the meshes of a show of many items."),
         QStringLiteral("number"), QStringLiteral("1")},
        {kStill, QStringLiteral("Pictures do not move.")},
        {kMeshes, QStringLiteral("Shows the meshes on the outputs.")},
        {kQuiet, QStringLiteral("Logs no moves of points.")},
    });
}

/// Prints the message on standard error and returns the exit code for unusable arguments.
int fail(const QString& text) {
    QTextStream(stderr) << text << '\n';
    return 2;
}

/// The shows that `new-show` cycles through. Sets error when the arguments name no valid show.
std::vector<Show> showsFor(const QCommandLineParser& parser, QString& error) {
    std::vector<Show> shows;
    if (parser.isSet(kShow)) {
        if (const auto show = ShowFile::read(parser.value(kShow), error))
            shows.push_back(*show);
        else
            error = parser.value(kShow) + QStringLiteral(": ") + error;
    } else if (parser.isSet(kItems)) {
        bool good = false;
        const int count = parser.value(kItems).toInt(&good);
        const quint32 seed = parser.value(kSeed).toUInt();
        if (!good || count < 0 || count > kMostItems)
            error = QStringLiteral("--items takes a number from 0 to %1").arg(kMostItems);
        else
            shows = {ShowCatalog::large(count, seed), ShowCatalog::large(count, seed + 1)};
    } else {
        shows = {ShowCatalog::harbour(), ShowCatalog::winterGarden()};
    }
    if (parser.isSet(kGrid)) {
        const QStringList numbers = parser.value(kGrid).split(u'x');
        for (Show& show : shows)
            if (numbers.size() != 2 ||
                !ShowCatalog::setFirstGrid(show, numbers[0].toInt(), numbers[1].toInt()))
                error = QStringLiteral("--grid takes two numbers from 2 to 64, such as 46x46");
    }
    return shows;
}

/// Addresses and port at which companions reach the Producer. An address that stands for all
/// interfaces is replaced by the addresses of this machine.
QString endpointText(const QHostAddress& address, quint16 port) {
    QStringList addresses;
    for (const QHostAddress& own : QNetworkInterface::allAddresses())
        if (own.protocol() == QAbstractSocket::IPv4Protocol && !own.isLoopback())
            addresses.append(own.toString());
    const bool any = address == QHostAddress::AnyIPv4 || address == QHostAddress::Any;
    if (!any || addresses.isEmpty())
        addresses = {address.toString()};
    return addresses.join(QStringLiteral(", ")) + u':' + QString::number(port);
}

bool isMove(const QString& line) {
    return line.contains(QLatin1String("MovePoint: "));
}

} // namespace

int main(int argc, char** argv) {
    // QCommandLineParser needs an application object, but QApplication needs a display, so these
    // options are searched before either exists.
    const bool headless = std::any_of(argv, argv + argc, [](const char* argument) {
        const QByteArrayView option(argument);
        return option == "--headless" || option == "-h" || option == "-?" ||
               option.startsWith("--help") || option.startsWith("--write-show");
    });
    const std::unique_ptr<QCoreApplication> application =
        headless ? std::make_unique<QCoreApplication>(argc, argv)
                 : std::make_unique<QApplication>(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("meshpad-demo-producer"));
    initCompanionResources();
    QCommandLineParser parser;
    addOptions(parser);
    parser.process(*application);

    QString error;
    std::vector<Show> shows = showsFor(parser, error);
    if (!error.isEmpty())
        return fail(error);
    if (parser.isSet(kWriteShow)) {
        const bool written =
            ShowFile::write(parser.value(kWriteShow), ShowFile::toJson(shows.front()));
        return written ? 0 : fail(QStringLiteral("The show file cannot be written"));
    }

    ProducerSession session(std::move(shows), nullptr);
    const bool quiet = parser.isSet(kQuiet);
    QTextStream output(stdout);
    const auto print = [&output, quiet](const QString& line) {
        if (quiet && isMove(line))
            return;
        output << QTime::currentTime().toString(QStringLiteral("hh:mm:ss.zzz ")) << line << '\n';
        output.flush();
    };
    QObject::connect(&session, &ProducerSession::logged, &session, print);

    const QHostAddress address(parser.value(kAddress));
    bool good = false;
    const quint16 port = parser.value(kPort).toUShort(&good);
    if (!good || address.isNull() || !session.listen(address, port))
        return fail(QStringLiteral("Cannot listen on %1 port %2")
                        .arg(parser.value(kAddress), parser.value(kPort)));
    const QString endpoint = endpointText(address, session.port());
    const QString startLine = QStringLiteral("\"%1\" plays \"%2\", %3 items, at %4")
                                  .arg(parser.value(kLabel), session.show().title)
                                  .arg(session.show().items().size())
                                  .arg(endpoint);
    onShutdownRequest([] { QCoreApplication::quit(); }); // before the line that scripts wait for
    print(startLine);

    Commands commands(session, nullptr);
    if (parser.isSet(kControl)) {
        const quint16 controlPort = commands.listen(parser.value(kControl).toUShort());
        if (controlPort == 0)
            return fail(QStringLiteral("Cannot take commands on port ") + parser.value(kControl));
        print(QStringLiteral("takes commands at 127.0.0.1:%1").arg(controlPort));
    }
    std::unique_ptr<NetworkCompanion::NetworkUtils> discovery;
    if (!parser.isSet(kNoDiscovery)) {
        discovery = std::make_unique<NetworkCompanion::NetworkUtils>(kDiscoveryPort,
                                                                     kCompanionDiscoveryPort, true);
        QObject::connect(discovery.get(), &NetworkCompanion::NetworkUtils::clientChanged, &session,
                         [&] {
                             print(QStringLiteral("companions on the network: ") +
                                   discovery->clients().join(QStringLiteral(", ")));
                         });
        discovery->getClientsOnNetwork();
    }
    std::unique_ptr<StateFile> state;
    if (parser.isSet(kState))
        state = std::make_unique<StateFile>(session, parser.value(kState), nullptr);
    std::unique_ptr<ProducerWindow> window;
    if (!headless) {
        window = std::make_unique<ProducerWindow>(session, parser.value(kLabel), endpoint,
                                                  parser.isSet(kStill), parser.isSet(kMeshes));
        window->showLine(startLine);
        window->show();
    }
    if (parser.isSet(kScript)) {
        QFile file(parser.value(kScript));
        if (!file.open(QIODevice::ReadOnly) || !commands.play(QString::fromUtf8(file.readAll())))
            return fail(QStringLiteral("The script cannot be played: ") + file.fileName());
    }
    std::unique_ptr<DemoEdits> edits;
    if (parser.isSet(kDemoEdits))
        edits = std::make_unique<DemoEdits>(session, commands, parser.value(kDemoEdits).toDouble(),
                                            parser.value(kSeed).toUInt(), nullptr);
    const int code = QCoreApplication::exec();
    print(QStringLiteral("ends"));
    return code;
}
