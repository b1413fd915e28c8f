/// \file
/// The inner loops in vectors, for any vector width. Included by one file per instruction set,
/// after that file has switched the compiler to it.
///
/// What comes from here is compiled for that instruction set, so none of it may be shared with
/// other files: V lives in an unnamed namespace, and nothing here uses templates or inline
/// functions of other headers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/kernels/dispatch.hpp"

namespace vexa::imaging {

/// V describes the vectors: kWidth (bytes), the types Bytes and Words (unsigned, 8 and 16 bits)
/// and Shorts (signed, 16 bits), and StoreBgr24 and StoreBgr32, which interleave kWidth pixels.
template <class V>
struct VectorRows {
  using Bytes = typename V::Bytes;
  using Words = typename V::Words;
  using Shorts = typename V::Shorts;

  static Bytes Load(const Sample* p) {
    Bytes v;
    __builtin_memcpy(&v, p, sizeof v);
    return v;
  }
  static void Store(Sample* p, Bytes v) { __builtin_memcpy(p, &v, sizeof v); }

  // Samples in pairs: a word holds an even sample in its low and an odd one in its high byte.
  static Words Even(Bytes v) { return (Words)v & 0x00FF; }
  static Words Odd(Bytes v) { return (Words)v >> 8; }
  static Bytes Join(Words even, Words odd) { return (Bytes)(even | (odd << 8)); }

  static Bytes PickByParity(Bytes even, Bytes odd) {
    return (Bytes)(((Words)even & 0x00FF) | ((Words)odd & 0xFF00));
  }
  static Bytes HalfSum(Bytes a, Bytes b) {
    return (a & b) + (Bytes)(((Words)(a ^ b) >> 1) & 0x7F7F);
  }

  /// Calls step for the starts of whole vectors that cover n samples, the last of them pushed back
  /// over the one before; all starts are even. Returns how many samples are done: n, or n - 1, or
  /// 0 if n is less than a vector.
  template <class Step>
  static std::size_t ForEachVector(std::size_t n, Step step) {
    if (n < V::kWidth) {
      return 0;
    }
    const std::size_t last = (n - V::kWidth) & ~std::size_t{1};
    std::size_t i = 0;
    while (true) {
      step(i);
      if (i == last) {
        return last + V::kWidth;
      }
      i = i + V::kWidth < last ? i + V::kWidth : last;
    }
  }

  /// What the weight tables say, for sums of two samples in words.
  static Words Weigh(Words inner, Words outer) {
    const Shorts value = (Shorts)((inner * 5 + 4) >> 3) - (Shorts)((outer + 4) >> 3);
    const Shorts floored = value < 0 ? Shorts{} : value;
    return (Words)(floored > 255 ? Shorts{} + 255 : floored);
  }
  static Bytes FourTapOf(Bytes a, Bytes b, Bytes c, Bytes d) {
    return Join(Weigh(Even(a) + Even(b), Even(c) + Even(d)),
                Weigh(Odd(a) + Odd(b), Odd(c) + Odd(d)));
  }

  // What the pixels from `at`, whose samples are v, lack.
  static Bytes Nothing(const Sample*, Bytes) { return Bytes{}; }
  static Bytes Partner(const Sample*, Bytes v) { return Join(Odd(v), Even(v)); }
  static Bytes MeanBeside(const Sample* at, Bytes) { return HalfSum(Load(at - 1), Load(at + 1)); }
  static Bytes FourTapBeside(const Sample* at, Bytes) {
    return FourTapOf(Load(at - 1), Load(at + 1), Load(at - 3), Load(at + 3));
  }

  /// A row pass; `rest` does the samples that do not fill a vector.
  template <Bytes (*kMissing)(const Sample*, Bytes)>
  static void RowPass(const Sample* s, Sample* even, Sample* odd, std::size_t n,
                      decltype(RowKernels::row_mean) rest) {
    const std::size_t done = ForEachVector(n, [=](std::size_t i) {
      const Bytes present = Load(s + i);
      const Bytes absent = kMissing(s + i, present);
      Store(even + i, PickByParity(present, absent));
      Store(odd + i, PickByParity(absent, present));
    });
    rest(s + done, even + done, odd + done, n - done);
  }

