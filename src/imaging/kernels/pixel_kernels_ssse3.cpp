// 16 pixels at a time, for processors that can shuffle bytes (all but the very old; many small ones
// have nothing better).
#include "imaging/kernels/pixel_kernels.hpp"

#if defined(__SSE2__)
#include <tmmintrin.h>
#pragma GCC target("ssse3")
#include "imaging/kernels/lane_sse2.hpp"
#include "imaging/kernels/vector_pixels.hpp"

namespace vexa::imaging {
namespace {

struct Ssse3 : Lane {
  static constexpr bool kShuffles = true;

  static Bytes Order(const std::uint8_t* bytes) { return LoadLanes(bytes, 0); }
  static Bytes Shuffle(Bytes v, Bytes order) {
    return (Bytes)_mm_shuffle_epi8((__m128i)v, (__m128i)order);
  }
  static Bytes Select(Bytes mask, Bytes a, Bytes b) { return (a & mask) | (b & ~mask); }
  static Bytes SubSigned(Bytes a, Bytes b) { return (Bytes)_mm_subs_epi8((__m128i)a, (__m128i)b); }
  static Shorts MulRounded(Shorts a, Shorts b) {
    return (Shorts)_mm_mulhrs_epi16((__m128i)a, (__m128i)b);
  }
};

}  // namespace

constinit const PixelKernels kSsse3PixelKernels = VectorPixels<Ssse3>::Kernels("ssse3");

}  // namespace vexa::imaging
#endif
