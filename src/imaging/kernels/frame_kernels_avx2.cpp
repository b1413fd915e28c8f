// 32 samples at a time.
#include "imaging/kernels/frame_kernels.hpp"

#if defined(VEXA_AVX2_FRAME_KERNELS)
#include <immintrin.h>
#pragma GCC target("avx2")
#include "imaging/kernels/vector_frames.hpp"

namespace vexa::imaging {
namespace {

struct Avx2 {
  static constexpr std::size_t kWidth = 32;
  using Vector = __m256i;

  static const FrameKernels& Smaller() { return kSsse3FrameKernels; }

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
};

}  // namespace

constinit const FrameKernels kAvx2FrameKernels = VectorFrames<Avx2>::Kernels("avx2");

}  // namespace vexa::imaging
#endif
