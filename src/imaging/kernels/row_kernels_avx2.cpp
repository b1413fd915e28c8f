// 32 pixels at a time.
#include "imaging/kernels/dispatch.hpp"

#if defined(VEXA_AVX2_KERNELS)
#include <immintrin.h>
#pragma GCC target("avx2")
#include "imaging/kernels/vector_rows.hpp"

namespace vexa::imaging {
namespace {

struct Avx2 {
  static constexpr std::size_t kWidth = 32;
  using Bytes = std::uint8_t __attribute__((vector_size(kWidth)));
  using Words = std::uint16_t __attribute__((vector_size(kWidth)));
  using Shorts = std::int16_t __attribute__((vector_size(kWidth)));

  static void Put(Sample* out, __m256i v) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), v);
  }

  /// Stores the lower halves of a and b side by side.
  static void PutLower(Sample* out, __m256i a, __m256i b) {
    Put(out, _mm256_permute2x128_si256(a, b, 0x20));
  }
  static void PutUpper(Sample* out, __m256i a, __m256i b) {
    Put(out, _mm256_permute2x128_si256(a, b, 0x31));
  }

  // Both work on the halves of the vectors side by side, pixels 0..15 and 16..31, and put the
  // pieces into order as they store them.

  static void StoreBgr24(Bytes blue, Bytes green, Bytes red, Sample* out) {
    // Sample i of 16 belongs at byte 3 i of 48 (green and red 1 and 2 further); modulo 16 these
    // are all different, so that one shuffle per colour serves all three vectors of the result.
    const __m256i order = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10, 5));
    const __m256i b = _mm256_shuffle_epi8((__m256i)blue, order);
    const __m256i g = _mm256_shuffle_epi8((__m256i)green, _mm256_alignr_epi8(order, order, 15));
    const __m256i r = _mm256_shuffle_epi8((__m256i)red, _mm256_alignr_epi8(order, order, 14));
    const __m256i third = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0));
    const __m256i second = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0));
    const auto in_turn = [=](__m256i x, __m256i y, __m256i z) {
      return _mm256_blendv_epi8(_mm256_blendv_epi8(x, y, second), z, third);
    };
    const __m256i bytes_0 = in_turn(b, g, r);
    const __m256i bytes_16 = in_turn(g, r, b);
    const __m256i bytes_32 = in_turn(r, b, g);
    PutLower(out, bytes_0, bytes_16);
    Put(out + 32, _mm256_blend_epi32(bytes_32, bytes_0, 0xF0));
    PutUpper(out + 64, bytes_16, bytes_32);
  }

  static void StoreBgr32(Bytes blue, Bytes green, Bytes red, Sample* out) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i bg_low = _mm256_unpacklo_epi8((__m256i)blue, (__m256i)green);
    const __m256i bg_high = _mm256_unpackhi_epi8((__m256i)blue, (__m256i)green);
    const __m256i r_low = _mm256_unpacklo_epi8((__m256i)red, zero);
    const __m256i r_high = _mm256_unpackhi_epi8((__m256i)red, zero);
    const __m256i pixels_0 = _mm256_unpacklo_epi16(bg_low, r_low);
    const __m256i pixels_4 = _mm256_unpackhi_epi16(bg_low, r_low);
    const __m256i pixels_8 = _mm256_unpacklo_epi16(bg_high, r_high);
    const __m256i pixels_12 = _mm256_unpackhi_epi16(bg_high, r_high);
    PutLower(out, pixels_0, pixels_4);
    PutLower(out + 32, pixels_8, pixels_12);
    PutUpper(out + 64, pixels_0, pixels_4);
    PutUpper(out + 96, pixels_8, pixels_12);
  }
};

}  // namespace

constinit const RowKernels kAvx2RowKernels = VectorRows<Avx2>::Kernels("avx2");

}  // namespace vexa::imaging
#endif
