/// \file
/// The pixel kernels in vectors. Included by one file per instruction set, after that file has
/// switched the compiler to it.
///
/// The rules of vector_layouts.hpp hold here, too.
#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/kernels/vector_layouts.hpp"
#include "imaging/kernels/vector_mix.hpp"

namespace vexa::imaging {

/// V as for VectorLayouts.
template <class V>
struct VectorPixels {
  using Bytes = typename V::Bytes;
  using Words = typename V::Words;
  using Shorts = typename V::Shorts;
  using Layouts = VectorLayouts<V>;
  using Planes = typename Layouts::Planes;
  static constexpr std::size_t kStep = Layouts::kStep;
  using Grey8 = typename Layouts::Grey8;
  using Bgr24 = typename Layouts::Bgr24;
  using Bgr32 = typename Layouts::Bgr32;
  using Bgr30 = typename Layouts::Bgr30;
  using Yuv411 = typename Layouts::Yuv411;
  using Yuv422 = typename Layouts::Yuv422;
  using Yuv444 = typename Layouts::Yuv444;
  static constexpr std::size_t kLane = Layouts::kLane;

  /// The reference's conversion.
  template <std::size_t kFrom, std::size_t kTo>
  static void Plain(const std::uint8_t* source, std::uint8_t* target, std::size_t n) {
    kReferencePixelKernels.convert[kFrom][kTo](source, target, n);
  }

  /// What does not fill a step is left to the reference, as in all kernels.
  template <class Source, class Target, std::size_t kFrom, std::size_t kTo>
  static void Convert(const std::uint8_t* source, std::uint8_t* target, std::size_t n) {
    constexpr bool kPossible = V::kShuffles || kFrom != kFromYuv411;
    for (; kPossible && n >= kStep; n -= kStep) {
      if constexpr (kPossible) {
        Target::Store(target, kTo == kToGrey8 ? Source::Load(source) : Source::LoadColors(source));
      }
      source += Source::kBytes;
      target += Target::kBytes;
    }
    Plain<kFrom, kTo>(source, target, n);
  }

  /// Every byte three times.
  static void GreyToBgr24(const std::uint8_t* source, std::uint8_t* target, std::size_t n) {
    if constexpr (V::kShuffles) {
      static constexpr std::uint8_t kOrders[3][16] = {
          {0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5},
          {5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10},
          {10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15}};
      for (; n >= kStep; n -= kStep, source += kStep, target += 3 * kStep) {
        const Bytes v = V::LoadLanes(source, kLane);
        V::StoreLanes(target, 3 * kLane, V::Shuffle(v, V::Order(kOrders[0])));
        V::StoreLanes(target + 16, 3 * kLane, V::Shuffle(v, V::Order(kOrders[1])));
        V::StoreLanes(target + 32, 3 * kLane, V::Shuffle(v, V::Order(kOrders[2])));
      }
    }
    Convert<Grey8, Bgr24, kFromGrey8, kToBgr24>(source, target, n);
  }

  /// Every byte three times and one that stays.
  static void GreyToBgr32(const std::uint8_t* source, std::uint8_t* target, std::size_t n) {
    if constexpr (V::kShuffles) {
      constexpr std::uint8_t kNo = 0x80;
      static constexpr std::uint8_t kOrders[4][16] = {
          {0, 0, 0, kNo, 1, 1, 1, kNo, 2, 2, 2, kNo, 3, 3, 3, kNo},
          {4, 4, 4, kNo, 5, 5, 5, kNo, 6, 6, 6, kNo, 7, 7, 7, kNo},
          {8, 8, 8, kNo, 9, 9, 9, kNo, 10, 10, 10, kNo, 11, 11, 11, kNo},
          {12, 12, 12, kNo, 13, 13, 13, kNo, 14, 14, 14, kNo, 15, 15, 15, kNo}};
      for (; n >= kStep; n -= kStep, source += kStep, target += 4 * kStep) {
        const Bytes v = V::LoadLanes(source, kLane);
        Layouts::PutQuads(target, V::Shuffle(v, V::Order(kOrders[0])),
                          V::Shuffle(v, V::Order(kOrders[1])));
        Layouts::PutQuads(target + 32, V::Shuffle(v, V::Order(kOrders[2])),
                          V::Shuffle(v, V::Order(kOrders[3])));
      }
    }
    Convert<Grey8, Bgr32, kFromGrey8, kToBgr32>(source, target, n);
  }

