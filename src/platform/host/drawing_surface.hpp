/// \file
/// The drawing surfaces in memory that stand in for device contexts. A surface is named by a number
/// that is never used again, so that drawing on one that is gone cannot reach another one.
#pragma once

#include <cstdint>
#include <span>

#include "platform/status.hpp"

namespace vexa::platform::host {

/// Longest side of a surface in pixels; the coordinates of a display's surface have 16 bits.
inline constexpr std::uint32_t kMaxSurfaceSide = 0xFFFF;

/// A new, black surface; null when a side is not in 1 to kMaxSurfaceSide. Throws std::bad_alloc.
void* CreateSurface(std::uint32_t width, std::uint32_t height);

/// Removes a surface; kInvalidHandle when there is no such surface.
Status DestroySurface(void* surface);

/// Copies the pixels, top row first, 4 bytes each: blue, green, red, 0. kInvalidHandle when there
/// is no such surface, kInsufficientBuffer when they do not fit (nothing is copied).
Status ReadSurface(void* surface, std::span<std::uint8_t> pixels);

/// The stretch mode; 0 when there is no such surface.
int StretchModeOf(void* surface);

}  // namespace vexa::platform::host
