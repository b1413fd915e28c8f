// 32 bytes at a time.
#include "output/jpeg/kernels/dispatch.hpp"

#if defined(VEXA_AVX2_KERNELS)
#include <immintrin.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "output/jpeg/kernels/reference_kernels.hpp"

// Everything from here on is compiled for these processors; what was included before is not, so
// that no inline function of it ends up in the library in a form that others cannot run.
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2,bmi,bmi2,lzcnt"))), apply_to = function)
#else
#pragma GCC target("avx2,bmi,bmi2,lzcnt")
#endif

#include "output/jpeg/kernels/vector_block_coder.hpp"
#include "output/jpeg/kernels/vector_colours.hpp"
#include "output/jpeg/kernels/vector_transform.hpp"

namespace vexa::output {
namespace {

struct Avx2 {
  static constexpr std::size_t kLanes = 8;
  using Floats = float __attribute__((vector_size(32), may_alias));
  using Ints = std::int32_t __attribute__((vector_size(32), may_alias));

  static __m256i Get(const void* in) { return _mm256_loadu_si256(static_cast<const __m256i*>(in)); }
  static __m128i GetHalf(const void* in) {
    return _mm_loadu_si128(static_cast<const __m128i*>(in));
  }
  static void Put(void* out, __m256i v) { _mm256_storeu_si256(static_cast<__m256i*>(out), v); }

  static Floats Load(const std::uint8_t* samples) {
    const __m128i eight = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(samples));
    return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(eight));
  }

  static void Transpose(Floats (&parts)[1][8]) {
    Floats(&rows)[8] = parts[0];
    __m256 pairs[8];
    for (std::size_t i = 0; i < 8; i += 2) {
      pairs[i] = _mm256_unpacklo_ps(rows[i], rows[i + 1]);
      pairs[i + 1] = _mm256_unpackhi_ps(rows[i], rows[i + 1]);
    }
    __m256 fours[8];  // four rows of columns i and i + 4
    for (std::size_t i = 0; i < 8; i += 4) {
      fours[i] = _mm256_shuffle_ps(pairs[i], pairs[i + 2], 0x44);
      fours[i + 1] = _mm256_shuffle_ps(pairs[i], pairs[i + 2], 0xEE);
      fours[i + 2] = _mm256_shuffle_ps(pairs[i + 1], pairs[i + 3], 0x44);
      fours[i + 3] = _mm256_shuffle_ps(pairs[i + 1], pairs[i + 3], 0xEE);
    }
    for (std::size_t i = 0; i < 4; ++i) {
      rows[i] = _mm256_permute2f128_ps(fours[i], fours[i + 4], 0x20);
      rows[i + 4] = _mm256_permute2f128_ps(fours[i], fours[i + 4], 0x31);
    }
  }

  static void StoreColumns(const Ints (&columns)[8], std::int16_t* out) {
    __m256i pairs[4];  // of columns: two in each 32 bits
    for (std::size_t i = 0; i < 4; ++i) {
      const __m256i odd = _mm256_slli_epi32((__m256i)columns[2 * i + 1], 16);
      pairs[i] = _mm256_blend_epi16((__m256i)columns[2 * i], odd, 0xAA);
    }
    const __m256i low_01 = _mm256_unpacklo_epi32(pairs[0], pairs[1]);
    const __m256i high_01 = _mm256_unpackhi_epi32(pairs[0], pairs[1]);
    const __m256i low_23 = _mm256_unpacklo_epi32(pairs[2], pairs[3]);
    const __m256i high_23 = _mm256_unpackhi_epi32(pairs[2], pairs[3]);
    PutRows(out, _mm256_unpacklo_epi64(low_01, low_23));
    PutRows(out + 8, _mm256_unpackhi_epi64(low_01, low_23));
    PutRows(out + 16, _mm256_unpacklo_epi64(high_01, high_23));
    PutRows(out + 24, _mm256_unpackhi_epi64(high_01, high_23));
  }

