#pragma once

#include "network/ItemKey.h"

#include <QObject>
#include <QPointF>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

/// Keeps the places that the operator has set until the Producer has had time to confirm them, so
/// that a late report of an earlier place does not take steps back.
///
/// A place is pending from write() until `wait` after it was sent. Until then other reports of the
/// point are only kept; the last one is shown at the end of the wait. A wait without any report of
/// the Producer (the network stalls) lasts until reports arrive again, and one period more.
///
/// Positions are in the Producer's coordinates. A write and a report cost the same however many
/// points are pending; nothing is stored for points that are not, and no timer runs without them.
class PendingPoints final : public QObject {
    Q_OBJECT

public:
    /// A point of one of an item's two meshes.
    struct Point {
        NetworkCompanion::ItemKey item;
        std::uint32_t id = 0;
        bool xy = true; ///< of the mesh of positions, otherwise of texture coordinates
    };
    struct Mesh {
        NetworkCompanion::LV_NTC_DeformationType type;
        int rows;
        int columns;

        int pointCount() const;
        /// Kinds without a choice of rows and columns are equal whatever they hold there.
        friend bool operator==(const Mesh& left, const Mesh& right);
    };

    explicit PendingPoints(std::chrono::milliseconds wait, QObject* parent = nullptr);

    /// The operator moves the point from the place `shown` until now to `place`. Followed by sent()
    /// or unsent(), at once or after further writes of the point.
    void write(const Point& point, QPointF place, QPointF shown);
    /// The newest write of the point was passed to the network. Ignored without a write.
    void sent(const Point& point);
    /// The newest write of the point could not be sent: the point goes back at once.
    void unsent(const Point& point);
    /// The place that a change of the point's selection carries: the pending one, else the place
    /// reported last, which is `shown` unless a report is held.
    QPointF placeOf(const Point& point, QPointF shown);

    /// The Producer reports a place. Returns whether to show it now; a held point that goes back
    /// is shown by placeChanged() instead, so that its mark is not lost.
    bool report(const Point& point, QPointF place);
    /// Holds a report that the scene does not show during a gesture; one that goes back from `from`
    /// is marked later. The next releaseHeld() shows it, the next write of the point replaces it.
    void hold(const Point& point, QPointF place, std::optional<QPointF> from);
    void releaseHeld();

    /// The operator requests another mesh of the item; writes from here on belong to it.
    void request(const NetworkCompanion::ItemKey& item, const Mesh& mesh);
    /// The Producer has replaced the item's mesh. Keeps the places that belong to a requested mesh
    /// and returns true, or drops all. Another mesh answers, and ends, one request.
    bool replace(const NetworkCompanion::ItemKey& item, const Mesh& mesh);
    struct Place {
        Point point;
        QPointF place;
    };
    std::vector<Place> placesOf(const NetworkCompanion::ItemKey& item) const;
    void drop(const NetworkCompanion::ItemKey& item);
    /// The connection has ended. Held reports stay.
    void reset();

    bool isEmpty() const { return items_.empty(); }

signals:
    /// Show this place; `from` is the refused place that the point goes back from. `isLost`: the
    /// write could not be sent, so a gesture must not hold it back.
    void placeChanged(const PendingPoints::Point& point, QPointF place,
                      const std::optional<QPointF>& from, bool isLost);

    // The Producer's answers are timed by one write at a time: it was sent, its echo has arrived,
    // none is awaited any more.
    void pointWritten();
    void pointConfirmed(int milliseconds);
    void pointsSettled();

private:
    using Clock = std::chrono::steady_clock;

    enum class Phase {
        Held,     ///< no write, only a report
        Written,  ///< not sent yet
        Sent,     ///< not confirmed yet
        Confirmed ///< a report was equal; reports of earlier writes may follow
    };
    struct State {
        QPointF written;
        QPointF reported;            ///< the last report, or the place before the write
        std::optional<QPointF> from; ///< in phase Held
        Clock::time_point sentAt;
        Phase phase = Phase::Held;
        bool isReportKept = false; ///< `reported` arrived after the newest write and differs
        bool isOfFormerMesh = false;
    };
    struct Item {
        std::unordered_map<std::uint64_t, State> points; // by id and mesh
        std::optional<Mesh> requested;                   // the newest
        int requestCount = 0;                            // not answered yet
    };
    struct TimedWrite {
        Point point;
        QPointF place;
        Clock::time_point sentAt;
    };

    State* find(const Point& point);
    void erase(const Point& point);
    void eraseIfEmpty(std::map<NetworkCompanion::ItemKey, Item>::iterator item);
    template <class Predicate>
    void eraseIf(Predicate predicate);
    void decide();
    void startTiming(const Point& point, const State& state);
    void timeReport(const Point& point, QPointF place, const State* state);
    void stopTimingOfDropped();
    void stopTiming();

    const std::chrono::milliseconds wait_;
    std::map<NetworkCompanion::ItemKey, Item> items_;
    QTimer timer_; // runs while a sent write waits
    Clock::time_point lastReport_;
    Clock::time_point resumedAt_; // the first report after a stall
    bool isStalled_ = false;      // a wait has ended without any report
    bool hasEchoed_ = false;      // on this connection
    std::optional<TimedWrite> timed_;
};
