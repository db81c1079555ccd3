#pragma once

#include "network/AddMediaEvent.h"
#include "network/AddQuickKeyEvent.h"
#include "network/AddScreenEvent.h"
#include "network/AddScreenPartEvent.h"
#include "network/AddTextureEvent.h"
#include "network/BlindEvent.h"
#include "network/ConfigQuickKeyEvent.h"
#include "network/DeformationModeEvent.h"
#include "network/DeleteQuickKeyEvent.h"
#include "network/ExecuteQuickKeyEvent.h"
#include "network/GetResourcesIdEvent.h"
#include "network/ItemDataEvent.h"
#include "network/MediaBlindEvent.h"
#include "network/MediaDeformationModeEvent.h"
#include "network/MediaMovePointEvent.h"
#include "network/MireEvent.h"
#include "network/MsgEvent.h"
#include "network/RemoveMediaEvent.h"
#include "network/RemoveScreenEvent.h"
#include "network/RemoveScreenPartEvent.h"
#include "network/RemoveTextureEvent.h"
#include "network/ScreenModeEvent.h"
#include "network/ScreenMovePointEvent.h"
#include "network/ScreenPartBlindEvent.h"
#include "network/ScreenPartDeformationModeEvent.h"
#include "network/ScreenPartMovePointEvent.h"
#include "network/TextureMovePointEvent.h"
#include "network/UpdateQuickKeyEvent.h"
#include "network/UpdateSettingsEvent.h"

#include <tuple>

namespace NetworkCompanion {

/// One row of the table of events: a class and the size of its payload in bytes.
template <typename EventClass, int Size>
struct EventRow {
    using Class = EventClass;
    static_assert(EventClass::wireSize() == Size, "the fields do not add up to the payload");
};

/// Every event there is; the row's place is its code, from 1.
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
