/// \file
/// The versions of the encoder's inner loops, and the choice among them.
#pragma once

#include <span>

#include "output/jpeg/kernels/jpeg_kernels.hpp"
#include "platform/instruction_sets.hpp"

namespace vexa::output {

/// Plain C++, on every processor; the transform in double precision.
extern const JpegKernels kReferenceJpegKernels;

#if defined(__SSE2__)
/// The baseline of x86 builds.
extern const JpegKernels kSse2JpegKernels;
#endif

#if defined(VEXA_AVX2_KERNELS)
/// Only for processors with AVX2, BMI1, BMI2 and LZCNT.
extern const JpegKernels kAvx2JpegKernels;
#endif

/// Every version that this build contains and this processor can run, slowest (the reference)
/// first.
std::span<const JpegKernels* const> UsableJpegKernels();

/// The last of them; chosen at the first call.
const JpegKernels& BestJpegKernels();

}  // namespace vexa::output
