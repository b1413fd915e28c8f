#include "imaging/kernels/dispatch.hpp"

#include <array>

namespace vexa::imaging {
namespace {

/// What this processor can run, found out once.
class UsableVersions {
 public:
  UsableVersions() {
    Add(kReferenceRowKernels);
#if defined(__SSE2__)
    __builtin_cpu_init();
    Add(kSse2RowKernels);
    if (__builtin_cpu_supports("ssse3")) {
      Add(kSsse3RowKernels);
    }
#endif
#if defined(VEXA_AVX2_ROW_KERNELS)
    if (__builtin_cpu_supports("avx2")) {
      Add(kAvx2RowKernels);
    }
#endif
  }

  std::span<const RowKernels* const> All() const { return std::span(versions_).first(count_); }

 private:
  void Add(const RowKernels& version) { versions_[count_++] = &version; }

  std::array<const RowKernels*, 4> versions_{};
  std::size_t count_ = 0;
};

}  // namespace

std::span<const RowKernels* const> UsableRowKernels() {
  static const UsableVersions versions;
  return versions.All();
}

const RowKernels& BestRowKernels() { return *UsableRowKernels().back(); }

}  // namespace vexa::imaging
