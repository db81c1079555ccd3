#pragma once

#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <mutex>
#include <vector>

namespace MeshpadTest {

/// Watches the message log, from any thread, while it lives: a warning or critical message that no
/// test asked for is a failure, and so is an expected line that never came. GuardedTest has one.
/// Debug lines are only looked at when one is expected. One guard at a time.
class MessageGuard {
public:
    MessageGuard();
    ~MessageGuard();
    MessageGuard(const MessageGuard&) = delete;
    MessageGuard& operator=(const MessageGuard&) = delete;

    /// Exactly this text, exactly that many times.
    void expect(QtMsgType type, const QString& text, int times = 1);
    /// At least once a line that the pattern matches.
    void expectMatching(QtMsgType type, const QRegularExpression& pattern);
    /// Lines of the kind may come or not.
    void allow(const QRegularExpression& pattern);

    /// Lines of a type seen since the guard began, or since the last clear().
    QStringList seen(QtMsgType type) const;
    /// How many those are.
    qsizetype count(QtMsgType type) const;
    /// Whether everything expected has come.
    bool isSatisfied() const;
    /// Forgets what was seen and expected.
    void clear();

    /// Fails the running test for each unexpected and each missing line; then as clear().
    void verify();

private:
    struct Line {
        QtMsgType type;
        QString text;
        bool expected;
    };
    struct Expectation {
        QtMsgType type;
        QString text; // or, when empty, the pattern
        QRegularExpression pattern;
        int times; // -1: at least once
        int seen;
        bool isMet() const { return times < 0 ? seen > 0 : seen == times; }
        QString describe() const;
    };

    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text);
    bool take(QtMsgType type, const QString& text);

    mutable std::mutex mutex_;
    std::vector<Line> lines_;
    std::vector<Expectation> expectations_;
    std::vector<QRegularExpression> allowed_;
    QtMessageHandler previous_;
};

} // namespace MeshpadTest
