/// \file
/// Sizes of images in memory, and what every operation on a caller's frame asks before it starts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>

namespace vexa::imaging {

/// The largest object there can be.
inline constexpr auto kLargestBuffer =
    static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max());

/// Whether width x height pixels of so many bytes are no more than an object can have. Their
/// number may then be computed in std::size_t.
constexpr bool IsPossibleImage(std::uint32_t width, std::uint32_t height,
                               std::size_t bytes_per_pixel) {
  return std::uint64_t{width} * height <= kLargestBuffer / bytes_per_pixel;
}

constexpr std::size_t PixelCount(std::uint32_t width, std::uint32_t height) {
  return std::size_t{width} * height;
}

/// Whether a buffer can hold that many pixels: it is there and no larger than an object can be. A
/// frame without pixels needs no buffer.
inline bool FrameIsPossible(std::uint32_t width, std::uint32_t height, std::size_t bytes_per_pixel,
                            const void* buffer) {
  return std::uint64_t{width} * height == 0 ||
         (buffer != nullptr && IsPossibleImage(width, height, bytes_per_pixel));
}

/// Uninitialised memory for the time of a call; throws std::bad_alloc.
template <class T>
std::unique_ptr<T[]> AllocateWorkBuffer(std::uint64_t count) {
  if (count > kLargestBuffer / sizeof(T)) {
    throw std::bad_alloc();
  }
  return std::make_unique_for_overwrite<T[]>(static_cast<std::size_t>(count));
}

}  // namespace vexa::imaging
