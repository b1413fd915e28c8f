#include "imaging/kernels/pixel_dispatch.hpp"

#include <array>

namespace vexa::imaging {
namespace {

/// What this processor can run, found out once.
class UsableVersions {
 public:
  UsableVersions() {
    Add(kReferencePixelKernels);
#if defined(__SSE2__)
    __builtin_cpu_init();
    Add(kSse2PixelKernels);
    if (__builtin_cpu_supports("ssse3")) {
      Add(kSsse3PixelKernels);
    }
#endif
#if defined(VEXA_AVX2_PIXEL_KERNELS)
    if (__builtin_cpu_supports("avx2")) {
      Add(kAvx2PixelKernels);
    }
#endif
  }

  std::span<const PixelKernels* const> All() const { return std::span(versions_).first(count_); }

 private:
  void Add(const PixelKernels& version) { versions_[count_++] = &version; }

  std::array<const PixelKernels*, 4> versions_{};
  std::size_t count_ = 0;
};

}  // namespace

std::span<const PixelKernels* const> UsablePixelKernels() {
  static const UsableVersions versions;
  return versions.All();
}

const PixelKernels& BestPixelKernels() { return *UsablePixelKernels().back(); }

}  // namespace vexa::imaging
