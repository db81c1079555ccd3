#pragma once

#include <QRegularExpression>
#include <QStringList>

#include <map>
#include <utility>
#include <vector>

namespace MeshpadTest {

/// Records the log lines of all threads while it lives. Its destructor fails the running test for
/// every warning and critical line that was not expected and every expected line that is missing.
/// Qt Test's own failOnWarning() and ignoreMessage() pass over critical lines and over everything
/// that is written by cleanup(), and can neither count lines nor allow any. One guard at a time;
/// GuardedTest has it.
class MessageGuard {
public:
    MessageGuard();
    ~MessageGuard();
    Q_DISABLE_COPY_MOVE(MessageGuard)

    /// Exactly this text, exactly that many times.
    void expect(QtMsgType type, const QString& text, int times = 1);
    /// Warning and critical lines that match may appear, any number of times.
    void allow(const QRegularExpression& pattern);

    /// The lines of a type since the guard began, or since the last clear().
    QStringList seen(QtMsgType type) const;
    qsizetype count(QtMsgType type) const { return seen(type).size(); }
    /// Discards all lines, unexpected ones too, and all expectations.
    void clear();

private:
    using Line = std::pair<QtMsgType, QString>;

    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text);

    std::vector<Line> lines_;
    std::map<Line, int> missing_;
    std::vector<QRegularExpression> allowed_;
    QtMessageHandler previous_;
};

} // namespace MeshpadTest
