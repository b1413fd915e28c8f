/// \file
/// What every operation on a caller's frame asks before it starts.
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

/// Whether a buffer can hold that many pixels: it is there and no larger than an object can be. A
/// frame without pixels needs no buffer.
inline bool FrameIsPossible(std::uint32_t width, std::uint32_t height, std::size_t bytes_per_pixel,
                            const void* buffer) {
  const auto pixels = std::uint64_t{width} * height;
  return pixels == 0 || (buffer != nullptr && pixels <= kLargestBuffer / bytes_per_pixel);
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
