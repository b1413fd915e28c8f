/// \file
/// Sums of samples in vectors; see vector_frames.hpp.
#pragma once

#include "imaging/kernels/frame_kernels.hpp"

namespace vexa::imaging {

template <class V>
struct VectorSums {
  using Vector = typename V::Vector;

  static void SumPairs(const Sample* samples, std::size_t n, std::uint64_t (&sums)[2]) {
    Vector even = V::Zero();
    Vector odd = V::Zero();
    for (; n >= V::kWidth; n -= V::kWidth, samples += V::kWidth) {
      const Vector v = V::Load(samples);
      even = V::AddQuads(even, V::SumsOfEights(V::And(v, V::Words(0xFF))));
      odd = V::AddQuads(odd, V::SumsOfEights(V::template ShiftWordsRight<8>(v)));
    }
    AddParts(even, &sums[0]);
    AddParts(odd, &sums[1]);
    V::Smaller().sum_pairs(samples, n, sums);
  }

 private:
  static void AddParts(Vector v, std::uint64_t* sum) {
    std::uint64_t parts[V::kWidth / sizeof(std::uint64_t)];
    V::Store(parts, v);
    for (const std::uint64_t part : parts) {
      *sum += part;
    }
  }
};

}  // namespace vexa::imaging
