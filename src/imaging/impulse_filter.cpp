// Bright impulses: samples that stand out from their neighbours of the same colour.
#include <algorithm>

#include "imaging/noise_reduction.hpp"
#include "imaging/raw_neighbours.hpp"

namespace vexa::imaging {
namespace {

/// The smaller of a sample and the median of it and up to four neighbours (of an even number of
/// samples the mean of the middle two, rounded down). The neighbours alone decide on the larger
/// half, so that nothing needs sorting.
unsigned Limited(unsigned p, const std::uint8_t* neighbours, std::size_t count) {
  const unsigned a = neighbours[0];
  const unsigned b = neighbours[1];
  const unsigned c = neighbours[2];
  const unsigned larger = std::max(a, b);
  const unsigned smaller = std::min(a, b);
  switch (count) {
    case 0:
      return p;
    case 1:
      return std::min(p, (p + a) / 2);
    case 2:
      return std::min(p, larger);
    case 3: {
      const unsigned middle = std::max(smaller, std::min(larger, c));
      return std::min(p, (middle + std::min(p, std::max(larger, c))) / 2);
    }
    default: {
      const unsigned d = neighbours[3];
      const unsigned second_largest =
          std::max(std::min(larger, std::max(c, d)), std::max(smaller, std::min(c, d)));
      return std::min(p, second_largest);
    }
  }
}

class ImpulseFilter {
 public:
  ImpulseFilter(const RawFrame& frame, const FrameKernels& kernels)
      : frame_(frame),
        is_mono_(Is(frame, ColorArray::kMono)),
        border_(is_mono_ ? 1 : 2),
        kernels_(kernels),
        history_(frame.width) {}

  void Run() {
    for (std::size_t y = 0; y < frame_.height; ++y) {
      history_.Keep(y, Row(y));
      FilterRow(y);
    }
  }

 private:
  std::uint8_t* Row(std::size_t y) const { return frame_.samples + y * frame_.width; }

  /// Samples at the border of the frame one by one, the others in one stretch.
  void FilterRow(std::size_t y) {
    // From two above to two below, as they were; null outside the frame.
    const std::uint8_t* rows[5] = {};
    for (std::size_t k = 0; k < 5; ++k) {
      if (y + k >= 2 && y + k - 2 < frame_.height) {
        rows[k] = k <= 2 ? history_.Row(y + k - 2) : Row(y + k - 2);
      }
    }
    const std::size_t width = frame_.width;
    if (y < border_ || y + border_ >= frame_.height || width <= 2 * border_) {
      return FilterBorder(rows, y, 0, width);
    }
    FilterBorder(rows, y, 0, border_);
    FilterInside(rows, y);
    FilterBorder(rows, y, width - border_, width);
  }

  void FilterInside(const std::uint8_t* const (&rows)[5], std::size_t y) {
    const std::size_t n = frame_.width - 2 * border_;
    std::uint8_t* const out = Row(y) + border_;
    const std::uint8_t* inside[5] = {};
    for (std::size_t k = 2 - border_; k <= 2 + border_; ++k) {
      inside[k] = rows[k] + border_;
    }
    if (is_mono_) {
      kernels_.limit_mono(inside, out, n);
    } else {
      kernels_.limit_bayer(inside, (border_ + y) % 2 != 0, out, n);
    }
  }

  void FilterBorder(const std::uint8_t* const (&rows)[5], std::size_t y, std::size_t from,
                    std::size_t to) {
    for (std::size_t x = from; x < to; ++x) {
      std::uint8_t neighbours[4] = {};
      std::size_t count = 0;
      for (const Offset& offset : NeighboursOf(x, y)) {
        const std::uint8_t* const row = rows[2 + offset.y];
        const auto at = static_cast<std::ptrdiff_t>(x) + offset.x;
        if (row != nullptr && at >= 0 && at < static_cast<std::ptrdiff_t>(frame_.width)) {
          neighbours[count++] = row[at];
        }
      }
      Row(y)[x] = static_cast<std::uint8_t>(Limited(rows[2][x], neighbours, count));
    }
  }

  /// Of a sample at the border.
  const Neighbours& NeighboursOf(std::size_t x, std::size_t y) const {
    if (is_mono_) {
      return kBeside;
    }
    return (x + y) % 2 != 0 ? kDiagonal : kTwoBeside;
  }

  RawFrame frame_;
  bool is_mono_;
  std::size_t border_;
  const FrameKernels& kernels_;
  RowHistory history_;
};

}  // namespace

Status ReduceImpulses(const RawFrame& frame, const FrameKernels& kernels) {
  if (!Is(frame, ColorArray::kMono) && !Is(frame, ColorArray::kRggb) &&
      !Is(frame, ColorArray::kBggr)) {
    return error::kInvalidParameter;
  }
  if (frame.width != 0) {
    ImpulseFilter(frame, kernels).Run();
  }
  return error::kNone;
}

}  // namespace vexa::imaging
