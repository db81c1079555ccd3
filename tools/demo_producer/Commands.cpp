#include "tools/demo_producer/Commands.h"

#include "tools/demo_producer/ShowNames.h"

#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <utility>

using namespace NetworkCompanion;

namespace {

constexpr qint64 kLongestLine = 4096;

/// The words of a command, parsed from left to right. A missing or malformed word makes the whole
/// command invalid.
class Words {
public:
    explicit Words(const QString& line) : words_(line.split(u' ', Qt::SkipEmptyParts)) {}

    QString text() { return isEmpty() ? fail<QString>() : words_.takeFirst(); }
    QString rest() {
        const QString all = words_.join(u' ');
        words_.clear();
        return all;
    }
    ItemKey item() { return known(itemNamed(text())); }
    template <typename Value>
    Value known(const std::optional<Value>& value) {
        return value ? *value : fail<Value>();
    }
    int integer() {
        bool good = false;
        const int value = text().toInt(&good);
        return good && value >= 0 ? value : fail<int>();
    }
    double number() {
        bool good = false;
        const double value = text().toDouble(&good);
        return good ? value : fail<double>();
    }
    bool isOneOf(const QString& yes, const QString& no) {
        const QString word = text();
        return word == yes || (word != no && fail<bool>());
    }

    [[nodiscard]] bool isEmpty() const { return words_.isEmpty(); }
    /// All words were well-formed, and none is left over.
    [[nodiscard]] bool areValid() const { return valid_ && isEmpty(); }

private:
    template <typename Value>
    Value fail() {
        valid_ = false;
        return Value();
    }

    QStringList words_;
    bool valid_ = true;
};

} // namespace

Commands::Commands(ProducerSession& session, QObject* parent) : QObject(parent), session_(session) {
    connect(&server_, &QTcpServer::newConnection, this, &Commands::onConnection);
}

bool Commands::execute(const QString& line) {
    Words words(line.trimmed());
    if (words.isEmpty() || line.trimmed().startsWith(u'#'))
        return true;
    const QString command = words.text();
    if (command == u"new-show") {
        if (!words.areValid())
            return false;
        session_.startNewShow();
        return true;
    }
    if (command == u"disconnect") {
        if (!words.areValid())
            return false;
        session_.disconnectCompanions();
        return true;
    }
    if (command == u"restore")
        return words.areValid() && restore();
    if (command == u"pattern") {
        const auto pattern = words.known(patternNamed(words.text()));
        return words.areValid() && session_.setPattern(pattern);
    }
    if (command == u"blind") {
        const ItemKey item = words.item();
        const bool on = words.isOneOf(QStringLiteral("on"), QStringLiteral("off"));
        return words.areValid() && session_.setBlinded(item, on);
    }
    if (command == u"mode") {
        const ItemKey item = words.item();
        const auto mode = words.known(modeNamed(words.text()));
        return words.areValid() && session_.setMode(item, mode);
    }
    if (command == u"deform") {
        const ItemKey item = words.item();
        const auto kind = words.known(deformationNamed(words.text()));
        const bool grid = !words.isEmpty();
        const int rows = grid ? words.integer() : 2;
        const int columns = grid ? words.integer() : 2;
        const bool reset = !words.isEmpty() && words.isOneOf(QStringLiteral("reset"), QString());
        return words.areValid() && session_.setDeformation(item, kind, rows, columns, reset);
    }
    if (command == u"move") {
        const ItemKey item = words.item();
        const bool xy = words.isOneOf(QStringLiteral("xy"), QStringLiteral("uv"));
        const int point = words.integer();
        const double x = words.number();
        const double y = words.number();
        return words.areValid() && session_.movePoint(item, xy, quint32(point), {x, y});
    }
    if (command == u"remove") {
        const ItemKey item = words.item();
        return words.areValid() && remove(item);
    }
    if (command == u"key") {
        const int id = words.integer();
        const QString color = words.text();
        const QString name = words.rest();
        return words.areValid() && session_.setQuickKey(quint32(id), {name, color});
    }
    if (command == u"delete-key") {
        const int id = words.integer();
        return words.areValid() && session_.deleteQuickKey(quint32(id));
    }
    if (command == u"key-grid") {
        const int rows = words.integer();
        const int columns = words.integer();
        return words.areValid() && session_.setQuickKeyGrid(rows, columns);
    }
    return false;
}

bool Commands::remove(const ItemKey& key) {
    const ShowItem* const item = session_.show().find(key);
    if (!item)
        return false;
    if (std::exchange(showOfRemoved_, session_.showsStarted()) != session_.showsStarted())
        removed_.clear();
    removed_.push_back(*item);
    if (key.type == LV_NTC_ElementType::Screen)
        for (const ShowItem* part : session_.show().partsOf(*item))
            removed_.push_back(*part);
    return session_.removeItem(key);
}

bool Commands::restore() {
    if (showOfRemoved_ != session_.showsStarted())
        return false;
    std::vector<ShowItem> items = std::exchange(removed_, {});
    // A part can only be added after its screen.
    std::ranges::stable_partition(
        items, [](const ShowItem& item) { return item.key.type == LV_NTC_ElementType::Screen; });
    bool all = !items.empty();
    for (const ShowItem& item : items)
        all = session_.addItem(item) && all;
    return all;
}

bool Commands::play(const QString& script) {
    std::vector<std::pair<int, QString>> lines;
    for (const QString& line : script.split(u'\n')) {
        const QString text = line.trimmed();
        if (text.isEmpty() || text.startsWith(u'#'))
            continue;
        const qsizetype blank = text.indexOf(u' ');
        bool good = false;
        const double seconds = text.left(blank).toDouble(&good);
        if (blank < 0 || !good || !(seconds >= 0) || seconds > 1e6)
            return false;
        lines.emplace_back(int(seconds * 1000), text.mid(blank + 1));
    }
    for (const auto& [due, line] : lines) {
        QTimer::singleShot(
            due, this,
            [this, command = line] {
                if (!execute(command))
                    qWarning("Script: \"%s\" refused", qUtf8Printable(command));
            });
    }
    return true;
}

quint16 Commands::listen(quint16 port) {
    return server_.listen(QHostAddress::LocalHost, port) ? server_.serverPort() : 0;
}

void Commands::onConnection() {
    while (QTcpSocket* const socket = server_.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
            while (socket->canReadLine()) {
                const bool done = execute(QString::fromUtf8(socket->readLine(kLongestLine)));
                socket->write(done ? "ok\n" : "refused\n");
            }
            if (socket->bytesAvailable() > kLongestLine)
                socket->abort();
        });
    }
}
