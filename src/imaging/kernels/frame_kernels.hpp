/// \file
/// The inner loops of the operations on whole frames: mirrors, rotations, sharpening, noise
/// reduction and means.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "imaging/kernels/row_kernels.hpp"
#include "platform/instruction_sets.hpp"

namespace vexa::imaging {

/// What sharpening a stretch of a row goes by. Entry i of each belongs to pixel i.
struct Neighbourhood {
  /// Luminance of three pixels side by side, added up: in the row above, this one, and below.
  const std::uint16_t* sums[3];
  const Sample* luma;   ///< of the pixels themselves
  const Sample* boost;  ///< 256 entries: how far a pixel moves for its distance from the mean
};

/// Samples from this level on count as saturated.
inline constexpr Sample kSaturated = 253;

/// One version of every inner loop. Counts may be 0; buffers do not overlap and no alignment is
/// assumed, except where more is said.
struct FrameKernels {
  const char* name;

  /// Reverses n samples in place.
  void (*reverse)(Sample* samples, std::size_t n);

  /// Exchanges n samples with n others.
  void (*exchange)(Sample* a, Sample* b, std::size_t n);

  /// Turns rows into columns: out[x * out_stride + y] = in[y * in_stride + x] for x below `columns`
  /// and y below `rows`. A negative stride walks through the rows from the last one, which makes a
  /// quarter turn of it.
  void (*transpose)(const Sample* in, std::ptrdiff_t in_stride, Sample* out,
                    std::ptrdiff_t out_stride, std::size_t columns, std::size_t rows);

  /// sums[i] = row[i] + row[i + 1] + row[i + 2]
  void (*row_sums)(const Sample* row, std::uint16_t* sums, std::size_t n);

  /// Luminance of n pixels (see luma.hpp).
  void (*luma_bgr24)(const Sample* pixels, Sample* luma, std::size_t n);
  void (*luma_bgr32)(const Sample* pixels, Sample* luma, std::size_t n);

  /// Moves n pixels away from the mean of their neighbours; the fourth byte of BGR32 stays. Of a
  /// monochrome row `neighbourhood.luma` is the row itself.
  void (*sharpen_mono)(const Neighbourhood& neighbourhood, Sample* pixels, std::size_t n);
  void (*sharpen_bgr24)(const Neighbourhood& neighbourhood, Sample* pixels, std::size_t n);
  void (*sharpen_bgr32)(const Neighbourhood& neighbourhood, Sample* pixels, std::size_t n);

  /// Takes down what stands out: out[i] = min(p, median of p and its four neighbours), which is the
  /// smaller of p and the second largest neighbour. rows[2] is the row itself, rows[0] to rows[4]
  /// those from two above to two below. The neighbours are the four diagonal ones; rows[1] and
  /// rows[3] are readable from -1 to n, rows[0] and rows[4] are not read.
  void (*limit_mono)(const Sample* const* rows, Sample* out, std::size_t n);

  /// The same in a Bayer frame: diagonal neighbours for green sites, those at distance 2 in the row
  /// and column for others. Sites take turns; `green_first` when the first is green. All rows are
  /// readable from -2 to n + 1.
  void (*limit_bayer)(const Sample* const* rows, bool green_first, Sample* out, std::size_t n);

  /// before[i] = samples[i], then samples[i] = max(0, samples[i] - dark[i]). Returns whether a
  /// sample was saturated.
  bool (*subtract)(const Sample* dark, Sample* samples, Sample* before, std::size_t n);

  /// The first i from `from` on with before[i] >= 253 and after[i] < 253; n if there is none.
  std::size_t (*find_desaturated)(const Sample* before, const Sample* after, std::size_t from,
                                  std::size_t n);

  /// sums[i % 2] += samples[i] for i below n
  void (*sum_pairs)(const Sample* samples, std::size_t n, std::uint64_t (&sums)[2]);
};

/// Plain C++, on every processor.
extern const FrameKernels kReferenceFrameKernels;

#if defined(__SSE2__)
/// The baseline of x86 builds.
extern const FrameKernels kSse2FrameKernels;

/// Only for processors with SSE4.1.
extern const FrameKernels kSse41FrameKernels;
#endif

#if defined(VEXA_AVX2_KERNELS)
/// Only for processors with AVX2.
extern const FrameKernels kAvx2FrameKernels;
#endif

/// Every version that this build contains and this processor can run, slowest (the reference)
/// first. All give the same results.
std::span<const FrameKernels* const> UsableFrameKernels();

/// The last of them; chosen at the first call.
const FrameKernels& BestFrameKernels();

}  // namespace vexa::imaging