  static void RowMosaic(const Sample* s, Sample* even, Sample* odd, std::size_t n) {
    RowPass<Nothing>(s, even, odd, n, kReferenceRowKernels.row_mosaic);
  }
  static void RowNearest(const Sample* s, Sample* even, Sample* odd, std::size_t n) {
    RowPass<Partner>(s, even, odd, n, kReferenceRowKernels.row_nearest);
  }
  static void RowMean(const Sample* s, Sample* even, Sample* odd, std::size_t n) {
    RowPass<MeanBeside>(s, even, odd, n, kReferenceRowKernels.row_mean);
  }
  static void RowFourTap(const Sample* s, Sample* even, Sample* odd, std::size_t n) {
    RowPass<FourTapBeside>(s, even, odd, n, kReferenceRowKernels.row_four_tap);
  }

  static void Mean(const Sample* a, const Sample* b, Sample* out, std::size_t n) {
    const std::size_t done =
        ForEachVector(n, [=](std::size_t i) { Store(out + i, HalfSum(Load(a + i), Load(b + i))); });
    kReferenceRowKernels.mean(a + done, b + done, out + done, n - done);
  }

  static void FourTap(const Sample* a, const Sample* b, const Sample* c, const Sample* d,
                      Sample* out, std::size_t n) {
    const std::size_t done = ForEachVector(n, [=](std::size_t i) {
      Store(out + i, FourTapOf(Load(a + i), Load(b + i), Load(c + i), Load(d + i)));
    });
    kReferenceRowKernels.four_tap(a + done, b + done, c + done, d + done, out + done, n - done);
  }

  static void CellColor(const Sample* nearer, const Sample* farther, Sample* out, std::size_t n) {
    const std::size_t done = ForEachVector(n, [=](std::size_t i) {
      const Words left = Even(Load(nearer + i)) * 3 + Even(Load(farther + i));
      const Words right = Even(Load(nearer + i + 2)) * 3 + Even(Load(farther + i + 2));
      Store(out + i, Join((left * 3 + right) >> 4, (right * 3 + left) >> 4));
    });
    kReferenceRowKernels.cell_color(nearer + done, farther + done, out + done, n - done);
  }

  static void CellGreen(const Sample* a, const Sample* b, Sample* out, std::size_t n) {
    const std::size_t done = ForEachVector(n, [=](std::size_t i) {
      Store(out + i, HalfSum(PickByParity(Load(a + i), Load(a + i + 1)),
                             PickByParity(Load(b + i + 1), Load(b + i))));
    });
    kReferenceRowKernels.cell_green(a + done, b + done, out + done, n - done);
  }

  static void StoreBgr24(const Sample* blue, const Sample* green, const Sample* red, Sample* out,
                         std::size_t n) {
    const std::size_t done = ForEachVector(n, [=](std::size_t i) {
      V::StoreBgr24(Load(blue + i), Load(green + i), Load(red + i), out + 3 * i);
    });
    kReferenceRowKernels.store_bgr24(blue + done, green + done, red + done, out + 3 * done,
                                     n - done);
  }

  static void StoreBgr32(const Sample* blue, const Sample* green, const Sample* red, Sample* out,
                         std::size_t n) {
    const std::size_t done = ForEachVector(n, [=](std::size_t i) {
      V::StoreBgr32(Load(blue + i), Load(green + i), Load(red + i), out + 4 * i);
    });
    kReferenceRowKernels.store_bgr32(blue + done, green + done, red + done, out + 4 * done,
                                     n - done);
  }

  static constexpr RowKernels Kernels(const char* name) {
    return {
        .name = name,
        .row_mosaic = RowMosaic,
        .row_nearest = RowNearest,
        .row_mean = RowMean,
        .row_four_tap = RowFourTap,
        .mean = Mean,
        .four_tap = FourTap,
        .cell_color = CellColor,
        .cell_green = CellGreen,
        .store_bgr24 = StoreBgr24,
        .store_bgr32 = StoreBgr32,
    };
  }
};

}  // namespace vexa::imaging
