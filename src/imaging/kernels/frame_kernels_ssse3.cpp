// 16 samples at a time, for processors that can shuffle bytes: all but the very old; many small
// ones have nothing better.
#include "imaging/kernels/frame_kernels.hpp"

#if defined(__SSE2__)
#include <tmmintrin.h>
#pragma GCC target("ssse3")
#include "imaging/kernels/vector_frames.hpp"
#include "imaging/kernels/vector_sse2.hpp"

namespace vexa::imaging {
namespace {

struct Ssse3 : Sse2 {
  static const FrameKernels& Smaller() { return kReferenceFrameKernels; }

  static Vector Reverse(Vector v) {
    return _mm_shuffle_epi8(v, _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0));
  }
};

}  // namespace

constinit const FrameKernels kSsse3FrameKernels = VectorFrames<Ssse3>::Kernels("ssse3");

}  // namespace vexa::imaging
#endif
