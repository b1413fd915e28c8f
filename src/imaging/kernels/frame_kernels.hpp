/// \file
/// The inner loops of the operations that change a frame in place: mirrors and rotations.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "imaging/kernels/row_kernels.hpp"

namespace vexa::imaging {

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
};

/// Plain C++, on every processor.
extern const FrameKernels kReferenceFrameKernels;

#if defined(__SSE2__)
/// The baseline of x86 builds.
extern const FrameKernels kSse2FrameKernels;

/// Only for processors with SSSE3.
extern const FrameKernels kSsse3FrameKernels;
#endif

// For the reason why a build goes without these see dispatch.hpp.
#if defined(__i386__) || (defined(__x86_64__) && defined(__ELF__))
#define VEXA_AVX2_FRAME_KERNELS
/// Only for processors with AVX2.
extern const FrameKernels kAvx2FrameKernels;
#endif

/// Every version that this build contains and this processor can run, slowest (the reference)
/// first. All give the same results.
std::span<const FrameKernels* const> UsableFrameKernels();

/// The last of them; chosen at the first call.
const FrameKernels& BestFrameKernels();

}  // namespace vexa::imaging
