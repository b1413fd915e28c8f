// 16 pixels at a time: for every x86 processor that the library runs on, and with one loop replaced
// for those that can shuffle bytes (all but the very old; many small ones have nothing better).
#include "imaging/kernels/dispatch.hpp"

#if defined(__SSE2__)
#include <tmmintrin.h>

#include "imaging/kernels/vector_rows.hpp"

namespace vexa::imaging {
namespace {

struct Sse2 {
  static constexpr std::size_t kWidth = 16;
  using Bytes = std::uint8_t __attribute__((vector_size(kWidth)));
  using Words = std::uint16_t __attribute__((vector_size(kWidth)));
  using Shorts = std::int16_t __attribute__((vector_size(kWidth)));

  /// Four BGR32 pixels each.
  struct Pixels {
    __m128i quad[4];
  };

  static Pixels Interleave(Bytes blue, Bytes green, Bytes red) {
    const __m128i bg_low = _mm_unpacklo_epi8((__m128i)blue, (__m128i)green);
    const __m128i bg_high = _mm_unpackhi_epi8((__m128i)blue, (__m128i)green);
    const __m128i r_low = _mm_unpacklo_epi8((__m128i)red, _mm_setzero_si128());
    const __m128i r_high = _mm_unpackhi_epi8((__m128i)red, _mm_setzero_si128());
    return {{_mm_unpacklo_epi16(bg_low, r_low), _mm_unpackhi_epi16(bg_low, r_low),
             _mm_unpacklo_epi16(bg_high, r_high), _mm_unpackhi_epi16(bg_high, r_high)}};
  }

  /// Takes the fourth bytes out: 12 bytes and four zeros.
  static __m128i Close(__m128i quad) {
    const __m128i first = _mm_set1_epi64x(0x000000FFFFFF);
    const __m128i second = _mm_set1_epi64x(0xFFFFFF000000);
    const __m128i pairs =
        _mm_or_si128(_mm_and_si128(quad, first), _mm_and_si128(_mm_srli_epi64(quad, 8), second));
    const __m128i upper = _mm_slli_si128(_mm_srli_si128(pairs, 8), 6);
    return _mm_or_si128(_mm_move_epi64(pairs), upper);
  }

  static __m128i Get(const Sample* in) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
  }
  static void Put(Sample* out, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(out), v); }

  static void StoreBgr24(Bytes blue, Bytes green, Bytes red, Sample* out) {
    const Pixels pixels = Interleave(blue, green, red);
    const __m128i a = Close(pixels.quad[0]);
    const __m128i b = Close(pixels.quad[1]);
    const __m128i c = Close(pixels.quad[2]);
    const __m128i d = Close(pixels.quad[3]);
    Put(out, _mm_or_si128(a, _mm_slli_si128(b, 12)));
    Put(out + 16, _mm_or_si128(_mm_srli_si128(b, 4), _mm_slli_si128(c, 8)));
    Put(out + 32, _mm_or_si128(_mm_srli_si128(c, 8), _mm_slli_si128(d, 4)));
  }

  static void StoreBgr32(Bytes blue, Bytes green, Bytes red, Sample* out) {
    const Pixels pixels = Interleave(blue, green, red);
    for (std::size_t i = 0; i < 4; ++i) {
      Put(out + 16 * i, pixels.quad[i]);
    }
  }
};

__attribute__((target("ssse3"))) void StoreBgr24Shuffled(const Sample* blue, const Sample* green,
                                                         const Sample* red, Sample* out,
                                                         std::size_t n) {
  // Sample i of 16 belongs at byte 3 i of 48 (green and red 1 and 2 further); modulo 16 these are
  // all different, so that one shuffle per colour serves all three vectors of the result.
  const __m128i order = _mm_setr_epi8(0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10, 5);
  const __m128i order_green = _mm_alignr_epi8(order, order, 15);
  const __m128i order_red = _mm_alignr_epi8(order, order, 14);
  const __m128i first = _mm_setr_epi8(-1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1);
  const __m128i second = _mm_slli_si128(first, 1);
  const __m128i third = _mm_slli_si128(first, 2);
  std::size_t i = 0;
  for (; i + Sse2::kWidth <= n; i += Sse2::kWidth) {
    const __m128i b = _mm_shuffle_epi8(Sse2::Get(blue + i), order);
    const __m128i g = _mm_shuffle_epi8(Sse2::Get(green + i), order_green);
    const __m128i r = _mm_shuffle_epi8(Sse2::Get(red + i), order_red);
    const auto in_turn = [=](__m128i x, __m128i y, __m128i z) {
      return _mm_or_si128(_mm_or_si128(_mm_and_si128(x, first), _mm_and_si128(y, second)),
                          _mm_and_si128(z, third));
    };
    Sse2::Put(out + 3 * i, in_turn(b, g, r));
    Sse2::Put(out + 3 * i + 16, in_turn(g, r, b));
    Sse2::Put(out + 3 * i + 32, in_turn(r, b, g));
  }
  kReferenceRowKernels.store_bgr24(blue + i, green + i, red + i, out + 3 * i, n - i);
}

constexpr RowKernels MakeSsse3RowKernels() {
  RowKernels kernels = VectorRows<Sse2>::Kernels("ssse3");
  kernels.store_bgr24 = StoreBgr24Shuffled;
  return kernels;
}

}  // namespace

constinit const RowKernels kSse2RowKernels = VectorRows<Sse2>::Kernels("sse2");
constinit const RowKernels kSsse3RowKernels = MakeSsse3RowKernels();

}  // namespace vexa::imaging
#endif
