#include "imaging/kernels/color_mix.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace vexa::imaging {
namespace {

using Formula = ColorMix::Formula;

/// Contributions up to here keep the sum of three in 16 bits.
constexpr std::int32_t kLargest = 10000;

/// One input's share of a formula.
struct Product {
  std::int32_t factor;
  std::int32_t whole;

  std::int32_t At(std::int32_t v) const { return ((factor * std::max(v, 1)) >> 16) + whole * v; }
};

/// The contributions of one input to one output.
class Contributions {
 public:
  Contributions(const ColorMix& mix, std::size_t input, std::size_t output)
      : entries_(mix.contributions[input]), output_(output) {}

  std::int32_t At(std::int32_t v) const { return entries_[v][output_]; }

  /// What value v takes beside product + base.
  std::int32_t Missing(const Product& product, std::int32_t base, std::int32_t v) const {
    return At(v) - product.At(v) - base;
  }

  bool AreSmall() const {
    for (std::int32_t v = 0; v < 256; ++v) {
      if (std::abs(At(v)) > kLargest) {
        return false;
      }
    }
    return true;
  }

  std::size_t CountMisses(const Product& product, std::int32_t base) const {
    std::size_t misses = 0;
    for (std::int32_t v = 0; v < 256; ++v) {
      misses += Missing(product, base, v) != 0 ? 1 : 0;
    }
    return misses;
  }

 private:
  const std::int32_t (*entries_)[4];
  std::size_t output_;
};

struct Fit {
  Product product{};
  std::int32_t base = 0;
  std::size_t misses = 256;
};

/// Tries the factors around the slope, because its 17th bit and the rounding of repeated addition
/// decide about multiples near integers, and the bases that make some of the values right.
Fit BestFit(const Contributions& wanted, float slope) {
  constexpr std::int32_t kReach = 4;
  const auto whole = static_cast<std::int32_t>(std::lround(slope));
  const auto factor =
      static_cast<std::int32_t>(std::lround((slope - static_cast<float>(whole)) * 65536.0F));
  using Limits = std::numeric_limits<std::int16_t>;
  Fit best;
  for (std::int32_t f = std::max<std::int32_t>(factor - kReach, Limits::min());
       f <= std::min<std::int32_t>(factor + kReach, Limits::max()); ++f) {
    const Product product{f, whole};
    for (const std::int32_t v : {1, 128, 255}) {
      const std::int32_t base = wanted.At(v) - product.At(v);
      const std::size_t misses = wanted.CountMisses(product, base);
      if (misses < best.misses) {
        best = {product, base, misses};
      }
    }
  }
  return best;
}

/// Takes the fit into the formula; false if that has no room for its misses.
bool Add(const Contributions& wanted, const Fit& fit, std::size_t input, Formula* formula) {
  if (formula->addition_count + fit.misses > Formula::kMaxAdditions) {
    return false;
  }
  formula->factor[input] = static_cast<std::int16_t>(fit.product.factor);
  formula->whole[input] = static_cast<std::int16_t>(fit.product.whole);
  formula->base = static_cast<std::int16_t>(formula->base + fit.base);
  for (std::int32_t v = 0; v < 256; ++v) {
    const std::int32_t missing = wanted.Missing(fit.product, fit.base, v);
    if (std::abs(missing) > Formula::kLargestAmount) {
      return false;
    }
    if (missing != 0) {
      formula->additions[formula->addition_count++] = {static_cast<std::uint8_t>(input),
                                                       static_cast<std::uint8_t>(v),
                                                       static_cast<std::int8_t>(missing)};
    }
  }
  return true;
}

bool Find(const float (&slopes)[kPixelChannels], std::size_t output, const ColorMix& mix,
          Formula* formula) {
  *formula = {};
  for (std::size_t input = 0; input < kPixelChannels; ++input) {
    const Contributions wanted(mix, input, output);
    if (!wanted.AreSmall() || !Add(wanted, BestFit(wanted, slopes[input]), input, formula)) {
      return false;
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
