/// \file
/// The brightest pixels of a dark frame.
#pragma once

#include <cstdint>
#include <vector>

namespace vexa::imaging {

/// A pixel and its level.
struct BrightPixel {
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  std::uint8_t level = 0;

  friend bool operator==(const BrightPixel&, const BrightPixel&) = default;
};

/// Finds the `capacity` brightest pixels of an 8-bit frame among those at or above a threshold.
///
/// Among equally bright ones the first in scan order (row by row from the top) stay. The list is in
/// scan order: a pixel that has to give way to a brighter one leaves, and the later ones move up.
/// The only memory it takes is the list. Throws std::bad_alloc.
std::vector<BrightPixel> FindBrightPixels(std::uint32_t width, std::uint32_t height,
                                          const std::uint8_t* frame, std::uint16_t threshold,
                                          std::size_t capacity);

}  // namespace vexa::imaging
