#include "warp/PendingPoints.h"

#include <algorithm>
#include <cmath>

using NetworkCompanion::ItemKey;
using NetworkCompanion::LV_NTC_DeformationType;

namespace {

constexpr double kPixelTolerance = 0.001;
constexpr double kRelativeTolerance = 1.0 / (1 << 22); // of a Producer that counts with 32 bits
constexpr double kTextureTolerance = 0.000001;
constexpr int kDecisionsPerWait = 20; // points that are due about the same time share one

std::uint64_t keyOf(const PendingPoints::Point& point) {
    return std::uint64_t{point.id} << 1 | (point.xy ? 1 : 0);
}

PendingPoints::Point pointOf(const ItemKey& item, std::uint64_t key) {
    return {item, static_cast<std::uint32_t>(key >> 1), (key & 1) != 0};
}

bool isConfirmation(bool xy, double written, double reported) {
    const double tolerance =
        xy ? std::max(kPixelTolerance, std::abs(written) * kRelativeTolerance) : kTextureTolerance;
    return std::abs(written - reported) <= tolerance;
}

bool isConfirmation(bool xy, QPointF written, QPointF reported) {
    return isConfirmation(xy, written.x(), reported.x()) &&
           isConfirmation(xy, written.y(), reported.y());
}

} // namespace

int PendingPoints::Mesh::pointCount() const {
    switch (type) {
    case LV_NTC_DeformationType::None:
        return 0;
    case LV_NTC_DeformationType::Keystone:
        return 4;
    default:
        return rows * columns;
    }
}

bool operator==(const PendingPoints::Mesh& left, const PendingPoints::Mesh& right) {
    const bool hasChoice =
        left.type == LV_NTC_DeformationType::Bezier || left.type == LV_NTC_DeformationType::Curve;
    return left.type == right.type &&
           (!hasChoice || (left.rows == right.rows && left.columns == right.columns));
}

PendingPoints::PendingPoints(std::chrono::milliseconds wait, QObject* parent)
    : QObject(parent), wait_(wait) {
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, &PendingPoints::decide);
}

PendingPoints::State* PendingPoints::find(const Point& point) {
    const auto item = items_.find(point.item);
    if (item == items_.end())
        return nullptr;
    const auto state = item->second.points.find(keyOf(point));
    return state == item->second.points.end() ? nullptr : &state->second;
}

void PendingPoints::erase(const Point& point) {
    const auto item = items_.find(point.item);
    if (item == items_.end())
        return;
    item->second.points.erase(keyOf(point));
    eraseIfEmpty(item);
}

void PendingPoints::eraseIfEmpty(std::map<ItemKey, Item>::iterator item) {
    if (item->second.points.empty() && !item->second.requested)
        items_.erase(item);
}

/// Calls the predicate for each state and erases those for which it returns true.
template <class Predicate>
void PendingPoints::eraseIf(Predicate predicate) {
    for (auto item = items_.begin(); item != items_.end();) {
        const auto current = item++;
        std::erase_if(current->second.points, [&](const auto& entry) {
            return predicate(pointOf(current->first, entry.first), entry.second);
        });
        eraseIfEmpty(current);
    }
}

// Writes

void PendingPoints::write(const Point& point, QPointF place, QPointF shown) {
    const auto [entry, isNew] = items_[point.item].points.try_emplace(keyOf(point));
    State& state = entry->second;
    if (isNew)
        state.reported = shown;
    state.written = place;
    state.phase = Phase::Written;
    state.isOfFormerMesh = false;
}

void PendingPoints::sent(const Point& point) {
    State* state = find(point);
    if (!state || state->phase != Phase::Written)
        return;
    state->phase = Phase::Sent;
    state->sentAt = Clock::now();
    state->isReportKept = false; // the Producer receives this write after what it reported
    if (!timer_.isActive())
        timer_.start(wait_);
    if (!timed_)
        startTiming(point, *state);
}

void PendingPoints::unsent(const Point& point) {
    State* state = find(point);
    if (!state || state->phase != Phase::Written)
        return;
    const State lost = *state;
    erase(point);
    emit placeChanged(point, lost.reported, lost.written, true);
}

QPointF PendingPoints::placeOf(const Point& point, QPointF shown) {
    const State* state = find(point);
    if (!state)
        return shown;
    return state->phase == Phase::Held ? state->reported : state->written;
}

// Reports

bool PendingPoints::report(const Point& point, QPointF place) {
    lastReport_ = Clock::now();
    if (isStalled_) {
        isStalled_ = false;
        resumedAt_ = lastReport_;
        timer_.start(wait_);
    }
    if (items_.empty())
        return true;
    State* state = find(point);
    timeReport(point, place, state);
    if (!state)
        return true;
    if (state->phase == Phase::Held) { // the scene decides anew
        const std::optional<QPointF> from = state->from;
        erase(point);
        if (from) // not marked yet
            emit placeChanged(point, place, from, false);
        return !from;
    }
    state->reported = place;
    state->isReportKept = !isConfirmation(point.xy, state->written, place);
    if (!state->isReportKept && state->phase == Phase::Sent) {
        state->phase = Phase::Confirmed;
        hasEchoed_ = true;
    }
    return false;
}

