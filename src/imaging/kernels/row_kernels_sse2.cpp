// 16 pixels at a time, for every x86 processor that the library runs on.
#include "imaging/kernels/dispatch.hpp"

#if defined(__SSE2__)
#include <emmintrin.h>

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

}  // namespace

constinit const RowKernels kSse2RowKernels = VectorRows<Sse2>::Kernels("sse2");

}  // namespace vexa::imaging
#endif
