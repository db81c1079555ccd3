#pragma once

#include "network/events/Event.h"
#include "tools/demo_producer/Show.h"

#include <memory>

/// The events that tell a companion about the items of a show.
namespace ShowEvents {

using EventPointer = std::unique_ptr<NetworkCompanion::Event>;

EventPointer added(const ShowItem& item);
EventPointer removed(const ShowItem& item);
/// As the item is seen: none for a screen in simple mode.
EventPointer deformation(const ShowItem& item, bool reset);
EventPointer blind(const ShowItem& item);
/// The item must be a screen.
EventPointer mode(const ShowItem& item);
/// The point must exist.
EventPointer point(const ShowItem& item, bool xy, quint32 point);
/// The answer to a companion that wants to edit the item: its deformation and all points of both of
/// its meshes, no point if it is seen without deformation.
EventPointer itemData(const ShowItem& item);

/// All that a companion needs to know of the show, in an order in which it can take it in.
std::vector<EventPointer> resources(const Show& show);

} // namespace ShowEvents
