/// \file
/// Colour conversion with vectors. Shared by the vector versions, each of which compiles it for its
/// processors.
#pragma once

#include <cstddef>
#include <cstdint>

#include "output/jpeg/kernels/dispatch.hpp"

namespace vexa::output {

/// JpegKernels::convert_bgr24 and convert_bgr32. `Vector` provides:
///   Ints                   a vector of kLanes numbers of 32 bits
///   LoadPixels<size>(bgr)  kLanes pixels: blue and red as pairs of 16 bits, green twice; reads up
///                          to 4 bytes beyond pixels of 3 bytes
///   MultiplyAdd(a, b)      sums of the products of pairs of signed 16 bits
///   PutBytes(out, four)    the numbers of four Ints as bytes
template <typename Vector>
struct VectorColours {
  using Ints = typename Vector::Ints;

  template <std::size_t kPixelSize>
  static void Convert(const std::uint8_t* bgr, std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr,
                      std::size_t n) {
    // The factors of the plain version; negative, because -32768 is a 16-bit number. Green in two
    // halves for luminance.
    constexpr std::int32_t kHalf = 32768;
    constexpr std::int32_t kMiddle = (128 << 16) + kHalf - 1;
    constexpr std::size_t kStep = 4 * Vector::kLanes;
    constexpr std::size_t kBeyond = kPixelSize == 3 ? 2 : 0;  // pixels that are read too far
    std::size_t i = 0;
    for (; i + kStep + kBeyond <= n; i += kStep) {
      Ints ys[4];
      Ints cbs[4];
      Ints crs[4];
      for (std::size_t part = 0; part < 4; ++part) {
        const auto pixels =
            Vector::template LoadPixels<kPixelSize>(bgr + kPixelSize * (i + part * Vector::kLanes));
        ys[part] = Component(pixels, Pair(-7471, -19595), Pair(-19235, -19235), kHalf);
        cbs[part] = Component(pixels, Pair(-32768, 11059), Pair(21709, 0), kMiddle);
        crs[part] = Component(pixels, Pair(5329, -32768), Pair(27439, 0), kMiddle);
      }
      Vector::PutBytes(y + i, ys);
      Vector::PutBytes(cb + i, cbs);
      Vector::PutBytes(cr + i, crs);
    }
    const auto rest =
        kPixelSize == 3 ? kReferenceJpegKernels.convert_bgr24 : kReferenceJpegKernels.convert_bgr32;
    rest(bgr + kPixelSize * i, y + i, cb + i, cr + i, n - i);
  }

 private:
  static Ints Pair(std::int32_t low, std::int32_t high) {
    return Ints{} +
           static_cast<std::int32_t>((low & 0xFFFF) | static_cast<std::uint32_t>(high) << 16);
  }

  template <typename Pixels>
  static Ints Component(const Pixels& pixels, Ints blue_red, Ints greens, std::int32_t middle) {
    const Ints less = Vector::MultiplyAdd(pixels.blue_red, blue_red) +
                      Vector::MultiplyAdd(pixels.green_green, greens);
    return (middle - less) >> 16;
  }
};

}  // namespace vexa::output
