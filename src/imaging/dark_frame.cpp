// Dark frame subtraction. A sample that was saturated has lost what lay above saturation, so that
// taking the dark level away makes it too dark; its neighbours tell how bright it was at least.
#include <algorithm>

#include "imaging/noise_reduction.hpp"
#include "imaging/raw_neighbours.hpp"

namespace vexa::imaging {
namespace {

/// Repairs the saturated samples of row y between two borders of width `reach`, by the frame as it
/// is: what lies above and to the left has been repaired.
void RepairRow(const RawFrame& frame, std::size_t reach, std::size_t y, const std::uint8_t* before,
               const FrameKernels& kernels) {
  const auto stride = static_cast<std::ptrdiff_t>(frame.width);
  std::uint8_t* const row = frame.samples + y * frame.width;
  const std::size_t end = frame.width - reach;
  for (std::size_t x = reach; (x = kernels.find_desaturated(before, row, x, end)) < end; ++x) {
    const bool diagonal = reach == 1 || (x + y) % 2 != 0;
    std::uint8_t around[4];
    std::size_t count = 0;
    for (const Offset& offset : diagonal ? kDiagonal : kTwoBeside) {
      around[count++] = (row + x)[offset.y * stride + offset.x];
    }
    // The larger of a sample and the median of it and its neighbours is the larger of it and the
    // second smallest neighbour.
    std::nth_element(around, around + 1, around + 4);
    row[x] = std::max(row[x], around[1]);
  }
}

}  // namespace

Status SubtractDark(const std::uint8_t* dark, const RawFrame& frame, const FrameKernels& kernels) {
  const bool is_mono = Is(frame, ColorArray::kMono);
  const bool can_repair = is_mono || Is(frame, ColorArray::kRggb);
  const std::size_t reach = is_mono ? 1 : 2;
  const std::size_t width = frame.width;
  const bool has_inside = width > 2 * reach && frame.height > 2 * reach;
  RowHistory before(width);
  bool is_saturated[3] = {};
  for (std::size_t y = 0; width != 0 && y < frame.height; ++y) {
    is_saturated[y % 3] =
        kernels.subtract(dark + y * width, frame.samples + y * width, before.Row(y), width);
    // A row can be repaired when all that its neighbourhood needs has been subtracted.
    if (can_repair && has_inside && y >= 2 * reach && is_saturated[(y - reach) % 3]) {
      RepairRow(frame, reach, y - reach, before.Row(y - reach), kernels);
    }
  }
  return can_repair ? error::kNone : error::kInvalidParameter;
}

}  // namespace vexa::imaging
