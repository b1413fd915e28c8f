#include "imaging/kernels/pixel_dispatch.hpp"

#include "platform/kernel_versions.hpp"

namespace vexa::imaging {
namespace {

using platform::InstructionSet;

constexpr platform::KernelVersion<PixelKernels> kVersions[] = {
    {&kReferencePixelKernels, InstructionSet::kBaseline},
#if defined(__SSE2__)
    {&kSse2PixelKernels, InstructionSet::kBaseline},
    {&kSsse3PixelKernels, InstructionSet::kSsse3},
#endif
#if defined(VEXA_AVX2_KERNELS)
    {&kAvx2PixelKernels, InstructionSet::kAvx2},
#endif
};

}  // namespace

std::span<const PixelKernels* const> UsablePixelKernels() {
  static const platform::UsableVersions versions(kVersions);
  return versions.All();
}

const PixelKernels& BestPixelKernels() { return *UsablePixelKernels().back(); }

}  // namespace vexa::imaging
