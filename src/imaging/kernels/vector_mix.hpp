/// \file
/// The colour matrix in vectors. Included by one file per instruction set, after that file has
/// switched the compiler to it.
///
/// The rules of vector_layouts.hpp hold here, too.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

#include "imaging/kernels/vector_layouts.hpp"

namespace vexa::imaging {

/// V as for VectorLayouts.
template <class V>
struct VectorMix {
  using Bytes = typename V::Bytes;
  using Words = typename V::Words;
  using Shorts = typename V::Shorts;
  using Layouts = VectorLayouts<V>;
  using Planes = typename Layouts::Planes;
  static constexpr std::size_t kStep = Layouts::kStep;

  /// Pixels are mixed in strips, one output at a time: the loop over a strip knows the signs.
  static constexpr std::size_t kStripSteps = 16;

  struct Strip {
    Words low[kPixelChannels][kStripSteps];  // the values, the halves of each lane apart
    Words high[kPixelChannels][kStripSteps];
    Bytes mixed[kPixelChannels][kStripSteps];
    // For formulas with bits: where each value's byte is, in the lower and in the upper half of
    // them (0x80 where it is in the other, for which a shuffle gives 0), and the bit's mask.
    Bytes places[kPixelChannels][2][kStripSteps];
    Bytes masks[kPixelChannels][kStripSteps];
    Bytes bits[kStripSteps];  // of one output
  };

  static void FindPlaces(std::size_t in, std::size_t step, Bytes v, Strip* strip) {
    static constexpr std::uint8_t kMasks[16] = {1, 2, 4, 8, 16, 32, 64, 128,
                                                1, 2, 4, 8, 16, 32, 64, 128};
    strip->places[in][0][step] = v & 0x8F;
    strip->places[in][1][step] = (v & 0x8F) ^ 0x80;
    strip->masks[in][step] = V::Shuffle(V::Order(kMasks), (Bytes)((Words)v >> 4) & 15);
  }

  /// Adds the bits of one input to the sums so far, of which there are none at first.
  template <bool kFirst>
  static void AddBits(const std::uint8_t (&bits)[2][16], std::size_t in, Strip* strip,
                      std::size_t steps) {
    const Bytes lower_half = V::Order(bits[0]);
    const Bytes upper_half = V::Order(bits[1]);
    for (std::size_t step = 0; step < steps; ++step) {
      const Bytes byte = V::Shuffle(lower_half, strip->places[in][0][step]) |
                         V::Shuffle(upper_half, strip->places[in][1][step]);
      const Bytes mask = strip->masks[in][step];
      const Bytes sum = kFirst ? Bytes{} : strip->bits[step];
      strip->bits[step] = sum - (Bytes)((byte & mask) == mask);
    }
  }

  /// The sums of a formula's bits.
  static void SumBits(const ColorMix::Formula& formula, Strip* strip, std::size_t steps) {
    bool is_first = true;
    for (std::size_t in = 0; in < kPixelChannels; ++in) {
      if ((formula.has_bits >> in & 1) != 0) {
        (is_first ? AddBits<true> : AddBits<false>)(formula.bits[in], in, strip, steps);
        is_first = false;
      }
    }
  }

  /// What a formula adds as a multiple without a fraction.
  enum Whole { kNoWhole, kOneInput, kAnyWhole };

  /// kNegative: bit i if the product of input i is taken off.
  template <unsigned kNegative, Whole kWhole>
  static void MixOutput(const ColorMix::Formula& formula, Strip* strip, Bytes* mixed,
                        std::size_t steps) {
    Words factor[kPixelChannels];
    Words whole[kPixelChannels];
    std::size_t one = 0;
    for (std::size_t in = 0; in < kPixelChannels; ++in) {
      factor[in] = Words{} + formula.factor[in];
      whole[in] = Words{} + (std::uint16_t)formula.whole[in];
      one = formula.whole[in] != 0 ? in : one;
    }
    const Words base = Words{} + (std::uint16_t)formula.base;
    const bool has_base = formula.base != 0;
    const bool has_bits = formula.has_bits != 0;
    for (std::size_t step = 0; step < steps; ++step) {
      Words low{};
      Words high{};
#pragma GCC unroll 3
      for (std::size_t in = 0; in < kPixelChannels; ++in) {
        const Words product_low = V::MulHighUnsigned(strip->low[in][step], factor[in]);
        const Words product_high = V::MulHighUnsigned(strip->high[in][step], factor[in]);
        low = (kNegative >> in & 1) != 0 ? low - product_low : low + product_low;
        high = (kNegative >> in & 1) != 0 ? high - product_high : high + product_high;
        if constexpr (kWhole == kAnyWhole) {
          low += strip->low[in][step] * whole[in];
          high += strip->high[in][step] * whole[in];
        }
      }
      if constexpr (kWhole == kOneInput) {
        low += strip->low[one][step];
        high += strip->high[one][step];
      }
      if (has_base) {
        low += base;
        high += base;
      }
      if (has_bits) {
        low += (Words)Layouts::Low(strip->bits[step]);
        high += (Words)Layouts::High(strip->bits[step]);
      }
      mixed[step] = V::Pack((Shorts)low, (Shorts)high);
    }
  }

