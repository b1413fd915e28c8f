/// \file
/// Vectors of 16 samples, for vector_frames.hpp. Included by one file per instruction set, after
/// that file has switched the compiler to it; all of it lives in an unnamed namespace, so that no
/// two files share what each compiles for itself.
#pragma once

#include <emmintrin.h>

#include "imaging/kernels/frame_kernels.hpp"

namespace vexa::imaging {
namespace {

struct Sse2 {
  static constexpr std::size_t kWidth = 16;
  using Vector = __m128i;

  /// Bytes cannot be shuffled at will.
  static constexpr bool kShuffles = false;

  static const FrameKernels& Smaller() { return kReferenceFrameKernels; }

  static Vector Load(const void* in) { return _mm_loadu_si128(static_cast<const Vector*>(in)); }
  static void Store(void* out, Vector v) { _mm_storeu_si128(static_cast<Vector*>(out), v); }

  static Vector Reverse(Vector v) {
    const Vector pairs = _mm_or_si128(_mm_slli_epi16(v, 8), _mm_srli_epi16(v, 8));
    const Vector halves = _mm_shufflehi_epi16(_mm_shufflelo_epi16(pairs, 0x1B), 0x1B);
    return _mm_shuffle_epi32(halves, 0x4E);
  }

  static Vector LoadRows(const Sample* in, std::ptrdiff_t stride, std::ptrdiff_t row) {
    return Load(in + row * stride);
  }
  static Vector UnpackLow(Vector a, Vector b) { return _mm_unpacklo_epi8(a, b); }
  static Vector UnpackHigh(Vector a, Vector b) { return _mm_unpackhi_epi8(a, b); }

  static Vector Zero() { return _mm_setzero_si128(); }
  static Vector Words(std::int16_t word) { return _mm_set1_epi16(word); }
  static Vector Or(Vector a, Vector b) { return _mm_or_si128(a, b); }
  static Vector And(Vector a, Vector b) { return _mm_and_si128(a, b); }
  static Vector AndNot(Vector mask, Vector v) { return _mm_andnot_si128(mask, v); }
  /// a where the bytes of the mask are 0xFF, b where they are 0.
  static Vector Pick(Vector mask, Vector a, Vector b) { return Or(And(mask, a), AndNot(mask, b)); }
  static Vector Equal(Vector a, Vector b) { return _mm_cmpeq_epi8(a, b); }
  static Vector Min(Vector a, Vector b) { return _mm_min_epu8(a, b); }
  static Vector Max(Vector a, Vector b) { return _mm_max_epu8(a, b); }
  static Vector Bytes(std::uint8_t byte) { return _mm_set1_epi8(static_cast<char>(byte)); }
  /// One bit for each sample, its highest.
  static unsigned HighBits(Vector v) { return static_cast<unsigned>(_mm_movemask_epi8(v)); }
  static Vector AddClamped(Vector a, Vector b) { return _mm_adds_epu8(a, b); }
  static Vector SubClamped(Vector a, Vector b) { return _mm_subs_epu8(a, b); }
  static Vector AddWords(Vector a, Vector b) { return _mm_add_epi16(a, b); }
  static Vector AddQuads(Vector a, Vector b) { return _mm_add_epi64(a, b); }
  /// Sums of eight samples each, in 64 bits.
  static Vector SumsOfEights(Vector v) { return _mm_sad_epu8(v, Zero()); }
  static Vector SubWords(Vector a, Vector b) { return _mm_sub_epi16(a, b); }
  template <int kBits>
  static Vector ShiftWordsRight(Vector v) {
    return _mm_srli_epi16(v, kBits);
  }

  /// kWidth / 2 samples as words, in order.
  static Vector Widen(const Sample* in) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const Vector*>(in)), Zero());
  }
  /// Words of 0..255 as samples, in order.
  static Vector Narrow(Vector low, Vector high) { return _mm_packus_epi16(low, high); }

  static Vector LookUp(const Sample* table, Vector indices) {
    alignas(16) Sample lanes[kWidth];
    _mm_store_si128(reinterpret_cast<Vector*>(lanes), indices);
    for (Sample& lane : lanes) {
      lane = table[lane];
    }
    return _mm_load_si128(reinterpret_cast<const Vector*>(lanes));
  }
};

}  // namespace
}  // namespace vexa::imaging
