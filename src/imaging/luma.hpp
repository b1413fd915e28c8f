/// \file
/// Luminance of 8-bit pixels by table look-up.
#pragma once

#include <array>
#include <cstdint>

namespace vexa::imaging {

/// Weights of the three colours in the luminance, in ten-thousandths (those of ITU-R BT.601, for
/// this family's sensors rounded to 0.2989, 0.5866 and 0.1145).
inline constexpr unsigned kLumaRedWeight = 2989;
inline constexpr unsigned kLumaGreenWeight = 5866;
inline constexpr unsigned kLumaBlueWeight = 1145;
static_assert(kLumaRedWeight + kLumaGreenWeight + kLumaBlueWeight == 10000);

/// Each colour's part in the luminance. Red and blue are weight * i rounded half up; green is what
/// remains of i, so that the three parts of a grey pixel add up to its level and the luminance
/// never leaves 0..255. (Rounding green, too, would miss the level by one at 61 of the 256.)
extern const std::array<std::uint8_t, 256> LumaRedTable;
extern const std::array<std::uint8_t, 256> LumaGreenTable;
extern const std::array<std::uint8_t, 256> LumaBlueTable;

/// Luminance of a pixel, 0..255.
inline unsigned Luma(std::uint8_t blue, std::uint8_t green, std::uint8_t red) {
  return unsigned{LumaRedTable[red]} + LumaGreenTable[green] + LumaBlueTable[blue];
}

}  // namespace vexa::imaging
