/// \file
/// Noise reduction in vectors; see vector_frames.hpp.
#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/kernels/frame_kernels.hpp"

namespace vexa::imaging {

template <class V>
struct VectorNoiseReduction {
  using Vector = typename V::Vector;
  static constexpr std::size_t kWidth = V::kWidth;

  static void LimitMono(const Sample* const* rows, Sample* out, std::size_t n) {
    if (n < kWidth) {
      return V::Smaller().limit_mono(rows, out, n);
    }
    for (std::size_t i = 0; i + kWidth < n; i += kWidth) {
      V::Store(out + i, V::Min(V::Load(rows[2] + i), Diagonal(rows, i)));
    }
    const std::size_t last = n - kWidth;
    V::Store(out + last, V::Min(V::Load(rows[2] + last), Diagonal(rows, last)));
  }

  static void LimitBayer(const Sample* const* rows, bool green_first, Sample* out, std::size_t n) {
    if (n < kWidth) {
      return V::Smaller().limit_bayer(rows, green_first, out, n);
    }
    const auto step = [=](std::size_t i, Vector greens) {
      const Vector beside = SecondLargest(V::Load(rows[0] + i), V::Load(rows[4] + i),
                                          V::Load(rows[2] + i - 2), V::Load(rows[2] + i + 2));
      const Vector limit = V::Or(V::And(greens, Diagonal(rows, i)), V::AndNot(greens, beside));
      V::Store(out + i, V::Min(V::Load(rows[2] + i), limit));
    };
    const Vector even = V::Words(0x00FF);
    const Vector odd = V::Words(static_cast<std::int16_t>(0xFF00));
    for (std::size_t i = 0; i + kWidth < n; i += kWidth) {
      step(i, green_first ? even : odd);
    }
    // Vectors are of even width: from an odd sample on the sites have changed places.
    const std::size_t last = n - kWidth;
    step(last, green_first == (last % 2 == 0) ? even : odd);
  }

  static void Subtract(const Sample* dark, Sample* samples, std::size_t n) {
    if (n < kWidth) {
      return V::Smaller().subtract(dark, samples, n);
    }
    // The vectors of the end overlap: what is stored there last was worked out first.
    const std::size_t end = n - kWidth;
    const Vector last = V::SubClamped(V::Load(samples + end), V::Load(dark + end));
    for (std::size_t i = 0; i < end; i += kWidth) {
      V::Store(samples + i, V::SubClamped(V::Load(samples + i), V::Load(dark + i)));
    }
    V::Store(samples + end, last);
  }

  static std::size_t FindDesaturated(const Sample* before, const Sample* after, std::size_t from,
                                     std::size_t n) {
    const Vector saturated = V::Bytes(kSaturated);
    for (; from + kWidth <= n; from += kWidth) {
      const Vector was = V::Load(before + from);
      const Vector is = V::Load(after + from);
      const Vector found =
          V::AndNot(V::Equal(V::Max(is, saturated), is), V::Equal(V::Max(was, saturated), was));
      if (const unsigned bits = V::HighBits(found); bits != 0) {
        return from + static_cast<std::size_t>(__builtin_ctz(bits));
      }
    }
    return V::Smaller().find_desaturated(before, after, from, n);
  }

 private:
  static Vector SecondLargest(Vector a, Vector b, Vector c, Vector d) {
    return V::Max(V::Min(V::Max(a, b), V::Max(c, d)), V::Max(V::Min(a, b), V::Min(c, d)));
  }

  static Vector Diagonal(const Sample* const* rows, std::size_t i) {
    return SecondLargest(V::Load(rows[1] + i - 1), V::Load(rows[1] + i + 1),
                         V::Load(rows[3] + i - 1), V::Load(rows[3] + i + 1));
  }
};

}  // namespace vexa::imaging