  /// A row and the fourth one after it.
  static void PutRows(std::int16_t* out, __m256i rows) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(rows));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 32), _mm256_extracti128_si256(rows, 1));
  }

  static bool Any(Ints mask) { return _mm256_testz_si256((__m256i)mask, (__m256i)mask) == 0; }

  static std::uint64_t NonZero(const std::int16_t* coefficients) {
    return ~(ZerosOfHalf(coefficients) | ZerosOfHalf(coefficients + 32) << 32);
  }

  static std::uint64_t ZerosOfHalf(const std::int16_t* rows) {
    // The rows come out as 0, 2, 1, 3.
    const __m256i mixed = _mm256_packs_epi16(Get(rows), Get(rows + 16));
    const __m256i bytes = _mm256_permute4x64_epi64(mixed, 0xD8);
    return static_cast<std::uint32_t>(
        _mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, _mm256_setzero_si256())));
  }

  static constexpr std::ptrdiff_t kCopied = 32;

  static std::uint32_t CopyFindingFullBytes(const std::uint8_t* in, std::uint8_t* out) {
    const __m256i bytes = Get(in);
    Put(out, bytes);
    return static_cast<std::uint32_t>(
        _mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(-1))));
  }

  static bool AreSmall(const std::int16_t* coefficients) {
    const __m256i range = _mm256_set1_epi16(kCoefficientLimit);
    __m256i bits = _mm256_setzero_si256();
    for (std::size_t part = 0; part < 4; ++part) {
      bits = _mm256_or_si256(bits, _mm256_add_epi16(Get(coefficients + 16 * part), range));
    }
    return !Any((Ints)_mm256_srli_epi16(bits, 11));
  }

  struct Pixels {
    Ints blue_red;
    Ints green_green;
  };

  template <std::size_t kPixelSize>
  static Pixels LoadPixels(const std::uint8_t* bgr) {
    constexpr char kSize = kPixelSize;
    const __m128i blue_red = _mm_setr_epi8(0, -1, 2, -1, kSize, -1, kSize + 2, -1, 2 * kSize, -1,
                                           2 * kSize + 2, -1, 3 * kSize, -1, 3 * kSize + 2, -1);
    const __m128i green_green =
        _mm_setr_epi8(1, -1, 1, -1, kSize + 1, -1, kSize + 1, -1, 2 * kSize + 1, -1, 2 * kSize + 1,
                      -1, 3 * kSize + 1, -1, 3 * kSize + 1, -1);
    const __m256i pixels = _mm256_inserti128_si256(_mm256_castsi128_si256(GetHalf(bgr)),
                                                   GetHalf(bgr + 4 * kPixelSize), 1);
    return {
        .blue_red = (Ints)_mm256_shuffle_epi8(pixels, _mm256_broadcastsi128_si256(blue_red)),
        .green_green = (Ints)_mm256_shuffle_epi8(pixels, _mm256_broadcastsi128_si256(green_green))};
  }

  static Ints MultiplyAdd(Ints a, Ints b) {
    return (Ints)_mm256_madd_epi16((__m256i)a, (__m256i)b);
  }

  static void PutBytes(std::uint8_t* out, const Ints (&four)[4]) {
    const __m256i words_01 = _mm256_packs_epi32((__m256i)four[0], (__m256i)four[1]);
    const __m256i words_23 = _mm256_packs_epi32((__m256i)four[2], (__m256i)four[3]);
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    Put(out, _mm256_permutevar8x32_epi32(_mm256_packus_epi16(words_01, words_23), order));
  }

  /// Sixteen halved pairs as words.
  static __m256i HalvePairs(const std::uint8_t* in) {
    const __m256i sums = _mm256_maddubs_epi16(Get(in), _mm256_set1_epi8(1));
    return _mm256_srli_epi16(_mm256_add_epi16(sums, _mm256_set1_epi32(1 << 16)), 1);
  }
};

void Halve(const std::uint8_t* in, std::uint8_t* out, std::size_t n) {
  constexpr std::size_t kStep = 32;
  std::size_t i = 0;
  for (; i + kStep <= n; i += kStep) {
    const __m256i mixed =
        _mm256_packus_epi16(Avx2::HalvePairs(in + 2 * i), Avx2::HalvePairs(in + 2 * i + kStep));
    Avx2::Put(out + i, _mm256_permute4x64_epi64(mixed, 0xD8));
  }
  kReferenceJpegKernels.halve(in + 2 * i, out + i, n - i);
}

}  // namespace

constinit const JpegKernels kAvx2JpegKernels = {
    .name = "avx2",
    .convert_bgr24 = VectorColours<Avx2>::Convert<3>,
    .convert_bgr32 = VectorColours<Avx2>::Convert<4>,
    .halve = Halve,
    .transform = VectorTransform<Avx2>::Transform,
    .code_blocks = VectorBlockCoder<Avx2>::CodeBlocks,
};

}  // namespace vexa::output

#if defined(__clang__)
#pragma clang attribute pop
#endif
#endif
