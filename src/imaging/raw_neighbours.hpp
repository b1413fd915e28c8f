/// \file
/// Which samples of a raw frame the noise filters compare with which, and rows of the frame as they
/// were before a filter that works in place changed them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "imaging/color_array.hpp"
#include "imaging/noise_reduction.hpp"
#include "imaging/pixel_buffers.hpp"

namespace vexa::imaging {

struct Offset {
  int x;
  int y;
};
using Neighbours = Offset[4];

inline constexpr Neighbours kDiagonal = {{-1, -1}, {1, -1}, {-1, 1}, {1, 1}};
inline constexpr Neighbours kBeside = {{0, -1}, {-1, 0}, {1, 0}, {0, 1}};
/// Of red and blue samples, the nearest of the same colour in row and column.
inline constexpr Neighbours kTwoBeside = {{0, -2}, {-2, 0}, {2, 0}, {0, 2}};

inline bool Is(const RawFrame& frame, ColorArray array) {
  return frame.color_array == static_cast<std::uint16_t>(array);
}

/// Copies of the last three rows. Throws std::bad_alloc when made.
class RowHistory {
 public:
  explicit RowHistory(std::size_t width)
      : width_(width), rows_(AllocateWorkBuffer<std::uint8_t>(std::uint64_t{width} * 3)) {}

  /// Keeps a copy of row y, in place of that of row y - 3.
  void Keep(std::size_t y, const std::uint8_t* row) { std::memcpy(Row(y), row, width_); }
  /// The place of row y.
  std::uint8_t* Row(std::size_t y) { return rows_.get() + y % 3 * width_; }

 private:
  std::size_t width_;
  std::unique_ptr<std::uint8_t[]> rows_;
};

}  // namespace vexa::imaging
