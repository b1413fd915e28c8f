/// \file
/// Which instructions inner loops may use: what this build contains, and what this processor runs.
#pragma once

// 64-bit Windows keeps the stack aligned to 16 bytes only, and GCC spills 32-byte vectors there as
// if it were aligned to 32; that build goes without them.
#if defined(__i386__) || (defined(__x86_64__) && defined(__ELF__))
#define VEXA_AVX2_KERNELS
#endif

namespace vexa::platform {

enum class InstructionSet {
  kBaseline,  ///< what the build is compiled for; SSE2 on x86
  kSsse3,
  kSse41,
  kAvx2,
  kAvx2AndBitCounting,  ///< AVX2, BMI1, BMI2 and LZCNT
};

/// Whether this processor runs them.
bool IsUsable(InstructionSet instructions);

}  // namespace vexa::platform