void PendingPoints::hold(const Point& point, QPointF place, std::optional<QPointF> from) {
    State& state = items_[point.item].points[keyOf(point)];
    state.reported = place;
    state.from = from;
    state.phase = Phase::Held;
}

void PendingPoints::releaseHeld() {
    std::vector<std::pair<Point, State>> released;
    eraseIf([&](const Point& point, const State& state) {
        if (state.phase != Phase::Held)
            return false;
        released.emplace_back(point, state);
        return true;
    });
    for (const auto& [point, state] : released)
        emit placeChanged(point, state.reported, state.from, false);
}

/// Ends the waits that are over.
void PendingPoints::decide() {
    const Clock::time_point now = Clock::now();
    Clock::time_point next = Clock::time_point::max();
    std::vector<std::pair<Point, State>> goingBack;
    eraseIf([&](const Point& point, const State& state) {
        if (state.phase == Phase::Held || state.phase == Phase::Written)
            return false;
        const Clock::time_point due = std::max(state.sentAt, resumedAt_) + wait_;
        if (now < due) {
            next = std::min(next, due);
            return false;
        }
        if (state.isReportKept) {
            goingBack.emplace_back(point, state);
        } else if (state.phase == Phase::Sent && hasEchoed_ && lastReport_ < state.sentAt) {
            isStalled_ = true;
            if (!timed_)
                startTiming(point, state);
            return false;
        }
        return true;
    });
    if (next != Clock::time_point::max()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(next - now);
        timer_.start(std::max(left, wait_ / kDecisionsPerWait));
    }
    stopTimingOfDropped();
    for (const auto& [point, state] : goingBack)
        emit placeChanged(point, state.reported, state.written, false);
}

// Meshes

void PendingPoints::request(const ItemKey& item, const Mesh& mesh) {
    Item& requested = items_[item];
    requested.requested = mesh;
    ++requested.requestCount;
    for (auto& [key, state] : requested.points)
        state.isOfFormerMesh = true;
}

bool PendingPoints::replace(const ItemKey& item, const Mesh& mesh) {
    const auto found = items_.find(item);
    if (found == items_.end())
        return false;
    const bool isRequested = found->second.requested == mesh;
    // The Producer answers a request that it refuses with another mesh.
    if (isRequested || --found->second.requestCount <= 0) {
        found->second.requested.reset();
        found->second.requestCount = 0;
    }
    std::erase_if(found->second.points, [&](const auto& entry) {
        const State& state = entry.second;
        return !isRequested || state.isOfFormerMesh || state.phase == Phase::Held ||
               pointOf(item, entry.first).id >= static_cast<std::uint32_t>(mesh.pointCount());
    });
    eraseIfEmpty(found);
    stopTimingOfDropped();
    return isRequested;
}

std::vector<PendingPoints::Place> PendingPoints::placesOf(const ItemKey& item) const {
    std::vector<Place> places;
    if (const auto found = items_.find(item); found != items_.end())
        for (const auto& [key, state] : found->second.points)
            places.push_back({pointOf(item, key), state.written});
    return places;
}

void PendingPoints::drop(const ItemKey& item) {
    items_.erase(item);
    stopTimingOfDropped();
}

void PendingPoints::reset() {
    for (auto& [key, item] : items_) {
        item.requested.reset();
        item.requestCount = 0;
    }
    eraseIf([](const Point&, const State& state) { return state.phase != Phase::Held; });
    timer_.stop();
    isStalled_ = hasEchoed_ = false;
    stopTiming();
}

// Timing

void PendingPoints::startTiming(const Point& point, const State& state) {
    timed_ = {point, state.written, state.sentAt};
    emit pointWritten();
}

void PendingPoints::timeReport(const Point& point, QPointF place, const State* state) {
    if (!timed_ || keyOf(timed_->point) != keyOf(point) || timed_->point.item != point.item)
        return;
    const bool isWaiting = state && state->phase == Phase::Sent;
    const bool isTimed = isConfirmation(point.xy, timed_->place, place);
    // A Producer that merges moves reports only the newest place.
    const bool isNewest = isWaiting && isConfirmation(point.xy, state->written, place);
    if (isTimed || isNewest) {
        const auto time = lastReport_ - (isTimed ? timed_->sentAt : state->sentAt);
        hasEchoed_ = true; // even if only older writes have been confirmed yet
        emit pointConfirmed(
            static_cast<int>(std::chrono::round<std::chrono::milliseconds>(time).count()));
        stopTiming();
    } else if (lastReport_ - timed_->sentAt > wait_ / 2 && isWaiting &&
               state->sentAt != timed_->sentAt) {
        // The Producer answers, but reports only some of the places of a long move.
        stopTiming();
        startTiming(point, *state);
    }
}

/// Without its state, the timed write is answered or never will be.
void PendingPoints::stopTimingOfDropped() {
    if (timed_ && !find(timed_->point))
        stopTiming();
}

void PendingPoints::stopTiming() {
    if (!timed_)
        return;
    timed_.reset();
    emit pointsSettled();
}
