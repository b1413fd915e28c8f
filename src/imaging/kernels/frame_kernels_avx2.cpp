// 32 samples at a time.
#include "imaging/kernels/frame_kernels.hpp"

#if defined(VEXA_AVX2_KERNELS)
#include <immintrin.h>
#pragma GCC target("avx2")
#include "imaging/kernels/vector_frames.hpp"
#include "imaging/kernels/vector_look_up.hpp"

namespace vexa::imaging {
namespace {

struct Avx2 {
  static constexpr std::size_t kWidth = 32;
  using Vector = __m256i;

  static constexpr bool kShuffles = true;

  static const FrameKernels& Smaller() { return kSse41FrameKernels; }

  static Vector Load(const void* in) { return _mm256_loadu_si256(static_cast<const Vector*>(in)); }
  static void Store(void* out, Vector v) { _mm256_storeu_si256(static_cast<Vector*>(out), v); }
  /// 16 samples from each place, side by side.
  static Vector LoadPair(const Sample* low, const Sample* high) {
    const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(low));
    return _mm256_inserti128_si256(_mm256_castsi128_si256(first),
                                   _mm_loadu_si128(reinterpret_cast<const __m128i*>(high)), 1);
  }

  static Vector Reverse(Vector v) {
    const Vector order = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0));
    return _mm256_permute4x64_epi64(_mm256_shuffle_epi8(v, order), 0x4E);
  }

  /// Row `row` of the upper and of the lower sixteen: the halves are transposed side by side.
  static Vector LoadRows(const Sample* in, std::ptrdiff_t stride, std::ptrdiff_t row) {
    return LoadPair(in + row * stride, in + (row + 16) * stride);
  }
  static Vector UnpackLow(Vector a, Vector b) { return _mm256_unpacklo_epi8(a, b); }
  static Vector UnpackHigh(Vector a, Vector b) { return _mm256_unpackhi_epi8(a, b); }

  static void StorePair(Sample* low, Sample* high, Vector v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(low), _mm256_castsi256_si128(v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(high), _mm256_extracti128_si256(v, 1));
  }
  static Vector LoadTwice(const Sample* in) { return LoadPair(in, in); }

  static Vector Zero() { return _mm256_setzero_si256(); }
  static Vector Bytes(std::uint8_t byte) { return _mm256_set1_epi8(static_cast<char>(byte)); }
  static Vector Words(std::int16_t word) { return _mm256_set1_epi16(word); }
  static Vector Or(Vector a, Vector b) { return _mm256_or_si256(a, b); }
  static Vector Xor(Vector a, Vector b) { return _mm256_xor_si256(a, b); }
  static Vector Pick(Vector mask, Vector a, Vector b) { return _mm256_blendv_epi8(b, a, mask); }
  static Vector And(Vector a, Vector b) { return _mm256_and_si256(a, b); }
  static Vector AndNot(Vector mask, Vector v) { return _mm256_andnot_si256(mask, v); }
  static Vector Equal(Vector a, Vector b) { return _mm256_cmpeq_epi8(a, b); }
  static bool AllZero(Vector v) { return _mm256_testz_si256(v, v) != 0; }
  static Vector Min(Vector a, Vector b) { return _mm256_min_epu8(a, b); }
  static Vector Max(Vector a, Vector b) { return _mm256_max_epu8(a, b); }
  /// One bit for each sample, its highest.
  static unsigned HighBits(Vector v) { return static_cast<unsigned>(_mm256_movemask_epi8(v)); }
  static Vector AddClamped(Vector a, Vector b) { return _mm256_adds_epu8(a, b); }
  static Vector SubClamped(Vector a, Vector b) { return _mm256_subs_epu8(a, b); }
  static Vector AddWords(Vector a, Vector b) { return _mm256_add_epi16(a, b); }
  static Vector AddQuads(Vector a, Vector b) { return _mm256_add_epi64(a, b); }
  static Vector SumsOfEights(Vector v) { return _mm256_sad_epu8(v, Zero()); }
  static Vector SubWords(Vector a, Vector b) { return _mm256_sub_epi16(a, b); }
  static Vector MultiplyHighRounded(Vector a, Vector b) { return _mm256_mulhrs_epi16(a, b); }
  template <int kBits>
  static Vector ShiftWordsLeft(Vector v) {
    return _mm256_slli_epi16(v, kBits);
  }
  template <int kBits>
  static Vector ShiftWordsRight(Vector v) {
    return _mm256_srli_epi16(v, kBits);
  }

  /// kWidth / 2 samples as words, in order.
  static Vector Widen(const Sample* in) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(in)));
  }
  /// Words of 0..255 as samples, in order.
  static Vector Narrow(Vector low, Vector high) {
    return _mm256_permute4x64_epi64(_mm256_packus_epi16(low, high), 0xD8);
  }

  /// In both halves of v at once.
  static Vector Shuffle(Vector v, Vector order) { return _mm256_shuffle_epi8(v, order); }
  static Vector LookUp(const Sample* table, Vector indices) {
    return VectorLookUp<Avx2>::Of(table, indices);
  }
};

}  // namespace

constinit const FrameKernels kAvx2FrameKernels = MakeFrameKernels<Avx2>("avx2");

}  // namespace vexa::imaging
#endif
