/// \file
/// Sizes of images in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace vexa::imaging {

/// Whether width x height pixels of so many bytes are no more than an object can have. Their
/// number may then be computed in std::size_t.
constexpr bool IsPossibleImage(std::uint32_t width, std::uint32_t height,
                               std::size_t bytes_per_pixel) {
  constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max());
  return std::uint64_t{width} * height <= kLargest / bytes_per_pixel;
}

constexpr std::size_t PixelCount(std::uint32_t width, std::uint32_t height) {
  return std::size_t{width} * height;
}

}  // namespace vexa::imaging
