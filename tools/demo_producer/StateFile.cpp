#include "tools/demo_producer/StateFile.h"

#include "tools/demo_producer/ShowFile.h"
#include "tools/demo_producer/ShowNames.h"

#include <QElapsedTimer>
#include <QJsonArray>

#include <algorithm>
#include <utility>

namespace {

constexpr int kDelayMs = 50;
/// Delay before the next write, in multiples of the duration of the last one.
constexpr int kDelayPerWrite = 4;

} // namespace

StateFile::StateFile(const ProducerSession& session, QString path, QObject* parent)
    : QObject(parent), session_(session), path_(std::move(path)) {
    delay_.setSingleShot(true);
    delay_.setInterval(kDelayMs);
    connect(&delay_, &QTimer::timeout, this, &StateFile::write);
    connect(&session, &ProducerSession::changed, this, &StateFile::onChanged);
    write();
}

StateFile::~StateFile() {
    if (delay_.isActive())
        write();
}

void StateFile::onChanged() {
    if (!delay_.isActive())
        delay_.start();
}

void StateFile::write() {
    QElapsedTimer elapsed;
    elapsed.start();
    QJsonObject state = stateOf(session_);
    state[QStringLiteral("sequence")] = ++sequence_;
    if (!ShowFile::write(path_, state))
        qWarning("State file: %s cannot be written", qUtf8Printable(path_));
    delay_.setInterval(std::max(kDelayMs, int(elapsed.elapsed()) * kDelayPerWrite));
}

QJsonObject StateFile::stateOf(const ProducerSession& session) {
    QJsonObject state = ShowFile::toJson(session.show());
    state[QStringLiteral("showsStarted")] = session.showsStarted();
    state[QStringLiteral("port")] = session.port();
    QJsonArray companions;
    for (const auto& [id, companion] : session.companions()) {
        companions.append(
            QJsonObject{{QStringLiteral("id"), id},
                        {QStringLiteral("address"), companion.address},
                        {QStringLiteral("editing"),
                         companion.editing ? QJsonValue(nameOf(*companion.editing)) : QJsonValue()},
                        {QStringLiteral("editsUv"), companion.editsUv},
                        {QStringLiteral("pointColor"), companion.pointColor},
                        {QStringLiteral("pointShape"), companion.pointShape}});
    }
    state[QStringLiteral("companions")] = companions;
    QJsonArray executed;
    for (const quint32 id : session.executedQuickKeys())
        executed.append(qint64(id));
    state[QStringLiteral("executedQuickKeys")] = executed;
    QJsonObject received;
    for (const auto& [type, count] : session.receivedEvents())
        received[type] = count;
    state[QStringLiteral("receivedEvents")] = received;
    return state;
}
