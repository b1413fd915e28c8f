/// \file
/// The demosaicing methods behind colour interpolation, on frames whose sizes and buffers have
/// been checked.
#pragma once

#include <cstddef>

#include "imaging/color_array.hpp"
#include "imaging/kernels/row_kernels.hpp"

namespace vexa::imaging {

/// A raw frame behind a Bayer filter. Its rows alternate between two kinds: rows of green and the
/// first row's colour, and rows of green and the other colour. Which of the two is red is left to
/// the BgrImage.
struct BayerFrame {
  const Sample* samples;
  std::size_t width;
  std::size_t height;
  bool green_first;  ///< the pixel in the corner is green (GRBG, GBRG)

  const Sample* Row(std::size_t y) const { return samples + y * width; }

  /// The parity of the columns in which row y has its colour other than green.
  std::size_t ColorParity(std::size_t y) const { return (y & 1) ^ (green_first ? 1U : 0U); }
};

/// The image that a method writes, three planes of a stretch of a row at a time.
class BgrImage {
 public:
  using Store = void (*)(const Sample*, const Sample*, const Sample*, Sample*, std::size_t);

  /// `store` interleaves pixels of `bytes_per_pixel` bytes; `blue_first` when the first row of the
  /// frame holds blue.
  BgrImage(Sample* pixels, std::size_t width, std::size_t bytes_per_pixel, Store store,
           bool blue_first)
      : pixels_(pixels),
        width_(width),
        bytes_per_pixel_(bytes_per_pixel),
        store_(store),
        blue_first_(blue_first) {}

  /// Writes n pixels from column x of row y: `first` is the first row's colour, `second` that of
  /// the second row.
  void Write(std::size_t x, std::size_t y, std::size_t n, const Sample* first, const Sample* green,
             const Sample* second) const {
    Sample* out = pixels_ + (y * width_ + x) * bytes_per_pixel_;
    store_(blue_first_ ? first : second, green, blue_first_ ? second : first, out, n);
  }

 private:
  Sample* pixels_;
  std::size_t width_;
  std::size_t bytes_per_pixel_;
  Store store_;
  bool blue_first_;
};

/// Frames are worked on in strips of at most this many columns (an even number), whose
/// intermediate rows lie on the stack and stay in the caches near the processor. Wide enough for
/// the rows of common sensors in one piece, and no power of two, which would put all rows of a
/// strip into the same sets of a cache.
inline constexpr std::size_t kStripWidth = 2624;

/// Method kMosaic; the last column and row of odd sizes stay unwritten.
void DemosaicMosaic(const BayerFrame& frame, const BgrImage& image, const RowKernels& kernels);

/// Method kNearest; the last column and row of odd sizes stay unwritten.
void DemosaicNearest(const BayerFrame& frame, const BgrImage& image, const RowKernels& kernels);

/// Method kBilinear. Width at least 2, height at least 4. `border_from_below`: the first and last
/// pixel of the rows between the first and the last take their missing colour from the row below
/// alone.
void DemosaicBilinear(const BayerFrame& frame, const BgrImage& image, const RowKernels& kernels,
                      bool border_from_below);

/// Method kFourTap. Width and height at least 6.
void DemosaicFourTap(const BayerFrame& frame, const BgrImage& image, const RowKernels& kernels);

/// Method kCellCentred. Width and height at least 2.
void DemosaicCellCentred(const BayerFrame& frame, const BgrImage& image, const RowKernels& kernels);

}  // namespace vexa::imaging
