#include "output/jpeg/kernels/dispatch.hpp"

#include <array>

#if defined(VEXA_AVX2_JPEG_KERNELS)
#include <cpuid.h>
#endif

namespace vexa::output {
namespace {

#if defined(VEXA_AVX2_JPEG_KERNELS)
bool HasAvx2AndBitCounting() {
  unsigned a = 0;
  unsigned b = 0;
  unsigned c = 0;
  unsigned d = 0;
  constexpr unsigned kExtendedFeatures = 0x80000001;
  constexpr unsigned kLzcnt = 1U << 5;  // in ECX
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
         __builtin_cpu_supports("bmi2") && __get_cpuid(kExtendedFeatures, &a, &b, &c, &d) != 0 &&
         (c & kLzcnt) != 0;
}
#endif

/// What this processor can run, found out once.
class UsableVersions {
 public:
  UsableVersions() {
    Add(kReferenceJpegKernels);
#if defined(__SSE2__)
    Add(kSse2JpegKernels);
#endif
#if defined(VEXA_AVX2_JPEG_KERNELS)
    __builtin_cpu_init();
    if (HasAvx2AndBitCounting()) {
      Add(kAvx2JpegKernels);
    }
#endif
  }

  std::span<const JpegKernels* const> All() const { return std::span(versions_).first(count_); }

 private:
  void Add(const JpegKernels& version) { versions_[count_++] = &version; }

  std::array<const JpegKernels*, 3> versions_{};
  std::size_t count_ = 0;
};

}  // namespace

std::span<const JpegKernels* const> UsableJpegKernels() {
  static const UsableVersions versions;
  return versions.All();
}

const JpegKernels& BestJpegKernels() { return *UsableJpegKernels().back(); }

}  // namespace vexa::output
