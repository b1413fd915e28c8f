/// \file
/// The zig-zag sequence of the coefficients of a block (ITU-T T.81, figure A.6).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace vexa::output {

inline constexpr std::size_t kBlockSize = 64;  // samples or coefficients of a block

/// The natural index (8 * vertical frequency + horizontal frequency) of each place in the sequence.
inline constexpr std::array<std::uint8_t, kBlockSize> kZigZag = [] {
  std::array<std::uint8_t, kBlockSize> natural{};
  std::size_t place = 0;
  for (int diagonal = 0; diagonal < 15; ++diagonal) {
    for (int step = 0; step <= diagonal; ++step) {
      // Even diagonals run upwards, odd ones downwards.
      const int row = diagonal % 2 == 0 ? diagonal - step : step;
      const int column = diagonal - row;
      if (row < 8 && column < 8) {
        natural[place++] = static_cast<std::uint8_t>(8 * row + column);
      }
    }
  }
  return natural;
}();

}  // namespace vexa::output
