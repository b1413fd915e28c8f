/// \file
/// The rounded weights of the four-tap interpolation filter (-1, 5, 5, -1) / 8.
#pragma once

#include <array>
#include <cstdint>

namespace vexa::imaging {

/// Indexed by the sum of two 8-bit samples (0..510). The two terms of the filter are rounded
/// separately, so that the result differs from rounding the whole sum.
struct WeightTables {
  std::array<std::int16_t, 512> FiveEighthsTable;  ///< entry i: floor((5 i + 4) / 8)
  std::array<std::int16_t, 512> MinusEighthTable;  ///< entry i: -floor((i + 4) / 8)
};
static_assert(sizeof(WeightTables) == 2048);

/// The whole content of the data section VXCAM_Ba, which is writable and, where the image format
/// knows such a thing (PE), shared by all processes that load the library. Initialised in the
/// image; nothing writes it.
extern WeightTables weight_tables;

}  // namespace vexa::imaging