  static void Narrow(const std::uint8_t* words, unsigned shift, std::uint8_t* target,
                     std::size_t n) {
    const auto count = V::Count(shift);
    for (; n >= kStep; n -= kStep, words += 2 * kStep, target += kStep) {
      const Words a = V::ShiftRight((Words)V::LoadLanes(words, 2 * kLane), count) & 0xFF;
      const Words b = V::ShiftRight((Words)V::LoadLanes(words + 16, 2 * kLane), count) & 0xFF;
      V::StoreLanes(target, kLane, V::Pack((Shorts)a, (Shorts)b));
    }
    kReferencePixelKernels.narrow(words, shift, target, n);
  }

  /// A table of 256 in 16 vectors, for look-up by shuffles. A shuffle finds a byte's entry in one
  /// row of 16 and gives 0 for bytes of 128 and above, that is, negative ones. Subtracting 16 again
  /// and again (stopping at the most negative number) makes all rows above the byte's give 0; so
  /// with each row XORed to the one before, those up to the byte's row leave its entry. This does
  /// half of the 256 values; the other half does it with the byte's highest bit turned.
  struct Table {
    Bytes rows[2][8];

    explicit Table(const std::uint8_t* entries) {
      for (int half = 0; half < 2; ++half) {
        Bytes previous{};
        for (int row = 0; row < 8; ++row) {
          const Bytes own = V::Order(entries + 128 * half + 16 * row);
          rows[half][row] = own ^ previous;
          previous = own;
        }
      }
    }

    Bytes At(Bytes v) const {
      Bytes low = v;
      Bytes high = v ^ 0x80;
      Bytes low_entry = V::Shuffle(rows[0][0], low);
      Bytes high_entry = V::Shuffle(rows[1][0], high);
#pragma GCC unroll 7
      for (int row = 1; row < 8; ++row) {
        low = V::SubSigned(low, Bytes{} + 16);
        high = V::SubSigned(high, Bytes{} + 16);
        low_entry ^= V::Shuffle(rows[0][row], low);
        high_entry ^= V::Shuffle(rows[1][row], high);
      }
      return low_entry ^ high_entry;
    }
  };

  /// The same without shuffles.
  struct ScalarTable {
    const std::uint8_t* entries;

    explicit ScalarTable(const std::uint8_t* table) : entries(table) {}

    Bytes At(Bytes v) const {
      std::uint8_t values[kStep];
      __builtin_memcpy(values, &v, sizeof v);
      for (std::uint8_t& value : values) {
        value = entries[value];
      }
      __builtin_memcpy(&v, values, sizeof v);
      return v;
    }
  };

  static void LookUp(const std::uint8_t* table, std::uint8_t* samples, std::size_t n) {
    if constexpr (V::kShuffles) {
      if (n >= kStep) {
        const Table entries(table);
        for (; n >= kStep; n -= kStep, samples += kStep) {
          V::StoreLanes(samples, kLane, entries.At(V::LoadLanes(samples, kLane)));
        }
      }
    }
    kReferencePixelKernels.look_up(table, samples, n);
  }

  static void LookUpPairs(const std::uint8_t* even, const std::uint8_t* odd, std::uint8_t* samples,
                          std::size_t n) {
    if constexpr (V::kShuffles) {
      if (n >= 2 * kStep) {
        const Table even_entries(even);
        const Table odd_entries(odd);
        for (; n >= 2 * kStep; n -= 2 * kStep, samples += 2 * kStep) {
          const Words a = (Words)V::LoadLanes(samples, 2 * kLane);
          const Words b = (Words)V::LoadLanes(samples + 16, 2 * kLane);
          const Bytes e = even_entries.At(V::Pack((Shorts)(a & 0xFF), (Shorts)(b & 0xFF)));
          const Bytes o = odd_entries.At(V::Pack((Shorts)(a >> 8), (Shorts)(b >> 8)));
          V::StoreLanes(samples, 2 * kLane, V::UnpackLow(e, o));
          V::StoreLanes(samples + 16, 2 * kLane, V::UnpackHigh(e, o));
        }
      }
    }
    kReferencePixelKernels.look_up_pairs(even, odd, samples, n);
  }

  /// See LumaRedTable. 15 bits of fraction find the rounded weights of all 256 levels.
  static Shorts LumaOf(Shorts blue, Shorts green, Shorts red) {
    const Shorts red_weight = Shorts{} + 9794;
    const Shorts blue_weight = Shorts{} + 3752;
    return V::MulRounded(red, red_weight) + V::MulRounded(blue, blue_weight) + green -
           V::MulRounded(green, red_weight) - V::MulRounded(green, blue_weight);
  }

