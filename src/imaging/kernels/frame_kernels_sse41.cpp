// 16 samples at a time, for processors that can shuffle and pick bytes: all but the very old; many
// small ones have nothing better.
#include "imaging/kernels/frame_kernels.hpp"

#if defined(__SSE2__)
#include <smmintrin.h>
#pragma GCC target("sse4.1")
#include "imaging/kernels/vector_frames.hpp"
#include "imaging/kernels/vector_look_up.hpp"
#include "imaging/kernels/vector_sse2.hpp"

namespace vexa::imaging {
namespace {

struct Sse41 : Sse2 {
  static constexpr bool kShuffles = true;

  static Vector Reverse(Vector v) {
    return _mm_shuffle_epi8(v, _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0));
  }

  static Vector LoadPair(const Sample* low, const Sample*) { return Load(low); }
  static void StorePair(Sample* low, Sample*, Vector v) { Store(low, v); }
  static Vector LoadTwice(const Sample* in) { return Load(in); }
  static Vector Shuffle(Vector v, Vector order) { return _mm_shuffle_epi8(v, order); }
  static Vector Xor(Vector a, Vector b) { return _mm_xor_si128(a, b); }
  static Vector Pick(Vector mask, Vector a, Vector b) { return _mm_blendv_epi8(b, a, mask); }
  static bool AllZero(Vector v) { return _mm_testz_si128(v, v) != 0; }
  static Vector MultiplyHighRounded(Vector a, Vector b) { return _mm_mulhrs_epi16(a, b); }
  template <int kBits>
  static Vector ShiftWordsLeft(Vector v) {
    return _mm_slli_epi16(v, kBits);
  }

  static Vector Widen(const Sample* in) {
    return _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const Vector*>(in)));
  }

  static Vector LookUp(const Sample* table, Vector indices) {
    return VectorLookUp<Sse41>::Of(table, indices);
  }
};

}  // namespace

constinit const FrameKernels kSse41FrameKernels = MakeFrameKernels<Sse41>("sse4.1");

}  // namespace vexa::imaging
#endif
