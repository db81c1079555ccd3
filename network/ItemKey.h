#pragma once

#include "network/events/ProtocolTypes.h"

#include <compare>
#include <cstdint>
#include <tuple>

namespace NetworkCompanion {

/// Identifies a media, texture, screen or screen part of the Producer's show.
///
/// Comparisons ignore the subId of medias and textures because their cue alone identifies them.
struct ItemKey {
    LV_NTC_ElementType type = LV_NTC_ElementType::None;
    std::uint32_t id = 0;    ///< of the cue for a media or texture, otherwise of the screen
    std::uint32_t subId = 0; ///< of the media, texture or screen part; 0 for a screen

    static constexpr ItemKey media(std::uint32_t cueId, std::uint32_t mediaId = 0) {
        return {LV_NTC_ElementType::Media, cueId, mediaId};
    }
    static constexpr ItemKey texture(std::uint32_t cueId, std::uint32_t textureId = 0) {
        return {LV_NTC_ElementType::Texture, cueId, textureId};
    }
    /// Key of a media or texture, whose events share a class; type None for any other type.
    static constexpr ItemKey mediaOrTexture(LV_NTC_ElementType type, std::uint32_t cueId,
                                            std::uint32_t elementId = 0) {
        const bool isKnown =
            type == LV_NTC_ElementType::Media || type == LV_NTC_ElementType::Texture;
        return isKnown ? ItemKey{type, cueId, elementId} : ItemKey{};
    }
    static constexpr ItemKey screen(std::uint32_t screenId) {
        return {LV_NTC_ElementType::Screen, screenId, 0};
    }
    static constexpr ItemKey screenPart(std::uint32_t screenId, std::uint32_t partId) {
        return {LV_NTC_ElementType::ScreenPart, screenId, partId};
    }

    friend constexpr std::strong_ordering operator<=>(const ItemKey& left, const ItemKey& right) {
        return left.comparedFields() <=> right.comparedFields();
    }
    friend constexpr bool operator==(const ItemKey& left, const ItemKey& right) {
        return left.comparedFields() == right.comparedFields();
    }

private:
    constexpr std::tuple<LV_NTC_ElementType, std::uint32_t, std::uint32_t> comparedFields() const {
        return {type, id, type == LV_NTC_ElementType::ScreenPart ? subId : 0};
    }
};

} // namespace NetworkCompanion
