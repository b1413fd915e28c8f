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

  /// The contributions to one output in 16-bit arithmetic:
  ///   base + sum over the inputs v of (factor * max(v, 1) >> 16) + whole * v,
  /// and the additions below for some values of an input.
  ///
  /// A contribution is a product that has been truncated toward zero. A fraction of 16 bits below
  /// an integer multiple is enough to find almost all of them, and max(v, 1) in place of v makes
  /// the shift, which rounds down, agree with truncation at 0 when the factor is negative.
  struct Formula {
    static constexpr std::size_t kMaxAdditions = 12;
    static constexpr int kLargestAmount = 4;
    struct Addition {
      std::uint8_t input;  ///< PixelChannel
      std::uint8_t value;  ///< the input's value that it belongs to
      std::int8_t amount;
    };
    std::int16_t factor[kPixelChannels];
    std::int16_t whole[kPixelChannels];
    std::int16_t base;
    std::size_t addition_count;
    Addition additions[kMaxAdditions];
  };

  /// Whether the formulas say for all inputs what the contributions say.
  bool has_formulas;
  Formula formulas[kPixelChannels];
};

/// Finds the formulas for the contributions, which are truncated multiples of the inputs:
/// slopes[output][input], in the order of PixelChannel. What is no such multiple within a few
/// exceptions has none.
void FindFormulas(const float (&slopes)[kPixelChannels][kPixelChannels], ColorMix* mix);

}  // namespace vexa::imaging
