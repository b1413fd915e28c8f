/// \file
/// The inner loops in vectors, for any vector width. Included by one file per instruction set,
/// after that file has switched the compiler to it.
///
/// What comes from here and from the headers below is compiled for that instruction set, so none of
/// it may be shared with other files: V lives in an unnamed namespace, and nothing here uses
/// templates or inline functions of other headers.
#pragma once

#include "imaging/kernels/vector_noise_reduction.hpp"
#include "imaging/kernels/vector_reordering.hpp"
#include "imaging/kernels/vector_sharpness.hpp"
#include "imaging/kernels/vector_sums.hpp"

namespace vexa::imaging {

/// V describes the vectors: their type Vector and kWidth (samples), what is done with them, and
/// Smaller, the kernels for what does not fill a vector. Without kShuffles the smaller kernels also
/// do what needs shuffles.
template <class V>
constexpr FrameKernels MakeFrameKernels(const char* name) {
  return {
      .name = name,
      .reverse = VectorReordering<V>::Reverse,
      .exchange = VectorReordering<V>::Exchange,
      .transpose = VectorReordering<V>::Transpose,
      .row_sums = VectorSharpness<V>::RowSums,
      .luma_bgr24 = VectorSharpness<V>::template Luma<3>,
      .luma_bgr32 = VectorSharpness<V>::template Luma<4>,
      .sharpen_mono = VectorSharpness<V>::Mono,
      .sharpen_bgr24 = VectorSharpness<V>::template Bgr<3>,
      .sharpen_bgr32 = VectorSharpness<V>::template Bgr<4>,
      .limit_mono = VectorNoiseReduction<V>::LimitMono,
      .limit_bayer = VectorNoiseReduction<V>::LimitBayer,
      .subtract = VectorNoiseReduction<V>::Subtract,
      .find_desaturated = VectorNoiseReduction<V>::FindDesaturated,
      .sum_pairs = VectorSums<V>::SumPairs,
  };
}

}  // namespace vexa::imaging
