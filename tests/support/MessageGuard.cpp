#include "tests/support/MessageGuard.h"

#include <QTest>

#include <algorithm>

namespace MeshpadTest {

namespace {

std::mutex guardMutex;
MessageGuard* guard = nullptr;

QString nameOf(QtMsgType type) {
    switch (type) {
    case QtDebugMsg:
        return "debug";
    case QtWarningMsg:
        return "warning";
    case QtCriticalMsg:
        return "critical";
    default:
        return "other";
    }
}

} // namespace

MessageGuard::MessageGuard() {
    // What window-system plugins without a real window system say of themselves.
    allow(QRegularExpression("^This plugin does not support"));
    // The network may end a chunk anywhere, within a length too.
    allow(
        QRegularExpression("^Invalid header size. Size must be at least 4 bytes, we read [123]$"));
    const std::scoped_lock lock(guardMutex);
    Q_ASSERT(!guard);
    guard = this;
    previous_ = qInstallMessageHandler(&MessageGuard::handle);
}

MessageGuard::~MessageGuard() {
    const std::scoped_lock lock(guardMutex);
    qInstallMessageHandler(previous_);
    guard = nullptr;
}

void MessageGuard::expect(QtMsgType type, const QString& text, int times) {
    const std::scoped_lock lock(mutex_);
    expectations_.push_back({type, text, {}, times, 0});
}

void MessageGuard::expectMatching(QtMsgType type, const QRegularExpression& pattern) {
    const std::scoped_lock lock(mutex_);
    expectations_.push_back({type, {}, pattern, -1, 0});
}

void MessageGuard::allow(const QRegularExpression& pattern) {
    const std::scoped_lock lock(mutex_);
    allowed_.push_back(pattern);
}

QStringList MessageGuard::seen(QtMsgType type) const {
    const std::scoped_lock lock(mutex_);
    QStringList texts;
    for (const Line& line : lines_)
        if (line.type == type)
            texts.append(line.text);
    return texts;
}

qsizetype MessageGuard::count(QtMsgType type) const {
    const std::scoped_lock lock(mutex_);
    return std::ranges::count(lines_, type, &Line::type);
}

bool MessageGuard::isSatisfied() const {
    const std::scoped_lock lock(mutex_);
    return std::ranges::all_of(expectations_, &Expectation::isMet);
}

void MessageGuard::clear() {
    const std::scoped_lock lock(mutex_);
    lines_.clear();
    expectations_.clear();
}

void MessageGuard::verify() {
    QStringList failures;
    {
        const std::scoped_lock lock(mutex_);
        for (const Line& line : lines_)
            if (!line.expected)
                failures.append("Unexpected " + nameOf(line.type) + " line: " + line.text);
        for (const Expectation& expectation : expectations_)
            if (!expectation.isMet())
                failures.append(expectation.describe());
    }
    clear();
    if (!failures.isEmpty())
        QTest::qFail(qPrintable(failures.join('\n')), __FILE__, __LINE__);
}

QString MessageGuard::Expectation::describe() const {
    return QString("Expected %1 line \"%2\" %3, seen %4 times")
        .arg(nameOf(type), text.isEmpty() ? pattern.pattern() : text,
             times < 0 ? QString("at least once") : QString("%1 times").arg(times))
        .arg(seen);
}

bool MessageGuard::take(QtMsgType type, const QString& text) {
    const std::scoped_lock lock(mutex_);
    bool expected = type == QtDebugMsg || type == QtInfoMsg;
    bool quiet = false;
    for (Expectation& expectation : expectations_) {
        const bool matches = expectation.text.isEmpty() ? expectation.pattern.match(text).hasMatch()
                                                        : expectation.text == text;
        if (expectation.type == type && matches) {
            ++expectation.seen;
            expected = quiet = true;
            break;
        }
    }
    for (const QRegularExpression& pattern : allowed_)
        expected = expected || pattern.match(text).hasMatch();
    lines_.push_back({type, text, expected});
    return quiet;
}

void MessageGuard::handle(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    const std::scoped_lock lock(guardMutex);
    if (guard && !guard->take(type, text) && guard->previous_)
        guard->previous_(type, context, text);
}

} // namespace MeshpadTest
