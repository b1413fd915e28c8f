/// \file
/// The versions of the inner loops, and the choice among them.
#pragma once

#include <span>

#include "imaging/kernels/row_kernels.hpp"
#include "platform/instruction_sets.hpp"

namespace vexa::imaging {

/// Plain C++, on every processor.
extern const RowKernels kReferenceRowKernels;

#if defined(__SSE2__)
/// The baseline of x86 builds.
extern const RowKernels kSse2RowKernels;

/// Only for processors with SSSE3.
extern const RowKernels kSsse3RowKernels;
#endif

#if defined(VEXA_AVX2_KERNELS)
/// Only for processors with AVX2.
extern const RowKernels kAvx2RowKernels;
#endif

/// Every version that this build contains and this processor can run, slowest (the reference)
/// first. All give the same results.
std::span<const RowKernels* const> UsableRowKernels();

/// The last of them; chosen at the first call.
const RowKernels& BestRowKernels();

}  // namespace vexa::imaging
