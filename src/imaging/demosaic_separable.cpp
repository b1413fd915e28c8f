// The two methods that interpolate along rows, then along columns. The row pass completes green
// and the row's own colour; the column pass finds the colour that the row lacks from the row
// pass's results above and below. Both passes use the same filter.
#include <algorithm>
#include <array>

#include "imaging/demosaic.hpp"

namespace vexa::imaging {
namespace {

/// How far a filter's neighbours lie from the missing sample. At distance below kFar from either
/// end of a line the four-tap filter gives way to the mean of two, and at the very ends there is
/// one neighbour left to copy.
constexpr std::size_t kNear = 1;
constexpr std::size_t kFar = 3;

/// A strip of columns going down through the frame: the row pass's results of the latest rows, of
/// which the filters need those from kFar above to kFar below the row that is written.
template <std::size_t kReach>
class Strip {
 public:
  Strip(const BayerFrame& frame, const RowKernels& kernels, std::size_t x, std::size_t n)
      : frame_(frame), kernels_(kernels), x_(x), n_(n) {}

  /// Does the row pass for all rows that the column pass of row y looks at.
  void Advance(std::size_t y) {
    for (const std::size_t end = std::min(y + kReach + 1, frame_.height); done_ < end; ++done_) {
      RowPass(done_);
    }
  }

  const Sample* Own(std::size_t y) const { return own_[y % kSlots].data(); }
  const Sample* Green(std::size_t y) const { return green_[y % kSlots].data(); }

  /// The column pass: the colour that row y lacks.
  Sample* Other(std::size_t y) {
    Sample* out = other_.data();
    if (y == 0) {
      std::copy_n(Own(1), n_, out);
    } else if (y == frame_.height - 1) {
      std::copy_n(Own(y - 1), n_, out);
    } else if (kReach == kNear || y < kFar || y >= frame_.height - kFar) {
      kernels_.mean(Own(y - kNear), Own(y + kNear), out, n_);
    } else {
      kernels_.four_tap(Own(y - kNear), Own(y + kNear), Own(y - kFar), Own(y + kFar), out, n_);
    }
    return out;
  }

 private:
  using Plane = std::array<Sample, kStripWidth>;
  static constexpr std::size_t kSlots = 2 * (kReach + 1);

  void RowPass(std::size_t y) {
    const Sample* row = frame_.Row(y);
    Sample* own = own_[y % kSlots].data();
    Sample* green = green_[y % kSlots].data();
    const std::size_t parity = frame_.ColorParity(y);
    const std::size_t end = x_ + n_;
    const std::size_t first = std::clamp(kReach, x_, end);
    const std::size_t last = std::clamp(frame_.width - kReach, first, end);
    const auto near_border = [&](std::size_t x) {
      const bool has_own = (x & 1) == parity;
      (has_own ? own : green)[x - x_] = row[x];
      (has_own ? green : own)[x - x_] = MeanBeside(row, x);
    };
    for (std::size_t x = x_; x < first; ++x) {
      near_border(x);
    }
    const auto row_pass = kReach == kNear ? kernels_.row_mean : kernels_.row_four_tap;
    const bool own_is_even = (first & 1) == parity;
    row_pass(row + first, (own_is_even ? own : green) + (first - x_),
             (own_is_even ? green : own) + (first - x_), last - first);
    for (std::size_t x = last; x < end; ++x) {
      near_border(x);
    }
  }

  /// The mean of the two neighbours, of which the ends of the row have one.
  Sample MeanBeside(const Sample* row, std::size_t x) const {
    const std::size_t left = x == 0 ? 1 : x - 1;
    const std::size_t right = x == frame_.width - 1 ? frame_.width - 2 : x + 1;
    return static_cast<Sample>((row[left] + row[right]) >> 1);
  }

  const BayerFrame& frame_;
  const RowKernels& kernels_;
  std::size_t x_;
  std::size_t n_;
  std::size_t done_ = 0;
  Plane other_;
  std::array<Plane, kSlots> own_;
  std::array<Plane, kSlots> green_;
};

template <std::size_t kReach>
void DemosaicSeparable(const BayerFrame& frame, const BgrImage& image, const RowKernels& kernels,
                       bool border_from_below) {
  for (std::size_t x = 0; x < frame.width; x += kStripWidth) {
    const std::size_t n = std::min(kStripWidth, frame.width - x);
    Strip<kReach> strip(frame, kernels, x, n);
    for (std::size_t y = 0; y < frame.height; ++y) {
      strip.Advance(y);
      Sample* other = strip.Other(y);
      if (border_from_below && y < frame.height - 1) {
        if (x == 0) {
          other[0] = strip.Own(y + 1)[0];
        }
        if (x + n == frame.width) {
          other[n - 1] = strip.Own(y + 1)[n - 1];
        }
      }
      const bool own_is_first = (y & 1) == 0;
      image.Write(x, y, n, own_is_first ? strip.Own(y) : other, strip.Green(y),
                  own_is_first ? other : strip.Own(y));
    }
  }
}

}  // namespace

void DemosaicBilinear(const BayerFrame& frame, const BgrImage& image, const RowKernels& kernels,
                      bool border_from_below) {
  DemosaicSeparable<kNear>(frame, image, kernels, border_from_below);
}

void DemosaicFourTap(const BayerFrame& frame, const BgrImage& image, const RowKernels& kernels) {
  DemosaicSeparable<kFar>(frame, image, kernels, false);
}

}  // namespace vexa::imaging