  static Whole WholeOf(const ColorMix::Formula& formula) {
    int sum = 0;
    for (const std::int16_t whole : formula.whole) {
      if (whole != 0 && whole != 1) {
        return kAnyWhole;
      }
      sum += whole;
    }
    return sum == 0 ? kNoWhole : sum == 1 ? kOneInput : kAnyWhole;
  }

  using MixStrip = void (*)(const ColorMix::Formula&, Strip*, Bytes*, std::size_t);

  template <Whole kWhole>
  static MixStrip MixStripFor(unsigned negative) {
    static constexpr MixStrip kBySigns[8] = {
        MixOutput<0, kWhole>, MixOutput<1, kWhole>, MixOutput<2, kWhole>, MixOutput<3, kWhole>,
        MixOutput<4, kWhole>, MixOutput<5, kWhole>, MixOutput<6, kWhole>, MixOutput<7, kWhole>};
    return kBySigns[negative];
  }

  static MixStrip MixStripOf(const ColorMix::Formula& formula) {
    switch (WholeOf(formula)) {
      case kNoWhole:
        return MixStripFor<kNoWhole>(formula.negative);
      case kOneInput:
        return MixStripFor<kOneInput>(formula.negative);
      default:
        return MixStripFor<kAnyWhole>(formula.negative);
    }
  }

  /// Returns how many pixels are left.
  template <class Layout, bool kBits>
  static std::size_t MixByFormulas(const ColorMix& mix, std::uint8_t* pixels, std::size_t n) {
    const MixStrip functions[kPixelChannels] = {MixStripOf(mix.formulas[kBlue]),
                                                MixStripOf(mix.formulas[kGreen]),
                                                MixStripOf(mix.formulas[kRed])};
    Strip strip;
    while (n >= kStep) {
      const std::size_t steps = n / kStep < kStripSteps ? n / kStep : kStripSteps;
      for (std::size_t step = 0; step < steps; ++step) {
        const Planes p = Layout::Load(pixels + step * Layout::kBytes);
        const Bytes v[kPixelChannels] = {p.blue, p.green, p.red};
#pragma GCC unroll 3
        for (std::size_t in = 0; in < kPixelChannels; ++in) {
          strip.low[in][step] = (Words)Layouts::Low(v[in]);
          strip.high[in][step] = (Words)Layouts::High(v[in]);
          if constexpr (kBits) {
            FindPlaces(in, step, v[in], &strip);
          }
        }
      }
      for (std::size_t out = 0; out < kPixelChannels; ++out) {
        if constexpr (kBits) {
          if (mix.formulas[out].has_bits != 0) {
            SumBits(mix.formulas[out], &strip, steps);
          }
        }
        functions[out](mix.formulas[out], &strip, strip.mixed[out], steps);
      }
      for (std::size_t step = 0; step < steps; ++step) {
        Layout::Store(pixels + step * Layout::kBytes,
                      {strip.mixed[kBlue][step], strip.mixed[kGreen][step], strip.mixed[kRed][step],
                       Bytes{}});
      }
      pixels += steps * Layout::kBytes;
      n -= steps * kStep;
    }
    return n;
  }

  /// Three entries of tables a pixel, for contributions without formulas.
  template <std::size_t kBytes>
  static void MixByTables(const ColorMix& mix, std::uint8_t* pixels, std::size_t n) {
    for (; n > 0; --n, pixels += kBytes) {
      const auto entry = [&](PixelChannel in) {
        return *(const __m128i*)mix.contributions[in][pixels[in]];
      };
      const __m128i sum = _mm_add_epi32(_mm_add_epi32(entry(kBlue), entry(kGreen)), entry(kRed));
      const __m128i words = _mm_packs_epi32(sum, sum);
      const int bytes = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
      __builtin_memcpy(pixels, &bytes, 3);
    }
  }

  static bool HasBits(const ColorMix& mix) {
    return (mix.formulas[kBlue].has_bits | mix.formulas[kGreen].has_bits |
            mix.formulas[kRed].has_bits) != 0;
  }

  /// Returns how many pixels are left to the tables.
  template <class Layout>
  static std::size_t MixByFormulas(const ColorMix& mix, std::uint8_t* pixels, std::size_t n) {
    if (!mix.has_formulas) {
      return n;
    }
    if (!HasBits(mix)) {
      return MixByFormulas<Layout, false>(mix, pixels, n);
    }
    if constexpr (V::kShuffles) {
      return MixByFormulas<Layout, true>(mix, pixels, n);
    }
    return n;
  }

  template <class Layout, std::size_t kBytes>
  static void Mix(const ColorMix& mix, std::uint8_t* pixels, std::size_t n) {
    const std::size_t rest = MixByFormulas<Layout>(mix, pixels, n);
    MixByTables<kBytes>(mix, pixels + kBytes * (n - rest), rest);
  }
};

}  // namespace vexa::imaging
