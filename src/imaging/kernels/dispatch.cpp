#include "imaging/kernels/dispatch.hpp"

#include <array>

namespace vexa::imaging {
extern const RowKernels kSsse3RowKernels;
namespace {

struct Choice {
  std::array<const RowKernels*, 4> versions{};
  std::size_t count = 0;

  Choice() {
    versions[count++] = &kReferenceRowKernels;
#if defined(__SSE2__)
    versions[count++] = &kSse2RowKernels;
    if (__builtin_cpu_supports("ssse3")) versions[count++] = &kSsse3RowKernels;
#endif
#if defined(VEXA_AVX2_ROW_KERNELS)
    if (__builtin_cpu_supports("avx2")) {
      versions[count++] = &kAvx2RowKernels;
    }
#endif
  }
};

const Choice& Chosen() {
  static const Choice choice;
  return choice;
}

}  // namespace

std::span<const RowKernels* const> UsableRowKernels() {
  return std::span(Chosen().versions).first(Chosen().count);
}

const RowKernels& BestRowKernels() { return *UsableRowKernels().back(); }

}  // namespace vexa::imaging
