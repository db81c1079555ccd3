#pragma once

#include "network/events/Event.h"
#include "tools/demo_producer/Show.h"

#include <memory>

/// The events that describe the items of a show to a companion.
namespace ShowEvents {

using EventPointer = std::unique_ptr<NetworkCompanion::Event>;

EventPointer added(const ShowItem& item);
EventPointer removed(const ShowItem& item);
/// The deformation that is shown: None for a screen in simple mode.
EventPointer deformation(const ShowItem& item, bool reset);
EventPointer blind(const ShowItem& item);
/// The item must be a screen.
EventPointer mode(const ShowItem& item);
/// The point must exist.
EventPointer point(const ShowItem& item, bool xy, quint32 id);
/// The answer to a request for the item's mesh: its deformation and, if one is shown, all points of
/// both meshes.
EventPointer itemData(const ShowItem& item);

/// The answer to "getResources": items, deformations, modes, blinds, quick keys and pattern.
std::vector<EventPointer> resources(const Show& show);

} // namespace ShowEvents
