#include "imaging/kernels/color_mix.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace vexa::imaging {
namespace {

using Formula = ColorMix::Formula;

/// Contributions up to here keep the sum of three in 16 bits.
constexpr std::int32_t kLargest = 10000;

/// One input's share of a formula but for base and bits.
struct Product {
  std::int32_t factor;
  std::int32_t whole;
  bool negative;

  std::int32_t At(std::int32_t v) const {
    const std::int32_t fraction = (factor * v) >> 16;
    return whole * v + (negative ? -fraction : fraction);
  }
};

/// The contributions of one input to one output.
class Contributions {
 public:
  Contributions(const ColorMix& mix, std::size_t input, std::size_t output)
      : entries_(mix.contributions[input]), output_(output) {}

  std::int32_t At(std::int32_t v) const { return entries_[v][output_]; }

  bool AreSmall() const {
    for (std::int32_t v = 0; v < 256; ++v) {
      if (std::abs(At(v)) > kLargest) {
        return false;
      }
    }
    return true;
  }

 private:
  const std::int32_t (*entries_)[4];
  std::size_t output_;
};

/// What a product leaves to be added, from the least to the most.
struct Fit {
  Product product{};
  std::int32_t least = 0;
  std::int32_t most = 1000;

  std::int32_t Spread() const { return most - least; }
};

Fit FitOf(const Product& product, const Contributions& wanted) {
  Fit fit{product, wanted.At(0), wanted.At(0)};
  for (std::int32_t v = 1; v < 256; ++v) {
    const std::int32_t rest = wanted.At(v) - product.At(v);
    fit.least = std::min(fit.least, rest);
    fit.most = std::max(fit.most, rest);
  }
  return fit;
}

/// Tries the factors around the slope: what its 17th bit and the rounding of repeated addition make
/// of multiples near integers decides which is best.
Fit BestFit(const Contributions& wanted, float slope) {
  constexpr std::int32_t kReach = 4;
  constexpr std::int32_t kLargestFactor = 0xFFFF;
  const float size = std::fabs(slope);
  const auto whole = static_cast<std::int32_t>(size);
  const auto factor = static_cast<std::int32_t>((size - static_cast<float>(whole)) * 65536.0F);
  const bool negative = slope < 0;
  Fit best;
  for (std::int32_t f = std::max(factor - kReach, 0);
       f <= std::min(factor + kReach, kLargestFactor); ++f) {
    const Fit fit = FitOf({f, negative ? -whole : whole, negative}, wanted);
    if (fit.Spread() < best.Spread()) {
      best = fit;
    }
  }
  return best;
}

void SetBits(const Contributions& wanted, const Fit& fit, std::uint8_t (&bits)[2][16]) {
  for (std::int32_t v = 0; v < 256; ++v) {
    if (wanted.At(v) - fit.product.At(v) != fit.least) {
      std::uint8_t& byte = bits[v / 128][v % 16];
      byte = static_cast<std::uint8_t>(byte | 1 << (v / 16 % 8));
    }
  }
}

bool Find(const float (&slopes)[kPixelChannels], std::size_t output, const ColorMix& mix,
          Formula* formula) {
  *formula = {};
  for (std::size_t input = 0; input < kPixelChannels; ++input) {
    const Contributions wanted(mix, input, output);
    if (!wanted.AreSmall()) {
      return false;
    }
    const Fit fit = BestFit(wanted, slopes[input]);
    if (fit.Spread() > 1) {
      return false;
    }
    const auto flag = static_cast<std::uint8_t>(1U << input);
    formula->factor[input] = static_cast<std::uint16_t>(fit.product.factor);
    formula->whole[input] = static_cast<std::int16_t>(fit.product.whole);
    formula->base = static_cast<std::int16_t>(formula->base + fit.least);
    formula->negative |= fit.product.negative ? flag : std::uint8_t{0};
    if (fit.Spread() != 0) {
      formula->has_bits |= flag;
      SetBits(wanted, fit, formula->bits[input]);
    }
  }
  return true;
}

}  // namespace

void FindFormulas(const float (&slopes)[kPixelChannels][kPixelChannels], ColorMix* mix) {
  mix->has_formulas = true;
  for (std::size_t output = 0; output < kPixelChannels; ++output) {
    mix->has_formulas =
        mix->has_formulas && Find(slopes[output], output, *mix, &mix->formulas[output]);
  }
}

}  // namespace vexa::imaging
