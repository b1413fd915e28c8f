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
};

}  // namespace
}  // namespace vexa::imaging
