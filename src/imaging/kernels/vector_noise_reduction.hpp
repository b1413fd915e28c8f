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
    const Rows at(rows);
    const auto step = [=](std::size_t i) {
      const Vector limit = SecondLargest(V::Load(at.above + i - 1), V::Load(at.above + i + 1),
                                         V::Load(at.below + i - 1), V::Load(at.below + i + 1));
      V::Store(out + i, V::Min(V::Load(at.here + i), limit));
    };
    step(0);
    for (std::size_t i = FirstAligned(out); i + kWidth < n; i += kWidth) {
      step(i);
    }
    step(n - kWidth);
  }

  static void LimitBayer(const Sample* const* rows, bool green_first, Sample* out, std::size_t n) {
    if (n < kWidth) {
      return V::Smaller().limit_bayer(rows, green_first, out, n);
    }
    const Rows at(rows);
    const auto step = [=](std::size_t i, Vector greens) {
      const Vector a = V::Pick(greens, V::Load(at.above + i - 1), V::Load(at.far_above + i));
      const Vector b = V::Pick(greens, V::Load(at.above + i + 1), V::Load(at.far_below + i));
      const Vector c = V::Pick(greens, V::Load(at.below + i - 1), V::Load(at.here + i - 2));
      const Vector d = V::Pick(greens, V::Load(at.below + i + 1), V::Load(at.here + i + 2));
      V::Store(out + i, V::Min(V::Load(at.here + i), SecondLargest(a, b, c, d)));
    };
    const Vector even = V::Words(0x00FF);
    const Vector odd = V::Words(static_cast<std::int16_t>(0xFF00));
    // From an odd sample on the sites have changed places.
    const auto greens_from = [=](std::size_t i) {
      return green_first == (i % 2 == 0) ? even : odd;
    };
    step(0, greens_from(0));
    const std::size_t aligned = FirstAligned(out);
    const Vector greens = greens_from(aligned);
    for (std::size_t i = aligned; i + kWidth < n; i += kWidth) {
      step(i, greens);
    }
    step(n - kWidth, greens_from(n - kWidth));
  }

  static bool Subtract(const Sample* dark, Sample* samples, Sample* before, std::size_t n) {
    if (n < kWidth) {
      return V::Smaller().subtract(dark, samples, before, n);
    }
    // The last vectors overlap: what is stored there last was loaded first.
    const std::size_t end = n - kWidth;
    const Vector last = V::Load(samples + end);
    Vector brightest = last;
    for (std::size_t i = 0; i < end; i += kWidth) {
      const Vector v = V::Load(samples + i);
      brightest = V::Max(brightest, v);
      V::Store(before + i, v);
      V::Store(samples + i, V::SubClamped(v, V::Load(dark + i)));
    }
    V::Store(before + end, last);
    V::Store(samples + end, V::SubClamped(last, V::Load(dark + end)));
    return V::HighBits(AtLeast(brightest, V::Bytes(kSaturated))) != 0;
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
  /// A copy of the caller's pointers, which no store of samples can change.
  struct Rows {
    explicit Rows(const Sample* const* rows)
        : far_above(rows[0]), above(rows[1]), here(rows[2]), below(rows[3]), far_below(rows[4]) {}
    const Sample* far_above;
    const Sample* above;
    const Sample* here;
    const Sample* below;
    const Sample* far_below;
  };

  /// Where the first vector after that at 0 starts; stores are faster where addresses are multiples
  /// of their size.
  static std::size_t FirstAligned(const Sample* out) {
    return kWidth - reinterpret_cast<std::uintptr_t>(out) % kWidth;
  }

  static Vector AtLeast(Vector v, Vector level) { return V::Equal(V::Max(v, level), v); }

  static Vector SecondLargest(Vector a, Vector b, Vector c, Vector d) {
    return V::Max(V::Min(V::Max(a, b), V::Max(c, d)), V::Max(V::Min(a, b), V::Min(c, d)));
  }
};

}  // namespace vexa::imaging
