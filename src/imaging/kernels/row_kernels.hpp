/// \file
/// The inner loops of colour interpolation. Each works on stretches of a row, 8 bits per sample.
/// None of them knows colours or borders: callers choose the start of a stretch and the order of
/// the arguments so that "even" and "odd" (counted from the start of the stretch) mean what the
/// colour array needs, and they keep the pixels at the border of the image to themselves.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vexa::imaging {

using Sample = std::uint8_t;

/// One version of every inner loop. `n` counts output pixels (0 is fine); inputs are readable for
/// n samples except where more is said; outputs do not overlap inputs. No alignment is assumed.
struct RowKernels {
  const char* name;

  // Row passes. The samples of a row belong to two colours in turn; each pass completes both.
  // `even` receives the colour of the even samples, `odd` that of the odd ones. The sample itself
  // is one of the two values of its pixel; the other is what the pass is named for.

  /// The missing value is 0.
  void (*row_mosaic)(const Sample* s, Sample* even, Sample* odd, std::size_t n);

  /// The missing value is the other sample of the pair. n is even.
  void (*row_nearest)(const Sample* s, Sample* even, Sample* odd, std::size_t n);

  /// The missing value is the mean of the two samples beside it. Reads s[-1] to s[n].
  void (*row_mean)(const Sample* s, Sample* even, Sample* odd, std::size_t n);

  /// The missing value is that of four_tap for the samples beside it. Reads s[-3] to s[n + 2].
  void (*row_four_tap)(const Sample* s, Sample* even, Sample* odd, std::size_t n);

  // Column passes, from other rows' results.

  /// out[i] = (a[i] + b[i]) / 2
  void (*mean)(const Sample* a, const Sample* b, Sample* out, std::size_t n);

  /// out[i] = FiveEighthsTable[a[i] + b[i]] + MinusEighthTable[c[i] + d[i]], clamped to 0..255: a
  /// and b are the samples at distance 1, c and d those at distance 3 (see WeightTables).
  void (*four_tap)(const Sample* a, const Sample* b, const Sample* c, const Sample* d, Sample* out,
                   std::size_t n);

  // Values at the centres of 2 x 2 cells, from two rows at once.

  /// A colour that lies on the even samples of two rows, taken a quarter of its lattice away from
  /// the nearest sample in both directions: with v = 3 nearer + farther,
  /// out[i] = (3 v[i] + v[i + 2]) / 16 for even i and (3 v[i + 1] + v[i - 1]) / 16 for odd i.
  /// Both rows are readable for n + 2 samples.
  void (*cell_color)(const Sample* nearer, const Sample* farther, Sample* out, std::size_t n);

  /// The mean of the two diagonal samples of each 2 x 2 cell: (a[i] + b[i + 1]) / 2 for even i and
  /// (a[i + 1] + b[i]) / 2 for odd i. a and b are readable for n + 1 samples.
  void (*cell_green)(const Sample* a, const Sample* b, Sample* out, std::size_t n);

  // What all methods end with.

  /// Interleaves three planes to BGR24 (3 n bytes).
  void (*store_bgr24)(const Sample* blue, const Sample* green, const Sample* red, Sample* out,
                      std::size_t n);

  /// Interleaves three planes to BGR32 with a zero fourth byte (4 n bytes).
  void (*store_bgr32)(const Sample* blue, const Sample* green, const Sample* red, Sample* out,
                      std::size_t n);
};

}  // namespace vexa::imaging
