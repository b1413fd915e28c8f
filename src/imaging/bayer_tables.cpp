#include "imaging/bayer_tables.hpp"

#include "imaging/color_array.hpp"

namespace vexa::imaging {
namespace {

/// The channels of a cell: first row's pair, then the second row's.
using Cell = std::array<BayerChannel, 4>;

Cell CellOf(std::uint16_t color_array) {
  switch (static_cast<ColorArray>(color_array)) {
    case ColorArray::kGrbg:
      return {kBayerGr, kBayerR, kBayerB, kBayerGb};
    case ColorArray::kGbrg:
      return {kBayerGb, kBayerB, kBayerR, kBayerGr};
    case ColorArray::kBggr:
      return {kBayerB, kBayerGb, kBayerGr, kBayerR};
    default:
      return {kBayerR, kBayerGr, kBayerGb, kBayerB};
  }
}

}  // namespace

void ApplyBayerTables(const BayerTables& tables, std::uint32_t width, std::uint32_t height,
                      std::uint16_t color_array, std::uint8_t* frame, const PixelKernels& kernels) {
  const Cell cell = CellOf(color_array);
  const std::size_t whole_columns = width & ~std::uint32_t{1};
  const std::size_t whole_rows = height & ~std::uint32_t{1};
  for (std::size_t y = 0; y < whole_rows; ++y) {
    const LookUpTable& even = tables[cell[(y & 1) * 2]];
    const LookUpTable& odd = tables[cell[(y & 1) * 2 + 1]];
    kernels.look_up_pairs(even.data(), odd.data(), frame + y * width, whole_columns);
  }
}

}  // namespace vexa::imaging
