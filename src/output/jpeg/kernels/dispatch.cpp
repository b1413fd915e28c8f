#include "output/jpeg/kernels/dispatch.hpp"

#include "platform/kernel_versions.hpp"

namespace vexa::output {
namespace {

using platform::InstructionSet;

constexpr platform::KernelVersion<JpegKernels> kVersions[] = {
    {&kReferenceJpegKernels, InstructionSet::kBaseline},
#if defined(__SSE2__)
    {&kSse2JpegKernels, InstructionSet::kBaseline},
#endif
#if defined(VEXA_AVX2_KERNELS)
    {&kAvx2JpegKernels, InstructionSet::kAvx2AndBitCounting},
#endif
};

}  // namespace

std::span<const JpegKernels* const> UsableJpegKernels() {
  static const platform::UsableVersions versions(kVersions);
  return versions.All();
}

const JpegKernels& BestJpegKernels() { return *UsableJpegKernels().back(); }

}  // namespace vexa::output
