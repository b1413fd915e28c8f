/// \file
/// The inner loops of pixel format conversion, tone curves and colour correction. Pixels lie in
/// memory one after the other; whole images without padding are one stretch.
#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/kernels/color_mix.hpp"
#include "platform/instruction_sets.hpp"

namespace vexa::imaging {

/// Layouts that conversions read. The YUV layouts hold U, Y, V as Vexa cameras send them: groups of
/// four pixels U Y0 Y1 V Y2 Y3 (4:1:1), of two pixels U Y0 V Y1 (4:2:2), of one pixel U Y V
/// (4:4:4).
enum SourceLayout : std::size_t {
  kFromGrey8,
  kFromBgr24,
  kFromBgr30,  ///< little-endian 32-bit words, blue in bits 0-9, green in 10-19, red in 20-29
  kFromYuv411,
  kFromYuv422,
  kFromYuv444,
  kSourceLayouts
};

/// Layouts that conversions write. Colour sources give their green or luminance for grey.
enum TargetLayout : std::size_t { kToGrey8, kToBgr24, kToBgr32, kTargetLayouts };

/// One version of every inner loop; all give the same results. `n` counts pixels (0 is fine).
/// Source and target do not overlap. No alignment is assumed. The fourth byte of a BGR32 pixel
/// keeps its value.
struct PixelKernels {
  const char* name;

  /// Converts n pixels, whole groups of the source's layout.
  using Convert = void (*)(const std::uint8_t* source, std::uint8_t* target, std::size_t n);
  Convert convert[kSourceLayouts][kTargetLayouts];

  /// The low byte of each little-endian word >> shift (0 to 15).
  void (*narrow)(const std::uint8_t* words, unsigned shift, std::uint8_t* target, std::size_t n);

  /// Replaces every sample by its entry of a table of 256.
  void (*look_up)(const std::uint8_t* table, std::uint8_t* samples, std::size_t n);

  /// The same with two tables in turn; n is even.
  void (*look_up_pairs)(const std::uint8_t* even, const std::uint8_t* odd, std::uint8_t* samples,
                        std::size_t n);

  /// Moves every pixel's luminance Y (see Luma) to table[Y]: adds the difference to its three
  /// values and clamps them to 0..255.
  using ShiftLuma = void (*)(const std::uint8_t* table, std::uint8_t* pixels, std::size_t n);
  ShiftLuma shift_luma_bgr24;
  ShiftLuma shift_luma_bgr32;

  /// Replaces the three values of every pixel by the mix's sums, clamped to 0..255.
  using Mix = void (*)(const ColorMix& mix, std::uint8_t* pixels, std::size_t n);
  Mix mix_bgr24;
  Mix mix_bgr32;
};

/// Plain C++, on every processor.
extern const PixelKernels kReferencePixelKernels;

#if defined(__SSE2__)
/// The baseline of x86 builds.
extern const PixelKernels kSse2PixelKernels;

/// Only for processors with SSSE3.
extern const PixelKernels kSsse3PixelKernels;
#endif

#if defined(VEXA_AVX2_KERNELS)
/// Only for processors with AVX2.
extern const PixelKernels kAvx2PixelKernels;
#endif

}  // namespace vexa::imaging