  /// Returns how many pixels are left.
  template <class Layout, class Entries>
  static std::size_t ShiftLumaBy(const Entries& entries, std::uint8_t* pixels, std::size_t n) {
    for (; n >= kStep; n -= kStep, pixels += Layout::kBytes) {
      Planes p = Layout::Load(pixels);
      const Bytes luma =
          V::Pack(LumaOf(Layouts::Low(p.blue), Layouts::Low(p.green), Layouts::Low(p.red)),
                  LumaOf(Layouts::High(p.blue), Layouts::High(p.green), Layouts::High(p.red)));
      const Bytes wanted = entries.At(luma);
      // One of the two is 0.
      const Bytes more = V::SubSaturated(wanted, luma);
      const Bytes less = V::SubSaturated(luma, wanted);
      const auto shifted = [=](Bytes v) { return V::SubSaturated(V::AddSaturated(v, more), less); };
      Layout::Store(pixels, {shifted(p.blue), shifted(p.green), shifted(p.red), Bytes{}});
    }
    return n;
  }

  template <class Layout>
  static std::size_t ShiftLuma(const std::uint8_t* table, std::uint8_t* pixels, std::size_t n) {
    if (n < kStep) {
      return n;
    }
    if constexpr (V::kShuffles) {
      return ShiftLumaBy<Layout>(Table(table), pixels, n);
    } else {
      return ShiftLumaBy<Layout>(ScalarTable(table), pixels, n);
    }
  }

  static void ShiftLumaBgr24(const std::uint8_t* table, std::uint8_t* pixels, std::size_t n) {
    const std::size_t rest = ShiftLuma<Bgr24>(table, pixels, n);
    kReferencePixelKernels.shift_luma_bgr24(table, pixels + 3 * (n - rest), rest);
  }
  static void ShiftLumaBgr32(const std::uint8_t* table, std::uint8_t* pixels, std::size_t n) {
    const std::size_t rest = ShiftLuma<Bgr32>(table, pixels, n);
    kReferencePixelKernels.shift_luma_bgr32(table, pixels + 4 * (n - rest), rest);
  }

  static void MixBgr24(const ColorMix& mix, std::uint8_t* pixels, std::size_t n) {
    VectorMix<V>::template Mix<Bgr24, 3>(mix, pixels, n);
  }
  static void MixBgr32(const ColorMix& mix, std::uint8_t* pixels, std::size_t n) {
    VectorMix<V>::template Mix<Bgr32, 4>(mix, pixels, n);
  }

  static constexpr PixelKernels Kernels(const char* name) {
    return {
        .name = name,
        .convert = {{Plain<kFromGrey8, kToGrey8>, GreyToBgr24, GreyToBgr32},
                    {Convert<Bgr24, Grey8, kFromBgr24, kToGrey8>, Plain<kFromBgr24, kToBgr24>,
                     Convert<Bgr24, Bgr32, kFromBgr24, kToBgr32>},
                    {Convert<Bgr30, Grey8, kFromBgr30, kToGrey8>,
                     Convert<Bgr30, Bgr24, kFromBgr30, kToBgr24>,
                     Convert<Bgr30, Bgr32, kFromBgr30, kToBgr32>},
                    {Convert<Yuv411, Grey8, kFromYuv411, kToGrey8>,
                     Convert<Yuv411, Bgr24, kFromYuv411, kToBgr24>,
                     Convert<Yuv411, Bgr32, kFromYuv411, kToBgr32>},
                    {Convert<Yuv422, Grey8, kFromYuv422, kToGrey8>,
                     Convert<Yuv422, Bgr24, kFromYuv422, kToBgr24>,
                     Convert<Yuv422, Bgr32, kFromYuv422, kToBgr32>},
                    {Convert<Yuv444, Grey8, kFromYuv444, kToGrey8>,
                     Convert<Yuv444, Bgr24, kFromYuv444, kToBgr24>,
                     Convert<Yuv444, Bgr32, kFromYuv444, kToBgr32>}},
        .narrow = Narrow,
        .look_up = LookUp,
        .look_up_pairs = LookUpPairs,
        .shift_luma_bgr24 = ShiftLumaBgr24,
        .shift_luma_bgr32 = ShiftLumaBgr32,
        .mix_bgr24 = MixBgr24,
        .mix_bgr32 = MixBgr32,
    };
  }
};

}  // namespace vexa::imaging
