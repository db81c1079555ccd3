#pragma once

#include "network/events/ItemDataEvent.h"
#include "network/events/ProtocolLimits.h"

namespace NetworkCompanion {

/// Whether the scene can build the deformation that the event names.
template <class DeformationEvent>
bool isInBounds(const DeformationEvent& event) {
    const auto isGridSize = [](std::uint32_t size) {
        return size >= Limits::kMinGridSize && size <= Limits::kMaxGridSize;
    };
    switch (event.deformationType()) {
    case LV_NTC_DeformationType::None:
    case LV_NTC_DeformationType::Keystone: // always 2 x 2
        return true;
    case LV_NTC_DeformationType::Bezier:
    case LV_NTC_DeformationType::Curve:
        return isGridSize(event.rows()) && isGridSize(event.columns());
    }
    return false;
}

/// Calls `isAccepted` with each deformation that concerns the item until it returns false; returns
/// whether it never did.
template <class Predicate>
bool acceptsDeformations(const ItemDataEvent& event, Predicate isAccepted) {
    constexpr std::uint32_t kNoItem = 0xFFFFFFFF;
    const auto& screen = event.deformationMode();
    const auto& part = event.screenPartDeformationMode();
    const auto& media = event.mediaDeformationMode();
    return (screen.screenId() == kNoItem || isAccepted(screen)) &&
           (part.screenId() == kNoItem || isAccepted(part)) &&
           (media.cueId() == kNoItem || isAccepted(media));
}

inline bool isInBounds(const ItemDataEvent& event) {
    return acceptsDeformations(
        event, [](const auto& mode) { return isInBounds(mode); });
}

} // namespace NetworkCompanion
