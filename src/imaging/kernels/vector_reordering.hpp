/// \file
/// Mirrors and transposes in vectors; see vector_frames.hpp.
#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/kernels/frame_kernels.hpp"

namespace vexa::imaging {

template <class V>
struct VectorReordering {
  using Vector = typename V::Vector;
  static constexpr std::size_t kWidth = V::kWidth;

  // In place, the two ends of what is left when it fills less than two vectors overlap: all is
  // loaded before anything is stored, and where they overlap both stores agree.

  static void Reverse(Sample* samples, std::size_t n) {
    while (n >= kWidth) {
      Sample* const end = samples + n - kWidth;
      const Vector first = V::Load(samples);
      const Vector last = V::Load(end);
      V::Store(samples, V::Reverse(last));
      V::Store(end, V::Reverse(first));
      if (n <= 2 * kWidth) {
        return;
      }
      samples += kWidth;
      n -= 2 * kWidth;
    }
    V::Smaller().reverse(samples, n);
  }

  static void Exchange(Sample* a, Sample* b, std::size_t n) {
    if (n < kWidth) {
      return V::Smaller().exchange(a, b, n);
    }
    const std::size_t last = n - kWidth;
    const Vector last_a = V::Load(a + last);
    const Vector last_b = V::Load(b + last);
    for (std::size_t i = 0; i < last; i += kWidth) {
      const Vector v = V::Load(a + i);
      V::Store(a + i, V::Load(b + i));
      V::Store(b + i, v);
    }
    V::Store(a + last, last_b);
    V::Store(b + last, last_a);
  }

  /// 16 columns of kWidth rows. Interleaving the rows that are half the number of rows apart, four
  /// times, leaves each column in one piece.
  static void TransposeBlock(const Sample* in, std::ptrdiff_t in_stride, Sample* out,
                             std::ptrdiff_t out_stride) {
    Vector a[16];
    Vector b[16];
    // Unrolled, so that the arrays are registers.
#pragma GCC unroll 16
    for (int i = 0; i < 16; ++i) {
      a[i] = V::LoadRows(in, in_stride, i);
    }
    Interleave(a, b);
    Interleave(b, a);
    Interleave(a, b);
    Interleave(b, a);
#pragma GCC unroll 16
    for (int i = 0; i < 16; ++i) {
      V::Store(out + i * out_stride, a[i]);
    }
  }

  static void Transpose(const Sample* in, std::ptrdiff_t in_stride, Sample* out,
                        std::ptrdiff_t out_stride, std::size_t columns, std::size_t rows) {
    if (columns < 16 || rows < kWidth) {
      return V::Smaller().transpose(in, in_stride, out, out_stride, columns, rows);
    }
    // Strips as high as a cache line is long, so that the lines of the result are written whole.
    constexpr std::size_t kStrip = 64;
    for (std::size_t top = 0; top < rows; top += kStrip) {
      const std::size_t bottom = top + kStrip < rows ? top + kStrip : rows;
      for (std::size_t left = 0; left < columns; left += 16) {
        const auto x = static_cast<std::ptrdiff_t>(left + 16 <= columns ? left : columns - 16);
        for (std::size_t row = top; row < bottom; row += kWidth) {
          const auto y = static_cast<std::ptrdiff_t>(row + kWidth <= rows ? row : rows - kWidth);
          TransposeBlock(in + y * in_stride + x, in_stride, out + x * out_stride + y, out_stride);
        }
      }
    }
  }

 private:
  static void Interleave(const Vector (&in)[16], Vector (&out)[16]) {
#pragma GCC unroll 8
    for (int i = 0; i < 8; ++i) {
      out[2 * i] = V::UnpackLow(in[i], in[i + 8]);
      out[2 * i + 1] = V::UnpackHigh(in[i], in[i + 8]);
    }
  }
};

}  // namespace vexa::imaging
