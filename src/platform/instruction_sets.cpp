#include "platform/instruction_sets.hpp"

#if defined(__i386__) || defined(__x86_64__)
#include <cpuid.h>
#endif

namespace vexa::platform {

#if defined(__i386__) || defined(__x86_64__)
namespace {

/// Bit counting of leading zeros, which __builtin_cpu_supports does not know.
bool HasLzcnt() {
  unsigned a = 0;
  unsigned b = 0;
  unsigned c = 0;
  unsigned d = 0;
  constexpr unsigned kExtendedFeatures = 0x80000001;
  constexpr unsigned kLzcnt = 1U << 5;  // in ECX
  return __get_cpuid(kExtendedFeatures, &a, &b, &c, &d) != 0 && (c & kLzcnt) != 0;
}

}  // namespace

bool IsUsable(InstructionSet instructions) {
  __builtin_cpu_init();
  switch (instructions) {
    case InstructionSet::kBaseline:
      return true;
    case InstructionSet::kSsse3:
      return __builtin_cpu_supports("ssse3");
    case InstructionSet::kSse41:
      return __builtin_cpu_supports("sse4.1");
    case InstructionSet::kAvx2:
      return __builtin_cpu_supports("avx2");
    case InstructionSet::kAvx2AndBitCounting:
      return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
             __builtin_cpu_supports("bmi2") && HasLzcnt();
  }
  return false;
}
#else
bool IsUsable(InstructionSet instructions) { return instructions == InstructionSet::kBaseline; }
#endif

}  // namespace vexa::platform
