/// \file
/// The versions of the encoder's inner loops, and the choice among them.
#pragma once

#include <span>

#include "output/jpeg/kernels/jpeg_kernels.hpp"

// 64-bit Windows keeps the stack aligned to 16 bytes only, and GCC spills 32-byte vectors there as
// if it were aligned to 32; that build goes without them.
#if defined(__i386__) || (defined(__x86_64__) && defined(__ELF__))
#define VEXA_AVX2_JPEG_KERNELS
#endif

namespace vexa::output {

/// Plain C++, on every processor; the transform in double precision.
extern const JpegKernels kReferenceJpegKernels;

#if defined(__SSE2__)
/// The baseline of x86 builds.
extern const JpegKernels kSse2JpegKernels;
#endif

#if defined(VEXA_AVX2_JPEG_KERNELS)
/// Only for processors with AVX2, BMI1, BMI2 and LZCNT.
extern const JpegKernels kAvx2JpegKernels;
#endif

/// Every version that this build contains and this processor can run, slowest (the reference)
/// first.
std::span<const JpegKernels* const> UsableJpegKernels();

/// The last of them; chosen at the first call.
const JpegKernels& BestJpegKernels();

}  // namespace vexa::output
