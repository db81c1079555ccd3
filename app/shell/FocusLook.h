#pragma once

/// Colours and sizes of the keyboard's focus ring. Sizes in device-independent pixels.
namespace FocusLook {

inline constexpr char kRingColor[] = "#ffffff";
inline constexpr char kShadowColor[] = "#c0000000"; ///< beside the ring, and behind white text
inline constexpr int kRingInset = 3;
inline constexpr int kRingWidth = 2;

} // namespace FocusLook
