/// \file
/// What the colour differences of a YUV pixel add to its luminance.
#pragma once

#include <array>
#include <cstdint>

namespace vexa::imaging {

/// Indexed by the stored component, which is offset by 128. The weights are those of ITU-R BT.601
/// for full-range components (1.402 and its companions), truncated toward zero.
struct YuvTables {
  std::array<std::int16_t, 256> blue_from_u{};
  std::array<std::int16_t, 256> green_from_u{};
  std::array<std::int16_t, 256> green_from_v{};
  std::array<std::int16_t, 256> red_from_v{};
};

constexpr YuvTables MakeYuvTables() {
  YuvTables tables;
  for (int i = 0; i < 256; ++i) {
    // In ten-thousandths, the products are exact; division truncates.
    const int c = i - 128;
    const auto at = static_cast<std::size_t>(i);
    tables.blue_from_u[at] = static_cast<std::int16_t>(17718 * c / 10000);
    tables.green_from_u[at] = static_cast<std::int16_t>(-3441 * c / 10000);
    tables.green_from_v[at] = static_cast<std::int16_t>(-7139 * c / 10000);
    tables.red_from_v[at] = static_cast<std::int16_t>(14020 * c / 10000);
  }
  return tables;
}

inline constexpr YuvTables kYuvTables = MakeYuvTables();

}  // namespace vexa::imaging
