#include <array>

#include "imaging/kernels/frame_kernels.hpp"

namespace vexa::imaging {
namespace {

/// What this processor can run, found out once.
class UsableVersions {
 public:
  UsableVersions() {
    Add(kReferenceFrameKernels);
#if defined(__SSE2__)
    __builtin_cpu_init();
    Add(kSse2FrameKernels);
    if (__builtin_cpu_supports("sse4.1")) {
      Add(kSse41FrameKernels);
    }
#endif
#if defined(VEXA_AVX2_FRAME_KERNELS)
    if (__builtin_cpu_supports("avx2")) {
      Add(kAvx2FrameKernels);
    }
#endif
  }

  std::span<const FrameKernels* const> All() const { return std::span(versions_).first(count_); }

 private:
  void Add(const FrameKernels& version) { versions_[count_++] = &version; }

  std::array<const FrameKernels*, 4> versions_{};
  std::size_t count_ = 0;
};

}  // namespace

std::span<const FrameKernels* const> UsableFrameKernels() {
  static const UsableVersions versions;
  return versions.All();
}

const FrameKernels& BestFrameKernels() { return *UsableFrameKernels().back(); }

}  // namespace vexa::imaging
