#include "tests/support/MessageGuard.h"

#include <QTest>

#include <algorithm>
#include <mutex>

namespace MeshpadTest {

namespace {

std::mutex guardMutex;
MessageGuard* guard = nullptr;

} // namespace

MessageGuard::MessageGuard()
    // Window-system plugins without a window system, and chunks that end within a length.
    : allowed_{QRegularExpression("^This plugin does not support"),
               QRegularExpression(
                   "^Invalid header size. Size must be at least 4 bytes, we read [123]$")} {
    const std::scoped_lock lock(guardMutex);
    guard = this;
    previous_ = qInstallMessageHandler(&MessageGuard::handle);
}

MessageGuard::~MessageGuard() {
    qInstallMessageHandler(previous_);
    const std::scoped_lock lock(guardMutex);
    guard = nullptr;
    QStringList faults;
    for (const Line& line : lines_) {
        const auto& [type, text] = line;
        const auto isAllowed = [&](const QRegularExpression& pattern) {
            return pattern.match(text).hasMatch();
        };
        if (missing_.contains(line))
            --missing_[line];
        else if (type != QtDebugMsg && type != QtInfoMsg &&
                 std::ranges::none_of(allowed_, isAllowed))
            faults += "Unexpected line: " + text;
    }
    for (const auto& [line, times] : missing_)
        if (times != 0)
            faults +=
                QString("Line seen %1 times less than expected: %2").arg(times).arg(line.second);
    if (!faults.isEmpty())
        QTest::qFail(qPrintable(faults.join('\n')), __FILE__, __LINE__);
}

void MessageGuard::expect(QtMsgType type, const QString& text, int times) {
    const std::scoped_lock lock(guardMutex);
    missing_[{type, text}] += times;
}

void MessageGuard::allow(const QRegularExpression& pattern) {
    const std::scoped_lock lock(guardMutex);
    allowed_.push_back(pattern);
}

QStringList MessageGuard::seen(QtMsgType type) const {
    const std::scoped_lock lock(guardMutex);
    QStringList texts;
    for (const Line& line : lines_)
        if (line.first == type)
            texts.append(line.second);
    return texts;
}

void MessageGuard::clear() {
    const std::scoped_lock lock(guardMutex);
    lines_.clear();
    missing_.clear();
}

void MessageGuard::handle(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    const std::scoped_lock lock(guardMutex);
    if (!guard)
        return;
    guard->lines_.emplace_back(type, text);
    if (!guard->missing_.contains(guard->lines_.back()))
        guard->previous_(type, context, text);
}

} // namespace MeshpadTest
