#include "imaging/kernels/dispatch.hpp"

#include "platform/kernel_versions.hpp"

namespace vexa::imaging {
namespace {

using platform::InstructionSet;

constexpr platform::KernelVersion<RowKernels> kVersions[] = {
    {&kReferenceRowKernels, InstructionSet::kBaseline},
#if defined(__SSE2__)
    {&kSse2RowKernels, InstructionSet::kBaseline},
    {&kSsse3RowKernels, InstructionSet::kSsse3},
#endif
#if defined(VEXA_AVX2_KERNELS)
    {&kAvx2RowKernels, InstructionSet::kAvx2},
#endif
};

}  // namespace

std::span<const RowKernels* const> UsableRowKernels() {
  static const platform::UsableVersions versions(kVersions);
  return versions.All();
}

const RowKernels& BestRowKernels() { return *UsableRowKernels().back(); }

}  // namespace vexa::imaging
