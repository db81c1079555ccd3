#pragma once

#include <cstdint>

/// Upper bounds for everything that a peer can make the companion store or build.
namespace NetworkCompanion::Limits {

// Frames: header and payload.
inline constexpr std::int32_t kMaxFrameLength = 16 * 1024 * 1024;
// A peer that leaves more than this unread is disconnected.
inline constexpr std::int64_t kMaxUnsentBytes = std::int64_t{64} * 1024 * 1024;

// Discovery.
inline constexpr int kMaxListedProducers = 256;
inline constexpr int kMaxListedCompanions = 256;

// Items: ids below kMaxScreenId, any part id.
inline constexpr std::uint32_t kMaxScreenId = 65'536;
inline constexpr int kMaxPartsPerScreen = 4'096;

// Rows and columns of the grids built in the scene.
inline constexpr std::uint32_t kMinGridSize = 2;
inline constexpr std::uint32_t kMaxGridSize = 64;

// Quick keys.
inline constexpr std::uint32_t kMinQuickKeyId = 1;
inline constexpr std::uint32_t kMaxQuickKeyId = 10'000;
inline constexpr std::uint32_t kMinQuickKeyGrid = 1;
inline constexpr std::uint32_t kMaxQuickKeyGrid = 64;

} // namespace NetworkCompanion::Limits
