#pragma once

#include <QObject>

#include <chrono>
#include <deque>
#include <optional>

/// How fast the Producer echoes what the operator writes, and whether a write still waits for its
/// echo. The sender of writes reports to the slots; the link badge reads the rest.
class EchoTimes final : public QObject {
    Q_OBJECT

public:
    using Clock = std::chrono::steady_clock;

    explicit EchoTimes(QObject* parent) : QObject(parent) {}

    /// Median of the last ten times from a write to its echo, in milliseconds; none before the
    /// first echo.
    [[nodiscard]] std::optional<int> medianMs() const;
    /// The Producer has echoed a write on this connection.
    [[nodiscard]] bool hasEchoed() const { return !times_.empty(); }
    /// When the oldest write that may still wait for its echo was sent; none while all are
    /// confirmed.
    [[nodiscard]] std::optional<Clock::time_point> unconfirmedSince() const {
        return unconfirmedSince_;
    }

public slots:
    void writeSent();
    /// Echoes arrive in the order of the writes, so older writes no longer wait. Negative times
    /// count as 0.
    void echoArrived(int milliseconds);
    void allConfirmed();
    /// A new connection: forgets everything.
    void reset();

signals:
    void changed();

private:
    std::deque<int> times_; // ms, newest last
    std::optional<Clock::time_point> unconfirmedSince_;
};
