// 16 pixels at a time, for processors that can shuffle bytes.
#include "imaging/kernels/dispatch.hpp"

#if defined(__SSE2__)
#include <immintrin.h>
#pragma GCC target("ssse3")
#include "imaging/kernels/vector_rows.hpp"

namespace vexa::imaging {
namespace {

struct Ssse3 {
  static constexpr std::size_t kWidth = 16;
  using Bytes = std::uint8_t __attribute__((vector_size(kWidth)));
  using Words = std::uint16_t __attribute__((vector_size(kWidth)));
  using Shorts = std::int16_t __attribute__((vector_size(kWidth)));

  static void Put(Sample* out, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(out), v); }

  static void StoreBgr24(Bytes blue, Bytes green, Bytes red, Sample* out) {
    const __m128i b = _mm_shuffle_epi8(
        (__m128i)blue, _mm_setr_epi8(0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10, 5));
    const __m128i g = _mm_shuffle_epi8(
        (__m128i)green, _mm_setr_epi8(5, 0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10));
    const __m128i r = _mm_shuffle_epi8(
        (__m128i)red, _mm_setr_epi8(10, 5, 0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15));
    const __m128i m0 = _mm_setr_epi8(-1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1);
    const __m128i m1 = _mm_setr_epi8(0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0);
    const auto pick = [=](__m128i a, __m128i b1, __m128i c) {
      return _mm_or_si128(
          _mm_and_si128(a, m0),
          _mm_andnot_si128(m0, _mm_or_si128(_mm_and_si128(b1, m1), _mm_andnot_si128(m1, c))));
    };
    Put(out, pick(b, g, r));
    Put(out + 16, pick(g, r, b));
    Put(out + 32, pick(r, b, g));
  }
  static void StoreBgr32(Bytes blue, Bytes green, Bytes red, Sample* out) {
    const __m128i bg_low = _mm_unpacklo_epi8((__m128i)blue, (__m128i)green);
    const __m128i bg_high = _mm_unpackhi_epi8((__m128i)blue, (__m128i)green);
    const __m128i r_low = _mm_unpacklo_epi8((__m128i)red, _mm_setzero_si128());
    const __m128i r_high = _mm_unpackhi_epi8((__m128i)red, _mm_setzero_si128());
    Put(out, _mm_unpacklo_epi16(bg_low, r_low));
    Put(out + 16, _mm_unpackhi_epi16(bg_low, r_low));
    Put(out + 32, _mm_unpacklo_epi16(bg_high, r_high));
    Put(out + 48, _mm_unpackhi_epi16(bg_high, r_high));
  }
};

}  // namespace
extern const RowKernels kSsse3RowKernels;
constinit const RowKernels kSsse3RowKernels = VectorRows<Ssse3>::Kernels("ssse3");

}  // namespace vexa::imaging
#endif
