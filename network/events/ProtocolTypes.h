#pragma once

#include <QMetaType>
#include <QObject>

#include <cstdint>
#include <utility>

namespace NetworkCompanion {

Q_NAMESPACE

class Event;

/// The code of an event; one signed byte on the wire.
enum class LV_NTC_EventType : std::int32_t {
    Msg = 1,
    Mire,
    Blind,
    MediaBlind,
    ScreenPartBlind,
    DeformationMode,
    MediaDeformationMode,
    ScreenPartDeformationMode,
    AddMedia,
    AddTexture,
    AddScreen,
    AddScreenPart,
    RemoveMedia,
    RemoveTexture,
    RemoveScreen,
    RemoveScreenPart,
    MediaMovePoint,
    TextureMovePoint,
    ScreenMovePoint,
    ScreenPartMovePoint,
    ScreenMode,
    AddQuickKey,
    UpdateQuickKey,
    DeleteQuickKey,
    ExecuteQuickKey,
    ConfigQuickKey,
    UpdateSettings,
    ItemData,
    GetResourcesId = 29
};
Q_ENUM_NS(LV_NTC_EventType)

enum class LV_NTC_ElementType : std::int32_t {
    None = 0,
    Media = 1,
    Texture = 2,
    Screen = 3,
    ScreenPart = 4
};
Q_ENUM_NS(LV_NTC_ElementType)

enum class LV_NTC_DeformationType : std::int32_t { None = -1, Keystone = 0, Bezier = 1, Curve = 2 };
Q_ENUM_NS(LV_NTC_DeformationType)

/// How a screen is shown: without deformation, deformed as a whole, or through its parts.
enum class LV_NTC_ModeType : std::int32_t { Unset = 0, Simple = 1, Deformation = 2, Parts = 3 };
Q_ENUM_NS(LV_NTC_ModeType)

/// The test picture that a Producer shows on its outputs; None removes it.
enum class LV_NTC_PictureType : std::int32_t {
    None = 0,
    Small,
    Horizontal,
    Vertical,
    Tile,
    Logo,
    SmpteHorizontal,
    SmpteVertical,
    Osd,
    FramerateCpu,
    FramerateGpu,
    White = 11
};
Q_ENUM_NS(LV_NTC_PictureType)

/// Scope of the enumeration of media types.
struct MediaType {
    Q_GADGET
public:
    enum Enum : std::int32_t { Unknown = 0, Image, Video, LiveInput, Generated };
    Q_ENUM(Enum)
};

/// The header before every payload. All zero when it could not be read.
struct LV_NTC_Header {
    std::uint32_t dataSize = 0; ///< bytes of payload, see Event::getSize()
    LV_NTC_EventType type{};    ///< one byte on the wire; may be an unknown code

    friend bool operator==(const LV_NTC_Header&, const LV_NTC_Header&) = default;
};

/// A received frame. The last receiver owns the event, which is null when decoding failed.
using eventData = std::pair<LV_NTC_Header, Event*>;

} // namespace NetworkCompanion

// Allows queued signals of the pair where Event is only declared.
Q_DECLARE_OPAQUE_POINTER(NetworkCompanion::Event*)
Q_DECLARE_METATYPE(NetworkCompanion::eventData)
