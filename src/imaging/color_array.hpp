/// \file
/// The phase of the Bayer colour filter array: its codes, and what mirroring makes of them.
#pragma once

#include <cstdint>

namespace vexa::imaging {

/// Colour array codes as cameras report them and applications pass them; each name lists the
/// first row's two pixels, then the second row's.
enum class ColorArray : std::uint16_t { kMono = 1, kRggb = 2, kGrbg = 3, kGbrg = 4, kBggr = 5 };

/// The mirror mode byte of the camera: two bits, every other value leaves the phase alone.
inline constexpr std::uint8_t kMirrorHorizontal = 0x10;
inline constexpr std::uint8_t kMirrorVertical = 0x20;

/// The colour array code of the frames that a camera delivers: the sensor's own code, with the
/// pattern's columns exchanged by horizontal and its rows by vertical mirroring. Codes other than
/// the four Bayer phases (monochrome, unknown) and codes under any other mirror byte come back
/// unchanged.
std::uint16_t EffectiveColorArray(std::uint16_t sensor_code, std::uint8_t mirror_mode);

}  // namespace vexa::imaging
