// 32 pixels at a time, in two lanes.
#include "imaging/kernels/pixel_kernels.hpp"

#if defined(VEXA_AVX2_KERNELS)
#include <immintrin.h>
#pragma GCC target("avx2")
#include "imaging/kernels/vector_pixels.hpp"

namespace vexa::imaging {
namespace {

struct Avx2 {
  static constexpr std::size_t kWidth = 32;
  static constexpr bool kShuffles = true;
  using Bytes = std::uint8_t __attribute__((vector_size(kWidth)));
  using Words = std::uint16_t __attribute__((vector_size(kWidth)));
  using Shorts = std::int16_t __attribute__((vector_size(kWidth)));
  using Ints = std::int32_t __attribute__((vector_size(kWidth)));

  static Bytes LoadLanes(const std::uint8_t* p, std::size_t step) {
    if (step == kWidth / 2) {
      return (Bytes)_mm256_loadu_si256((const __m256i*)p);
    }
    return (Bytes)_mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128((const __m128i*)p)),
        _mm_loadu_si128((const __m128i*)(p + step)), 1);
  }
  static void StoreLanes(std::uint8_t* p, std::size_t step, Bytes v) {
    if (step == kWidth / 2) {
      _mm256_storeu_si256((__m256i*)p, (__m256i)v);
      return;
    }
    _mm_storeu_si128((__m128i*)p, _mm256_castsi256_si128((__m256i)v));
    _mm_storeu_si128((__m128i*)(p + step), _mm256_extracti128_si256((__m256i)v, 1));
  }
  static void UpdatePairs(std::uint8_t* p, std::size_t step, Bytes first, Bytes second,
                          Bytes kept) {
    const auto update = [kept](std::uint8_t* at, __m256i v) {
      const __m256i old = _mm256_loadu_si256((const __m256i*)at);
      _mm256_storeu_si256((__m256i*)at, _mm256_or_si256(v, _mm256_and_si256(old, (__m256i)kept)));
    };
    update(p, _mm256_permute2x128_si256((__m256i)first, (__m256i)second, 0x20));
    update(p + step, _mm256_permute2x128_si256((__m256i)first, (__m256i)second, 0x31));
  }
  static Bytes UnpackLow(Bytes a, Bytes b) {
    return (Bytes)_mm256_unpacklo_epi8((__m256i)a, (__m256i)b);
  }
  static Bytes UnpackHigh(Bytes a, Bytes b) {
    return (Bytes)_mm256_unpackhi_epi8((__m256i)a, (__m256i)b);
  }
  static Bytes UnpackLow16(Bytes a, Bytes b) {
    return (Bytes)_mm256_unpacklo_epi16((__m256i)a, (__m256i)b);
  }
  static Bytes UnpackHigh16(Bytes a, Bytes b) {
    return (Bytes)_mm256_unpackhi_epi16((__m256i)a, (__m256i)b);
  }
  static Bytes Pack(Shorts a, Shorts b) {
    return (Bytes)_mm256_packus_epi16((__m256i)a, (__m256i)b);
  }
  static Shorts PackInts(Ints a, Ints b) {
    return (Shorts)_mm256_packs_epi32((__m256i)a, (__m256i)b);
  }
  static Shorts MulHigh(Shorts a, Shorts b) {
    return (Shorts)_mm256_mulhi_epi16((__m256i)a, (__m256i)b);
  }
  static Shorts MulRounded(Shorts a, Shorts b) {
    return (Shorts)_mm256_mulhrs_epi16((__m256i)a, (__m256i)b);
  }
  static Words MulHighUnsigned(Words a, Words b) {
    return (Words)_mm256_mulhi_epu16((__m256i)a, (__m256i)b);
  }
  static __m128i Count(unsigned shift) { return _mm_cvtsi32_si128((int)shift); }
  static Words ShiftRight(Words v, __m128i count) {
    return (Words)_mm256_srl_epi16((__m256i)v, count);
  }
  static Bytes AddSaturated(Bytes a, Bytes b) {
    return (Bytes)_mm256_adds_epu8((__m256i)a, (__m256i)b);
  }
  static Bytes SubSaturated(Bytes a, Bytes b) {
    return (Bytes)_mm256_subs_epu8((__m256i)a, (__m256i)b);
  }
  static Bytes SubSigned(Bytes a, Bytes b) {
    return (Bytes)_mm256_subs_epi8((__m256i)a, (__m256i)b);
  }
  static Bytes Order(const std::uint8_t* bytes) {
    return (Bytes)_mm256_broadcastsi128_si256(_mm_loadu_si128((const __m128i*)bytes));
  }
  static Bytes Shuffle(Bytes v, Bytes order) {
    return (Bytes)_mm256_shuffle_epi8((__m256i)v, (__m256i)order);
  }
  static Bytes Select(Bytes mask, Bytes a, Bytes b) {
    return (Bytes)_mm256_blendv_epi8((__m256i)b, (__m256i)a, (__m256i)mask);
  }
};

}  // namespace

constinit const PixelKernels kAvx2PixelKernels = VectorPixels<Avx2>::Kernels("avx2");

}  // namespace vexa::imaging
#endif
