/// \file
/// The choice among the versions of the pixel kernels.
#pragma once

#include <span>

#include "imaging/kernels/pixel_kernels.hpp"

namespace vexa::imaging {

/// Every version that this build contains and this processor can run, slowest (the reference)
/// first.
std::span<const PixelKernels* const> UsablePixelKernels();

/// The last of them; chosen at the first call.
const PixelKernels& BestPixelKernels();

}  // namespace vexa::imaging
