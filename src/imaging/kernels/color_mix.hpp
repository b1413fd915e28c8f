/// \file
/// The colour matrix as image kernels take it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vexa::imaging {

/// Order of channels in pixels, and so in what follows.
enum PixelChannel : std::size_t { kBlue = 0, kGreen = 1, kRed = 2, kPixelChannels = 3 };

/// Every output of a pixel is the sum of three contributions, one for each input channel.
struct ColorMix {
  /// What value v of an input contributes to the outputs blue, green, red; the fourth is 0 and
  /// makes an entry a vector.
  alignas(16) std::int32_t contributions[kPixelChannels][256][4];

  /// The contributions to one output in 16-bit arithmetic: base + the sum over the inputs v of
  ///   (factor * v >> 16, taken off if negative, else added) + whole * v + (bit v of bits).
  ///
  /// Contributions are multiples that have been truncated toward zero. A factor with 16 bits of
  /// fraction finds most of them; the bits, where they are needed, say for which values one more is
  /// right: multiples that are integers but for the rounding of single precision.
  struct Formula {
    std::uint16_t factor[kPixelChannels];
    std::int16_t whole[kPixelChannels];
    std::int16_t base;
    std::uint8_t negative;  ///< bit i for input i
    std::uint8_t has_bits;  ///< bit i for input i
    /// Bit v / 16 % 8 of byte v % 16 of half v / 128.
    std::uint8_t bits[kPixelChannels][2][16];
  };

  /// Whether the formulas say for all inputs what the contributions say.
  bool has_formulas;
  Formula formulas[kPixelChannels];
};

/// Finds the formulas for the contributions, which are truncated multiples of the inputs:
/// slopes[output][input], in the order of PixelChannel. Too large ones and those that an offset
/// makes change their sign between integers have none.
void FindFormulas(const float (&slopes)[kPixelChannels][kPixelChannels], ColorMix* mix);

}  // namespace vexa::imaging
