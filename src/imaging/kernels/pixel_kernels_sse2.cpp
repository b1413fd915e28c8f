// 16 pixels at a time, for every x86 processor that the library runs on.
#include "imaging/kernels/pixel_kernels.hpp"

#if defined(__SSE2__)
#include "imaging/kernels/dispatch.hpp"
#include "imaging/kernels/lane_sse2.hpp"
#include "imaging/kernels/vector_pixels.hpp"

namespace vexa::imaging {
namespace {

struct Sse2 : Lane {
  static constexpr bool kShuffles = false;

  static Bytes UpperHalf(Bytes v) { return (Bytes)_mm_unpackhi_epi64((__m128i)v, (__m128i)v); }

  static Shorts MulRounded(Shorts a, Shorts b) {
    const Words high = (Words)MulHigh(a, b);
    const Words low = (Words)a * (Words)b;
    return (Shorts)((high << 1) + (low >> 15) + ((low >> 14) & 1));
  }

  static void StoreTriples(std::uint8_t* p, Bytes blue, Bytes green, Bytes red) {
    std::uint8_t planes[3][kWidth];
    StoreLanes(planes[0], 0, blue);
    StoreLanes(planes[1], 0, green);
    StoreLanes(planes[2], 0, red);
    kSse2RowKernels.store_bgr24(planes[0], planes[1], planes[2], p, kWidth);
  }
};

}  // namespace

constinit const PixelKernels kSse2PixelKernels = VectorPixels<Sse2>::Kernels("sse2");

}  // namespace vexa::imaging
#endif
