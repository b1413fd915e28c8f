#include "imaging/kernels/frame_kernels.hpp"

#include "platform/kernel_versions.hpp"

namespace vexa::imaging {
namespace {

using platform::InstructionSet;

constexpr platform::KernelVersion<FrameKernels> kVersions[] = {
    {&kReferenceFrameKernels, InstructionSet::kBaseline},
#if defined(__SSE2__)
    {&kSse2FrameKernels, InstructionSet::kBaseline},
    {&kSse41FrameKernels, InstructionSet::kSse41},
#endif
#if defined(VEXA_AVX2_KERNELS)
    {&kAvx2FrameKernels, InstructionSet::kAvx2},
#endif
};

}  // namespace

std::span<const FrameKernels* const> UsableFrameKernels() {
  static const platform::UsableVersions versions(kVersions);
  return versions.All();
}

const FrameKernels& BestFrameKernels() { return *UsableFrameKernels().back(); }

}  // namespace vexa::imaging
