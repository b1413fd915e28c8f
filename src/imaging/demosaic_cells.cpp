// The two methods that take whole 2 x 2 cells and interpolate nothing.
#include <algorithm>
#include <array>

#include "imaging/demosaic.hpp"

namespace vexa::imaging {
namespace {

using Plane = std::array<Sample, kStripWidth>;

/// A stretch of a row: the colour that it has beside green, and green.
struct RowPlanes {
  Plane own;
  Plane green;

  template <class Kernel>
  void Fill(const BayerFrame& frame, std::size_t x, std::size_t y, std::size_t n, Kernel row_pass) {
    const bool own_is_even = frame.ColorParity(y) == 0;
    row_pass(frame.Row(y) + x, own_is_even ? own.data() : green.data(),
             own_is_even ? green.data() : own.data(), n);
  }
};

constexpr std::size_t RoundDownToEven(std::size_t n) { return n & ~std::size_t{1}; }

}  // namespace

void DemosaicMosaic(const BayerFrame& frame, const BgrImage& image, const RowKernels& kernels) {
  static constexpr Plane kZeros{};
  const std::size_t columns = RoundDownToEven(frame.width);
  const std::size_t rows = RoundDownToEven(frame.height);
  RowPlanes planes;
  for (std::size_t y = 0; y < rows; ++y) {
    for (std::size_t x = 0; x < columns; x += kStripWidth) {
      const std::size_t n = std::min(kStripWidth, columns - x);
      planes.Fill(frame, x, y, n, kernels.row_mosaic);
      const bool first_color = (y & 1) == 0;
      image.Write(x, y, n, first_color ? planes.own.data() : kZeros.data(), planes.green.data(),
                  first_color ? kZeros.data() : planes.own.data());
    }
  }
}

void DemosaicNearest(const BayerFrame& frame, const BgrImage& image, const RowKernels& kernels) {
  const std::size_t columns = RoundDownToEven(frame.width);
  const std::size_t rows = RoundDownToEven(frame.height);
  RowPlanes upper;
  RowPlanes lower;
  for (std::size_t y = 0; y < rows; y += 2) {
    for (std::size_t x = 0; x < columns; x += kStripWidth) {
      const std::size_t n = std::min(kStripWidth, columns - x);
      upper.Fill(frame, x, y, n, kernels.row_nearest);
      lower.Fill(frame, x, y + 1, n, kernels.row_nearest);
      image.Write(x, y, n, upper.own.data(), upper.green.data(), lower.own.data());
      image.Write(x, y + 1, n, upper.own.data(), lower.green.data(), lower.own.data());
    }
  }
}

}  // namespace vexa::imaging
