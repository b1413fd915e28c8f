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

  /// out[i] = (a[i] + b[i]) / 2
  void (*mean)(const Sample* a, const Sample* b, Sample* out, std::size_t n);

  /// out[i] = five_eighths[a[i] + b[i]] + minus_eighth[c[i] + d[i]], clamped to 0..255: a and b
  /// are the samples at distance 1, c and d those at distance 3 (see WeightTables).
  void (*four_tap)(const Sample* a, const Sample* b, const Sample* c, const Sample* d, Sample* out,
                   std::size_t n);

  /// Deals two rows out by parity: even = s[0] m[1] s[2] ..., odd = m[0] s[1] m[2] ...
  void (*split)(const Sample* s, const Sample* m, Sample* even, Sample* odd, std::size_t n);

  /// Exchanges the two samples of each pair. n is even.
  void (*swap_pairs)(const Sample* s, Sample* out, std::size_t n);

  /// A colour that lies on the even samples of two rows, taken a quarter of its lattice away from
  /// the nearest sample in both directions: with v = 3 nearer + farther,
  /// out[i] = (3 v[i] + v[i + 2]) / 16 for even i and (3 v[i + 1] + v[i - 1]) / 16 for odd i.
  /// Both rows are readable for n + 2 samples.
  void (*cell_color)(const Sample* nearer, const Sample* farther, Sample* out, std::size_t n);

  /// The mean of the two diagonal samples of each 2 x 2 cell: (a[i] + b[i + 1]) / 2 for even i and
  /// (a[i + 1] + b[i]) / 2 for odd i. a and b are readable for n + 1 samples.
  void (*cell_green)(const Sample* a, const Sample* b, Sample* out, std::size_t n);

  /// Interleaves three planes to BGR24 (3 n bytes).
  void (*store_bgr24)(const Sample* blue, const Sample* green, const Sample* red, Sample* out,
                      std::size_t n);

  /// Interleaves three planes to BGR32 with a zero fourth byte (4 n bytes).
  void (*store_bgr32)(const Sample* blue, const Sample* green, const Sample* red, Sample* out,
                      std::size_t n);
};

}  // namespace vexa::imaging
