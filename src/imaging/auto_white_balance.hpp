/// \file
/// White-balance gains that make a frame's mean colour grey.
#pragma once

#include <cstdint>

#include "platform/status.hpp"

namespace vexa::imaging {

/// Gains of red and blue samples; 128 is unity. Green is what they are brought to.
struct ColorGains {
  std::uint16_t red = 0;
  std::uint16_t blue = 0;
};

/// Finds the gains under which the mean of an 8-bit raw frame's red, and of its blue samples equals
/// that of its green ones.
///
/// A colour whose samples are all 0 has the gain 128. Below a gain of 640 the gain is raised in
/// steps of 1 until saturated samples no longer keep the mean below the target. kInvalidParameter,
/// and nothing changed, for colour arrays other than 1 to 5.
Status FindColorGains(std::uint32_t width, std::uint32_t height, std::uint16_t color_array,
                      const std::uint8_t* frame, ColorGains* gains);

}  // namespace vexa::imaging
