// The two methods that take whole 2 x 2 cells and interpolate nothing.
#include <algorithm>
#include <array>

#include "imaging/demosaic.hpp"

namespace vexa::imaging {
namespace {

using Plane = std::array<Sample, kStripWidth>;

/// Deals a row and what stands in for its missing samples out to the row's own colour and green.
void SplitRow(const BayerFrame& frame, std::size_t x, std::size_t y, std::size_t n,
              const Plane& stand_in, Plane& own, Plane& green, const RowKernels& kernels) {
  const bool own_is_even = frame.ColorParity(y) == 0;
  kernels.split(frame.Row(y) + x, stand_in.data(), own_is_even ? own.data() : green.data(),
                own_is_even ? green.data() : own.data(), n);
}

constexpr std::size_t RoundDownToEven(std::size_t n) { return n & ~std::size_t{1}; }

}  // namespace

void DemosaicMosaic(const BayerFrame& frame, const BgrImage& image, const RowKernels& kernels) {
  static constexpr Plane kZeros{};
  const std::size_t columns = RoundDownToEven(frame.width);
  const std::size_t rows = RoundDownToEven(frame.height);
  Plane own;
  Plane green;
  for (std::size_t y = 0; y < rows; ++y) {
    for (std::size_t x = 0; x < columns; x += kStripWidth) {
      const std::size_t n = std::min(kStripWidth, columns - x);
      SplitRow(frame, x, y, n, kZeros, own, green, kernels);
      const bool first_color = (y & 1) == 0;
      image.Write(x, y, n, first_color ? own.data() : kZeros.data(), green.data(),
                  first_color ? kZeros.data() : own.data());
    }
  }
}

void DemosaicNearest(const BayerFrame& frame, const BgrImage& image, const RowKernels& kernels) {
  const std::size_t columns = RoundDownToEven(frame.width);
  const std::size_t rows = RoundDownToEven(frame.height);
  std::array<Plane, 2> own;
  std::array<Plane, 2> green;
  Plane swapped;
  for (std::size_t y = 0; y < rows; y += 2) {
    for (std::size_t x = 0; x < columns; x += kStripWidth) {
      const std::size_t n = std::min(kStripWidth, columns - x);
      for (std::size_t i = 0; i < 2; ++i) {
        kernels.swap_pairs(frame.Row(y + i) + x, swapped.data(), n);
        SplitRow(frame, x, y + i, n, swapped, own[i], green[i], kernels);
      }
      image.Write(x, y, n, own[0].data(), green[0].data(), own[1].data());
      image.Write(x, y + 1, n, own[0].data(), green[1].data(), own[1].data());
    }
  }
}

}  // namespace vexa::imaging
