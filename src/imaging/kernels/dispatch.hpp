/// \file
/// The versions of the inner loops, and the choice among them.
#pragma once

#include <span>

#include "imaging/kernels/row_kernels.hpp"

namespace vexa::imaging {

/// Plain C++, on every processor.
extern const RowKernels kReferenceRowKernels;

/// Every version that this build contains and this processor can run, slowest (the reference)
/// first. All give the same results.
std::span<const RowKernels* const> UsableRowKernels();

/// The last of them; chosen at the first call.
const RowKernels& BestRowKernels();

}  // namespace vexa::imaging
