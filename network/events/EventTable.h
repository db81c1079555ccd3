#pragma once

#include "network/events/AddMediaEvent.h"
#include "network/events/AddQuickKeyEvent.h"
#include "network/events/AddScreenEvent.h"
#include "network/events/AddScreenPartEvent.h"
#include "network/events/AddTextureEvent.h"
#include "network/events/BlindEvent.h"
#include "network/events/ConfigQuickKeyEvent.h"
#include "network/events/DeformationModeEvent.h"
#include "network/events/DeleteQuickKeyEvent.h"
#include "network/events/ExecuteQuickKeyEvent.h"
#include "network/events/GetResourcesIdEvent.h"
#include "network/events/ItemDataEvent.h"
#include "network/events/MediaBlindEvent.h"
#include "network/events/MediaDeformationModeEvent.h"
#include "network/events/MediaMovePointEvent.h"
#include "network/events/MireEvent.h"
#include "network/events/MsgEvent.h"
#include "network/events/RemoveMediaEvent.h"
#include "network/events/RemoveScreenEvent.h"
#include "network/events/RemoveScreenPartEvent.h"
#include "network/events/RemoveTextureEvent.h"
#include "network/events/ScreenModeEvent.h"
#include "network/events/ScreenMovePointEvent.h"
#include "network/events/ScreenPartBlindEvent.h"
#include "network/events/ScreenPartDeformationModeEvent.h"
#include "network/events/ScreenPartMovePointEvent.h"
#include "network/events/TextureMovePointEvent.h"
#include "network/events/UpdateQuickKeyEvent.h"
#include "network/events/UpdateSettingsEvent.h"

#include <tuple>

namespace NetworkCompanion {

/// One row of the table of events: a class and the size of its payload in bytes.
template <typename EventClass, int Size>
struct EventRow {
    using Class = EventClass;
    static_assert(EventClass::wireSize() == Size, "the fields do not add up to the payload");
};

/// All events, ordered by their codes, which start at 1.
using EventTable = std::tuple<                     //
    EventRow<MsgEvent, 256>,                       //
    EventRow<MireEvent, 8>,                        //
    EventRow<BlindEvent, 265>,                     //
    EventRow<MediaBlindEvent, 273>,                //
    EventRow<ScreenPartBlindEvent, 269>,           //
    EventRow<DeformationModeEvent, 277>,           //
    EventRow<MediaDeformationModeEvent, 285>,      //
    EventRow<ScreenPartDeformationModeEvent, 281>, //
    EventRow<AddMediaEvent, 293>,                  //
    EventRow<AddTextureEvent, 289>,                //
    EventRow<AddScreenEvent, 286>,                 //
    EventRow<AddScreenPartEvent, 289>,             //
    EventRow<RemoveMediaEvent, 264>,               //
    EventRow<RemoveTextureEvent, 264>,             //
    EventRow<RemoveScreenEvent, 260>,              //
    EventRow<RemoveScreenPartEvent, 264>,          //
    EventRow<MediaMovePointEvent, 298>,            //
    EventRow<TextureMovePointEvent, 298>,          //
    EventRow<ScreenMovePointEvent, 294>,           //
    EventRow<ScreenPartMovePointEvent, 298>,       //
    EventRow<ScreenModeEvent, 268>,                //
    EventRow<AddQuickKeyEvent, 276>,               //
    EventRow<UpdateQuickKeyEvent, 272>,            //
    EventRow<DeleteQuickKeyEvent, 8>,              //
    EventRow<ExecuteQuickKeyEvent, 4>,             //
    EventRow<ConfigQuickKeyEvent, 12>,             //
    EventRow<UpdateSettingsEvent, 12>,             //
    EventRow<ItemDataEvent, 851>,                  //
    EventRow<GetResourcesIdEvent, 4>>;

inline constexpr std::size_t kEventCount = std::tuple_size_v<EventTable>;

} // namespace NetworkCompanion
